// Construction, queries, hash codes, equality and order of NTSequence.
#include "seqlattice/pattern/ntsequence.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <vector>

#include "seqlattice/pattern/pattern_test_util.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/sequence_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

TEST(NTSequenceTest, DefaultIsEmpty) {
  const NTSequence p;
  EXPECT_EQ(p.size(), 0);
  EXPECT_EQ(p.getNSets(), 0);
  EXPECT_EQ(p.getPattern(), 0);
  EXPECT_EQ(p.getHashCode(), 0);
  EXPECT_EQ(p.computeHash(), 0);
}

TEST(NTSequenceTest, SingleSetConstructorCopiesItemsInGivenOrder) {
  int set[] = {3, 9, 2, 5};
  const NTSequence p(set);
  EXPECT_EQ(p.size(), 3);
  EXPECT_EQ(p.getNSets(), 1);
  EXPECT_EQ(p.getPattern(), 1);
  EXPECT_EQ(test::SetsOf(p), (test::Sets{{9, 2, 5}}));
  EXPECT_EQ(p.getHashCode(), p.computeHash());
}

TEST(NTSequenceTest, SetArraysConstructorBuildsTheBoundaryWord) {
  // (x y z) is 001, (x)(y z) is 101, (x y)(z) is 011.
  EXPECT_EQ(test::MakePattern({{1, 2, 3}}).getPattern(), 1);
  EXPECT_EQ(test::MakePattern({{1}, {2, 3}}).getPattern(), 5);
  EXPECT_EQ(test::MakePattern({{1, 2}, {3}}).getPattern(), 3);
  EXPECT_EQ(test::MakePattern({{1}, {2}, {3}}).getPattern(), 7);
  const NTSequence p = test::MakePattern({{4, 8}, {1}, {6, 7, 9}});
  EXPECT_EQ(p.size(), 6);
  EXPECT_EQ(p.getNSets(), 3);
  EXPECT_EQ(p.getPattern(), 0b011001);
  EXPECT_EQ(test::SetsOf(p), (test::Sets{{4, 8}, {1}, {6, 7, 9}}));
}

TEST(NTSequenceTest, NoSetsGiveTheEmptyPattern) {
  const NTSequence p(static_cast<int**>(nullptr), 0);
  EXPECT_EQ(p.size(), 0);
  EXPECT_EQ(p.getNSets(), 0);
  EXPECT_TRUE(p == NTSequence());
}

TEST(NTSequenceTest, NegativeCountsAreRefused) {
  test::PatternArrays arrays(test::Sets{{1}});
  arrays.sets()[0][0] = -1;
  EXPECT_THROW(NTSequence(arrays.sets(), 1), std::invalid_argument);
  EXPECT_THROW(NTSequence(arrays.sets(), -1), std::invalid_argument);
}

TEST(NTSequenceTest, FromSequenceTakesAllSetsAndIgnoresTimes) {
  const Sequence seq = test::MakeSequence({{1, 5}, {2}, {4}}, {3, 7, 8});
  const NTSequence p(&seq);
  EXPECT_EQ(test::SetsOf(p), (test::Sets{{1, 5}, {2}, {4}}));
  EXPECT_EQ(p.getPattern(), 0b0111);
  EXPECT_TRUE(p == test::MakePattern({{1, 5}, {2}, {4}}));
}

TEST(NTSequenceTest, FromSequenceLeavesOutTheLastSets) {
  const Sequence seq = test::MakeSequence({{1, 5}, {2}, {4}}, {3, 7, 8});
  EXPECT_TRUE(NTSequence(seq, 1) == test::MakePattern({{1, 5}, {2}}));
  EXPECT_TRUE(NTSequence(seq, 0) == test::MakePattern({{1, 5}, {2}, {4}}));
  EXPECT_TRUE(NTSequence(seq, 3) == NTSequence());
  EXPECT_THROW(NTSequence(seq, 4), std::out_of_range);
  EXPECT_THROW(NTSequence(seq, -1), std::out_of_range);
}

TEST(NTSequenceTest, SizeOfSetIsZeroOutsideTheSets) {
  const NTSequence p = test::MakePattern({{1, 2}, {3}});
  EXPECT_EQ(p.getSizeOfSet(0), 2);
  EXPECT_EQ(p.getSizeOfSet(1), 1);
  EXPECT_EQ(p.getSizeOfSet(2), 0);
  EXPECT_EQ(p.getSizeOfSet(-1), 0);
  EXPECT_EQ(NTSequence().getSizeOfSet(0), 0);
}

