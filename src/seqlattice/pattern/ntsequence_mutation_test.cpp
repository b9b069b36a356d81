// Copying, refilling, extending, shrinking and displaying NTSequence.
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/pattern/packedsequence.h"
#include "seqlattice/pattern/pattern_test_util.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/sequence_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

// An NTSequence whose cached hash is a timed pattern's, so that copying it
// shows whether the hash is copied or recomputed.
NTSequence WithForeignHash(const test::Sets& sets) {
  test::PatternArrays arrays(sets);
  std::vector<double> times(static_cast<size_t>(arrays.nSets()), 1.0);
  const PackedSequence packed(arrays.sets(), times.data(), arrays.nSets());
  NTSequence p;
  p.reuseAs(&packed);
  return p;
}

TEST(NTSequenceCopyTest, CopyConstructorCopiesTheHash) {
  const NTSequence original = WithForeignHash({{1, 2}, {3}});
  ASSERT_NE(original.getHashCode(), original.computeHash());
  const NTSequence copy(original);
  EXPECT_EQ(copy.getHashCode(), original.getHashCode());
  EXPECT_EQ(test::SetsOf(copy), (test::Sets{{1, 2}, {3}}));
  EXPECT_TRUE(copy == original);
}

TEST(NTSequenceCopyTest, AssignmentReplacesContentAndHash) {
  NTSequence target = test::MakePattern({{9, 8, 7, 6}});
  const NTSequence source = WithForeignHash({{1}, {2}});
  target = source;
  EXPECT_EQ(target.size(), 2);
  EXPECT_EQ(target.getNSets(), 2);
  EXPECT_EQ(target.getPattern(), 3);
  EXPECT_EQ(target.getHashCode(), source.getHashCode());
  EXPECT_TRUE(target == source);
  NTSequence& alias = target;
  target = alias;
  EXPECT_TRUE(target == source);
}

TEST(NTSequenceCopyTest, CopyOfDefaultIsEmpty) {
  const NTSequence empty;
  const NTSequence copy(empty);
  EXPECT_EQ(copy.size(), 0);
  EXPECT_TRUE(copy == empty);
}

TEST(NTSequenceReuseTest, RefillsFromSetArrays) {
  NTSequence p = test::MakePattern({{1}});
  test::PatternArrays arrays(test::Sets{{4, 5}, {6}});
  p.reuseAs(arrays.sets(), arrays.nSets());
  EXPECT_TRUE(p == test::MakePattern({{4, 5}, {6}}));
  EXPECT_EQ(p.getHashCode(), p.computeHash());
}

TEST(NTSequenceReuseTest, RefillsFromSequence) {
  NTSequence p = test::MakePattern({{1}, {2}, {3}});
  const Sequence seq = test::MakeSequence({{8}, {3, 9}}, {1, 5});
  p.reuseAs(&seq);
  EXPECT_TRUE(p == test::MakePattern({{8}, {3, 9}}));
}

TEST(NTSequenceReuseTest, RefillFromTimedPatternKeepsItsHash) {
  test::PatternArrays arrays(test::Sets{{1, 2}, {3}});
  const double times[] = {1, 2};
  const PackedSequence packed(arrays.sets(), times, 2);
  NTSequence p = test::MakePattern({{7}});
  p.reuseAs(&packed);
  EXPECT_EQ(test::SetsOf(p), (test::Sets{{1, 2}, {3}}));
  EXPECT_EQ(p.getPattern(), 3);
  EXPECT_EQ(p.getHashCode(), packed.getHashCode());
  EXPECT_EQ(p.getHashCode(), 1224991915);
  EXPECT_EQ(p.computeHash(), 1250689873);
}

// The array is reallocated exactly when the item count changes. Its room
// shows through removeItem, which refuses to write past it.
TEST(NTSequenceReuseTest, SameItemCountKeepsTheScratchBuffer) {
  NTSequence scratch;  // 32 slots, 0 items
  const Sequence empty;
  scratch.reuseAs(&empty);  // still 0 items: no reallocation
  NTSequence big = test::MakePattern({{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}});
  EXPECT_EQ(scratch.removeItem(0, &big), 0);
  EXPECT_EQ(scratch.size(), 9);
}

