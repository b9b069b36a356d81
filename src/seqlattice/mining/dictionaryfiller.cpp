#include "seqlattice/mining/dictionaryfiller.h"

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "seqlattice/mining/internal/patternemitter.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miningerror.h"
#include "seqlattice/mining/patternorder.h"
#include "seqlattice/mining/patternrecords.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/store/statsbucket.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

namespace {

// The longest pattern a pattern key holds.
constexpr int kMaxPatternItems = 31;

void checkPatternSize(int maxItems, const SequenceDictionary& dictionary) {
  if (maxItems >= dictionary.getNLevels() || maxItems > kMaxPatternItems) {
    throw MiningError("maximum pattern size " + std::to_string(maxItems) +
                      " does not fit a dictionary of " +
                      std::to_string(dictionary.getNLevels()) +
                      " levels (at most " + std::to_string(kMaxPatternItems) +
                      " items, below the level count)");
  }
}

// Adds n customers to the count of the empty pattern, the model's N.
void addCustomers(SequenceDictionary& dictionary, long n) {
  int* none = nullptr;
  SequenceCounter* total = dictionary.getDescriptor(&none, 0);
  if (total == nullptr) {
    throw MiningError("the dictionary has no entry for the empty pattern");
  }
  total->setCount(total->getCount() + static_cast<int>(n));
}

void buildLatticeOf(SequenceDictionary& dictionary) {
  KvCommon_850::KvStatus status = dictionary.buildLattice();
  if (!status.IsOK()) {
    throw MiningError("building the lattice failed (status " +
                      std::to_string(status.GetCode()) + ")");
  }
}

// Whether dictionary holds every sub-pattern of key with one item less;
// sub is the scratch pattern removeItem fills without allocating. Under a
// max gap, a sub-pattern that drops a whole middle item set joins two sets
// that may be too far apart, so it may rightly be missing: gapLimited skips
// those.
bool holdsSubPatterns(SequenceDictionary& dictionary, NTSequence* key,
                      NTSequence& sub, int* missing = nullptr,
                      bool gapLimited = false) {
  const int lastSetStart = key->size() - key->getSizeOfSet(key->getNSets() - 1);
  for (int i = 0; key->size() > 1 && i < key->size(); ++i) {
    const bool setGone = sub.removeItem(i, key) != 0;
    const bool middle =
        setGone && i >= key->getSizeOfSet(0) && i < lastSetStart;
    if (gapLimited && middle) continue;
    if (dictionary.getDescriptor(&sub) == nullptr) {
      if (missing != nullptr) *missing = i;
      return false;
    }
  }
  return true;
}

// key as text, the way recordText writes a record.
std::string keyText(const NTSequence& key) {
  std::vector<int> record{0, 0, key.getNSets()};
  for (int s = 0; s < key.getNSets(); ++s) {
    record.push_back(key.getSizeOfSet(s));
    for (int i = 0; i < key.getSizeOfSet(s); ++i) {
      record.push_back(key.getItemInSet(i, s));
    }
  }
  return recordText(record, 0);
}

}  // namespace

std::size_t storedPatternBytes(int items) {
  return 176 + 52 * static_cast<std::size_t>(items);
}

void DictionarySink::addPattern(int** sets, int nSets, long count,
                                long firstCustomer) {
  int items = 0;
  for (int k = 0; k < nSets; ++k) items += sets[k][0];
  bytes_ += storedPatternBytes(items);
  if (budget_ != 0 && bytes_ > budget_) {
    throw MiningError(
        "the model outgrows the memory budget of " + formatMegabytes(budget_) +
        " after " + std::to_string(patterns_) +
        " patterns: raise the minimum support or lower the maximum pattern "
        "size");
  }
  ++patterns_;
  CarmaSequenceDescriptor counter(static_cast<int>(firstCustomer), 0,
                                  static_cast<int>(count));
  dictionary_.addSequence(sets, nSets, &counter);
  if (gapsPending_) {
    gapsPending_ = false;
    auto bucket = std::make_unique<StatsBucket>();
    fillGapBucket(*bucket, gapCount_, gapSum_, gapMin_, gapMax_);
    dictionary_.getDescriptor(sets, nSets)->setStatsBucket(bucket.release());
  }
}

void DictionarySink::addGaps(long n, double sum, double min, double max) {
  gapsPending_ = true;
  gapCount_ = n;
  gapSum_ = sum;
  gapMin_ = min;
  gapMax_ = max;
}

void fillGapBucket(StatsBucket& bucket, long n, double sum, double min,
                   double max) {
  bucket.InitialGap(min);
  if (n < 2) return;
  bucket.UpdateGap(max);
  const long rest = n - 2;
  if (rest == 0) return;
  const double remainder = sum - min - max;
  const bool whole = remainder == std::floor(remainder) &&
                     std::fabs(remainder) < 9007199254740992.0;
  const double each = whole ? std::floor(remainder / static_cast<double>(rest))
                            : remainder / static_cast<double>(rest);
  // In whole numbers the first `extra` gaps take one more.
  const long extra =
      whole ? static_cast<long>(remainder - each * static_cast<double>(rest))
            : 0;
  for (long k = 0; k < rest; ++k) bucket.UpdateGap(k < extra ? each + 1 : each);
}

