#include <gtest/gtest.h>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace {

using dictionary_test::addPattern;
using dictionary_test::Adjacency;
using dictionary_test::adjacencyOf;
using dictionary_test::counterOf;
using dictionary_test::PatternArrays;
using dictionary_test::Sets;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;

TEST(LatticeBuildTest, SingleItemsHangFromTheEmptyPattern) {
  SequenceDictionary d(4);
  addPattern(d, {{5}}, 2);
  addPattern(d, {{8}}, 2);
  EXPECT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(adjacencyOf(d, {}), (Adjacency{{5, 1}, {8, 1}}));
  ASSERT_NE(counterOf(d, {{5}})->getAdjacentItems(), nullptr);
  EXPECT_EQ(counterOf(d, {{5}})->getNAdjacent(), 0);
  EXPECT_EQ(counterOf(d, {{8}})->getNAdjacent(), 0);
  EXPECT_TRUE(d.isLatticeBuilt());
}

TEST(LatticeBuildTest, CodesTellJoiningASetFromFormingOne) {
  SequenceDictionary d(4);
  dictionary_test::addPairPatterns(d);
  ASSERT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(adjacencyOf(d, {{1}}), (Adjacency{{2, 0}, {2, 3}}));
  EXPECT_EQ(adjacencyOf(d, {{2}}), (Adjacency{{1, 0}, {1, 1}}));
  EXPECT_EQ(adjacencyOf(d, {{1, 2}}), Adjacency{});
  EXPECT_EQ(adjacencyOf(d, {{1}, {2}}), Adjacency{});
}

TEST(LatticeBuildTest, ARepeatedItemIsRecordedPerOccurrence) {
  SequenceDictionary d(4);
  addPattern(d, {{1}}, 3);
  addPattern(d, {{1}, {1}}, 2);
  addPattern(d, {{1, 2}}, 2);
  addPattern(d, {{1, 2}, {1}}, 2);
  ASSERT_TRUE(d.buildLattice().IsOK());
  // Dropping either 1 of (1)(1) leaves (1): codes 1 and 3 collapse to the
  // pairs (1, 1) and (1, 3).
  EXPECT_EQ(adjacencyOf(d, {{1}}), (Adjacency{{1, 1}, {1, 3}, {2, 0}}));
  // (1 2)(1) without its first 1 is (2)(1), not stored; without 2 it is
  // (1)(1); without its last 1 it is (1 2).
  EXPECT_EQ(adjacencyOf(d, {{1}, {1}}), (Adjacency{{2, 0}}));
  EXPECT_EQ(adjacencyOf(d, {{1, 2}}), (Adjacency{{1, 3}}));
}

TEST(LatticeBuildTest, APrunedSubPatternLearnsNothing) {
  SequenceDictionary d(4);
  addPattern(d, {{1}}, 3);
  addPattern(d, {{1}, {2}}, 3);
  EXPECT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(adjacencyOf(d, {{1}}), (Adjacency{{2, 3}}));
  EXPECT_EQ(adjacencyOf(d, {}), (Adjacency{{1, 1}}));
}

TEST(LatticeBuildTest, LevelsBehindAnEmptyLevelAreNotVisited) {
  SequenceDictionary d(5);
  addPattern(d, {{1}}, 3);
  addPattern(d, {{1}, {2}, {3}}, 3);
  counterOf(d, {{1}, {2}, {3}})->addAdjacentItem(9, 9);
  EXPECT_TRUE(d.buildLattice().IsOK());
  EXPECT_TRUE(d.isLatticeBuilt());
  EXPECT_EQ(adjacencyOf(d, {{1}, {2}, {3}}), (Adjacency{{9, 9}}));
  EXPECT_EQ(adjacencyOf(d, {{1}}), Adjacency{});
}

TEST(LatticeBuildTest, OnlyLevelZeroStillBuilds) {
  SequenceDictionary d(3);
  EXPECT_TRUE(d.buildLattice().IsOK());
  ASSERT_NE(d.getLevel0Descriptor()->getAdjacentItems(), nullptr);
  EXPECT_EQ(adjacencyOf(d, {}), Adjacency{});
  EXPECT_TRUE(d.isLatticeBuilt());
}

