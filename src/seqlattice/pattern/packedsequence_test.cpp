#include "seqlattice/pattern/packedsequence.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/pattern/pattern_test_util.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/sequence_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

using Times = std::vector<std::pair<double, double>>;

Times TimesOf(const PackedSequence& p) {
  Times times;
  for (int s = 0; s < p.getNSets(); ++s) times.push_back(p.getTimeForSet(s));
  return times;
}

// One time per set: set k at time k + 1.
PackedSequence MakeTimed(const test::Sets& sets) {
  std::vector<double> times;
  for (size_t k = 0; k < sets.size(); ++k) times.push_back(k + 1.0);
  return test::MakePacked(sets, times, times);
}

TEST(PackedSequenceTest, DefaultHasNoBuffers) {
  const PackedSequence p;
  EXPECT_EQ(p.size(), 0);
  EXPECT_EQ(p.getNSets(), 0);
  EXPECT_EQ(p.getPattern(), 0);
  EXPECT_EQ(p.getHashCode(), 0);
  EXPECT_EQ(p.getItemsCapacity(), 0);
  EXPECT_EQ(p.getSetCapacity(), 0);
}

TEST(PackedSequenceTest, SetArraysWithStartAndEndTimes) {
  const PackedSequence p =
      test::MakePacked({{4, 8}, {1}, {6, 7}}, {1, 3, 9}, {2, 4, 10});
  EXPECT_EQ(test::SetsOf(p), (test::Sets{{4, 8}, {1}, {6, 7}}));
  EXPECT_EQ(p.getPattern(), 0b01101);
  EXPECT_EQ(TimesOf(p), (Times{{1, 2}, {3, 4}, {9, 10}}));
  EXPECT_EQ(p.getItemsCapacity(), 5);
  EXPECT_EQ(p.getSetCapacity(), 3);
  EXPECT_EQ(p.getHashCode(), p.computeHash());
}

TEST(PackedSequenceTest, SetArraysWithOneTimePerSet) {
  test::PatternArrays arrays(test::Sets{{1}, {2, 3}});
  const double times[] = {5, 8};
  const PackedSequence p(arrays.sets(), times, arrays.nSets());
  EXPECT_EQ(TimesOf(p), (Times{{5, 5}, {8, 8}}));
  EXPECT_EQ(p.getPattern(), 0b101);
}

TEST(PackedSequenceTest, FromSequenceTakesEachSetsTime) {
  const Sequence seq = test::MakeSequence({{1, 5}, {2}}, {3, 7});
  const PackedSequence p(&seq);
  EXPECT_EQ(test::SetsOf(p), (test::Sets{{1, 5}, {2}}));
  EXPECT_EQ(TimesOf(p), (Times{{3, 3}, {7, 7}}));
  EXPECT_EQ(p.getItemsCapacity(), 3);
  EXPECT_EQ(p.getSetCapacity(), 2);
}

TEST(PackedSequenceTest, QueriesAsForUntimedPatterns) {
  const PackedSequence p = MakeTimed({{7, 8}, {9}});
  EXPECT_EQ(p.getSizeOfSet(0), 2);
  EXPECT_EQ(p.getSizeOfSet(2), 0);
  EXPECT_EQ(p.getItemInSet(1, 0), 8);
  EXPECT_EQ(p.getItemInSet(1, 1), 0);
  EXPECT_EQ(PackedSequence().getSizeOfSet(0), 0);
}

TEST(PackedSequenceTest, SetTimeForSet) {
  PackedSequence p = MakeTimed({{1}, {2}});
  p.setTimeForSet({4.5, 6.0}, 1);
  EXPECT_EQ(TimesOf(p), (Times{{1, 1}, {4.5, 6.0}}));
}

// Hash codes worked out by hand from the table G = 9631, 9643, 9649, 9661,
// 9677, ... and the two-item weights 9887 and 9883.
TEST(PackedSequenceHashTest, OneItemIsTheItem) {
  EXPECT_EQ(MakeTimed({{7}}).getHashCode(), 7);
  EXPECT_EQ(MakeTimed({{-5}}).getHashCode(), -5);
}

