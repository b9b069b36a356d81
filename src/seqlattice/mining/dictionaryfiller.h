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
//
// Thread safety: the miner calls the sink from the calling thread only, so
// filling needs no lock; but nothing else may touch the dictionary while it is
// filled, not even a lookup (lookups rewrite the dictionary's scratch key).
#ifndef SEQLATTICE_MINING_DICTIONARYFILLER_H_
#define SEQLATTICE_MINING_DICTIONARYFILLER_H_

#include <cstddef>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/mining/miner.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

// Stores each pattern it receives in the dictionary. With a memory budget
// (bytes, 0 = none) it refuses, with a MiningError, the pattern that would
// take the model past it, so that a search finding far more patterns than
// memory holds ends with a message rather than an out-of-memory kill.
class DictionarySink : public PatternSink {
 public:
  explicit DictionarySink(SequenceDictionary& dictionary,
                          std::size_t memoryBudget = 0)
      : dictionary_(dictionary), budget_(memoryBudget) {}
  void addPattern(int** sets, int nSets, long count,
                  long firstCustomer) override;

  // Estimated bytes of the patterns stored so far, lattice included.
  std::size_t modelBytes() const { return bytes_; }

 private:
  SequenceDictionary& dictionary_;
  std::size_t budget_;
  std::size_t bytes_ = 0;
  long patterns_ = 0;
};

// What one stored pattern of `items` items costs once the lattice is built,
// allocator overhead included: its key (object and item array), chain node,
// counter and adjacency set, and the adjacency pair each of its items adds to
// a pattern one level down. Within about 20% of measured model sizes.
std::size_t storedPatternBytes(int items);

// Mines db into dictionary and builds the lattice. Throws MiningError when
// options.maxItems does not fit the dictionary (it must be below its
// nLevels and at most 31, the longest pattern key), when the patterns would
// take the model past options.memoryBudget, or when the lattice cannot be
// built, and passes on the miner's errors.
MiningSummary mineIntoDictionary(const SequenceDatabase& db,
                                 const MinerOptions& options,
                                 SequenceDictionary& dictionary);

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_DICTIONARYFILLER_H_
