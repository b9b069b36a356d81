#include "seqlattice/rules/seqassociationrule.h"

#include <iostream>

namespace SEQUENCE_NAMESPACE_800 {

SeqAssociationRule::SeqAssociationRule(const Sequence& antecedent,
                                       const Sequence& consequent,
                                       double support, double confidence,
                                       double cause, int joinType)
    : antecedent_(antecedent),
      consequent_(consequent),
      support_(support),
      confidence_(confidence),
      cause_(cause),
      joinType_(joinType) {}

SeqAssociationRule::SeqAssociationRule(const SeqAssociationRule& other) =
    default;

SeqAssociationRule& SeqAssociationRule::operator=(
    const SeqAssociationRule& other) {
  if (this == &other) return *this;
  antecedent_ = other.antecedent_;  // appends: see the class comment
  consequent_ = other.consequent_;
  support_ = other.support_;
  confidence_ = other.confidence_;
  cause_ = other.cause_;
  joinType_ = other.joinType_;
  return *this;
}

SeqAssociationRule::~SeqAssociationRule() = default;

void SeqAssociationRule::Display() const {
  antecedent_.Display(false);
  std::cout << (joinType_ == 1 ? "=>\n" : "&\n");
  consequent_.Display(false);
  // Hosts print their own listings after this one and rely on the
  // precision staying at 4.
  std::cout.precision(4);
  std::cout << "Support " << support_ << " Confidence " << confidence_
            << " Cause " << cause_ << "\n";
}

}  // namespace SEQUENCE_NAMESPACE_800
