// Pruning: removing patterns that cannot reach the support threshold, and
// dropping patterns entered after a given input ordinal.
#include <climits>
#include <cmath>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/support/kvpower.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// s truncated toward zero to an int. Values beyond the int range are clamped
// to it and NaN gives 0, so that no threshold computation can overflow.
long truncateToInt(double s) {
  if (std::isnan(s)) return 0;
  if (s >= static_cast<double>(INT_MAX)) return INT_MAX;
  if (s <= static_cast<double>(INT_MIN)) return INT_MIN;
  return static_cast<int>(s);
}

// The smallest count that survives pruning at s: s rounded when it is a
// whole number up to rounding error, the next whole number above it
// otherwise. Negative s takes the same formulas.
long thresholdOf(double s) {
  const long t = truncateToInt(s);
  if (KvMath_850::KvPower::AlmostEqual(s, static_cast<double>(t), 100.0)) {
    return truncateToInt(s + 0.5);
  }
  return t + 1;
}

}  // namespace

// Entries without a counter have nothing to judge by and are kept.
int SequenceDictionary::reduceLevel(int k, double s, bool withMissed) {
  HashtableSQPair* table = getLevel(k);
  if (table == nullptr) return 0;
  const long threshold = thresholdOf(s);
  int removed = 0;
  for (HashtableSQPair::iterator it = table->begin(); it != table->end();) {
    const ISQCPair entry = *it++;
    if (entry.value == nullptr) continue;
    long value = entry.value->getCount();
    if (withMissed) value += entry.value->getMaxMissed();
    if (value < threshold) {
      table->remove(entry.key);
      ++removed;
    }
  }
  return removed;
}

int SequenceDictionary::reduceDictionaryWithCount(int k, double s) {
  return reduceLevel(k, s, false);
}

int SequenceDictionary::reduceDictionary(int k, double s) {
  return reduceLevel(k, s, true);
}

int SequenceDictionary::reduceAllWithCount(double s) {
  int removed = 0;
  for (int k = 1; k < nLevels; ++k) removed += reduceDictionaryWithCount(k, s);
  return removed;
}

// Levels fill from the bottom, so the first empty level ends the work. A
// level emptied by this very pruning does not: only the count found before
// pruning it decides.
int SequenceDictionary::reduceAll(double s) {
  int removed = 0;
  for (int k = 1; k < nLevels; ++k) {
    if (CountSequencesOfSize(k) <= 0) break;
    removed += reduceDictionary(k, s);
  }
  if (SequenceCounter* total = getLevel0Descriptor()) {
    // An empty input (N = 0) gives an infinite or undefined support, kept
    // as it is.
    minSupport = s / static_cast<double>(total->getCount());
  }
  return removed;
}

// Unlike the reduce operations this visits every level and folds the missed
// counts of the patterns it keeps into their counts.
KvCommon_850::KvStatus SequenceDictionary::dropAfter(int t) {
  for (int k = 1; k < nLevels; ++k) {
    HashtableSQPair* table = getLevel(k);
    if (table == nullptr) continue;
    for (HashtableSQPair::iterator it = table->begin(); it != table->end();) {
      const ISQCPair entry = *it++;
      SequenceCounter* counter = entry.value;
      if (counter == nullptr) continue;
      if (t < counter->getOrdinalOfEntry()) {
        table->remove(entry.key);
      } else {
        counter->setCount(counter->getCount() + counter->getMaxMissed());
        counter->setMaxMissed(0);
      }
    }
  }
  return KvCommon_850::KvStatus();
}

}  // namespace SEQUENCE_NAMESPACE_800
