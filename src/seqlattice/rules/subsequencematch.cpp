// Matching a customer's history against the lattice: the stored patterns that
// the history contains and that end in its most recent item set. Patterns are
// grown backwards from the last item set, one adjacency entry at a time, so
// only stored patterns are ever formed.
#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/rules/internal/historymatch.h"
#include "seqlattice/rules/seqcarmacmp.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {

using KvCommon_850::KvStatus;

namespace {

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

namespace historymatch {

KnownItems::KnownItems(SequenceDictionary& dict, const Sequence& customer,
                       int used) {
  keptIndex_.reserve(static_cast<std::size_t>(used));
  for (int i = 0; i < used; ++i) {
    const TimedItemSet& set = *customer[i];
    std::vector<int> kept;
    for (const int* item = set.Begin(); item != set.End(); ++item) {
      int single[2] = {1, *item};
      int* sets[1] = {single};
      if (dict.hasSequence(sets, 1)) kept.push_back(*item);
    }
    if (kept.empty()) {
      keptIndex_.push_back(-1);
      continue;
    }
    const int index = nSets();
    for (int item : kept) {
      std::vector<int>& sets = occurrences_[item];
      if (sets.empty() || sets.back() != index) sets.push_back(index);
    }
    totalItems_ += static_cast<int>(kept.size());
    keptIndex_.push_back(index);
    keptSets_.push_back(std::move(kept));
  }
}

void KnownItems::keepFirst(int used) {
  while (static_cast<int>(keptIndex_.size()) > std::max(used, 0)) {
    const int index = keptIndex_.back();
    keptIndex_.pop_back();
    if (index < 0) continue;
    for (int item : keptSets_.back()) {
      std::vector<int>& sets = occurrences_[item];
      if (!sets.empty() && sets.back() == index) sets.pop_back();
    }
    totalItems_ -= static_cast<int>(keptSets_.back().size());
    keptSets_.pop_back();
  }
}

void matchAnchored(SequenceDictionary& dict, const KnownItems& known,
                   std::vector<NTSequence*>& found) {
  if (!known.lastSetKept()) return;
  const int n = known.nSets();
  const int totalItems = known.totalItems();
  const int largest = dict.LargestSequence();

  MatchOutput output(found);
  if (largest < 3) {
    for (int item : known.lastSet()) output.offer(oneItemPattern(item));
    return;
  }

  // work[j]: patterns still to be extended whose first item set is matched
  // at item set j, taken from the highest j down. An extension lands at j
  // or below, so a set once emptied stays empty; only sets that ever hold a
  // pattern exist, whatever the length of the history.
  std::map<int, std::set<NTSequence>> work;
  for (int item : known.lastSet()) {
    const NTSequence single = oneItemPattern(item);
    output.offer(single);
    work[n - 1].insert(single);
  }
  while (!work.empty()) {
    const auto current = std::prev(work.end());
    const int j = current->first;
    std::set<NTSequence>& patterns = current->second;
    while (!patterns.empty()) {
      const NTSequence p = *patterns.begin();
      const SequenceCounter* counter = nullptr;
      if (p.size() < totalItems && p.getNSets() <= n && p.size() < largest) {
        counter = dict.getDescriptor(&p);
      }
      if (counter != nullptr && counter->getNAdjacent() > 0) {
        // Only pairs (x, 0) and (x, 1) of items x that the customer holds can
        // give a match: seek them item by item, in ascending (x, position)
        // order, instead of walking the whole adjacency set.
        const SequenceCounter::PairRange adjacent = counter->adjacentPairs();
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
      patterns.erase(p);
    }
    work.erase(current);
  }
}

}  // namespace historymatch

KvStatus SequenceDictionary::getSubsequencesInSequence(
    std::vector<NTSequence*>& found, const Sequence* customer, int skipLast) {
  if (customer == nullptr) return KvStatus();
  const int used = customer->Length() - skipLast;
  if (used < 1) return KvStatus();
  // Keep only items known to the dictionary; the match is anchored on the
  // most recent item set, so nothing matches when it keeps no item.
  historymatch::matchAnchored(
      *this, historymatch::KnownItems(*this, *customer, used), found);
  return KvStatus();
}

}  // namespace SEQUENCE_NAMESPACE_800
