#include "seqlattice/sequence/timeditemset.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <limits>
#include <vector>

#include "seqlattice/sequence/sequence_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

using Items = std::vector<int>;

TEST(TimedItemSetTest, DefaultIsEmptyAtTimeZero) {
  const TimedItemSet set;
  EXPECT_EQ(set.Size(), 0);
  EXPECT_EQ(set.GetTime(), 0.0);
  EXPECT_EQ(set.Begin(), set.End());
}

TEST(TimedItemSetTest, SizeHintIsIgnoredTimeIsKept) {
  const TimedItemSet set(100, 4.5);
  EXPECT_EQ(set.Size(), 0);
  EXPECT_EQ(set.GetTime(), 4.5);
}

TEST(TimedItemSetTest, AddItemSortsAndDropsDuplicates) {
  TimedItemSet set;
  for (int item : {5, 1, 3, 1}) set.AddItem(item);
  EXPECT_EQ(test::ItemsOf(set), (Items{1, 3, 5}));
  EXPECT_EQ(set.Size(), 3);
}

TEST(TimedItemSetTest, AddItemKeepsNegativeItemsInSignedOrder) {
  TimedItemSet set;
  for (int item : {0, -7, 2, -1}) set.AddItem(item);
  EXPECT_EQ(test::ItemsOf(set), (Items{-7, -1, 0, 2}));
}

TEST(TimedItemSetTest, AddAllItemsReplacesItemsAndSetsTime) {
  TimedItemSet set = test::MakeSet({1, 8}, 2.0);
  const int items[] = {4, 2, 4};
  set.AddAllItems(items, 3, 9.0);
  EXPECT_EQ(test::ItemsOf(set), (Items{2, 4}));
  EXPECT_EQ(set.GetTime(), 9.0);
}

TEST(TimedItemSetTest, ClearRemovesItemsAndResetsTime) {
  TimedItemSet set = test::MakeSet({1, 2}, 6.0);
  set.Clear();
  EXPECT_EQ(set.Size(), 0);
  EXPECT_EQ(set.GetTime(), 0.0);
}

TEST(TimedItemSetTest, SetTimeAndGetTime) {
  TimedItemSet set;
  set.SetTime(-2.25);
  EXPECT_EQ(set.GetTime(), -2.25);
}

TEST(TimedItemSetTest, CopyConstructorCopiesItemsAndTime) {
  const TimedItemSet original = test::MakeSet({3, 9}, 7.0);
  TimedItemSet copy(original);
  EXPECT_EQ(test::ItemsOf(copy), (Items{3, 9}));
  EXPECT_EQ(copy.GetTime(), 7.0);
  copy.AddItem(1);
  EXPECT_EQ(test::ItemsOf(original), (Items{3, 9}));
}

TEST(TimedItemSetTest, AssignmentMergesItemsAndKeepsOwnTime) {
  TimedItemSet target = test::MakeSet({3}, 5.0);
  const TimedItemSet source = test::MakeSet({2, 4}, 1.0);
  target = source;
  EXPECT_EQ(test::ItemsOf(target), (Items{2, 3, 4}));
  EXPECT_EQ(target.GetTime(), 5.0);
  EXPECT_EQ(test::ItemsOf(source), (Items{2, 4}));
}

TEST(TimedItemSetTest, SelfAssignmentChangesNothing) {
  TimedItemSet set = test::MakeSet({1, 2}, 3.0);
  TimedItemSet& alias = set;
  set = alias;
  EXPECT_EQ(test::ItemsOf(set), (Items{1, 2}));
  EXPECT_EQ(set.GetTime(), 3.0);
}

TEST(TimedItemSetTest, EqualityNeedsSameItemsAndTimesWithinEpsilon) {
  EXPECT_TRUE(test::MakeSet({1, 2}, 1.0) == test::MakeSet({1, 2}, 1.0));
  EXPECT_FALSE(test::MakeSet({1, 2}, 1.0) ==
               test::MakeSet({1, 2}, 1.0 + 1e-12));
  EXPECT_FALSE(test::MakeSet({1, 2}, 1.0) == test::MakeSet({1, 3}, 1.0));
  EXPECT_FALSE(test::MakeSet({1, 2}, 1.0) == test::MakeSet({1, 2, 3}, 1.0));
  // The tolerance is absolute: a difference below epsilon passes.
  EXPECT_TRUE(test::MakeSet({4}, 0.0) == test::MakeSet({4}, 1e-17));
}

TEST(TimedItemSetTest, NaNTimeIsNeverEqual) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const TimedItemSet set = test::MakeSet({1}, nan);
  EXPECT_FALSE(set == set);
  EXPECT_FALSE(test::MakeSet({1}, 1.0) == set);
}

TEST(TimedItemSetTest, OrderIsLexicographicOnItemsOnly) {
  const TimedItemSet a = test::MakeSet({1, 2}, 9.0);
  const TimedItemSet b = test::MakeSet({1, 2, 3}, 0.0);
  const TimedItemSet c = test::MakeSet({1, 3}, 0.0);
  EXPECT_TRUE(a < b);
  EXPECT_TRUE(b < c);
  EXPECT_TRUE(a < c);
  EXPECT_FALSE(b < a);
  EXPECT_FALSE(c < b);
  EXPECT_FALSE(test::MakeSet({2}, 0.0) < test::MakeSet({1, 9}, 0.0));
  EXPECT_TRUE(test::MakeSet({1, 9}, 0.0) < test::MakeSet({2}, 0.0));
  // Times play no part.
  EXPECT_FALSE(test::MakeSet({1}, 1.0) < test::MakeSet({1}, 2.0));
  EXPECT_FALSE(test::MakeSet({1}, 2.0) < test::MakeSet({1}, 1.0));
  EXPECT_TRUE(TimedItemSet() < test::MakeSet({0}, 0.0));
}

TEST(TimedItemSetTest, DisplayWithoutTimeLeavesCoutFormatAlone) {
  test::CoutFormatGuard guard;
  std::cout.precision(6);
  std::cout.unsetf(std::ios::floatfield);
  testing::internal::CaptureStdout();
  test::MakeSet({1, 5}, 3.0).Display(false);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "(1 5)");
  EXPECT_EQ(std::cout.precision(), 6);
  EXPECT_EQ(std::cout.flags() & std::ios::floatfield, std::ios::fmtflags{});
}

TEST(TimedItemSetTest, DisplayWithTimeSwitchesCoutToFixedPrecisionZero) {
  test::CoutFormatGuard guard;
  std::cout.precision(6);
  std::cout.unsetf(std::ios::floatfield);
  testing::internal::CaptureStdout();
  test::MakeSet({1, 5}, 2.6).Display(true);
  std::cout << 0.25;  // the format stays switched afterwards
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "(1 5[3])0");
  EXPECT_EQ(std::cout.precision(), 0);
  EXPECT_EQ(std::cout.flags() & std::ios::floatfield, std::ios::fixed);
}

TEST(TimedItemSetTest, DisplayOfEmptySet) {
  test::CoutFormatGuard guard;
  testing::internal::CaptureStdout();
  TimedItemSet().Display(false);
  TimedItemSet(0, 4.0).Display(true);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "()([4])");
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
