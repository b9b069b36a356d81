#include <gtest/gtest.h>

#include <cmath>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Level 1 holds (1) to (4) with counts 1 to 4.
class PruningTest : public testing::Test {
 protected:
  PruningTest() : d(5) {
    for (int item = 1; item <= 4; ++item) test::addPattern(d, {{item}}, item);
  }
  SequenceDictionary d;
};

TEST_F(PruningTest, WholeThresholdKeepsCountsEqualToIt) {
  EXPECT_EQ(d.reduceDictionaryWithCount(1, 2.0), 1);
  EXPECT_FALSE(test::stored(d, {{1}}));
  EXPECT_TRUE(test::stored(d, {{2}}));
}

TEST_F(PruningTest, FractionalThresholdRoundsUp) {
  EXPECT_EQ(d.reduceDictionaryWithCount(1, 2.5), 2);
  EXPECT_FALSE(test::stored(d, {{2}}));
  EXPECT_TRUE(test::stored(d, {{3}}));
}

TEST_F(PruningTest, ZeroThresholdRemovesNothing) {
  EXPECT_EQ(d.reduceDictionaryWithCount(1, 0.0), 0);
  EXPECT_EQ(d.reduceDictionary(1, 0.0), 0);
  EXPECT_EQ(d.CountSequencesOfSize(1), 4);
}

TEST_F(PruningTest, AThresholdAHairOffAWholeNumberCountsAsIt) {
  EXPECT_EQ(d.reduceDictionaryWithCount(1, std::nextafter(3.0, 4.0)), 2);
  EXPECT_TRUE(test::stored(d, {{3}}));
  EXPECT_EQ(d.reduceDictionaryWithCount(1, std::nextafter(4.0, 3.0)), 1);
  EXPECT_TRUE(test::stored(d, {{4}}));
  EXPECT_EQ(d.reduceDictionaryWithCount(1, 3.2), 0);  // keeps 4 and more
}

TEST_F(PruningTest, NegativeThresholdRemovesNothing) {
  EXPECT_EQ(d.reduceDictionaryWithCount(1, -2.5), 0);
  EXPECT_EQ(d.CountSequencesOfSize(1), 4);
}

TEST_F(PruningTest, WildThresholdsAreSafe) {
  EXPECT_EQ(d.reduceDictionaryWithCount(1, NAN), 0);
  EXPECT_EQ(d.reduceDictionaryWithCount(1, -1e300), 0);
  EXPECT_EQ(d.reduceDictionaryWithCount(1, 1e300), 4);
}

TEST(PruningRulesTest, MissedCountsRescueOnlyTheLenientRule) {
  SequenceDictionary d(3);
  test::addPattern(d, {{1}}, 1, 0, 2);
  EXPECT_EQ(d.reduceDictionary(1, 3.0), 0);
  EXPECT_TRUE(test::stored(d, {{1}}));
  EXPECT_EQ(d.reduceDictionaryWithCount(1, 3.0), 1);
  EXPECT_FALSE(test::stored(d, {{1}}));
}

TEST(PruningRulesTest, ReduceAllStopsAtTheFirstEmptyLevel) {
  SequenceDictionary d(5);
  test::addPattern(d, {{1}}, 1);
  test::addPattern(d, {{2}}, 5);
  test::addPattern(d, {{1}, {2}, {3}}, 1);
  EXPECT_EQ(d.reduceAll(2.0), 1);
  EXPECT_FALSE(test::stored(d, {{1}}));
  EXPECT_TRUE(test::stored(d, {{1}, {2}, {3}}));
}

TEST(PruningRulesTest, ReduceAllGoesOnPastALevelItEmpties) {
  SequenceDictionary d(5);
  test::addPattern(d, {{1}}, 3);
  test::addPattern(d, {{1}, {2}}, 1);
  test::addPattern(d, {{1}, {2}, {3}}, 1);
  EXPECT_EQ(d.reduceAll(2.0), 2);
  EXPECT_EQ(d.CountSequencesOfSize(2), 0);
  EXPECT_EQ(d.CountSequencesOfSize(3), 0);
}

TEST(PruningRulesTest, ReduceAllSetsMinSupportAsAFraction) {
  SequenceDictionary d(3);
  d.getLevel0Descriptor()->setCount(20);
  test::addPattern(d, {{1}}, 9);
  EXPECT_EQ(d.reduceAll(5.0), 0);
  EXPECT_DOUBLE_EQ(d.getMinSupport(), 0.25);
}

