// Helpers of the mining tests: customer databases written as nested lists,
// with or without times of their own.
#ifndef SEQLATTICE_MINING_MINING_TEST_UTIL_H_
#define SEQLATTICE_MINING_MINING_TEST_UTIL_H_

#include <vector>

#include "seqlattice/mining/sequencedatabase.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// A customer: its transactions in order, each a list of items.
using Customer = std::vector<std::vector<int>>;

// The database of the customers, transaction t of each at time t.
inline mining::SequenceDatabase makeDatabase(
    const std::vector<Customer>& customers) {
  mining::SequenceDatabase db;
  for (const Customer& customer : customers) {
    db.beginCustomer();
    for (std::size_t t = 0; t < customer.size(); ++t) {
      db.addTransaction(static_cast<double>(t), customer[t]);
    }
    db.endCustomer();
  }
  return db;
}

// A transaction at a time; a customer's times ascend and differ.
struct Timed {
  double time;
  std::vector<int> items;
};
using TimedCustomer = std::vector<Timed>;

// The database of the customers, each transaction at its own time.
inline mining::SequenceDatabase makeTimedDatabase(
    const std::vector<TimedCustomer>& customers) {
  mining::SequenceDatabase db;
  for (const TimedCustomer& customer : customers) {
    db.beginCustomer();
    for (const Timed& t : customer) db.addTransaction(t.time, t.items);
    db.endCustomer();
  }
  return db;
}

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_MINING_TEST_UTIL_H_
