// PatternCounter counts given patterns over a SequenceDatabase, exactly:
// for each pattern the number of customers containing it (as the miner
// defines containment, miner.h) and the first of them. It is the second
// half of mining a database split over machines: each part proposes the
// patterns frequent in it, and every part then counts all proposals.
//
// The candidates form a prefix tree (a pattern's parent is the pattern less
// its last item), and each customer is matched against the whole tree in
// one walk: a node keeps the customer's transactions where its pattern's
// last item set can end, so an item set extension keeps those holding the
// item and a sequence extension takes the item's occurrences after the
// first of them; a subtree whose pattern the customer lacks is skipped.
// Worker threads take contiguous ranges of customers.
//
// The counter owns its tree; count() only reads it and the database, so one
// counter may count several databases, one at a time.
#ifndef SEQLATTICE_MINING_PATTERNCOUNTER_H_
#define SEQLATTICE_MINING_PATTERNCOUNTER_H_

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "seqlattice/mining/sequencedatabase.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

struct PatternCounts {
  // Per candidate, in the order given: the customers containing it and the
  // index of the first of them (-1 when none does).
  std::vector<long> counts;
  std::vector<long> firstCustomers;
};

class PatternCounter {
 public:
  // The candidates are the patterns of records (patternrecords.h; their
  // counts and first customers are ignored), each set's items ascending.
  // Throws MiningError when the records are not whole or a set's items are
  // not strictly ascending. A pattern given twice is counted for both.
  explicit PatternCounter(const std::vector<int>& records);

  std::size_t candidateCount() const { return candidates_; }

  // Counts every candidate over db with `threads` threads (0: the
  // hardware's concurrency).
  PatternCounts count(const SequenceDatabase& db, int threads = 0) const;

 private:
  struct Node {
    int item = 0;          // dense item index
    bool sameSet = false;  // the item joins the parent's last set
    std::uint32_t firstChild = 0, endChild = 0;  // into nodes_
    std::vector<std::size_t> candidates;         // ones this node is
  };
  class Walker;

  std::vector<Node> nodes_;             // 0 is the root (the empty pattern)
  std::unordered_map<int, int> dense_;  // item -> dense index
  std::size_t candidates_ = 0;
  int depth_ = 0;  // most items of a candidate
};

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_PATTERNCOUNTER_H_
