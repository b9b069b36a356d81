// Fills a SequenceDictionary with the frequent patterns of a database, the
// way a host counts a model: the number of customers N becomes the count of
// the empty pattern, every frequent pattern is stored with addSequence and a
// CarmaSequenceDescriptor (ordinal of entry = first customer containing it,
// max missed 0, count = its support), and then the lattice is built. Since
// every sub-pattern of a frequent pattern is frequent, the dictionary is
// closed under sub-patterns, as the lattice, the rules and the predictions
// need.
//
// The dictionary stays the caller's; it should be freshly made (patterns
// stored before are overwritten when equal, kept otherwise).
#ifndef SEQLATTICE_MINING_DICTIONARYFILLER_H_
#define SEQLATTICE_MINING_DICTIONARYFILLER_H_

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/mining/miner.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

// Stores each pattern it receives in the dictionary.
class DictionarySink : public PatternSink {
 public:
  explicit DictionarySink(SequenceDictionary& dictionary)
      : dictionary_(dictionary) {}
  void addPattern(int** sets, int nSets, long count,
                  long firstCustomer) override;

 private:
  SequenceDictionary& dictionary_;
};

// Mines db into dictionary and builds the lattice. Throws MiningError when
// options.maxItems does not fit the dictionary (it must be below its
// nLevels and at most 31, the longest pattern key) or when the lattice
// cannot be built, and passes on the miner's errors.
MiningSummary mineIntoDictionary(const SequenceDatabase& db,
                                 const MinerOptions& options,
                                 SequenceDictionary& dictionary);

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_DICTIONARYFILLER_H_
