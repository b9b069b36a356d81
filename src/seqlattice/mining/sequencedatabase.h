// SequenceDatabase is the miner's compact in-memory customer database: for each
// customer an ordered list of transactions (item sets with a time). All items
// of all transactions live in one flat array; transactions and customers are
// ranges of offsets into it, so a database of n item occurrences costs about
// 4n bytes plus 12 bytes per transaction and 4 per customer.
//
// Readers fill it through the builder calls, one customer at a time:
//   beginCustomer(); addTransaction(time, items...); ...; endCustomer();
// Items may come in any order and with repeats: each transaction is stored
// ascending and duplicate-free. Transactions may come in any time order:
// endCustomer() orders the customer's transactions by time (stable) and merges
// transactions with equal times into one, so a reader of unsorted rows only
// has to group them by customer. Empty transactions are dropped; a customer
// without transactions is kept (it counts as a customer, containing nothing).
//
// A memory limit (bytes, 0 = none) makes the builder refuse growth beyond it
// with a MiningError instead of running the process out of memory.
//
// The database owns its arrays. Reading a finished database from several
// threads is safe; building is not.
#ifndef SEQLATTICE_MINING_SEQUENCEDATABASE_H_
#define SEQLATTICE_MINING_SEQUENCEDATABASE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

class SequenceDatabase {
 public:
  SequenceDatabase() = default;

  // Builder. Misuse (a transaction outside a customer, nested customers)
  // throws MiningError.
  void beginCustomer();
  void addTransaction(double time, const int* items, std::size_t count);
  void addTransaction(double time, const std::vector<int>& items);
  void endCustomer();
  // Pre-sizes the arrays when the reader can estimate the totals.
  void reserve(std::size_t customers, std::size_t transactions,
               std::size_t items);
  // Refuse to hold more than this many bytes (0: no limit).
  void setMemoryLimit(std::size_t bytes) { memoryLimit_ = bytes; }
  std::size_t memoryLimit() const { return memoryLimit_; }

  // Sizes of the finished part (an open customer is not counted).
  std::size_t customerCount() const { return customerStart_.size() - 1; }
  std::size_t transactionCount() const { return itemStart_.size() - 1; }
  std::size_t itemOccurrenceCount() const { return itemStart_.back(); }
  // Number of distinct item values over the whole database.
  std::size_t distinctItemCount() const;

  // Transactions of customer c are the indexes
  // [firstTransaction(c), endTransaction(c)), in time order.
  std::uint32_t firstTransaction(std::size_t customer) const {
    return customerStart_[customer];
  }
  std::uint32_t endTransaction(std::size_t customer) const {
    return customerStart_[customer + 1];
  }
  // Items of transaction t are [itemsBegin(t), itemsEnd(t)), ascending.
  const int* itemsBegin(std::size_t transaction) const {
    return items_.data() + itemStart_[transaction];
  }
  const int* itemsEnd(std::size_t transaction) const {
    return items_.data() + itemStart_[transaction + 1];
  }
  double time(std::size_t transaction) const { return times_[transaction]; }
  // The flat item array and the offsets, for miners that scan them directly.
  const std::vector<int>& items() const { return items_; }
  const std::vector<std::uint32_t>& itemStarts() const { return itemStart_; }

  // Bytes held by the arrays (capacity, not size).
  std::size_t bytesHeld() const;
  // Bytes a database of these totals needs when its arrays are exact.
  static std::size_t estimateBytes(std::size_t customers,
                                   std::size_t transactions, std::size_t items);

 private:
  void finishCustomerTransactions();
  void checkGrowth(std::size_t moreTransactions, std::size_t moreItems) const;

  std::vector<int> items_;
  std::vector<std::uint32_t> itemStart_{0};      // per transaction, +1
  std::vector<double> times_;                    // per transaction
  std::vector<std::uint32_t> customerStart_{0};  // per customer, +1
  bool open_ = false;
  std::size_t memoryLimit_ = 0;
};

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_SEQUENCEDATABASE_H_
