// Patterns with their counts as one flat array of ints: the form in which
// patterns travel between the miner's workers, between the machines of a
// distributed run and into the model builder. Each pattern is one record:
//   count, first customer, number of sets n, then n sets, each as its item
//   count followed by its items (ascending)
// so <(1 2), 3> found in 5 customers, first in customer 0, is
// 5 0 2 2 1 2 1 3. A set record is already a PatternSink set array, so
// readers hand out pointers into the array rather than copies.
//
// PatternRecords is a PatternSink that appends what the miner finds to such
// an array. A plain value; not thread-safe (the miner calls its sink from
// one thread).
#ifndef SEQLATTICE_MINING_PATTERNRECORDS_H_
#define SEQLATTICE_MINING_PATTERNRECORDS_H_

#include <cstddef>
#include <vector>

#include "seqlattice/mining/miner.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

class PatternRecords : public PatternSink {
 public:
  // At most maxPatterns patterns (0: no limit): the one beyond throws a
  // MiningError saying how many were kept, so that a search finding far
  // more patterns than its caller can hold stops early.
  explicit PatternRecords(long maxPatterns = 0) : maxPatterns_(maxPatterns) {}

  void addPattern(int** sets, int nSets, long count,
                  long firstCustomer) override;

  std::vector<int>& records() { return records_; }
  long patterns() const { return patterns_; }

 private:
  long maxPatterns_;
  long patterns_ = 0;
  std::vector<int> records_;
};

// Where each record of records starts, in order. Throws MiningError when
// the array does not split into whole records (a record running past the
// end, a negative set or item count, an empty set or pattern).
std::vector<std::size_t> recordStarts(const std::vector<int>& records);

// The number of items of the record at `at`.
int recordItems(const std::vector<int>& records, std::size_t at);

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_PATTERNRECORDS_H_
