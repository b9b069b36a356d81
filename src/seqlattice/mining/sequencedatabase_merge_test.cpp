// Transactions of one customer and one time are merged into one, however
// many there are and in whatever order they come.
#include <gtest/gtest.h>

#include <vector>

#include "seqlattice/mining/sequencedatabase.h"

namespace SEQUENCE_NAMESPACE_800 {

TEST(SequenceDatabaseMergeTest, ManyRowsOfOneTimeBecomeOneTransaction) {
  mining::SequenceDatabase db;
  db.beginCustomer();
  // 3000 one-item rows at times 2, 1, 2, 1, ... with items cycling
  // downwards through 0..99, and one row at time 0.
  for (int row = 0; row < 3000; ++row) {
    int item = 99 - row % 100;
    db.addTransaction(row % 2 == 0 ? 2.0 : 1.0, &item, 1);
  }
  int first = 500;
  db.addTransaction(0.0, &first, 1);
  db.endCustomer();

  ASSERT_EQ(db.transactionCount(), 3u);
  EXPECT_EQ(db.time(0), 0.0);
  EXPECT_EQ(std::vector<int>(db.itemsBegin(0), db.itemsEnd(0)),
            std::vector<int>{500});
  std::vector<int> evens, odds;
  for (int item = 0; item < 100; ++item) {
    (item % 2 == 0 ? evens : odds).push_back(item);
  }
  // The odd rows, at time 1, hold the even items 98, 96, ...; the even rows,
  // at time 2, the odd ones.
  EXPECT_EQ(db.time(1), 1.0);
  EXPECT_EQ(std::vector<int>(db.itemsBegin(1), db.itemsEnd(1)), evens);
  EXPECT_EQ(db.time(2), 2.0);
  EXPECT_EQ(std::vector<int>(db.itemsBegin(2), db.itemsEnd(2)), odds);
  EXPECT_EQ(db.itemOccurrenceCount(), 101u);
}

}  // namespace SEQUENCE_NAMESPACE_800
