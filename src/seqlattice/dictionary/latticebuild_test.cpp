#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

TEST(LatticeBuildTest, SingleItemsHangFromTheEmptyPattern) {
  SequenceDictionary d(4);
  test::addPattern(d, {{5}}, 2);
  test::addPattern(d, {{8}}, 2);
  EXPECT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(test::adjacencyOf(d, {}), (test::Adjacency{{5, 1}, {8, 1}}));
  ASSERT_NE(test::counterOf(d, {{5}})->getAdjacentItems(), nullptr);
  EXPECT_EQ(test::counterOf(d, {{5}})->getNAdjacent(), 0);
  EXPECT_EQ(test::counterOf(d, {{8}})->getNAdjacent(), 0);
  EXPECT_TRUE(d.isLatticeBuilt());
}

TEST(LatticeBuildTest, CodesTellJoiningASetFromFormingOne) {
  SequenceDictionary d(4);
  test::addPairPatterns(d);
  ASSERT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(test::adjacencyOf(d, {{1}}), (test::Adjacency{{2, 0}, {2, 3}}));
  EXPECT_EQ(test::adjacencyOf(d, {{2}}), (test::Adjacency{{1, 0}, {1, 1}}));
  EXPECT_EQ(test::adjacencyOf(d, {{1, 2}}), test::Adjacency{});
  EXPECT_EQ(test::adjacencyOf(d, {{1}, {2}}), test::Adjacency{});
}

TEST(LatticeBuildTest, ARepeatedItemIsRecordedPerOccurrence) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}}, 3);
  test::addPattern(d, {{1}, {1}}, 2);
  test::addPattern(d, {{1, 2}}, 2);
  test::addPattern(d, {{1, 2}, {1}}, 2);
  ASSERT_TRUE(d.buildLattice().IsOK());
  // Dropping either 1 of (1)(1) leaves (1): codes 1 and 3 collapse to the
  // pairs (1, 1) and (1, 3).
  EXPECT_EQ(test::adjacencyOf(d, {{1}}),
            (test::Adjacency{{1, 1}, {1, 3}, {2, 0}}));
  // (1 2)(1) without its first 1 is (2)(1), not stored; without 2 it is
  // (1)(1); without its last 1 it is (1 2).
  EXPECT_EQ(test::adjacencyOf(d, {{1}, {1}}), (test::Adjacency{{2, 0}}));
  EXPECT_EQ(test::adjacencyOf(d, {{1, 2}}), (test::Adjacency{{1, 3}}));
}

TEST(LatticeBuildTest, APrunedSubPatternLearnsNothing) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}}, 3);
  test::addPattern(d, {{1}, {2}}, 3);
  EXPECT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(test::adjacencyOf(d, {{1}}), (test::Adjacency{{2, 3}}));
  EXPECT_EQ(test::adjacencyOf(d, {}), (test::Adjacency{{1, 1}}));
}

TEST(LatticeBuildTest, LevelsBehindAnEmptyLevelAreNotVisited) {
  SequenceDictionary d(5);
  test::addPattern(d, {{1}}, 3);
  test::addPattern(d, {{1}, {2}, {3}}, 3);
  test::counterOf(d, {{1}, {2}, {3}})->addAdjacentItem(9, 9);
  EXPECT_TRUE(d.buildLattice().IsOK());
  EXPECT_TRUE(d.isLatticeBuilt());
  EXPECT_EQ(test::adjacencyOf(d, {{1}, {2}, {3}}), (test::Adjacency{{9, 9}}));
  EXPECT_EQ(test::adjacencyOf(d, {{1}}), test::Adjacency{});
}

TEST(LatticeBuildTest, OnlyLevelZeroStillBuilds) {
  SequenceDictionary d(3);
  EXPECT_TRUE(d.buildLattice().IsOK());
  ASSERT_NE(d.getLevel0Descriptor()->getAdjacentItems(), nullptr);
  EXPECT_EQ(test::adjacencyOf(d, {}), test::Adjacency{});
  EXPECT_TRUE(d.isLatticeBuilt());
}

TEST(LatticeBuildTest, PatternsWithoutCounterStillLinkDownwards) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}}, 3);
  test::PatternArrays p(test::Sets{{1, 4}});
  d.addSequence(p.sets(), p.nSets(), nullptr);
  EXPECT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(test::adjacencyOf(d, {{1}}), (test::Adjacency{{4, 0}}));
}

TEST(LatticeBuildTest, ASecondBuildGivesTheSameSets) {
  SequenceDictionary d(5);
  test::addPattern(d, {{1}}, 3);
  test::addPattern(d, {{2}}, 3);
  test::addPattern(d, {{3}}, 3);
  test::addPattern(d, {{1, 2}}, 3);
  test::addPattern(d, {{1}, {3}}, 3);
  test::addPattern(d, {{2}, {3}}, 3);
  test::addPattern(d, {{1, 2}, {3}}, 3);
  ASSERT_TRUE(d.buildLattice().IsOK());
  const std::vector<test::Sets> patterns = {
      {}, {{1}}, {{2}}, {{3}}, {{1, 2}}, {{1}, {3}}, {{2}, {3}}, {{1, 2}, {3}}};
  std::vector<test::Adjacency> first;
  for (const auto& p : patterns) first.push_back(test::adjacencyOf(d, p));
  EXPECT_EQ(first[1], (test::Adjacency{{2, 0}, {3, 3}}));
  EXPECT_EQ(first[4], (test::Adjacency{{3, 3}}));
  EXPECT_EQ(first[5], (test::Adjacency{{2, 0}}));
  EXPECT_EQ(first[6], (test::Adjacency{{1, 0}}));
  ASSERT_TRUE(d.buildLattice().IsOK());
  for (std::size_t i = 0; i < patterns.size(); ++i) {
    EXPECT_EQ(test::adjacencyOf(d, patterns[i]), first[i]) << i;
  }
}

