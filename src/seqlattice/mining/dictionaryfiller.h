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
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/mining/miner.h"
#include "seqlattice/store/statsbucket.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

// Stores each pattern it receives in the dictionary. With a memory budget
// (bytes, 0 = none) it refuses, with a MiningError, the pattern that would
// take the model past it, so that a search finding far more patterns than
// memory holds ends with a message rather than an out-of-memory kill.
class DictionarySink : public PatternSink, public GapSink {
 public:
  explicit DictionarySink(SequenceDictionary& dictionary,
                          std::size_t memoryBudget = 0)
      : dictionary_(dictionary), budget_(memoryBudget) {}
  void addPattern(int** sets, int nSets, long count,
                  long firstCustomer) override;
  // The next pattern's gap statistics, stored in its counter's bucket.
  void addGaps(long n, double sum, double min, double max) override;

  // Estimated bytes of the patterns stored so far, lattice included.
  std::size_t modelBytes() const { return bytes_; }

 private:
  SequenceDictionary& dictionary_;
  std::size_t budget_;
  std::size_t bytes_ = 0;
  long patterns_ = 0;
  bool gapsPending_ = false;
  long gapCount_ = 0;
  double gapSum_ = 0, gapMin_ = 0, gapMax_ = 0;
};

// A bucket holding n gaps of that sum, minimum and maximum, made with the
// bucket's own InitialGap and UpdateGap: the minimum, the maximum, and the
// rest of the sum spread over the other n - 2 (in whole numbers when the sum
// is one, so integral times give exact sums). n >= 1.
void fillGapBucket(StatsBucket& bucket, long n, double sum, double min,
                   double max);

// What one stored pattern of `items` items costs once the lattice is built,
// allocator overhead included: its key (object and item array), chain node,
// counter and adjacency set, and the adjacency pair each of its items adds to
// a pattern one level down. Within about 20% of measured model sizes.
std::size_t storedPatternBytes(int items);

// The part of a stopped search's patterns that is closed under
// sub-patterns, as the lattice, the rules and the predictions need: fills
// kept (freshly made, with found's settings) with every pattern of found
// whose sub-patterns of one item less are all kept, level by level
// upwards, copies the number of customers, builds kept's lattice and
// updates summary (patterns and patterns per size kept, patterns dropped,
// longest pattern). Under a maximum gap (gapLimited) a missing sub-pattern
// without a middle item set does not count against a pattern. Copying the kept
// part costs what the kept part costs; found, often many times larger, is left
// as it is for the caller to drop. Throws MiningError when the lattice cannot
// be built.
void keepClosedPart(const SequenceDictionary& found, SequenceDictionary& kept,
                    MiningSummary& summary, bool gapLimited = false);

// Mines db into dictionary and builds the lattice. A search stopped early
// (MinerOptions::deadline or progress) says so in summary.complete and
// leaves every pattern it found in dictionary, not closed under
// sub-patterns and without a lattice: take its closed part with
// keepClosedPart. Throws MiningError when
// options.maxItems does not fit the dictionary (it must be below its
// nLevels and at most 31, the longest pattern key), when the patterns would
// take the model past options.memoryBudget, or when the lattice cannot be
// built, and passes on the miner's errors.
MiningSummary mineIntoDictionary(const SequenceDatabase& db,
                                 const MinerOptions& options,
                                 SequenceDictionary& dictionary);

// Fills dictionary, freshly made, with the patterns of records
// (patternrecords.h), counted over `customers` customers elsewhere (by
// PatternCounter, on other machines, by another miner), and builds the
// lattice: the same dictionary, byte for byte once saved, as
// mineIntoDictionary fills when it finds these patterns with these counts
// and first customers, since the records are stored in the miner's report
// order (patternorder.h). The records are only read. Throws MiningError
// when a pattern is given twice, has more items than maxItems allows (as
// mineIntoDictionary checks it), lacks a sub-pattern of one item less (the
// lattice needs them all; the message names both), would take the model
// past memoryBudget (bytes, 0: none), or when the lattice cannot be built.
MiningSummary fillFromRecords(const std::vector<int>& records, long customers,
                              int maxItems, SequenceDictionary& dictionary,
                              std::size_t memoryBudget = 0);

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_DICTIONARYFILLER_H_
