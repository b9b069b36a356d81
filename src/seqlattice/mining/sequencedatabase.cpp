#include "seqlattice/mining/sequencedatabase.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <string>

#include "seqlattice/mining/internal/distinctvalues.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miningerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

namespace {

constexpr std::size_t kMaxOffset = std::numeric_limits<std::uint32_t>::max();

}  // namespace

void SequenceDatabase::beginCustomer() {
  if (open_) throw MiningError("beginCustomer: the previous customer is open");
  open_ = true;
}

void SequenceDatabase::addTransaction(double time, const int* items,
                                      std::size_t count) {
  if (!open_) throw MiningError("addTransaction: no customer is open");
  if (count == 0) return;
  checkGrowth(1, count);
  std::size_t start = items_.size();
  items_.insert(items_.end(), items, items + count);
  auto first = items_.begin() + static_cast<std::ptrdiff_t>(start);
  std::sort(first, items_.end());
  items_.erase(std::unique(first, items_.end()), items_.end());
  itemStart_.push_back(static_cast<std::uint32_t>(items_.size()));
  times_.push_back(time);
}

void SequenceDatabase::addTransaction(double time,
                                      const std::vector<int>& items) {
  addTransaction(time, items.data(), items.size());
}

void SequenceDatabase::endCustomer() {
  if (!open_) throw MiningError("endCustomer: no customer is open");
  finishCustomerTransactions();
  customerStart_.push_back(static_cast<std::uint32_t>(times_.size()));
  open_ = false;
}

// Orders the open customer's transactions by time and merges equal times.
// Readers of ordered input (the common case) pay one comparison per
// transaction.
void SequenceDatabase::finishCustomerTransactions() {
  std::size_t first = customerStart_.back();
  std::size_t end = times_.size();
  bool strictlyIncreasing = true;
  for (std::size_t t = first + 1; t < end && strictlyIncreasing; ++t) {
    strictlyIncreasing = times_[t - 1] < times_[t];
  }
  if (strictlyIncreasing) return;

  std::vector<std::size_t> order(end - first);
  std::iota(order.begin(), order.end(), first);
  std::stable_sort(
      order.begin(), order.end(),
      [this](std::size_t a, std::size_t b) { return times_[a] < times_[b]; });
  std::size_t itemBase = itemStart_[first];
  std::vector<int> oldItems(
      items_.begin() + static_cast<std::ptrdiff_t>(itemBase), items_.end());
  std::vector<std::uint32_t> oldStart(
      itemStart_.begin() + static_cast<std::ptrdiff_t>(first),
      itemStart_.end());
  std::vector<double> oldTimes(
      times_.begin() + static_cast<std::ptrdiff_t>(first), times_.end());
  items_.resize(itemBase);
  itemStart_.resize(first + 1);
  times_.resize(first);
  // Each run of equal times becomes one transaction: its items are
  // gathered, then sorted and made unique once, so that many rows of one
  // time cost n log n, not a sort per row.
  for (std::size_t k = 0; k < order.size();) {
    const double time = oldTimes[order[k] - first];
    const std::size_t setStart = items_.size();
    do {
      std::size_t old = order[k] - first;
      items_.insert(items_.end(), oldItems.begin() + (oldStart[old] - itemBase),
                    oldItems.begin() + (oldStart[old + 1] - itemBase));
      ++k;
    } while (k < order.size() && oldTimes[order[k] - first] == time);
    auto setBegin = items_.begin() + static_cast<std::ptrdiff_t>(setStart);
    std::sort(setBegin, items_.end());
    items_.erase(std::unique(setBegin, items_.end()), items_.end());
    itemStart_.push_back(static_cast<std::uint32_t>(items_.size()));
    times_.push_back(time);
  }
}

void SequenceDatabase::reserve(std::size_t customers, std::size_t transactions,
                               std::size_t items) {
  checkGrowth(
      transactions > transactionCount() ? transactions - transactionCount() : 0,
      items > items_.size() ? items - items_.size() : 0);
  customerStart_.reserve(customers + 1);
  itemStart_.reserve(transactions + 1);
  times_.reserve(transactions);
  items_.reserve(items);
}

void SequenceDatabase::checkGrowth(std::size_t moreTransactions,
                                   std::size_t moreItems) const {
  std::size_t transactions = times_.size() + moreTransactions;
  std::size_t items = items_.size() + moreItems;
  if (transactions >= kMaxOffset || items >= kMaxOffset) {
    throw MiningError(
        "the database is too large: more than 4294967294 transactions or "
        "item occurrences");
  }
  if (memoryLimit_ == 0) return;
  std::size_t need = estimateBytes(customerStart_.size(), transactions, items);
  if (need > memoryLimit_) {
    throw MiningError("the database does not fit in the memory budget of " +
                      formatMegabytes(memoryLimit_) + " (" +
                      std::to_string(transactions) + " transactions and " +
                      std::to_string(items) + " items need at least " +
                      formatMegabytes(need) + ")");
  }
}

std::size_t SequenceDatabase::distinctItemCount() const {
  return internal::distinctValues(items_).size();
}

std::size_t SequenceDatabase::bytesHeld() const {
  return items_.capacity() * sizeof(int) +
         itemStart_.capacity() * sizeof(std::uint32_t) +
         times_.capacity() * sizeof(double) +
         customerStart_.capacity() * sizeof(std::uint32_t);
}

std::size_t SequenceDatabase::estimateBytes(std::size_t customers,
                                            std::size_t transactions,
                                            std::size_t items) {
  return items * sizeof(int) +
         (transactions + 1) * (sizeof(std::uint32_t) + sizeof(double)) +
         (customers + 1) * sizeof(std::uint32_t);
}

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
