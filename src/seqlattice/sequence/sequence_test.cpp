#include "seqlattice/sequence/sequence.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <stdexcept>
#include <vector>

#include "seqlattice/sequence/sequence_test_util.h"
#include "seqlattice/support/kvstatus.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

using Items = std::vector<int>;

// The items of every set, in order.
std::vector<Items> SetsOf(const Sequence& seq) {
  std::vector<Items> sets;
  for (int i = 0; i < seq.Length(); ++i) sets.push_back(test::ItemsOf(*seq[i]));
  return sets;
}

std::vector<double> TimesOf(const Sequence& seq) {
  std::vector<double> times;
  for (int i = 0; i < seq.Length(); ++i) {
    times.push_back(seq.GetTimeOfTimedItemSet(i));
  }
  return times;
}

TEST(SequenceTest, ConstructorsStartEmpty) {
  EXPECT_EQ(Sequence().Length(), 0);
  EXPECT_EQ(Sequence(10).Length(), 0);
  EXPECT_EQ(Sequence(0).Size(), 0);
  EXPECT_EQ(Sequence(-3).Length(), 0);
}

TEST(SequenceTest, AddTimedItemSetStoresACopy) {
  Sequence seq;
  TimedItemSet set = test::MakeSet({2, 7}, 4.0);
  seq.AddTimedItemSet(&set);
  set.AddItem(9);
  set.SetTime(8.0);
  ASSERT_EQ(seq.Length(), 1);
  EXPECT_NE(seq[0], &set);
  EXPECT_EQ(test::ItemsOf(*seq[0]), (Items{2, 7}));
  EXPECT_EQ(seq.GetTimeOfTimedItemSet(0), 4.0);
}

TEST(SequenceTest, LengthCountsSetsAndSizeCountsItems) {
  const Sequence seq = test::MakeSequence({{1, 5}, {2}, {3, 4, 6}}, {1, 2, 3});
  EXPECT_EQ(seq.Length(), 3);
  EXPECT_EQ(seq.Size(), 6);
}

TEST(SequenceTest, CopyConstructorCopiesEverySetDeeply) {
  const Sequence original = test::MakeSequence({{1, 5}, {2}}, {3, 7});
  Sequence copy(original);
  EXPECT_TRUE(copy == original);
  EXPECT_NE(copy[0], original[0]);
  copy.Clear();
  EXPECT_EQ(SetsOf(original), (std::vector<Items>{{1, 5}, {2}}));
}

TEST(SequenceTest, AssignmentAppendsAfterTheSetsHeld) {
  Sequence target = test::MakeSequence({{9}}, {1});
  const Sequence source = test::MakeSequence({{1}, {2, 3}}, {5, 6});
  target = source;
  EXPECT_EQ(target.Length(), 3);
  EXPECT_EQ(SetsOf(target), (std::vector<Items>{{9}, {1}, {2, 3}}));
  EXPECT_EQ(TimesOf(target), (std::vector<double>{1, 5, 6}));
  EXPECT_EQ(source.Length(), 2);
}

TEST(SequenceTest, SelfAssignmentChangesNothing) {
  Sequence seq = test::MakeSequence({{1}, {2}}, {1, 2});
  Sequence& alias = seq;
  seq = alias;
  EXPECT_EQ(seq.Length(), 2);
}

TEST(SequenceTest, ClearDeletesAllSets) {
  Sequence seq = test::MakeSequence({{1}, {2}}, {1, 2});
  seq.Clear();
  EXPECT_EQ(seq.Length(), 0);
  EXPECT_EQ(seq.Size(), 0);
}

TEST(SequenceTest, IndexAboveLengthThrowsStatusWithIndexAndLength) {
  const Sequence seq = test::MakeSequence({{1}, {2}}, {1, 2});
  try {
    (void)seq[seq.Length() + 1];
    FAIL() << "no status thrown";
  } catch (const KvCommon_850::KvStatus& status) {
    EXPECT_FALSE(status.IsOK());
    EXPECT_EQ(status.GetCode(), KvCommon_850::kStatusIndexError);
    EXPECT_EQ(status.GetDiscreteData(), (std::vector<long>{3, 2}));
  }
}

TEST(SequenceTest, TimeIndexAboveLengthThrowsStatusWithIndexOnly) {
  const Sequence seq = test::MakeSequence({{1}, {2}}, {1, 2});
  try {
    (void)seq.GetTimeOfTimedItemSet(7);
    FAIL() << "no status thrown";
  } catch (const KvCommon_850::KvStatus& status) {
    EXPECT_EQ(status.GetCode(), KvCommon_850::kStatusIndexError);
    EXPECT_EQ(status.GetDiscreteData(), (std::vector<long>{7}));
  }
}

TEST(SequenceTest, IndexEqualToLengthOrNegativeIsLetThrough) {
  const Sequence seq = test::MakeSequence({{1}, {2}}, {1, 2});
  EXPECT_EQ(seq[2], nullptr);
  EXPECT_EQ(seq[-1], nullptr);
  EXPECT_TRUE(std::isnan(seq.GetTimeOfTimedItemSet(2)));
  EXPECT_TRUE(std::isnan(seq.GetTimeOfTimedItemSet(-1)));
  EXPECT_EQ(Sequence()[0], nullptr);
}

