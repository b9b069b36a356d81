#include "seqlattice/mining/dictionaryfiller.h"

#include <string>

#include "seqlattice/mining/miningerror.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

namespace {

// The longest pattern a pattern key holds.
constexpr int kMaxPatternItems = 31;

}  // namespace

void DictionarySink::addPattern(int** sets, int nSets, long count,
                                long firstCustomer) {
  CarmaSequenceDescriptor counter(static_cast<int>(firstCustomer), 0,
                                  static_cast<int>(count));
  dictionary_.addSequence(sets, nSets, &counter);
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
  DictionarySink sink(dictionary);
  MiningSummary summary = SequenceMiner(options).mine(db, sink);
  KvCommon_850::KvStatus status = dictionary.buildLattice();
  if (!status.IsOK()) {
    throw MiningError("building the lattice failed (status " +
                      std::to_string(status.GetCode()) + ")");
  }
  return summary;
}

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
