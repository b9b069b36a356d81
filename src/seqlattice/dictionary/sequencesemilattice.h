// SequenceSemiLattice: the abstract interface through which a host uses a
// model of frequent sequence patterns. SequenceDictionary implements it.
//
// The order of the twelve operations below is the interface's slot order and
// must not change. The interface has no data and no virtual destructor: its
// destructor is protected so that nobody deletes an implementation through
// it. Sequence objects that the Find operations put into `out` belong to the
// caller; output vectors are appended to, never cleared.
//
// Thread safety: none of the operations is safe for concurrent use on one
// object, the read-only looking ones included (the implementation refills a
// scratch key on lookups). A host that serves several threads gives each its
// own model or serialises the calls.
#ifndef SEQLATTICE_DICTIONARY_SEQUENCESEMILATTICE_H_
#define SEQLATTICE_DICTIONARY_SEQUENCESEMILATTICE_H_

#include <ostream>
#include <set>
#include <vector>

#include "seqlattice/support/kvstatus.h"

namespace SEQUENCE_NAMESPACE_800 {

class Sequence;
class SeqConsequentDescriptor;
class SeqAssociationRule;

class SequenceSemiLattice {
 public:
  // 1. Stored patterns that contain seq, seq itself included.
  virtual KvCommon_850::KvStatus FindSequences(Sequence const* seq,
                                               std::set<Sequence*>& out,
                                               int minCount, int maxCount) = 0;
  // 2. Number of stored patterns, the empty one included.
  virtual int NumberOfSequences() const = 0;
  // 3. Last level of the unbroken run of non-empty levels from level 1.
  virtual int LargestSequence() const = 0;
  // 4. Number of stored patterns of k items.
  virtual int CountSequencesOfSize(int k) const = 0;
  // 5. Number of stored patterns of k items or more (k itself included).
  virtual int CountSequencesBiggerThan(int k) const = 0;
  // 6. The lattice document.
  virtual KvCommon_850::KvStatus ExportLatticeXML(std::ostream& out,
                                                  double minSupport) const = 0;
  // 7. The PMML sequence model document.
  virtual KvCommon_850::KvStatus ExportRulesXML(
      std::ostream& out, double minSupport, double maxSupport,
      double minConfidence, double maxConfidence, double minCause,
      double maxCause, int maxItemsPerTransaction,
      double avgItemsPerTransaction, char sortBy, bool maximalOnly) const = 0;
  // 8. Stored patterns that keep seq's sets first and add sets at the end.
  virtual KvCommon_850::KvStatus FindSequencesBeginning(
      Sequence const* seq, std::set<Sequence*>& out, int minCount,
      int maxCount) = 0;
  // 9. Stored patterns that keep seq's sets last and add sets at the front.
  virtual KvCommon_850::KvStatus FindSequencesEnding(Sequence const* seq,
                                                     std::set<Sequence*>& out,
                                                     int minCount,
                                                     int maxCount) = 0;
  // 10. Items likely to join the customer's last item set.
  virtual KvCommon_850::KvStatus GetCurrentItems(
      std::vector<SeqConsequentDescriptor>& predictions,
      const Sequence* customer, int maxItems) = 0;
  // 11. Items likely to come in the customer's next item sets.
  virtual KvCommon_850::KvStatus GetFutureItems(
      std::vector<SeqConsequentDescriptor>& predictions,
      const Sequence* customer, int maxItems, bool lastSetOnly) = 0;
  // 12. Sequential association rules within the given bounds.
  virtual KvCommon_850::KvStatus GetRules(
      std::vector<SeqAssociationRule>& rules, double minSupport,
      double maxSupport, double minConfidence, double maxConfidence,
      double minCause, double maxCause, char sortBy,
      bool maximalOnly) const = 0;

 protected:
  SequenceSemiLattice() = default;
  SequenceSemiLattice(const SequenceSemiLattice&) = default;
  SequenceSemiLattice& operator=(const SequenceSemiLattice&) = default;
  ~SequenceSemiLattice() = default;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_DICTIONARY_SEQUENCESEMILATTICE_H_