TEST(SequenceTest, JoinCurrentMergesFirstSetIntoLast) {
  Sequence seq = test::MakeSequence({{1}, {2}}, {1, 2});
  const Sequence other = test::MakeSequence({{3}, {4}}, {5, 6});
  seq.JoinCurrent(&other);
  EXPECT_EQ(SetsOf(seq), (std::vector<Items>{{1}, {2, 3}, {4}}));
  // The merged set keeps this sequence's time; the rest keep their own.
  EXPECT_EQ(TimesOf(seq), (std::vector<double>{1, 2, 6}));
}

TEST(SequenceTest, JoinCurrentWithItselfOfLengthOne) {
  Sequence seq = test::MakeSequence({{1, 3}}, {4});
  seq.JoinCurrent(&seq);
  EXPECT_EQ(SetsOf(seq), (std::vector<Items>{{1, 3}}));
}

TEST(SequenceTest, JoinCurrentRefusesEmptySequences) {
  Sequence empty;
  Sequence seq = test::MakeSequence({{1}}, {1});
  EXPECT_THROW(seq.JoinCurrent(&empty), std::invalid_argument);
  EXPECT_THROW(empty.JoinCurrent(&seq), std::invalid_argument);
  EXPECT_EQ(SetsOf(seq), (std::vector<Items>{{1}}));
}

TEST(SequenceTest, JoinTemporalAppendsSets) {
  Sequence seq = test::MakeSequence({{1}, {2}}, {1, 2});
  const Sequence other = test::MakeSequence({{3}, {4}}, {5, 6});
  seq.JoinTemporal(&other);
  EXPECT_EQ(SetsOf(seq), (std::vector<Items>{{1}, {2}, {3}, {4}}));
  EXPECT_EQ(TimesOf(seq), (std::vector<double>{1, 2, 5, 6}));
}

TEST(SequenceTest, JoinTemporalWithItselfDoublesTheSets) {
  Sequence seq = test::MakeSequence({{1}, {2}}, {1, 2});
  seq.JoinTemporal(&seq);
  EXPECT_EQ(SetsOf(seq), (std::vector<Items>{{1}, {2}, {1}, {2}}));
}

TEST(SequenceTest, OrderComparesSetsIgnoringTimes) {
  const Sequence a = test::MakeSequence({{1}, {2}}, {1, 2});
  const Sequence b = test::MakeSequence({{1}, {2}, {0}}, {9, 9, 9});
  const Sequence c = test::MakeSequence({{1}, {3}}, {0, 0});
  const Sequence d = test::MakeSequence({{1, 2}}, {0});
  EXPECT_TRUE(a < b);  // a prefix of b
  EXPECT_FALSE(b < a);
  EXPECT_TRUE(b < c);
  EXPECT_TRUE(a < d);  // (1) < (1 2)
  EXPECT_FALSE(d < a);
  EXPECT_FALSE(a < test::MakeSequence({{1}, {2}}, {5, 6}));
  EXPECT_TRUE(Sequence() < a);
  EXPECT_FALSE(Sequence() < Sequence());
}

TEST(SequenceTest, EqualityIncludesTimes) {
  const Sequence a = test::MakeSequence({{1}, {2}}, {1, 2});
  EXPECT_TRUE(a == test::MakeSequence({{1}, {2}}, {1, 2}));
  EXPECT_FALSE(a == test::MakeSequence({{1}, {2}}, {1, 2.5}));
  EXPECT_FALSE(a == test::MakeSequence({{1}}, {1}));
  EXPECT_FALSE(a == test::MakeSequence({{1}, {3}}, {1, 2}));
  EXPECT_TRUE(Sequence() == Sequence(5));
}

TEST(SequenceTest, DisplayWithTimesPrintsOnCoutAndLeavesFixedFormat) {
  test::CoutFormatGuard guard;
  std::cout.precision(6);
  std::cout.unsetf(std::ios::floatfield);
  const Sequence seq = test::MakeSequence({{1, 5}, {2}}, {3, 7});
  testing::internal::CaptureStdout();
  seq.Display(true);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "<(1 5[3])(2[7])>\n");
  EXPECT_EQ(std::cout.precision(), 0);
  EXPECT_EQ(std::cout.flags() & std::ios::floatfield, std::ios::fixed);
}

TEST(SequenceTest, DisplayWithoutTimes) {
  test::CoutFormatGuard guard;
  std::cout.precision(6);
  std::cout.unsetf(std::ios::floatfield);
  testing::internal::CaptureStdout();
  test::MakeSequence({{1, 5}, {2}}, {3, 7}).Display(false);
  Sequence().Display(true);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "<(1 5)(2)>\n<>\n");
  EXPECT_EQ(std::cout.precision(), 6);
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
