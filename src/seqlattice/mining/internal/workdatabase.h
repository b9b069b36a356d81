// WorkDatabase is the customer database as the miner's search reads it: only
// the frequent items, renumbered 0 .. F-1 in ascending order of their values
// (so ascending codes are ascending items), without the transactions and
// customers that are left empty. Beside the flat item array it keeps, per
// customer, the distinct items by their last occurrence, which answers "which
// items occur after transaction f" with one prefix of a list, and beside each
// of those items the transactions holding it, so that the occurrences of an
// item after f are found without reading the customer's other transactions.
//
// Built once per run from a finished SequenceDatabase and then only read:
// reading from several threads is safe.
#ifndef SEQLATTICE_MINING_INTERNAL_WORKDATABASE_H_
#define SEQLATTICE_MINING_INTERNAL_WORKDATABASE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "seqlattice/mining/sequencedatabase.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

struct WorkDatabase {
  // Items of transaction t are items[transactionStart[t] ..
  // transactionStart[t + 1]), ascending; transactions of customer c are
  // customerStart[c] .. customerStart[c + 1] - 1.
  std::vector<std::uint32_t> items;
  std::vector<std::uint32_t> transactionStart{0};
  std::vector<std::uint32_t> customerStart{0};
  std::vector<std::uint32_t> customerId;     // index in the SequenceDatabase
  std::vector<int> itemValue;                // code -> item
  std::vector<std::uint32_t> support;        // per code
  std::vector<std::uint32_t> firstCustomer;  // per code, a work index
  std::size_t longestCustomer = 0;           // most items of one customer
  bool multiItemSets = false;                // some transaction has two items
  // Per customer its distinct items by last occurrence, latest first, in
  // lastStart[c] .. lastStart[c + 1]: the items after transaction f are the
  // prefix with lastTransaction > f.
  std::vector<std::uint32_t> lastStart{0};
  std::vector<std::uint32_t> lastTransaction, lastItem;
  // Per entry k of the lists above, the transactions of its customer holding
  // lastItem[k], ascending, in occurrences[occurrenceStart[k] ..
  // occurrenceStart[k + 1]).
  std::vector<std::uint32_t> occurrenceStart{0};
  std::vector<std::uint32_t> occurrences;

  std::size_t itemCount() const { return itemValue.size(); }
};

// The work database of the items of db that at least minCount customers
// hold.
WorkDatabase buildWorkDatabase(const SequenceDatabase& db, long minCount);

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_INTERNAL_WORKDATABASE_H_
