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

namespace {

// Adds key with a copy of counter.
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
}

}  // namespace

void keepClosedPart(const SequenceDictionary& found, SequenceDictionary& kept,
                    MiningSummary& summary) {
  kept.getLevel0Descriptor()->setCount(found.getLevel0Descriptor()->getCount());
  NTSequence sub;  // the scratch pattern removeItem fills without allocating
  long dropped = 0;
  for (int k = 1; k < found.getNLevels(); ++k) {
    HashtableSQPair* table = found.getLevel(k);
    if (table == nullptr) continue;
    for (const ISQCPair& entry : *table) {
      bool closed = true;
      for (int i = 0; k > 1 && closed && i < entry.key->size(); ++i) {
        sub.removeItem(i, entry.key);
        closed = kept.getDescriptor(&sub) != nullptr;
      }
      if (closed) {
        addPattern(kept, *entry.key, entry.value);
      } else {
        ++dropped;
      }
    }
  }
  KvCommon_850::KvStatus status = kept.buildLattice();
  if (!status.IsOK()) {
    throw MiningError("building the lattice failed (status " +
                      std::to_string(status.GetCode()) + ")");
  }
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
  if (!summary.complete) return summary;
  KvCommon_850::KvStatus status = dictionary.buildLattice();
  if (!status.IsOK()) {
    throw MiningError("building the lattice failed (status " +
                      std::to_string(status.GetCode()) + ")");
  }
  return summary;
}

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