TEST(PackedSequenceHashTest, TwoItemsInOneSet) {
  // h = 3*9887 + 5*9883 = 29661 + 49415 = 79076; pattern 1:
  // 79076 + (79076 << 1) + 1 = 79076 + 158152 + 1 = 237229.
  EXPECT_EQ(MakeTimed({{3, 5}}).getHashCode(), 237229);
}

TEST(PackedSequenceHashTest, TwoItemsInTwoSets) {
  // h = 79076; pattern 3: 79076 + 632608 + 1 = 711685.
  EXPECT_EQ(MakeTimed({{3}, {5}}).getHashCode(), 711685);
  // h = -3*9887 + 5*9883 = -29661 + 49415 = 19754;
  // 19754 + 158032 + 1 = 177787.
  EXPECT_EQ(MakeTimed({{-3}, {5}}).getHashCode(), 177787);
}

TEST(PackedSequenceHashTest, ThreeItems) {
  // A = 9643*9631*1 = 92871733
  // A = 9649*9643*2 + 2A = 93045307*2 + 185743466 = 186090614 + 185743466
  //   = 371834080
  // A = 9661*9649*3 + 2A = 93218989*3 + 743668160 = 279656967 + 743668160
  //   = 1023325127
  // (1 2)(3), pattern 3: 3 * 1023325127 = 3069975381 - 2^32 = -1224991915,
  //   absolute value 1224991915.
  EXPECT_EQ(MakeTimed({{1, 2}, {3}}).getHashCode(), 1224991915);
  // (1 2 3), pattern 1: 1023325127.
  EXPECT_EQ(MakeTimed({{1, 2, 3}}).getHashCode(), 1023325127);
  // (1)(2)(3), pattern 7: 7 * 1023325127 = 7163275889 - 2^32 = 2868308593,
  //   as 32 bits -1426658703; absolute value 1426658703.
  EXPECT_EQ(MakeTimed({{1}, {2}, {3}}).getHashCode(), 1426658703);
}

TEST(PackedSequenceHashTest, ThreeItemsWithANegativeItem) {
  // A = 92871733; A = 93045307*(-2) + 185743466 = -186090614 + 185743466
  //   = -347148; A = 279656967 + 2*(-347148) = 278962671.
  // (1)(-2 3), pattern 5: 5 * 278962671 = 1394813355.
  EXPECT_EQ(MakeTimed({{1}, {-2, 3}}).getHashCode(), 1394813355);
}

TEST(PackedSequenceHashTest, FourItems) {
  // A = 92871733*2 = 185743466
  // A = 93045307*4 + 2A = 372181228 + 371486932 = 743668160
  // A = 93218989*6 + 2A = 559313934 + 1487336320 = 2046650254
  // A = 9677*9661*8 + 2A = 93489497*8 + 4093300508 = 747915976 +
  //   4093300508 = 4841216484; low 32 bits 4841216484 - 2^32 = 546249188
  // (2)(4 6)(8), pattern 11: 11 * 546249188 = 6008741068 - 2^32
  //   = 1713773772.
  EXPECT_EQ(MakeTimed({{2}, {4, 6}, {8}}).getHashCode(), 1713773772);
}

// 31 items is the most the 32-entry table serves; the last step reads
// G[31]*G[30] = 737279*9887. Over the items 1 .. 31 in one set (pattern 1)
// the recurrence leaves -994716449 in the low 32 bits of A, read as signed;
// its absolute value is the hash.
TEST(PackedSequenceHashTest, LongestPatternTheTableServes) {
  std::vector<int> set(32);
  set[0] = 31;
  for (int i = 1; i <= 31; ++i) set[i] = i;
  int* sets[] = {set.data()};
  const double times[] = {0};
  const PackedSequence p(sets, times, 1);
  EXPECT_EQ(p.size(), 31);
  EXPECT_EQ(p.getHashCode(), 994716449);
}

