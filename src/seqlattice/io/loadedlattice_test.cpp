// A loaded dictionary keeps its counters' pairs as read until a set is asked
// for: saving it gives the file back, and building its lattice again gives
// every counter the pairs of the patterns it now holds, never the ones read.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/io/io_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

typedef std::vector<SequenceCounter::AdjacentPair> Pairs;

Pairs walk(SequenceDictionary& dictionary, const test::Sets& sets) {
  const SequenceCounter* counter = test::counterOf(dictionary, sets);
  if (counter == nullptr) return {};
  const SequenceCounter::PairRange pairs = counter->adjacentPairs();
  return Pairs(pairs.begin(), pairs.end());
}

class LoadedLatticeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    test::addPairPatterns(saved_);
    ASSERT_TRUE(saved_.buildLattice().IsOK());
    file_.write(test::saveBinary(saved_));
    ASSERT_EQ(test::loadBinary(file_, loaded_), test::Outcome::kLoaded);
  }

  SequenceDictionary saved_{test::smallSettings(3)};
  test::ScratchFile file_;
  SequenceDictionary loaded_;
};

TEST_F(LoadedLatticeTest, SavingALoadedDictionaryGivesTheSameBytes) {
  EXPECT_EQ(walk(loaded_, {{1}}), Pairs({{2, 0}, {2, 3}}));
  EXPECT_EQ(walk(loaded_, {{2}}), Pairs({{1, 0}, {1, 1}}));
  EXPECT_EQ(test::saveBinary(loaded_), file_.read());
  EXPECT_EQ(test::saveXML(loaded_), test::saveXML(saved_));
}

TEST_F(LoadedLatticeTest, RebuildingDropsThePairsRead) {
  test::PatternArrays follows({{1}, {2}});
  loaded_.remove(follows.sets(), follows.nSets());
  ASSERT_TRUE(loaded_.buildLattice().IsOK());
  EXPECT_EQ(walk(loaded_, {{1}}), Pairs({{2, 0}}));
  EXPECT_EQ(walk(loaded_, {{2}}), Pairs({{1, 0}}));
  EXPECT_EQ(test::adjacencyOf(loaded_, {{1}}), test::Adjacency({{2, 0}}));
  EXPECT_EQ(test::counterOf(loaded_, {{1}})->getNAdjacent(), 1);
  EXPECT_EQ(test::counterOf(loaded_, {{1, 2}})->getNAdjacent(), 0);
}

TEST_F(LoadedLatticeTest, ASetAskedForBeforeARebuildIsReplacedToo) {
  SequenceCounter* one = test::counterOf(loaded_, {{1}});
  ASSERT_NE(one->getAdjacentItems(), nullptr);
  EXPECT_EQ(one->getAdjacentItems()->size(), 2u);
  test::PatternArrays joined({{1, 2}});
  loaded_.remove(joined.sets(), joined.nSets());
  ASSERT_TRUE(loaded_.buildLattice().IsOK());
  EXPECT_EQ(walk(loaded_, {{1}}), Pairs({{2, 3}}));
  EXPECT_EQ(test::adjacencyOf(loaded_, {{1}}), test::Adjacency({{2, 3}}));
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