TEST(NTSequenceReuseTest, OtherItemCountReallocatesToExactlyThatSize) {
  NTSequence scratch;
  test::PatternArrays three(test::Sets{{1, 2, 3}});
  scratch.reuseAs(three.sets(), three.nSets());  // 3 slots now
  NTSequence five = test::MakePattern({{1, 2, 3, 4, 5}});
  EXPECT_THROW(scratch.removeItem(0, &five), std::length_error);
  NTSequence four = test::MakePattern({{1, 2}, {3, 4}});
  EXPECT_EQ(scratch.removeItem(3, &four), 0);
  EXPECT_TRUE(scratch == test::MakePattern({{1, 2}, {3}}));
}

TEST(NTSequenceReuseTest, SmallerItemCountShrinksTheArray) {
  NTSequence p = test::MakePattern({{1, 2, 3, 4}});
  test::PatternArrays two(test::Sets{{5}, {6}});
  p.reuseAs(two.sets(), two.nSets());
  EXPECT_TRUE(p == test::MakePattern({{5}, {6}}));
  NTSequence four = test::MakePattern({{1, 2, 3, 4}});
  EXPECT_THROW(p.removeItem(0, &four), std::length_error);
}

TEST(NTSequenceExtendTest, PositionOnePrependsASingletonSet) {
  const NTSequence src = test::MakePattern({{2, 4}, {6}});
  const NTSequence p(src, 9, 1);
  EXPECT_EQ(test::SetsOf(p), (test::Sets{{9}, {2, 4}, {6}}));
  EXPECT_EQ(p.getPattern(), 0b1011);
  EXPECT_EQ(p.getNSets(), 3);
  EXPECT_EQ(p.getHashCode(), p.computeHash());
}

TEST(NTSequenceExtendTest, LastOddPositionAppendsASingletonSet) {
  const NTSequence src = test::MakePattern({{2, 4}, {6}});
  const NTSequence p(src, 1, 2 * src.getNSets() + 1);
  EXPECT_EQ(test::SetsOf(p), (test::Sets{{2, 4}, {6}, {1}}));
  EXPECT_EQ(p.getPattern(), 0b0111);
}

TEST(NTSequenceExtendTest, OddPositionInsertsASetInTheMiddle) {
  const NTSequence p(test::MakePattern({{2, 4}, {6}}), 5, 3);
  EXPECT_TRUE(p == test::MakePattern({{2, 4}, {5}, {6}}));
}

TEST(NTSequenceExtendTest, PositionZeroMergesIntoTheFirstSetInOrder) {
  const NTSequence src = test::MakePattern({{2, 4}, {6}});
  EXPECT_TRUE(NTSequence(src, 3, 0) == test::MakePattern({{2, 3, 4}, {6}}));
  EXPECT_TRUE(NTSequence(src, 1, 0) == test::MakePattern({{1, 2, 4}, {6}}));
  // Greater than every item: it becomes the last of the set and closes it.
  const NTSequence last(src, 5, 0);
  EXPECT_EQ(test::SetsOf(last), (test::Sets{{2, 4, 5}, {6}}));
  EXPECT_EQ(last.getPattern(), 0b0011);
  // An equal item goes after the one present.
  EXPECT_EQ(test::SetsOf(NTSequence(src, 4, 0)), (test::Sets{{2, 4, 4}, {6}}));
}

TEST(NTSequenceExtendTest, EvenPositionMergesIntoALaterSet) {
  const NTSequence src = test::MakePattern({{2, 4}, {6}});
  EXPECT_TRUE(NTSequence(src, 7, 2) == test::MakePattern({{2, 4}, {6, 7}}));
  EXPECT_TRUE(NTSequence(src, -1, 2) == test::MakePattern({{2, 4}, {-1, 6}}));
}

TEST(NTSequenceExtendTest, EmptySourceTakesOnlyPositionOne) {
  const NTSequence p(NTSequence(), 8, 1);
  EXPECT_TRUE(p == test::MakePattern({{8}}));
  EXPECT_THROW(NTSequence(NTSequence(), 8, 0), std::out_of_range);
}