TEST(PruningRulesTest, ReduceAllOverNoInputGivesAnInfiniteSupport) {
  SequenceDictionary d(3);
  d.reduceAll(5.0);
  EXPECT_TRUE(std::isinf(d.getMinSupport()));
}

TEST(PruningRulesTest, ReduceAllWithCountVisitsEveryLevel) {
  SequenceDictionary d(5);
  test::addPattern(d, {{1}}, 1, 0, 5);
  test::addPattern(d, {{1}, {2}, {3}}, 1);
  test::addPattern(d, {{1}, {2}, {3}, {4}}, 6);
  d.getLevel0Descriptor()->setCount(10);
  EXPECT_EQ(d.reduceAllWithCount(2.0), 2);
  EXPECT_TRUE(test::stored(d, {{1}, {2}, {3}, {4}}));
  EXPECT_EQ(d.getMinSupport(), 0.0);  // only reduceAll sets it
  EXPECT_EQ(SequenceDictionary(1).reduceAllWithCount(2.0), 0);
}

TEST(PruningRulesTest, LevelZeroIsNeverPruned) {
  SequenceDictionary d(3);
  EXPECT_EQ(d.reduceAll(4.0), 0);
  EXPECT_EQ(d.reduceAllWithCount(4.0), 0);
  EXPECT_EQ(d.CountSequencesOfSize(0), 1);
}

TEST(PruningRulesTest, PruningAnEmptyTableRemovesNothing) {
  SequenceDictionary d(4);
  EXPECT_EQ(d.reduceDictionary(2, 3.0), 0);
  EXPECT_EQ(d.reduceDictionaryWithCount(3, 3.0), 0);
  EXPECT_EQ(d.reduceDictionary(7, 3.0), 0);  // not a level
}

TEST(PruningRulesTest, EntriesWithoutCounterAreKept) {
  SequenceDictionary d(3);
  test::PatternArrays p(test::Sets{{1}});
  d.addSequence(p.sets(), p.nSets(), nullptr);
  EXPECT_EQ(d.reduceDictionaryWithCount(1, 5.0), 0);
  EXPECT_TRUE(d.dropAfter(-1).IsOK());
  EXPECT_TRUE(test::stored(d, {{1}}));
}

TEST(PruningRulesTest, PruningManyEntriesVisitsEachOnce) {
  SequenceDictionary d(3);
  for (int item = 0; item < 500; ++item)
    test::addPattern(d, {{item}}, item % 4);
  EXPECT_EQ(d.reduceDictionaryWithCount(1, 2.0), 250);
  EXPECT_EQ(d.CountSequencesOfSize(1), 250);
  for (int item = 0; item < 500; ++item) {
    EXPECT_EQ(test::stored(d, {{item}}), item % 4 >= 2) << item;
  }
}

TEST(DropAfterTest, LaterEntriesGoAndEarlierOnesFoldTheirMissedCounts) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}}, 5, 10, 2);
  test::addPattern(d, {{2}}, 4, 11, 1);
  test::addPattern(d, {{1}, {2}}, 3, 9, 4);
  test::addPattern(d, {{1}, {3}}, 3, 12, 0);
  test::addPattern(d, {{1}, {2}, {3}}, 1, 3, 1);
  EXPECT_TRUE(d.dropAfter(10).IsOK());
  EXPECT_FALSE(test::stored(d, {{2}}));
  EXPECT_FALSE(test::stored(d, {{1}, {3}}));
  ASSERT_TRUE(test::stored(d, {{1}}));
  EXPECT_EQ(test::counterOf(d, {{1}})->getCount(), 7);
  EXPECT_EQ(test::counterOf(d, {{1}})->getMaxMissed(), 0);
  EXPECT_EQ(test::counterOf(d, {{1}, {2}})->getCount(), 7);
  EXPECT_EQ(test::counterOf(d, {{1}, {2}})->getMaxMissed(), 0);
  // Level 2 holds one entry now, level 3 is visited all the same.
  EXPECT_EQ(test::counterOf(d, {{1}, {2}, {3}})->getCount(), 2);
  EXPECT_EQ(d.getLevel0Descriptor()->getOrdinalOfEntry(), 0);
}

TEST(DropAfterTest, VisitsLevelsBehindAnEmptyOne) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}, {2}, {3}}, 1, 20, 0);
  EXPECT_TRUE(d.dropAfter(10).IsOK());
  EXPECT_EQ(d.NumberOfSequences(), 1);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
