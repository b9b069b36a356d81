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
      statsBucket(bucket),
      adjacentItems(nullptr) {}

SequenceCounter::~SequenceCounter() {
  delete statsBucket;
  statsBucket = nullptr;
  delete adjacentItems;
  adjacentItems = nullptr;
}

void SequenceCounter::setStatsBucket(StatsBucket* bucket) {
  if (bucket != statsBucket) delete statsBucket;
  statsBucket = bucket;
}

void SequenceCounter::addAdjacentItem(int item, int position) {
  try {
    if (adjacentItems == nullptr) adjacentItems = new AdjacencySet();
    adjacentItems->insert(std::make_pair(item, position));
  } catch (const std::bad_alloc&) {
    throw SeqExceptions::DictionaryFailure();
  } catch (...) {
    // Only DictionaryFailure may leave this operation.
    std::terminate();
  }
}

int SequenceCounter::getNAdjacent() const {
  return adjacentItems == nullptr ? 0 : static_cast<int>(adjacentItems->size());
}

void SequenceCounter::setAdjacentItems(AdjacencySet* items) {
  if (items != adjacentItems) delete adjacentItems;
  adjacentItems = items;
}

void SequenceCounter::clearAdjacentItems() {
  if (adjacentItems != nullptr) adjacentItems->clear();
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
  if (adjacentItems != nullptr && showAdjacent) {
    os << "Adjacent list {";
    os << std::fixed << std::setprecision(2);
    for (const std::pair<int, int>& adjacent : *adjacentItems) {
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
