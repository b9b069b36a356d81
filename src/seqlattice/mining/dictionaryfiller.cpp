#include "seqlattice/mining/dictionaryfiller.h"

#include <string>
#include <vector>

#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miningerror.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

namespace {

// The longest pattern a pattern key holds.
constexpr int kMaxPatternItems = 31;

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
}

long keepClosedPart(SequenceDictionary& dictionary) {
  long removed = 0;
  NTSequence sub;  // the scratch pattern removeItem fills without allocating
  for (int k = 2; k < dictionary.getNLevels(); ++k) {
    HashtableSQPair* table = dictionary.getLevel(k);
    if (table == nullptr) continue;
    // Removal invalidates the walk; collect first.
    std::vector<NTSequence> orphans;
    for (const ISQCPair& entry : *table) {
      for (int i = 0; i < entry.key->size(); ++i) {
        sub.removeItem(i, entry.key);
        if (dictionary.getDescriptor(&sub) == nullptr) {
          orphans.push_back(*entry.key);
          break;
        }
      }
    }
    for (NTSequence& orphan : orphans) dictionary.remove(&orphan);
    removed += static_cast<long>(orphans.size());
  }
  return removed;
}

MiningSummary mineIntoDictionary(const SequenceDatabase& db,
                                 const MinerOptions& options,
                                 SequenceDictionary& dictionary) {
  if (options.maxItems >= dictionary.getNLevels() ||
      options.maxItems > kMaxPatternItems) {
    throw MiningError(
        "maximum pattern size " + std::to_string(options.maxItems) +
        " does not fit a dictionary of " +
        std::to_string(dictionary.getNLevels()) + " levels (at most " +
        std::to_string(kMaxPatternItems) + " items, below the level count)");
  }
  int* none = nullptr;
  SequenceCounter* total = dictionary.getDescriptor(&none, 0);
  if (total == nullptr) {
    throw MiningError("the dictionary has no entry for the empty pattern");
  }
  total->setCount(total->getCount() + static_cast<int>(db.customerCount()));
  DictionarySink sink(dictionary, options.memoryBudget);
  MiningSummary summary = SequenceMiner(options).mine(db, sink);
  if (!summary.complete) {
    summary.patternsDropped = keepClosedPart(dictionary);
    summary.patterns -= summary.patternsDropped;
    summary.longestPattern = 0;
    for (std::size_t k = 1; k < summary.patternsPerSize.size(); ++k) {
      summary.patternsPerSize[k] =
          dictionary.CountSequencesOfSize(static_cast<int>(k));
      if (summary.patternsPerSize[k] > 0) {
        summary.longestPattern = static_cast<int>(k);
      }
    }
  }
  KvCommon_850::KvStatus status = dictionary.buildLattice();
  if (!status.IsOK()) {
    throw MiningError("building the lattice failed (status " +
                      std::to_string(status.GetCode()) + ")");
  }
  return summary;
}

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