TEST(NTSequenceTest, ItemInSetBeyondASetIsZero) {
  const NTSequence p = test::MakePattern({{7, 8}, {9}});
  EXPECT_EQ(p.getItemInSet(0, 0), 7);
  EXPECT_EQ(p.getItemInSet(1, 0), 8);
  EXPECT_EQ(p.getItemInSet(0, 1), 9);
  EXPECT_EQ(p.getItemInSet(2, 0), 0);
  EXPECT_EQ(p.getItemInSet(1, 1), 0);
  EXPECT_EQ(p.getItemInSet(-1, 0), 0);
  EXPECT_EQ(p.getItemInSet(0, 2), 0);
}

TEST(NTSequenceTest, SetAsArrayCopiesOneSetOnly) {
  const NTSequence p = test::MakePattern({{7, 8}, {9, 10, 11}});
  std::vector<int> out(4, -1);
  p.getSetAsArray(1, out.data());
  EXPECT_EQ(out, (std::vector<int>{9, 10, 11, -1}));
  p.getSetAsArray(0, out.data());
  EXPECT_EQ(out, (std::vector<int>{7, 8, 11, -1}));
  p.getSetAsArray(2, out.data());  // no such set: nothing written
  EXPECT_EQ(out, (std::vector<int>{7, 8, 11, -1}));
}

TEST(NTSequenceTest, ItemIndexIsTheFirstFlatPosition) {
  const NTSequence p = test::MakePattern({{4, 6}, {6}, {0}});
  EXPECT_EQ(p.getItemIndex(4), 0);
  EXPECT_EQ(p.getItemIndex(6), 1);
  EXPECT_EQ(p.getItemIndex(0), 3);
  EXPECT_EQ(p.getItemIndex(5), -1);
  EXPECT_EQ(NTSequence().getItemIndex(0), -1);
}

// Hash codes worked out by hand from the factor table
// F = 9587, 9601, 9613, 9619, 9623, ...
TEST(NTSequenceTest, HashOfOneItemIsTheItem) {
  EXPECT_EQ(test::MakePattern({{7}}).getHashCode(), 7);
  EXPECT_EQ(test::MakePattern({{-5}}).getHashCode(), -5);  // no absolute value
  EXPECT_EQ(test::MakePattern({{0}}).getHashCode(), 0);
}

TEST(NTSequenceTest, HashOfTwoItemsInOneSet) {
  // h = 3*9829 + 5*9817 = 29487 + 49085 = 78572; pattern 1:
  // 78572 + (78572 << 1) + 1 = 78572 + 157144 + 1 = 235717.
  EXPECT_EQ(test::MakePattern({{3, 5}}).getHashCode(), 235717);
}

TEST(NTSequenceTest, HashOfTwoItemsInTwoSets) {
  // h = 78572 as above; pattern 3: 78572 + (78572 << 3) + 1
  // = 78572 + 628576 + 1 = 707149.
  EXPECT_EQ(test::MakePattern({{3}, {5}}).getHashCode(), 707149);
  // h = -5*9829 + 1*9817 = -49145 + 9817 = -39328; pattern 3:
  // -39328 - 314624 + 1 = -353951, absolute value 353951.
  EXPECT_EQ(test::MakePattern({{-5}, {1}}).getHashCode(), 353951);
}

TEST(NTSequenceTest, HashOfThreeItems) {
  // A = F1*F0*1 = 9601*9587 = 92044787
  // A = F2*F1*2 + 2A = 9613*9601*2 + 184089574 = 184588826 + 184089574
  //   = 368678400
  // A = F3*F2*3 + 2A = 9619*9613*3 + 737356800 = 277402341 + 737356800
  //   = 1014759141
  // (1 2)(3): pattern 3: 3 * 1014759141 = 3044277423, which wraps to
  //   3044277423 - 2^32 = -1250689873; absolute value 1250689873.
  EXPECT_EQ(test::MakePattern({{1, 2}, {3}}).getHashCode(), 1250689873);
  // (1)(2 3): pattern 5: 5 * 1014759141 = 5073795705 - 2^32 = 778828409.
  EXPECT_EQ(test::MakePattern({{1}, {2, 3}}).getHashCode(), 778828409);
  // (1 2 3): pattern 1: 1014759141.
  EXPECT_EQ(test::MakePattern({{1, 2, 3}}).getHashCode(), 1014759141);
}

