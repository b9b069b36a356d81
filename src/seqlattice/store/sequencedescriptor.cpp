#include "seqlattice/store/sequencedescriptor.h"

#include <exception>
#include <iomanip>
#include <new>

#include "seqlattice/support/seqexceptions.h"

namespace SEQUENCE_NAMESPACE_800 {

SequenceCounter::SequenceCounter(int ordinalOfEntry, int count,
                                 StatsBucket* bucket)
    : count(count),
      ordinalOfEntry(ordinalOfEntry),
      maxMissed(0),
      nPacked(0),
      packed(nullptr),
      statsBucket(bucket),
      adjacentItems(nullptr) {}

SequenceCounter::~SequenceCounter() {
  delete statsBucket;
  statsBucket = nullptr;
  delete adjacentItems.load(std::memory_order_relaxed);
  dropPairArray();
}

void SequenceCounter::setStatsBucket(StatsBucket* bucket) {
  if (bucket != statsBucket) delete statsBucket;
  statsBucket = bucket;
}

void SequenceCounter::addAdjacentItem(int item, int position) {
  AdjacencySet* set = getAdjacentItems();
  try {
    if (set == nullptr) {
      set = new AdjacencySet();
      adjacentItems.store(set, std::memory_order_release);
    }
    set->insert(std::make_pair(item, position));
  } catch (const std::bad_alloc&) {
    throw SeqExceptions::DictionaryFailure();
  } catch (...) {
    // Only DictionaryFailure may leave this operation.
    std::terminate();
  }
  dropPairArray();
}

int SequenceCounter::getNAdjacent() const {
  return static_cast<int>(adjacentPairs().size());
}

void SequenceCounter::setAdjacentItems(AdjacencySet* items) {
  AdjacencySet* held = adjacentItems.load(std::memory_order_relaxed);
  if (items != held) delete held;
  adjacentItems.store(items, std::memory_order_release);
  dropPairArray();
}

void SequenceCounter::clearAdjacentItems() {
  AdjacencySet* held = adjacentItems.load(std::memory_order_relaxed);
  if (held == nullptr && packed != nullptr) {
    // The set the array stands for exists as far as callers can tell: it is
    // kept, empty.
    try {
      held = new AdjacencySet();
    } catch (const std::bad_alloc&) {
      throw SeqExceptions::DictionaryFailure();
    }
    adjacentItems.store(held, std::memory_order_release);
  }
  if (held != nullptr) held->clear();
  dropPairArray();
}

SequenceCounter::AdjacencySet* SequenceCounter::makeSetFromArray() const {
  AdjacencySet* made = nullptr;
  try {
    // The pairs are sorted, so each goes in at the end in constant time.
    made = new AdjacencySet(packed, packed + nPacked);
  } catch (const std::bad_alloc&) {
    throw SeqExceptions::DictionaryFailure();
  }
  AdjacencySet* published = nullptr;
  if (!adjacentItems.compare_exchange_strong(published, made,
                                             std::memory_order_acq_rel,
                                             std::memory_order_acquire)) {
    // Another thread was first; everyone uses its set.
    delete made;
    return published;
  }
  return made;
}

void SequenceCounter::adoptPairArray(AdjacentPair* pairs, int n) {
  setAdjacentItems(nullptr);
  packed = pairs;
  nPacked = n;
}

void SequenceCounter::dropPairArray() {
  delete[] packed;
  packed = nullptr;
  nPacked = 0;
}

void SequenceCounter::display(std::ostream& os, bool showAdjacent) const {
  os << " count " << count << " ordinalOfEntry " << ordinalOfEntry
     << " max missed " << maxMissed << "\n";
  if (statsBucket != nullptr) {
    os << std::fixed << std::setprecision(2);
    os << " Occurrences " << statsBucket->GetNOfGaps() << "\n";
    if (statsBucket->GetSumOfGaps() > 0.0) {
      os << " mean " << statsBucket->GetMeanOfGaps() << "\n min "
         << statsBucket->GetMinOfGaps() << "\n max "
         << statsBucket->GetMaxOfGaps() << "\n";
    }
  }
  const PairRange pairs = adjacentPairs();
  if (pairs.present() && showAdjacent) {
    os << "Adjacent list {";
    os << std::fixed << std::setprecision(2);
    for (const AdjacentPair& adjacent : pairs) {
      os << "(item " << adjacent.first << " position " << adjacent.second
         << ")\n";
    }
    os << "}End Adjacent list \n";
  }
  os.flush();
}

CarmaSequenceDescriptor::CarmaSequenceDescriptor(int ordinalOfEntry,
                                                 int maxMissed, int count)
    : SequenceCounter(ordinalOfEntry, count, nullptr) {
  setMaxMissed(maxMissed);
}

}  // namespace SEQUENCE_NAMESPACE_800