TEST(LatticeBuildTest, PatternsWithoutCounterStillLinkDownwards) {
  SequenceDictionary d(4);
  addPattern(d, {{1}}, 3);
  PatternArrays p(Sets{{1, 4}});
  d.addSequence(p.sets(), p.nSets(), nullptr);
  EXPECT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(adjacencyOf(d, {{1}}), (Adjacency{{4, 0}}));
}

TEST(LatticeBuildTest, ASecondBuildGivesTheSameSets) {
  SequenceDictionary d(5);
  addPattern(d, {{1}}, 3);
  addPattern(d, {{2}}, 3);
  addPattern(d, {{3}}, 3);
  addPattern(d, {{1, 2}}, 3);
  addPattern(d, {{1}, {3}}, 3);
  addPattern(d, {{2}, {3}}, 3);
  addPattern(d, {{1, 2}, {3}}, 3);
  ASSERT_TRUE(d.buildLattice().IsOK());
  const std::vector<dictionary_test::Sets> patterns = {
      {}, {{1}}, {{2}}, {{3}}, {{1, 2}}, {{1}, {3}}, {{2}, {3}}, {{1, 2}, {3}}};
  std::vector<Adjacency> first;
  for (const auto& p : patterns) first.push_back(adjacencyOf(d, p));
  EXPECT_EQ(first[1], (Adjacency{{2, 0}, {3, 3}}));
  EXPECT_EQ(first[4], (Adjacency{{3, 3}}));
  EXPECT_EQ(first[5], (Adjacency{{2, 0}}));
  EXPECT_EQ(first[6], (Adjacency{{1, 0}}));
  ASSERT_TRUE(d.buildLattice().IsOK());
  for (std::size_t i = 0; i < patterns.size(); ++i) {
    EXPECT_EQ(adjacencyOf(d, patterns[i]), first[i]) << i;
  }
}

TEST(LatticeBuildTest, ARebuildAfterPruningDropsLinksToPrunedPatterns) {
  SequenceDictionary d(4);
  addPattern(d, {{1}}, 5);
  addPattern(d, {{2}}, 5);
  addPattern(d, {{1, 2}}, 2);
  addPattern(d, {{1}, {2}}, 4);
  ASSERT_TRUE(d.buildLattice().IsOK());
  ASSERT_EQ(adjacencyOf(d, {{1}}), (Adjacency{{2, 0}, {2, 3}}));
  EXPECT_EQ(d.reduceDictionaryWithCount(2, 3.0), 1);
  ASSERT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(adjacencyOf(d, {{1}}), (Adjacency{{2, 3}}));
  EXPECT_EQ(adjacencyOf(d, {{2}}), (Adjacency{{1, 1}}));
}

// A dictionary that reports no pattern above one item.
class SingleItemsOnly : public SequenceDictionary {
 public:
  using SequenceDictionary::SequenceDictionary;
  int LargestSequence() const override { return 1; }
};

TEST(LatticeBuildTest, TheBuildAsksForTheLargestSequenceThroughItsSlot) {
  SingleItemsOnly d(4);
  addPattern(d, {{1}}, 3);
  addPattern(d, {{2}}, 3);
  addPattern(d, {{1}, {2}}, 2);
  ASSERT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(adjacencyOf(d, {}), (Adjacency{{1, 1}, {2, 1}}));
  // Level 2 is not visited, so (1) learns nothing from (1)(2).
  EXPECT_EQ(adjacencyOf(d, {{1}}), Adjacency{});
  EXPECT_EQ(counterOf(d, {{1}, {2}})->getAdjacentItems(), nullptr);
}

TEST(LatticeBuildTest, MissingLevelZeroEntryFailsTheBuild) {
  SequenceDictionary d(3);
  PatternArrays empty(Sets{});
  d.remove(empty.sets(), 0);
  EXPECT_EQ(d.buildLattice().GetCode(), KvCommon_850::kStatusFailure);
  EXPECT_FALSE(d.isLatticeBuilt());
}

}  // namespace