TEST(NTSequenceTest, HashOfThreeItemsWithANegativeItem) {
  // A = 92044787; A = 9613*9601*(-2) + 2*92044787 = -184588826 + 184089574
  //   = -499252; A = 277402341 + 2*(-499252) = 276403837.
  // (1)(-2 3): pattern 5: 5 * 276403837 = 1382019185 (fits in 32 bits).
  EXPECT_EQ(test::MakePattern({{1}, {-2, 3}}).getHashCode(), 1382019185);
}

TEST(NTSequenceTest, HashOfFourItems) {
  // A = 9601*9587*2 = 184089574
  // A = 9613*9601*4 + 2A = 369177652 + 368179148 = 737356800
  // A = 9619*9613*6 + 2A = 554804682 + 1474713600 = 2029518282
  // A = 9623*9619*8 + 2A = 740509096 + 4059036564 = 4799545660
  // low 32 bits of A: 4799545660 - 2^32 = 504578364;
  // (2)(4 6)(8): pattern 1011 = 11: 11 * 504578364 = 5550362004
  //   - 2^32 = 1255394708.
  EXPECT_EQ(test::MakePattern({{2}, {4, 6}, {8}}).getHashCode(), 1255394708);
}

TEST(NTSequenceTest, HashOfTheDisplayExample) {
  // A = 9601*9587*3 = 92044787*3 = 276134361
  // A = 9613*9601*7 + 2A = 92294413*7 + 552268722 = 646060891 + 552268722
  //   = 1198329613
  // A = 9619*9613*9 + 2A = 92467447*9 + 2396659226 = 832207023 +
  //   2396659226 = 3228866249
  // low 32 bits: 3228866249 - 2^32 = -1066101047; (3 7)(9): pattern 3:
  // 3 * -1066101047 = -3198303141, which wraps to -3198303141 + 2^32
  // = 1096664155.
  EXPECT_EQ(test::MakePattern({{3, 7}, {9}}).getHashCode(), 1096664155);
}

TEST(NTSequenceTest, CachedHashMatchesComputeHashAfterConstruction) {
  for (const NTSequence& p :
       {test::MakePattern({{1}}), test::MakePattern({{1, 2}, {3}}),
        test::MakePattern({{5}, {-4}, {3, 9, 11}, {2}})}) {
    EXPECT_EQ(p.getHashCode(), p.computeHash());
  }
}

// 39 items is the most the 40-entry table serves: the last step reads the
// large last entry, A = F[39]*F[38]*39 + 2A = 737279*9887*39 + 2A. Worked out
// by the same recurrence as above over the items 1 .. 39 in one set (pattern
// 1): the low 32 bits of A are 8133783.
TEST(NTSequenceTest, HashOfTheLongestPatternTheTableServes) {
  std::vector<int> set(40);
  set[0] = 39;
  for (int i = 1; i <= 39; ++i) set[i] = i;
  int* sets[] = {set.data()};
  const NTSequence p(sets, 1);
  EXPECT_EQ(p.size(), 39);
  EXPECT_EQ(p.getHashCode(), 8133783);
}

TEST(NTSequenceTest, HashOfTooLongPatternIsRefused) {
  std::vector<int> set(41);
  set[0] = 40;
  int* sets[] = {set.data()};
  EXPECT_THROW(NTSequence(sets, 1), std::length_error);
}

TEST(NTSequenceTest, SameItemsInOneOrTwoSetsDiffer) {
  const NTSequence two = test::MakePattern({{4}, {6}});
  const NTSequence one = test::MakePattern({{4, 6}});
  EXPECT_EQ(two.getPattern(), 3);
  EXPECT_EQ(one.getPattern(), 1);
  EXPECT_NE(two.getHashCode(), one.getHashCode());
  EXPECT_FALSE(two == one);
}

