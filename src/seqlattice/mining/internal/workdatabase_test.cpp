#include "seqlattice/mining/internal/workdatabase.h"

#include <gtest/gtest.h>

#include <vector>

#include "seqlattice/mining/mining_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {
namespace {

using U32s = std::vector<std::uint32_t>;

// Items 7 and 9 are frequent at a count of 2; 3, 4 and 5 are not, which
// empties customer 1 and the first transaction of customer 2.
WorkDatabase sample() {
  return buildWorkDatabase(
      test::makeDatabase(
          {{{9}, {3, 7}}, {{5}}, {{4}, {7, 9}, {9}}, {{7}, {7}}}),
      2);
}

TEST(WorkDatabaseTest, KeepsTheFrequentItemsRenumberedInValueOrder) {
  WorkDatabase work = sample();
  EXPECT_EQ(work.itemValue, (std::vector<int>{7, 9}));
  EXPECT_EQ(work.itemCount(), 2u);
  EXPECT_EQ(work.support, (U32s{3, 2}));
  EXPECT_EQ(work.firstCustomer, (U32s{0, 0}));
}

TEST(WorkDatabaseTest, DropsEmptiedTransactionsAndCustomers) {
  WorkDatabase work = sample();
  EXPECT_EQ(work.customerId, (U32s{0, 2, 3}));
  EXPECT_EQ(work.customerStart, (U32s{0, 2, 4, 6}));
  EXPECT_EQ(work.transactionStart, (U32s{0, 1, 2, 4, 5, 6, 7}));
  EXPECT_EQ(work.items, (U32s{1, 0, 0, 1, 1, 0, 0}));
  EXPECT_EQ(work.longestCustomer, 3u);
  EXPECT_TRUE(work.multiItemSets);
}

TEST(WorkDatabaseTest, LastOccurrencesLatestFirst) {
  WorkDatabase work = sample();
  EXPECT_EQ(work.lastStart, (U32s{0, 2, 4, 5}));
  // Customer 0: 7 last in transaction 1, 9 in 0. Customer 1: 9 in 3, 7 in
  // 2. Customer 2: 7 in 5.
  EXPECT_EQ(work.lastTransaction, (U32s{1, 0, 3, 2, 5}));
  EXPECT_EQ(work.lastItem, (U32s{0, 1, 1, 0, 0}));
}

TEST(WorkDatabaseTest, OccurrencesBesideEachLastEntry) {
  WorkDatabase work = sample();
  // Customer 0: 7 in {1}, 9 in {0}. Customer 1: 9 in {2, 3}, 7 in {2}.
  // Customer 2: 7 in {4, 5}.
  EXPECT_EQ(work.occurrenceStart, (U32s{0, 1, 2, 4, 5, 7}));
  EXPECT_EQ(work.occurrences, (U32s{1, 0, 2, 3, 2, 4, 5}));
}

// Item 2 is first held by customer 1 of the database, work customer 0.
TEST(WorkDatabaseTest, FirstCustomerIsAWorkIndex) {
  WorkDatabase work =
      buildWorkDatabase(test::makeDatabase({{{1}}, {{2}}, {{2}}}), 2);
  EXPECT_EQ(work.itemValue, (std::vector<int>{2}));
  EXPECT_EQ(work.customerId, (U32s{1, 2}));
  EXPECT_EQ(work.firstCustomer, (U32s{0}));
  EXPECT_FALSE(work.multiItemSets);
}

TEST(WorkDatabaseTest, NothingFrequent) {
  WorkDatabase work = buildWorkDatabase(test::makeDatabase({{{1}}, {{2}}}), 2);
  EXPECT_EQ(work.itemCount(), 0u);
  EXPECT_TRUE(work.items.empty());
  EXPECT_EQ(work.customerStart, (U32s{0}));
  EXPECT_EQ(work.lastStart, (U32s{0}));
  EXPECT_EQ(work.occurrenceStart, (U32s{0}));
  EXPECT_TRUE(work.occurrences.empty());
  EXPECT_EQ(work.longestCustomer, 0u);
}

}  // namespace
}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