TEST(PackedSequenceHashTest, PatternTooLongForTheTableIsRefused) {
  std::vector<int> set(33);
  set[0] = 32;  // the 32-entry table serves at most 31 items
  int* sets[] = {set.data()};
  const double times[] = {0};
  EXPECT_THROW(PackedSequence(sets, times, 1), std::length_error);
}

TEST(PackedSequenceHashTest, DiffersFromTheUntimedHash) {
  EXPECT_NE(MakeTimed({{1, 2}, {3}}).getHashCode(),
            test::MakePattern({{1, 2}, {3}}).getHashCode());
}

TEST(PackedSequenceTest, EqualityIgnoresTimes) {
  const PackedSequence a = test::MakePacked({{1}, {2, 3}}, {1, 2}, {1, 5});
  const PackedSequence b = test::MakePacked({{1}, {2, 3}}, {7, 8}, {9, 9});
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a == test::MakePacked({{1, 2}, {3}}, {1, 2}, {1, 5}));
  EXPECT_FALSE(a == test::MakePacked({{1}, {2, 4}}, {1, 2}, {1, 5}));
  EXPECT_TRUE(PackedSequence() == PackedSequence());
}

TEST(PackedSequenceMergeTest, NoMergeRequestedIsAlwaysFine) {
  const PackedSequence p =
      test::MakePacked({{1}, {2}, {3}}, {1, 3, 9}, {1, 4, 9});
  EXPECT_TRUE(p.mergeOk(0, 0.0));
  EXPECT_TRUE(p.mergeOk(0, -1.0));
  EXPECT_TRUE(p.mergeOk(0, 1e9));
  EXPECT_TRUE(PackedSequence().mergeOk(7, -1.0));
}

TEST(PackedSequenceMergeTest, RunsMustFitTheSpan) {
  // Sets (1,1), (3,4), (9,9); the boundary after set 0 is bit 1.
  const PackedSequence p =
      test::MakePacked({{1}, {2}, {3}}, {1, 3, 9}, {1, 4, 9});
  EXPECT_TRUE(p.mergeOk(0b10, 3.0));  // 4 - 1 = 3, exactly the span
  EXPECT_TRUE(p.mergeOk(0b10, 100.0));
  EXPECT_FALSE(p.mergeOk(0b10, 2.9));
  EXPECT_TRUE(p.mergeOk(0b11, 8.0));  // 9 - 1
  EXPECT_FALSE(p.mergeOk(0b11, 7.99));
  EXPECT_TRUE(p.mergeOk(0b01, 6.0));  // 9 - 3
  EXPECT_FALSE(p.mergeOk(0b01, 5.0));
}

TEST(PackedSequenceMergeTest, SeparateRunsAreCheckedOneByOne) {
  // Sets at 0, 1, 10, 12: merging 0-1 and 2-3 gives runs of spans 1 and 2;
  // bits: boundary after set 0 is bit 2, after set 2 is bit 0.
  const PackedSequence p =
      test::MakePacked({{1}, {2}, {3}, {4}}, {0, 1, 10, 12}, {0, 1, 10, 12});
  EXPECT_TRUE(p.mergeOk(0b101, 2.0));
  EXPECT_FALSE(p.mergeOk(0b101, 1.5));
  EXPECT_FALSE(p.mergeOk(0b111, 11.0));
}

TEST(PackedSequenceCopyTest, CopyHasCapacitiesOfItsSizesAndTheHash) {
  PackedSequence big = MakeTimed({{1, 2, 3, 4}, {5}, {6}});
  test::PatternArrays small(test::Sets{{8}, {9}});
  const double times[] = {3, 4};
  big.reuseAs(small.sets(), times, small.nSets());
  ASSERT_EQ(big.getItemsCapacity(), 6);
  const PackedSequence copy(big);
  EXPECT_TRUE(copy == big);
  EXPECT_EQ(copy.getHashCode(), big.getHashCode());
  EXPECT_EQ(TimesOf(copy), (Times{{3, 3}, {4, 4}}));
  EXPECT_EQ(copy.getItemsCapacity(), 2);
  EXPECT_EQ(copy.getSetCapacity(), 2);
}