TEST(LatticeBuildTest, ARebuildAfterPruningDropsLinksToPrunedPatterns) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}}, 5);
  test::addPattern(d, {{2}}, 5);
  test::addPattern(d, {{1, 2}}, 2);
  test::addPattern(d, {{1}, {2}}, 4);
  ASSERT_TRUE(d.buildLattice().IsOK());
  ASSERT_EQ(test::adjacencyOf(d, {{1}}), (test::Adjacency{{2, 0}, {2, 3}}));
  EXPECT_EQ(d.reduceDictionaryWithCount(2, 3.0), 1);
  ASSERT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(test::adjacencyOf(d, {{1}}), (test::Adjacency{{2, 3}}));
  EXPECT_EQ(test::adjacencyOf(d, {{2}}), (test::Adjacency{{1, 1}}));
}

TEST(LatticeBuildTest, ARebuildReplacesThePairsAHostAdded) {
  SequenceDictionary d(4);
  test::addPairPatterns(d);
  ASSERT_TRUE(d.buildLattice().IsOK());
  test::counterOf(d, {{1}})->addAdjacentItem(9, 1);
  test::counterOf(d, {{1, 2}})->addAdjacentItem(9, 3);
  ASSERT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(test::adjacencyOf(d, {{1}}), (test::Adjacency{{2, 0}, {2, 3}}));
  EXPECT_EQ(test::adjacencyOf(d, {{1, 2}}), test::Adjacency{});
  ASSERT_NE(test::counterOf(d, {{1, 2}})->getAdjacentItems(), nullptr);
}

TEST(LatticeBuildTest, EveryCounterHasItsPairsInOrder) {
  SequenceDictionary d(4);
  test::addPairPatterns(d);
  ASSERT_TRUE(d.buildLattice().IsOK());
  const SequenceCounter::PairRange pairs =
      test::counterOf(d, {{2}})->adjacentPairs();
  ASSERT_TRUE(pairs.present());
  const std::vector<std::pair<int, int>> walked(pairs.begin(), pairs.end());
  EXPECT_EQ(walked, (std::vector<std::pair<int, int>>{{1, 0}, {1, 1}}));
  EXPECT_TRUE(test::counterOf(d, {{1}, {2}})->adjacentPairs().present());
  EXPECT_EQ(test::counterOf(d, {{1}, {2}})->adjacentPairs().size(), 0u);
}

// A dictionary that reports no pattern above one item.
class SingleItemsOnly : public SequenceDictionary {
 public:
  using SequenceDictionary::SequenceDictionary;
  int LargestSequence() const override { return 1; }
};

TEST(LatticeBuildTest, TheBuildAsksForTheLargestSequenceThroughItsSlot) {
  SingleItemsOnly d(4);
  test::addPattern(d, {{1}}, 3);
  test::addPattern(d, {{2}}, 3);
  test::addPattern(d, {{1}, {2}}, 2);
  ASSERT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(test::adjacencyOf(d, {}), (test::Adjacency{{1, 1}, {2, 1}}));
  // Level 2 is not visited, so (1) learns nothing from (1)(2).
  EXPECT_EQ(test::adjacencyOf(d, {{1}}), test::Adjacency{});
  EXPECT_EQ(test::counterOf(d, {{1}, {2}})->getAdjacentItems(), nullptr);
}

TEST(LatticeBuildTest, MissingLevelZeroEntryFailsTheBuild) {
  SequenceDictionary d(3);
  test::PatternArrays empty(test::Sets{});
  d.remove(empty.sets(), 0);
  EXPECT_EQ(d.buildLattice().GetCode(), KvCommon_850::kStatusFailure);
  EXPECT_FALSE(d.isLatticeBuilt());
}

// Enough patterns for the levels to be linked on several threads: every
// item alone and followed by every item.
TEST(LatticeBuildTest, ALargeDictionaryLinksEveryLevel) {
  constexpr int kItems = 150;
  SequenceDictionary d(4);
  for (int i = 1; i <= kItems; ++i) {
    test::addPattern(d, {{i}}, 3);
    for (int j = 1; j <= kItems; ++j) test::addPattern(d, {{i}, {j}}, 2);
  }
  ASSERT_TRUE(d.buildLattice().IsOK());
  test::Adjacency fromRoot;
  test::Adjacency fromSeven;
  for (int j = 1; j <= kItems; ++j) {
    fromRoot.insert({j, 1});
    fromSeven.insert({j, 1});
    fromSeven.insert({j, 3});
  }
  EXPECT_EQ(test::adjacencyOf(d, {}), fromRoot);
  EXPECT_EQ(test::adjacencyOf(d, {{7}}), fromSeven);
  EXPECT_EQ(test::counterOf(d, {{kItems}})->getNAdjacent(), 2 * kItems);
  ASSERT_NE(test::counterOf(d, {{3}, {9}})->getAdjacentItems(), nullptr);
  EXPECT_EQ(test::counterOf(d, {{3}, {9}})->getNAdjacent(), 0);
  EXPECT_TRUE(d.isLatticeBuilt());
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
