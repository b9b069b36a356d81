// Matching a customer's history against the lattice: the stored patterns that
// the history contains and that end in its most recent item set. Patterns are
// grown backwards from the last item set, one adjacency entry at a time, so
// only stored patterns are ever formed.
#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/rules/seqcarmacmp.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {

using KvCommon_850::KvStatus;

namespace {

// The customer's item sets as matching sees them: only items that are stored
// one-item patterns, only item sets that keep an item, numbered 0 .. n-1.
// For each kept item, the ascending indices of the sets holding it, so that
// an occurrence is found by binary search and any number of items fits.
class KnownItems {
 public:
  // Adds the next kept item set; returns false, adding nothing, when no item
  // of `set` is known.
  bool addSet(SequenceDictionary& dict, const TimedItemSet& set) {
    std::vector<int> kept;
    for (const int* item = set.Begin(); item != set.End(); ++item) {
      int single[2] = {1, *item};
      int* sets[1] = {single};
      if (dict.hasSequence(sets, 1)) kept.push_back(*item);
    }
    if (kept.empty()) return false;
    for (int item : kept) {
      std::vector<int>& sets = occurrences_[item];
      if (sets.empty() || sets.back() != nSets_) sets.push_back(nSets_);
    }
    totalItems_ += static_cast<int>(kept.size());
    lastSet_ = kept;
    ++nSets_;
    return true;
  }

  int nSets() const { return nSets_; }
  int totalItems() const { return totalItems_; }
  // The items of the last kept set, in the set's order.
  const std::vector<int>& lastSet() const { return lastSet_; }
  // Item -> ascending indices of the sets that hold it, by ascending item.
  const std::map<int, std::vector<int>>& occurrences() const {
    return occurrences_;
  }

 private:
  int nSets_ = 0;
  int totalItems_ = 0;
  std::vector<int> lastSet_;
  std::map<int, std::vector<int>> occurrences_;
};

NTSequence oneItemPattern(int item) {
  int set[2] = {1, item};
  return NTSequence(set);
}

// Where p extended by (item, position) is matched, p's first set being
// matched at set j: position 0 puts the item into that set, so set j must
// hold it; position 1 makes it a new set before, matched at the latest
// earlier set that holds it. -1 when there is none. `sets` are the ascending
// indices of the sets that hold the item.
int targetSet(const std::vector<int>& sets, int position, int j) {
  const auto after = std::upper_bound(sets.begin(), sets.end(), j);
  if (after == sets.begin()) return -1;  // no occurrence at or before j
  const int latest = *(after - 1);
  if (position == 0) return latest == j ? j : -1;
  if (latest < j) return latest;
  return after - 1 == sets.begin() ? -1 : *(after - 2);
}

// The patterns handed to the caller, each once: `seen` compares patterns, so
// an equal pattern formed again on another path is not appended twice.
class MatchOutput {
 public:
  explicit MatchOutput(std::vector<NTSequence*>& found) : found_(found) {}

  // Appends a copy of p unless an equal pattern was appended before.
  void offer(const NTSequence& p) {
    if (seen_.count(&p) != 0) return;
    std::unique_ptr<NTSequence> copy(new NTSequence(p));
    found_.push_back(copy.get());
    // From here on the caller's vector owns the copy, also if insert throws.
    seen_.insert(copy.release());
  }

 private:
  std::vector<NTSequence*>& found_;
  std::set<const NTSequence*, SeqCarmaCmp> seen_;
};

}  // namespace

KvStatus SequenceDictionary::getSubsequencesInSequence(
    std::vector<NTSequence*>& found, const Sequence* customer, int skipLast) {
  if (customer == nullptr) return KvStatus();
  const int used = customer->Length() - skipLast;
  if (used < 1) return KvStatus();

  // Keep only items known to the dictionary; the match is anchored on the
  // most recent item set, so nothing matches when it keeps no item.
  KnownItems known;
  for (int i = 0; i < used; ++i) {
    if (!known.addSet(*this, *(*customer)[i]) && i == used - 1) {
      return KvStatus();
    }
  }
  const int n = known.nSets();
  const int totalItems = known.totalItems();
  const int largest = LargestSequence();

  MatchOutput output(found);
  if (largest < 3) {
    for (int item : known.lastSet()) output.offer(oneItemPattern(item));
    return KvStatus();
  }

  // work[j]: patterns still to be extended whose first item set is matched
  // at item set j.
  std::vector<std::set<NTSequence>> work(n);
  for (int item : known.lastSet()) {
    const NTSequence single = oneItemPattern(item);
    output.offer(single);
    work[n - 1].insert(single);
  }
  for (int j = n - 1; j >= 0; --j) {
    while (!work[j].empty()) {
      const NTSequence p = *work[j].begin();
      const SequenceCounter* counter = nullptr;
      if (p.size() < totalItems && p.getNSets() <= n && p.size() < largest) {
        counter = getDescriptor(&p);
      }
      if (counter != nullptr && counter->getNAdjacent() > 0) {
        // Only pairs (x, 0) and (x, 1) of items x that the customer holds can
        // give a match: seek them item by item, in ascending (x, position)
        // order, instead of walking the whole adjacency set.
        const SequenceCounter::AdjacencySet& adjacent =
            *counter->getAdjacentItems();
        for (const auto& occurrence : known.occurrences()) {
          const int item = occurrence.first;
          for (auto entry = adjacent.lower_bound(std::make_pair(item, 0));
               entry != adjacent.end() && entry->first == item &&
               entry->second <= 1;
               ++entry) {
            const int position = entry->second;
            const int target = targetSet(occurrence.second, position, j);
            if (target < 0) continue;
            const NTSequence q(p, item, position);
            if (q.getNSets() <= n && q.size() <= totalItems &&
                q.size() <= largest) {
              output.offer(q);
            }
            work[target].insert(q);
          }
        }
      }
      work[j].erase(p);
    }
  }
  return KvStatus();
}

}  // namespace SEQUENCE_NAMESPACE_800