TEST(PackedSequenceCopyTest, AssignmentReplacesEverything) {
  PackedSequence target = MakeTimed({{1, 2, 3, 4}, {5}, {6}});
  const PackedSequence source = test::MakePacked({{7}, {8}}, {1, 2}, {3, 4});
  target = source;
  EXPECT_TRUE(target == source);
  EXPECT_EQ(TimesOf(target), (Times{{1, 3}, {2, 4}}));
  EXPECT_EQ(target.getItemsCapacity(), 2);
  EXPECT_EQ(target.getSetCapacity(), 2);
  PackedSequence& alias = target;
  target = alias;
  EXPECT_TRUE(target == source);
}

TEST(PackedSequenceReuseTest, CapacitiesOnlyGrow) {
  PackedSequence p = MakeTimed({{1, 2}, {3}});
  EXPECT_EQ(p.getItemsCapacity(), 3);
  EXPECT_EQ(p.getSetCapacity(), 2);
  test::PatternArrays five(test::Sets{{1}, {2, 3}, {4, 5}});
  const double times[] = {1, 2, 3, 4};
  p.reuseAs(five.sets(), times, five.nSets());
  EXPECT_EQ(p.getItemsCapacity(), 5);
  EXPECT_EQ(p.getSetCapacity(), 3);
  test::PatternArrays two(test::Sets{{6, 7}});
  p.reuseAs(two.sets(), times, two.nSets());
  EXPECT_EQ(p.size(), 2);
  EXPECT_EQ(p.getNSets(), 1);
  EXPECT_EQ(p.getItemsCapacity(), 5);
  EXPECT_EQ(p.getSetCapacity(), 3);
  EXPECT_TRUE(p == MakeTimed({{6, 7}}));
  test::PatternArrays fourSets(test::Sets{{1}, {2}, {3}, {4}});
  p.reuseAs(fourSets.sets(), times, fourSets.nSets());
  EXPECT_EQ(p.getItemsCapacity(), 5);
  EXPECT_EQ(p.getSetCapacity(), 4);
  EXPECT_EQ(TimesOf(p), (Times{{1, 1}, {2, 2}, {3, 3}, {4, 4}}));
}

TEST(PackedSequenceReuseTest, FromSequenceAndFromTimedPattern) {
  PackedSequence p;
  const Sequence seq = test::MakeSequence({{2}, {4, 6}}, {10, 20});
  p.reuseAs(&seq);
  EXPECT_EQ(test::SetsOf(p), (test::Sets{{2}, {4, 6}}));
  EXPECT_EQ(TimesOf(p), (Times{{10, 10}, {20, 20}}));
  EXPECT_EQ(p.getHashCode(), p.computeHash());
  const PackedSequence other = test::MakePacked({{9}}, {1}, {2});
  p.reuseAs(&other);
  EXPECT_TRUE(p == other);
  EXPECT_EQ(TimesOf(p), (Times{{1, 2}}));
  EXPECT_EQ(p.getItemsCapacity(), 3);  // kept
  p.reuseAs(&p);
  EXPECT_TRUE(p == other);
}

