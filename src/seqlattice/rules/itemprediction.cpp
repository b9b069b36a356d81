// Shared steps of future-item and current-item prediction.
#include "seqlattice/rules/internal/itemprediction.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace itemprediction {

using KvCommon_850::kStatusFailure;
using KvCommon_850::KvStatus;

namespace {

// greaterConfidence, except that a not-a-number confidence (0/0, from zero
// counts) sorts last: greaterConfidence alone treats it as tied with
// everything, which is no strict weak order and would break the sort.
bool ranksBefore(const SeqConsequentDescriptor& a,
                 const SeqConsequentDescriptor& b) {
  const bool aUndefined = std::isnan(a.GetConfidence());
  const bool bUndefined = std::isnan(b.GetConfidence());
  if (aUndefined != bUndefined) return bUndefined;
  if (aUndefined) return b.GetItem() < a.GetItem();
  return greaterConfidence(a, b);
}

// Sorts by decreasing confidence, then decreasing item code, and appends the
// first maxItems; either all of them are appended or, when memory runs out,
// none.
void appendRanked(std::vector<SeqConsequentDescriptor> ranked,
                  std::vector<SeqConsequentDescriptor>& out, int maxItems) {
  if (maxItems <= 0) return;
  std::sort(ranked.begin(), ranked.end(), ranksBefore);
  const size_t wanted = std::min(ranked.size(), static_cast<size_t>(maxItems));
  out.reserve(out.size() + wanted);
  out.insert(out.end(), ranked.begin(), ranked.begin() + wanted);
}

// Every one-item pattern with support = confidence = its share of the
// customer sequences and cause 1.0.
void appendMostFrequentItems(const SequenceDictionary& dict, double n,
                             std::vector<SeqConsequentDescriptor>& out,
                             int maxItems) {
  std::vector<SeqConsequentDescriptor> ranked;
  const HashtableSQPair* level1 = dict.getLevel(1);
  if (level1 != nullptr) {
    for (const ISQCPair& entry : *level1) {
      if (entry.value == nullptr) continue;
      const double share = entry.value->getCount() / n;
      ranked.emplace_back(entry.key->getItemInSet(0, 0), share, share, 1.0);
    }
  }
  appendRanked(std::move(ranked), out, maxItems);
}

}  // namespace

OwnedPatterns::~OwnedPatterns() {
  for (NTSequence* p : patterns_) delete p;
}

ItemCandidates::ItemCandidates(SequenceDictionary& dict, double n)
    : dict_(dict), n_(n) {}

void ItemCandidates::addExtensions(const std::vector<NTSequence*>& patterns,
                                   Placement placement,
                                   const std::unordered_set<int>& excluded) {
  for (const NTSequence* p : patterns) {
    const SequenceCounter* counter = dict_.getDescriptor(p);
    if (counter == nullptr) continue;
    const int sets = p->getNSets();
    const int wanted =
        placement == Placement::kNewSetAfterLast ? 2 * sets + 1 : 2 * sets - 2;
    for (const std::pair<int, int>& entry : counter->adjacentPairs()) {
      const int item = entry.first;
      if (entry.second != wanted || excluded.count(item) != 0) {
        continue;
      }
      // The extension constructor with code 2s + 1 appends a new last set,
      // with 2s - 2 it inserts into the last set in sorted place.
      const NTSequence extended(*p, item, wanted);
      const SequenceCounter* extendedCounter = dict_.getDescriptor(&extended);
      if (extendedCounter == nullptr) continue;
      offer(item, extendedCounter->getCount(), counter->getCount());
    }
  }
}

void ItemCandidates::appendBest(std::vector<SeqConsequentDescriptor>& out,
                                int maxItems) const {
  std::vector<SeqConsequentDescriptor> ranked;
  ranked.reserve(best_.size());
  for (const auto& entry : best_) ranked.push_back(entry.second);
  appendRanked(std::move(ranked), out, maxItems);
}

void ItemCandidates::offer(int item, double count, double patternCount) {
  const double confidence = count / patternCount;
  const double support = count / n_;
  auto found = best_.find(item);
  if (found == best_.end()) {
    best_.emplace(item, SeqConsequentDescriptor(item, support, confidence,
                                                causeOf(item, count)));
    return;
  }
  SeqConsequentDescriptor& kept = found->second;
  if (confidence > kept.GetConfidence()) {
    kept = SeqConsequentDescriptor(item, support, confidence,
                                   causeOf(item, count));
  } else if (confidence == kept.GetConfidence() &&
             support > kept.GetSupport()) {
    kept.SetSupport(support);
    kept.SetCause(causeOf(item, count));
  }
}

double ItemCandidates::causeOf(int item, double count) {
  int set[2] = {1, item};
  int* sets[1] = {set};
  const SequenceCounter* single = dict_.getDescriptor(sets, 1);
  return single == nullptr ? 0.0 : count / single->getCount();
}

void addItemsOfSet(const Sequence& customer, int i,
                   std::unordered_set<int>& items) {
  const TimedItemSet* set = customer[i];
  items.insert(set->Begin(), set->End());
}

KvStatus answer(SequenceDictionary& dict, const Sequence* customer,
                int maxItems, std::vector<SeqConsequentDescriptor>& out,
                const std::function<KvStatus(ItemCandidates&)>& collect) {
  try {
    const SequenceCounter* level0 = dict.getLevel0Descriptor();
    if (level0 == nullptr) return KvStatus(kStatusFailure, false);
    const double n = level0->getCount();
    if (customer == nullptr || customer->Length() == 0) {
      appendMostFrequentItems(dict, n, out, maxItems);
      return KvStatus();
    }
    ItemCandidates candidates(dict, n);
    const KvStatus status = collect(candidates);
    if (status.IsOK()) candidates.appendBest(out, maxItems);
    return status;
  } catch (const std::exception&) {
    // Chiefly std::bad_alloc, or SeqExceptions::DictionaryFailure from a
    // lookup that ran out of memory.
    return KvStatus(kStatusFailure, false);
  }
}

}  // namespace itemprediction
}  // namespace SEQUENCE_NAMESPACE_800
