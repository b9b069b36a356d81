// SeqAssociationRule is one sequential association rule handed to the host:
// an antecedent and a consequent sequence with the rule's support, confidence
// and cause, and how the consequent attaches to the antecedent (join type 1:
// in item sets after the antecedent's last one; 0: inside its last one).
//
// The rule owns both sequences by value; copying a rule copies them deeply.
// Assignment is kept as the model's hosts know it: it assigns the sequences
// with Sequence::operator=, which appends, so assigning to a rule that
// already holds sequences lengthens them (self-assignment changes nothing).
// Display writes to std::cout and leaves its precision at 4.
//
// Not safe for concurrent use.
#ifndef SEQLATTICE_RULES_SEQASSOCIATIONRULE_H_
#define SEQLATTICE_RULES_SEQASSOCIATIONRULE_H_

#include "seqlattice/sequence/sequence.h"

namespace SEQUENCE_NAMESPACE_800 {

class SeqAssociationRule {
 public:
  SeqAssociationRule(const Sequence& antecedent, const Sequence& consequent,
                     double support, double confidence, double cause,
                     int joinType);
  SeqAssociationRule(const SeqAssociationRule& other);
  SeqAssociationRule& operator=(const SeqAssociationRule& other);
  ~SeqAssociationRule();

  // The stored sequences themselves, valid while the rule lives.
  const Sequence& GetAntecedent() const { return antecedent_; }
  const Sequence& GetConsequent() const { return consequent_; }
  double GetSupport() const { return support_; }
  double GetConfidence() const { return confidence_; }
  double GetCause() const { return cause_; }
  int GetJoinType() const { return joinType_; }

  // Prints, on std::cout, the antecedent, "=>" for join type 1 or "&" for any
  // other, the consequent, and "Support s Confidence c Cause k" with the
  // precision set to 4 and left so.
  void Display() const;

 private:
  Sequence antecedent_;
  Sequence consequent_;
  double support_;
  double confidence_;
  double cause_;
  int joinType_;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RULES_SEQASSOCIATIONRULE_H_