TEST(NTSequenceExtendTest, PositionsNamingNoSetAreRefused) {
  const NTSequence src = test::MakePattern({{2, 4}, {6}});
  EXPECT_THROW(NTSequence(src, 1, 4), std::out_of_range);
  EXPECT_THROW(NTSequence(src, 1, 7), std::out_of_range);
  EXPECT_THROW(NTSequence(src, 1, -1), std::out_of_range);
}

TEST(NTSequenceAddTest, AddItemAfterLastAppendsASet) {
  NTSequence p = test::MakePattern({{1, 2}});
  p.addItemAfterLast(0);
  EXPECT_EQ(test::SetsOf(p), (test::Sets{{1, 2}, {0}}));
  EXPECT_EQ(p.getPattern(), 0b011);  // 1 * 2 + 1
  EXPECT_EQ(p.getHashCode(), p.computeHash());
  NTSequence empty;
  empty.addItemAfterLast(4);
  EXPECT_TRUE(empty == test::MakePattern({{4}}));
}

TEST(NTSequenceAddTest, AddItemToSetInsertsInOrderAfterEqualItems) {
  NTSequence p = test::MakePattern({{1}, {3, 5}});
  p.addItemToSet(4, 1);
  EXPECT_TRUE(p == test::MakePattern({{1}, {3, 4, 5}}));
  p.addItemToSet(9, 1);
  EXPECT_TRUE(p == test::MakePattern({{1}, {3, 4, 5, 9}}));
  p.addItemToSet(1, 0);
  EXPECT_TRUE(p == test::MakePattern({{1, 1}, {3, 4, 5, 9}}));
  EXPECT_EQ(p.getNSets(), 2);
  EXPECT_THROW(p.addItemToSet(1, 2), std::out_of_range);
}

struct RemovalCase {
  int k;
  test::Sets expected;
  long pattern;
  int nSets;
  int result;
};

TEST(NTSequenceRemoveTest, EveryPositionOfAThreeSetPattern) {
  // (1 2)(3)(4 5): pattern 01101 = 13.
  NTSequence src = test::MakePattern({{1, 2}, {3}, {4, 5}});
  ASSERT_EQ(src.getPattern(), 13);
  const std::vector<RemovalCase> cases = {
      {0, {{2}, {3}, {4, 5}}, 0b1101, 3, 0},
      {1, {{1}, {3}, {4, 5}}, 0b1101, 3, 0},  // 1 now closes the set
      {2, {{1, 2}, {4, 5}}, 0b0101, 2, 1},    // the set (3) disappears
      {3, {{1, 2}, {3}, {5}}, 0b0111, 3, 0},
      {4, {{1, 2}, {3}, {4}}, 0b0111, 3, 0},  // 4 now closes the set
  };
  for (const RemovalCase& c : cases) {
    SCOPED_TRACE(c.k);
    NTSequence scratch;
    EXPECT_EQ(scratch.removeItem(c.k, &src), c.result);
    EXPECT_EQ(test::SetsOf(scratch), c.expected);
    EXPECT_EQ(scratch.size(), 4);
    EXPECT_EQ(scratch.getNSets(), c.nSets);
    EXPECT_EQ(scratch.getPattern(), c.pattern);
    // The same pattern built directly has the same hash.
    const NTSequence built = test::MakePattern(c.expected);
    EXPECT_EQ(scratch.getHashCode(), built.getHashCode());
    EXPECT_TRUE(scratch == built);
  }
}

TEST(NTSequenceRemoveTest, OnlyItemOfASetReturnsOneAndDropsTheSet) {
  NTSequence src = test::MakePattern({{1}, {2}});
  NTSequence scratch;
  EXPECT_EQ(scratch.removeItem(0, &src), 1);
  EXPECT_EQ(scratch.getNSets(), 1);
  EXPECT_TRUE(scratch == test::MakePattern({{2}}));
}

