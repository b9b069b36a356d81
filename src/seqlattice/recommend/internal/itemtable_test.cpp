#include "seqlattice/recommend/internal/itemtable.h"

#include <utility>
#include <vector>

#include "gtest/gtest.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

using Entries = std::vector<std::pair<int, double>>;

Entries entriesOf(recommend::ItemTable<double>& table) {
  Entries entries;
  for (auto& [item, value] : table) entries.emplace_back(item, value);
  return entries;
}

}  // namespace test

TEST(ItemTable, ValuesStartAtDefaultAndListInFirstMetOrder) {
  recommend::ItemTable<double> table;
  EXPECT_EQ(table[7], 0.0);
  table[7] += 1.5;
  table[-3] = 2.0;
  table[7] += 1.0;
  EXPECT_EQ(table.size(), 2u);
  EXPECT_EQ(test::entriesOf(table), (test::Entries{{7, 2.5}, {-3, 2.0}}));
}

TEST(ItemTable, ANewRoundForgetsTheValuesButKeepsWorking) {
  recommend::ItemTable<double> table;
  table[1] = 4.0;
  table[2] = 5.0;
  table.newRound();
  EXPECT_EQ(table.size(), 0u);
  EXPECT_EQ(test::entriesOf(table), test::Entries{});
  table[2] += 1.0;
  EXPECT_EQ(test::entriesOf(table), (test::Entries{{2, 1.0}}));
}

TEST(ItemTable, ManyCodesGrowTheTable) {
  // Past the initial buckets, with codes that collide in the low bits.
  recommend::ItemTable<double> table;
  for (int round = 0; round < 2; ++round) {
    table.newRound();
    for (int k = 0; k < 5000; ++k) table[k * 1024] = k + round;
    ASSERT_EQ(table.size(), 5000u);
    for (int k = 0; k < 5000; ++k) ASSERT_EQ(table[k * 1024], k + round);
  }
  test::Entries entries = test::entriesOf(table);
  EXPECT_EQ(entries.front(), (std::pair<int, double>{0, 1.0}));
  EXPECT_EQ(entries.back(), (std::pair<int, double>{4999 * 1024, 5000.0}));
}

TEST(ItemTable, SmallAndLargeCodesKeepTheirOwnValues) {
  // Small codes are read directly, large and negative ones hashed; both
  // list in the order they were first met.
  recommend::ItemTable<double> table;
  table[5000000] = 1.0;
  table[3] = 2.0;
  table[-7] = 3.0;
  table[1048575] = 4.0;
  table[1048576] = 5.0;
  table[3] += 0.5;
  EXPECT_EQ(test::entriesOf(table), (test::Entries{{5000000, 1.0},
                                                   {3, 2.5},
                                                   {-7, 3.0},
                                                   {1048575, 4.0},
                                                   {1048576, 5.0}}));
}

}  // namespace SEQUENCE_NAMESPACE_800