TEST(PackedSequenceRemoveTest, EveryPositionKeepsTheTimesOfItsSets) {
  // (1 2)[1,2] (3)[3,4] (4 5)[5,6]
  PackedSequence src =
      test::MakePacked({{1, 2}, {3}, {4, 5}}, {1, 3, 5}, {2, 4, 6});
  struct Case {
    int k;
    test::Sets sets;
    long pattern;
    int result;
    Times times;
  };
  const std::vector<Case> cases = {
      {0, {{2}, {3}, {4, 5}}, 0b1101, 0, {{1, 2}, {3, 4}, {5, 6}}},
      {1, {{1}, {3}, {4, 5}}, 0b1101, 0, {{1, 2}, {3, 4}, {5, 6}}},
      {2, {{1, 2}, {4, 5}}, 0b0101, 1, {{1, 2}, {5, 6}}},
      {3, {{1, 2}, {3}, {5}}, 0b0111, 0, {{1, 2}, {3, 4}, {5, 6}}},
      {4, {{1, 2}, {3}, {4}}, 0b0111, 0, {{1, 2}, {3, 4}, {5, 6}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.k);
    PackedSequence scratch(src);
    EXPECT_EQ(scratch.removeItem(c.k, &src), c.result);
    EXPECT_EQ(test::SetsOf(scratch), c.sets);
    EXPECT_EQ(scratch.getPattern(), c.pattern);
    EXPECT_EQ(scratch.getNSets(), static_cast<int>(c.sets.size()));
    EXPECT_EQ(TimesOf(scratch), c.times);
    EXPECT_EQ(scratch.getHashCode(), MakeTimed(c.sets).getHashCode());
  }
}

TEST(PackedSequenceRemoveTest, FirstSetVanishingShiftsTheTimes) {
  PackedSequence src = test::MakePacked({{1}, {2}, {3}}, {1, 3, 5}, {2, 4, 6});
  PackedSequence scratch(src);
  EXPECT_EQ(scratch.removeItem(0, &src), 1);
  EXPECT_EQ(TimesOf(scratch), (Times{{3, 4}, {5, 6}}));
  EXPECT_EQ(scratch.removeItem(1, &scratch), 1);  // in place
  EXPECT_EQ(test::SetsOf(scratch), (test::Sets{{2}}));
  EXPECT_EQ(TimesOf(scratch), (Times{{3, 4}}));
}

TEST(PackedSequenceRemoveTest, EmptySourceGivesEmptyPattern) {
  PackedSequence empty;
  PackedSequence scratch;  // no buffers, and none needed
  EXPECT_EQ(scratch.removeItem(0, &empty), 0);
  EXPECT_EQ(scratch.size(), 0);
  EXPECT_EQ(scratch.getHashCode(), 0);
}

TEST(PackedSequenceRemoveTest, MissingBuffersAreReportedNotOverrun) {
  PackedSequence src = MakeTimed({{1, 2}, {3}});
  PackedSequence noBuffers;
  EXPECT_THROW(noBuffers.removeItem(0, &src), std::length_error);
  // Room for the items but not for the sets: refused, left empty.
  PackedSequence noSets = test::MakePacked({{1, 2}}, {0}, {0});
  EXPECT_THROW(noSets.removeItem(0, &src), std::length_error);
  EXPECT_EQ(noSets.size(), 0);
  EXPECT_THROW(noSets.removeItem(3, &src), std::out_of_range);
}

TEST(PackedSequenceDisplayTest, PrintsTimesAndLeavesFixedPrecisionZero) {
  std::ostringstream os;
  os.precision(6);
  const PackedSequence p = test::MakePacked({{3, 7}, {9}}, {1, 5.6}, {2, 9.4});
  p.display(os);
  os << 2.75;
  // Hash of (3 7)(9): A = 9643*9631*3 = 278615199;
  //   A = 9649*9643*7 + 2A = 651317149 + 557230398 = 1208547547;
  //   A = 9661*9649*9 + 2A = 838970901 + 2417095094 = 3256065995,
  //   low 32 bits -1038901301; pattern 3: -3116703903 + 2^32 = 1178263393.
  EXPECT_EQ(os.str(),
            "HashCode  1178263393\nPattern  3\n<(3 7[1,2])(9[6,9])>\n3");
  EXPECT_EQ(os.precision(), 0);
  EXPECT_EQ(os.flags() & std::ios::floatfield, std::ios::fixed);
}

TEST(PackedSequenceDisplayTest, PrintsOnCoutWhenGivenCout) {
  test::CoutFormatGuard guard;
  std::cout.precision(6);
  std::cout.unsetf(std::ios::floatfield);
  testing::internal::CaptureStdout();
  test::MakePacked({{-4}}, {0.4}, {1e6}).display(std::cout);
  PackedSequence().display(std::cout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "HashCode  -4\nPattern  1\n<(-4[0,1000000])>\n"
            "HashCode  0\nPattern  0\n<>\n");
  EXPECT_EQ(std::cout.precision(), 0);
  EXPECT_EQ(std::cout.flags() & std::ios::floatfield, std::ios::fixed);
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