TEST(NTSequenceRemoveTest, LastItemOfATwoItemSetReturnsZero) {
  NTSequence src = test::MakePattern({{1}, {2, 3}});
  NTSequence scratch;
  EXPECT_EQ(scratch.removeItem(2, &src), 0);
  EXPECT_EQ(scratch.getNSets(), 2);
  EXPECT_TRUE(scratch == test::MakePattern({{1}, {2}}));
}

TEST(NTSequenceRemoveTest, OneItemPatternBecomesEmpty) {
  NTSequence src = test::MakePattern({{5}});
  NTSequence scratch;
  EXPECT_EQ(scratch.removeItem(0, &src), 1);
  EXPECT_TRUE(scratch == NTSequence());
  EXPECT_EQ(scratch.getPattern(), 0);
}

TEST(NTSequenceRemoveTest, EmptySourceGivesEmptyPatternAndZero) {
  NTSequence src;
  NTSequence scratch = test::MakePattern({{1}, {2}});
  EXPECT_EQ(scratch.removeItem(0, &src), 0);
  EXPECT_EQ(scratch.size(), 0);
  EXPECT_EQ(scratch.getNSets(), 0);
  EXPECT_EQ(scratch.getPattern(), 0);
  EXPECT_EQ(scratch.getHashCode(), 0);
}

TEST(NTSequenceRemoveTest, RemovingFromItselfWorksInPlace) {
  NTSequence p = test::MakePattern({{1, 2}, {3}, {4}});
  EXPECT_EQ(p.removeItem(2, &p), 1);
  EXPECT_TRUE(p == test::MakePattern({{1, 2}, {4}}));
}

TEST(NTSequenceRemoveTest, IndexOutsideTheSourceIsRefused) {
  NTSequence src = test::MakePattern({{1, 2}});
  NTSequence scratch;
  EXPECT_THROW(scratch.removeItem(2, &src), std::out_of_range);
  EXPECT_THROW(scratch.removeItem(-1, &src), std::out_of_range);
}

TEST(NTSequenceRemoveTest, ScratchBufferHoldsThirtyOneItems) {
  std::vector<int> set(33);
  set[0] = 32;  // 32 items: removing one leaves 31, the most a pattern holds
  for (int i = 1; i <= 32; ++i) set[i] = i;
  int* sets[] = {set.data()};
  NTSequence src(sets, 1);
  NTSequence scratch;
  EXPECT_NO_THROW(scratch.removeItem(5, &src));
}

TEST(NTSequenceDisplayTest, PrintsHashPatternAndSets) {
  const NTSequence p = test::MakePattern({{3, 7}, {9}});
  EXPECT_EQ(test::Shown(p), "HashCode  1096664155\nPattern  3\n<(3 7)(9)>\n");
}

TEST(NTSequenceDisplayTest, PrintsOnCoutWhenGivenCout) {
  test::CoutFormatGuard guard;
  std::cout.precision(4);
  std::cout.unsetf(std::ios::floatfield);
  testing::internal::CaptureStdout();
  test::MakePattern({{-1}, {2, 3, 4}}).display(std::cout);
  NTSequence().display(std::cout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            // (-1)(2 3 4): A = 9601*9587*(-1) = -92044787
            //   A = 9613*9601*2 + 2A = 184588826 - 184089574 = 499252
            //   A = 9619*9613*3 + 2A = 277402341 + 998504 = 278400845
            //   A = 9623*9619*4 + 2A = 370254548 + 556801690 = 927056238
            // pattern 1001 = 9: 9 * 927056238 = 8343506142 - 2^32
            //   = 4048538846, as 32 bits -246428450; absolute 246428450.
            "HashCode  246428450\nPattern  9\n<(-1)(2 3 4)>\n"
            "HashCode  0\nPattern  0\n<>\n");
  // The number format is left as it was.
  EXPECT_EQ(std::cout.precision(), 4);
  EXPECT_EQ(std::cout.flags() & std::ios::floatfield, std::ios::fmtflags{});
}

TEST(NTSequenceDisplayTest, OneItemPattern) {
  std::ostringstream os;
  test::MakePattern({{-5}}).display(os);
  EXPECT_EQ(os.str(), "HashCode  -5\nPattern  1\n<(-5)>\n");
  EXPECT_EQ(os.precision(), 6);
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
