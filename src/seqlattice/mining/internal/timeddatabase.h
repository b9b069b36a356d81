// TimedDatabase is the database as the searches under time constraints read
// it: the frequent items, renumbered in ascending order of their values, the
// transactions that keep some of them with their times, and per item the
// transactions and customers holding it. Built once per run and then only
// read, so the workers of one search share it.
#ifndef SEQLATTICE_MINING_INTERNAL_TIMEDDATABASE_H_
#define SEQLATTICE_MINING_INTERNAL_TIMEDDATABASE_H_

#include <cstdint>
#include <vector>

#include "seqlattice/mining/sequencedatabase.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

struct TimedDatabase {
  using u32 = std::uint32_t;
  std::vector<u32> items, transactionStart{0}, customerStart{0};
  std::vector<double> time;
  std::vector<u32> customerId;
  std::vector<int> itemValue;
  std::vector<std::vector<u32>> occurrences;  // per item: transactions
  // Per item the customers holding it, ascending, and where each one's
  // transactions begin in occurrences (one more entry: the end).
  std::vector<std::vector<u32>> holders, holderStart;
  std::vector<u32> customerOf;  // per transaction
  // Per customer its distinct items by last occurrence, latest first, in
  // lastStart[c] .. lastStart[c + 1]: the items from transaction f on are
  // the prefix with lastTransaction >= f.
  std::vector<u32> lastStart{0}, lastTransaction, lastItem;

  u32 itemCount() const { return static_cast<u32>(itemValue.size()); }
  u32 customerCount() const { return static_cast<u32>(customerId.size()); }
};

// The items of db held by at least minCount customers, and the customers
// and transactions holding some of them.
TimedDatabase buildTimedDatabase(const SequenceDatabase& db, long minCount);

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_INTERNAL_TIMEDDATABASE_H_
