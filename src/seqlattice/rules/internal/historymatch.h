// Matching a customer's history against the lattice (getSubsequencesInSequence)
// on a prepared index of the history, so that future-item prediction, which
// matches every prefix of the history in turn, filters the history once and
// shortens the index from the end between passes instead of starting over:
// its cost grows with the history's length, not with its square.
//
// Used by one request at a time on the dictionary's thread; the index holds
// no pointer into the customer's sequence.
#ifndef SEQLATTICE_RULES_INTERNAL_HISTORYMATCH_H_
#define SEQLATTICE_RULES_INTERNAL_HISTORYMATCH_H_

#include <map>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {

class NTSequence;
class Sequence;
class SequenceDictionary;

namespace historymatch {

// The customer's first `used` item sets as matching sees them: only items
// that are stored one-item patterns, only item sets that keep an item,
// numbered 0 .. n-1. For each kept item, the ascending indices of the sets
// holding it, so that an occurrence is found by binary search.
class KnownItems {
 public:
  KnownItems(SequenceDictionary& dict, const Sequence& customer, int used);

  // Leaves out the customer's item sets from index `used` on; used only
  // shrinks.
  void keepFirst(int used);

  // Whether the customer's item set used-1 kept an item: matching is
  // anchored on it and finds nothing otherwise.
  bool lastSetKept() const {
    return !keptIndex_.empty() && keptIndex_.back() >= 0;
  }
  int nSets() const { return static_cast<int>(keptSets_.size()); }
  int totalItems() const { return totalItems_; }
  // The items of the last kept set, in the set's order.
  const std::vector<int>& lastSet() const { return keptSets_.back(); }
  // Item -> ascending indices of the kept sets that hold it, by ascending
  // item (an item left out by keepFirst keeps an empty entry).
  const std::map<int, std::vector<int>>& occurrences() const {
    return occurrences_;
  }

 private:
  // Per customer item set: its index among the kept sets, or -1.
  std::vector<int> keptIndex_;
  std::vector<std::vector<int>> keptSets_;
  int totalItems_ = 0;
  std::map<int, std::vector<int>> occurrences_;
};

// Appends to found, as getSubsequencesInSequence does, the stored patterns
// that the indexed history contains and that end in its last kept set;
// nothing when lastSetKept() is false. The caller owns what is appended.
void matchAnchored(SequenceDictionary& dict, const KnownItems& known,
                   std::vector<NTSequence*>& found);

}  // namespace historymatch
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RULES_INTERNAL_HISTORYMATCH_H_