namespace {

// Adds key with a copy of counter and of its bucket.
void addPattern(SequenceDictionary& dictionary, const NTSequence& key,
                SequenceCounter* counter) {
  const int nSets = key.getNSets();
  std::vector<std::vector<int>> sets(static_cast<std::size_t>(nSets));
  std::vector<int*> pointers;
  for (int s = 0; s < nSets; ++s) {
    std::vector<int>& set = sets[static_cast<std::size_t>(s)];
    set.resize(static_cast<std::size_t>(key.getSizeOfSet(s)) + 1);
    set[0] = key.getSizeOfSet(s);
    key.getSetAsArray(s, set.data() + 1);
    pointers.push_back(set.data());
  }
  dictionary.addSequence(pointers.data(), nSets, counter);
  if (counter != nullptr && counter->getStatsBucket() != nullptr) {
    dictionary.getDescriptor(pointers.data(), nSets)
        ->setStatsBucket(new StatsBucket(*counter->getStatsBucket()));
  }
}

}  // namespace

void keepClosedPart(const SequenceDictionary& found, SequenceDictionary& kept,
                    MiningSummary& summary, bool gapLimited) {
  kept.getLevel0Descriptor()->setCount(found.getLevel0Descriptor()->getCount());
  NTSequence sub;  // the scratch pattern removeItem fills without allocating
  long dropped = 0;
  for (int k = 1; k < found.getNLevels(); ++k) {
    HashtableSQPair* table = found.getLevel(k);
    if (table == nullptr) continue;
    for (const ISQCPair& entry : *table) {
      if (holdsSubPatterns(kept, entry.key, sub, nullptr, gapLimited)) {
        addPattern(kept, *entry.key, entry.value);
      } else {
        ++dropped;
      }
    }
  }
  buildLatticeOf(kept);
  summary.patternsDropped = dropped;
  summary.patterns = 0;
  summary.longestPattern = 0;
  for (std::size_t k = 1; k < summary.patternsPerSize.size(); ++k) {
    summary.patternsPerSize[k] = kept.CountSequencesOfSize(static_cast<int>(k));
    summary.patterns += summary.patternsPerSize[k];
    if (summary.patternsPerSize[k] > 0) {
      summary.longestPattern = static_cast<int>(k);
    }
  }
}

MiningSummary mineIntoDictionary(const SequenceDatabase& db,
                                 const MinerOptions& options,
                                 SequenceDictionary& dictionary) {
  checkPatternSize(options.maxItems, dictionary);
  addCustomers(dictionary, static_cast<long>(db.customerCount()));
  DictionarySink sink(dictionary, options.memoryBudget);
  MiningSummary summary = SequenceMiner(options).mine(db, sink, &sink);
  if (!summary.complete) return summary;
  buildLatticeOf(dictionary);
  return summary;
}

MiningSummary fillFromRecords(const std::vector<int>& records, long customers,
                              int maxItems, SequenceDictionary& dictionary,
                              std::size_t memoryBudget) {
  checkPatternSize(maxItems, dictionary);
  std::vector<int> ordered;
  ordered.reserve(records.size());
  for (std::size_t start : minerReportOrder(records)) {
    const int items = recordItems(records, start);
    if (items > maxItems) {
      throw MiningError("pattern " + recordText(records, start) + " has " +
                        std::to_string(items) + " items, more than " +
                        std::to_string(maxItems));
    }
    std::size_t end = start + 3;
    for (int k = 0; k < records[start + 2]; ++k) {
      end += static_cast<std::size_t>(records[end]) + 1;
    }
    ordered.insert(ordered.end(), records.begin() + static_cast<long>(start),
                   records.begin() + static_cast<long>(end));
  }
  addCustomers(dictionary, customers);
  MiningSummary summary;
  summary.customers = customers;
  summary.patternsPerSize.assign(1, 0);
  DictionarySink sink(dictionary, memoryBudget);
  internal::PatternEmitter(sink, summary).emit(ordered);
  NTSequence sub;
  for (int k = 2; k < dictionary.getNLevels(); ++k) {
    HashtableSQPair* table = dictionary.getLevel(k);
    if (table == nullptr) continue;
    for (const ISQCPair& entry : *table) {
      int missing = 0;
      if (!holdsSubPatterns(dictionary, entry.key, sub, &missing)) {
        sub.removeItem(missing, entry.key);
        throw MiningError("pattern " + keyText(*entry.key) +
                          " is given without its sub-pattern " + keyText(sub));
      }
    }
  }
  buildLatticeOf(dictionary);
  return summary;
}

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
