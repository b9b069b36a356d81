#include "seqlattice/mining/sequencedatabase.h"

#include <gtest/gtest.h>

#include <vector>

#include "seqlattice/mining/miningerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace {

std::vector<int> itemsOf(const SequenceDatabase& db, std::size_t t) {
  return std::vector<int>(db.itemsBegin(t), db.itemsEnd(t));
}

TEST(SequenceDatabaseTest, StoresItemSetsAscendingWithoutDuplicates) {
  SequenceDatabase db;
  db.beginCustomer();
  db.addTransaction(1.0, {5, 3, 5, -2});
  db.addTransaction(2.5, {7});
  db.endCustomer();
  db.beginCustomer();
  db.endCustomer();
  db.beginCustomer();
  db.addTransaction(0.0, {4, 4});
  db.endCustomer();
  ASSERT_EQ(db.customerCount(), 3u);
  EXPECT_EQ(db.transactionCount(), 3u);
  EXPECT_EQ(db.itemOccurrenceCount(), 5u);
  EXPECT_EQ(db.distinctItemCount(), 5u);
  EXPECT_EQ(itemsOf(db, 0), (std::vector<int>{-2, 3, 5}));
  EXPECT_EQ(itemsOf(db, 1), (std::vector<int>{7}));
  EXPECT_EQ(itemsOf(db, 2), (std::vector<int>{4}));
  EXPECT_DOUBLE_EQ(db.time(1), 2.5);
  EXPECT_EQ(db.firstTransaction(0), 0u);
  EXPECT_EQ(db.endTransaction(0), 2u);
  EXPECT_EQ(db.firstTransaction(1), db.endTransaction(1));
  EXPECT_EQ(db.firstTransaction(2), 2u);
  EXPECT_EQ(db.endTransaction(2), 3u);
}

TEST(SequenceDatabaseTest, OrdersByTimeAndMergesEqualTimes) {
  SequenceDatabase db;
  db.beginCustomer();
  db.addTransaction(3.0, {9});
  db.addTransaction(1.0, {2, 1});
  db.addTransaction(3.0, {8, 9});
  db.addTransaction(2.0, {});
  db.addTransaction(1.0, {3});
  db.endCustomer();
  ASSERT_EQ(db.transactionCount(), 2u);
  EXPECT_DOUBLE_EQ(db.time(0), 1.0);
  EXPECT_EQ(itemsOf(db, 0), (std::vector<int>{1, 2, 3}));
  EXPECT_DOUBLE_EQ(db.time(1), 3.0);
  EXPECT_EQ(itemsOf(db, 1), (std::vector<int>{8, 9}));
}

TEST(SequenceDatabaseTest, BuilderMisuseIsRejected) {
  SequenceDatabase db;
  EXPECT_THROW(db.addTransaction(0, {1}), MiningError);
  EXPECT_THROW(db.endCustomer(), MiningError);
  db.beginCustomer();
  EXPECT_THROW(db.beginCustomer(), MiningError);
  db.endCustomer();
  EXPECT_EQ(db.customerCount(), 1u);
}

TEST(SequenceDatabaseTest, MemoryLimitRefusesGrowth) {
  SequenceDatabase db;
  db.setMemoryLimit(SequenceDatabase::estimateBytes(1, 1, 3));
  db.beginCustomer();
  db.addTransaction(0, {1, 2, 3});
  try {
    db.addTransaction(1, {4});
    FAIL() << "growth beyond the limit was accepted";
  } catch (const MiningError& e) {
    EXPECT_EQ(std::string(e.what()),
              "the database does not fit in the memory budget of 1 MB (2 "
              "transactions and 4 items need at least 1 MB)");
  }
  EXPECT_GT(db.bytesHeld(), 0u);
}

}  // namespace
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