TEST(NTSequenceTest, EqualityTellsPatternsApartWhenHashesCollide) {
  // (0)(0) and (0 0) both hash to 0 + (0 << s) + 1 = 1.
  const NTSequence two = test::MakePattern({{0}, {0}});
  const NTSequence one = test::MakePattern({{0, 0}});
  ASSERT_EQ(two.getHashCode(), 1);
  ASSERT_EQ(one.getHashCode(), 1);
  EXPECT_FALSE(two == one);
  // 9817*9829 - 9829*9817 = 0: (9817 -9829) also hashes to 1 with pattern 1.
  const NTSequence other = test::MakePattern({{9817, -9829}});
  ASSERT_EQ(other.getHashCode(), 1);
  EXPECT_FALSE(one == other);
  EXPECT_TRUE(one == test::MakePattern({{0, 0}}));
}

TEST(NTSequenceTest, EmptyPatternsAreEqual) {
  EXPECT_TRUE(NTSequence() == NTSequence(static_cast<int**>(nullptr), 0));
}

// operator< on pairs: (a, b, a < b, b < a).
struct OrderCase {
  NTSequence a;
  NTSequence b;
  bool aLess;
  bool bLess;
};

TEST(NTSequenceTest, OrderOverFlatPositions) {
  const NTSequence empty;
  const std::vector<OrderCase> cases = {
      // The empty pattern is less than every non-empty one.
      {empty, test::MakePattern({{1}}), true, false},
      {empty, test::MakePattern({{-100}}), true, false},
      {empty, NTSequence(), false, false},
      // A proper prefix sorts first.
      {test::MakePattern({{1}}), test::MakePattern({{1}, {2}}), true, false},
      {test::MakePattern({{1}}), test::MakePattern({{1, 2}}), true, false},
      {test::MakePattern({{1}, {2}}), test::MakePattern({{1}, {2}, {3}}), true,
       false},
      // Equal items: the pattern whose set closes there sorts first.
      {test::MakePattern({{1}, {2}}), test::MakePattern({{1, 2}}), true, false},
      {test::MakePattern({{1, 2}, {3}}), test::MakePattern({{1, 2, 3}}), true,
       false},
      // ... and that decides, whatever the later items.
      {test::MakePattern({{1}, {3}}), test::MakePattern({{1, 2}}), true, false},
      // A closing item against a greater open one is less, against a
      // smaller one not.
      {test::MakePattern({{2}}), test::MakePattern({{1, 9}}), false, true},
      {test::MakePattern({{3}, {1}}), test::MakePattern({{2, 9}}), false, true},
      // Plain item order.
      {test::MakePattern({{1, 2}}), test::MakePattern({{1, 3}}), true, false},
      {test::MakePattern({{5}}), test::MakePattern({{1}, {2}}), false, true},
      {test::MakePattern({{-1}}), test::MakePattern({{0}}), true, false},
      // Equal patterns are not less either way.
      {test::MakePattern({{1}, {2}}), test::MakePattern({{1}, {2}}), false,
       false},
      {test::MakePattern({{4, 5, 6}}), test::MakePattern({{4, 5, 6}}), false,
       false},
  };
  for (size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(cases[i].a < cases[i].b, cases[i].aLess);
    EXPECT_EQ(cases[i].b < cases[i].a, cases[i].bLess);
  }
}

TEST(NTSequenceTest, OrderDoesNotLookAtTheHash) {
  // Same content, different cached hashes (taken over from a timed
  // pattern): neither is less.
  const NTSequence a = test::MakePattern({{1, 2}, {3}});
  NTSequence b;
  test::PatternArrays arrays(test::Sets{{1, 2}, {3}});
  const double times[] = {1, 2};
  const PackedSequence packed(arrays.sets(), times, 2);
  b.reuseAs(&packed);
  ASSERT_NE(a.getHashCode(), b.getHashCode());
  EXPECT_FALSE(a < b);
  EXPECT_FALSE(b < a);
  EXPECT_FALSE(a == b);  // equality does look at it
}

TEST(NTSequenceTest, CreateSequenceNumbersTheSetTimesFromOne) {
  const NTSequence p = test::MakePattern({{5, 1}, {2}, {7, 8}});
  const std::unique_ptr<Sequence> seq(p.createSequence());
  EXPECT_TRUE(*seq ==
              test::MakeSequence({{1, 5}, {2}, {7, 8}}, {1.0, 2.0, 3.0}));
  EXPECT_EQ(seq->GetTimeOfTimedItemSet(0), 1.0);
  EXPECT_EQ(seq->GetTimeOfTimedItemSet(2), 3.0);
  const std::unique_ptr<Sequence> none(NTSequence().createSequence());
  EXPECT_EQ(none->Length(), 0);
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
