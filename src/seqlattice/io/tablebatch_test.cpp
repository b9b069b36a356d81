// A table record is stored a batch of entries at a time: these tests check
// that the table ends as storing each entry on reading it would leave it,
// across batches, with duplicates, and when an entry fails.
#include <gtest/gtest.h>

#include <string>

#include "seqlattice/io/io_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// The record of the one-item pattern (item) and a counter of `count`
// customers, without pairs or statistics.
inline std::string oneItemEntry(int item, int count) {
  return Bytes()
      .text("NT:\0", 4)
      .i64(1)
      .i32(1)
      .i32(item)
      .i32(1)
      .text("SD\0", 3)
      .i32(count)
      .i32(0)
      .i32(0)
      .i32(0)
      .i32(0)
      .str();
}

// The counter stored for the one-item pattern (item), or -1 when none is.
inline int storedCount(const HashtableSQPair& table, int item) {
  int set[] = {1, item};
  const NTSequence key(set);
  const ISQCPair* pair = table.get(&key);
  return pair == nullptr ? -1 : pair->value->getCount();
}

}  // namespace test

TEST(TableBatchTest, EntriesAcrossBatchesLoadAsInsertedOneByOne) {
  // 40 entries: two whole batches and part of a third; items 1 .. 40, each
  // counted 100 + item times.
  std::string bytes = test::Bytes().text("HT", 2).i32(40).str();
  HashtableSQPair byHand(3);
  for (int item = 1; item <= 40; ++item) {
    bytes += test::oneItemEntry(item, 100 + item);
    int set[] = {1, item};
    byHand.putOverwrite(new NTSequence(set), nullptr);
  }
  HashtableSQPair table(3);
  // The record count: 6, then 20 per pattern and 23 per counter.
  EXPECT_EQ(test::readBinary(bytes, table), 6 + 40 * 43);
  EXPECT_EQ(table.getCount(), 40);
  EXPECT_EQ(test::keysOf(table), test::keysOf(byHand));
  for (int item = 1; item <= 40; ++item) {
    EXPECT_EQ(test::storedCount(table, item), 100 + item);
  }
}

TEST(TableBatchTest, ALaterDuplicateInTheSameBatchReplacesTheEarlier) {
  const std::string bytes =
      test::Bytes().text("HT", 2).i32(3).str() + test::oneItemEntry(5, 7) +
      test::oneItemEntry(6, 8) + test::oneItemEntry(5, 99);
  HashtableSQPair table(3);
  EXPECT_EQ(test::readBinary(bytes, table), 6 + 3 * 43);
  EXPECT_EQ(table.getCount(), 2);
  EXPECT_EQ(test::storedCount(table, 5), 99);
  EXPECT_EQ(test::storedCount(table, 6), 8);
}

TEST(TableBatchTest, AFailedEntryLeavesTheEntriesBeforeItStored) {
  // 40 entries announced; the 38th has a damaged pattern tag: the first 37
  // (two whole batches and five of the third) are in the table when the
  // failure is raised.
  std::string bytes = test::Bytes().text("HT", 2).i32(40).str();
  for (int item = 1; item <= 40; ++item) {
    std::string entry = test::oneItemEntry(item, item);
    if (item == 38) entry[0] = 'X';
    bytes += entry;
  }
  HashtableSQPair table(3);
  const test::Printed printed =
      test::expectIOException([&] { test::readBinary(bytes, table); });
  EXPECT_EQ(printed.err, "Failure reading NTSequence!\n");
  EXPECT_EQ(table.getCount(), 37);
  for (int item = 1; item <= 37; ++item) {
    EXPECT_EQ(test::storedCount(table, item), item);
  }
  EXPECT_EQ(test::storedCount(table, 38), -1);
}

}  // namespace SEQUENCE_NAMESPACE_800
