// Current-item prediction on the shop database (counts and adjacency worked
// out in shopdatabase_test_util.h; N = 10). A candidate x of a matched
// pattern p comes from an adjacency pair (x, 2s - 2), s being p's number of
// item sets: x joins p's last set. confidence = count(p + x) / count(p),
// support = count(p + x) / 10, cause = count(p + x) / count(x).
#include <memory>
#include <vector>

#include "gtest/gtest.h"
#include "seqlattice/rules/prediction_test_util.h"
#include "seqlattice/rules/shopdatabase_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

class CurrentItems : public testing::Test {
 protected:
  std::vector<SeqConsequentDescriptor> predict(const test::History& history,
                                               int maxItems) {
    std::vector<SeqConsequentDescriptor> out;
    const Sequence customer = test::toSequence(history);
    EXPECT_TRUE(dict->GetCurrentItems(out, &customer, maxItems).IsOK());
    return out;
  }

  std::unique_ptr<SequenceDictionary> dict =
      test::buildDictionary(test::shopDatabase(), test::kShopMinCount);
};

// (2) matches (2) alone (s = 1, code 0): (1,0) -> (1 2) 2/8, cause 2/8;
// (3,0) -> (2 3) 2/8, cause 2/7. Equal confidence: item 3 first.
TEST_F(CurrentItems, OneSetPatternTakesPairsAtPositionZero) {
  test::expectPredictions(predict({{2}}, 10),
                          {{3, 0.25, 0.2, 2.0 / 7}, {1, 0.25, 0.2, 0.25}});
  test::expectPredictions(predict({{2}}, 1), {{3, 0.25, 0.2, 2.0 / 7}});
}

// (3)(4) matches (4) and (3)(4). (4): (5,0) -> (4 5) 2/8. (3)(4) (s = 2, code
// 2): (5,2) -> (3)(4 5) 2/6, better; cause 2/4.
TEST_F(CurrentItems, TwoSetPatternTakesPairsAtPositionTwo) {
  test::expectPredictions(predict({{3}, {4}}, 10), {{5, 2.0 / 6, 0.2, 0.5}});
}

// (1)(2 3) matches (2), (3), (1)(2), (2 3), (1)(3). (2) gives 1 and 3, (3)
// gives 2 ((2 3) 2/7): 2 and 3 are in the current set and never returned.
// (1)(2) and (1)(3) have no pair at code 2.
TEST_F(CurrentItems, ItemsOfTheCurrentSetAreNeverReturned) {
  test::expectPredictions(predict({{1}, {2, 3}}, 10), {{1, 0.25, 0.2, 0.25}});
  EXPECT_TRUE(predict({{3}, {4, 5}}, 10).empty());
}

// (5): (4,0) -> (4 5) 2/4, cause 2/8.
TEST_F(CurrentItems, PredictsFromTheLastSetAlone) {
  test::expectPredictions(predict({{5}}, 10), {{4, 0.5, 0.2, 0.25}});
}

TEST_F(CurrentItems, LastSetOfUnknownItemsGetsNoPrediction) {
  // (3) alone would predict 2; item 9 is not stored.
  test::expectPredictions(predict({{3}}, 10), {{2, 2.0 / 7, 0.2, 0.25}});
  EXPECT_TRUE(predict({{3}, {9}}, 10).empty());
}

// Without the one-item pattern (5) (the lattice built before it was removed),
// (3)(4) still gets 5 from (4)'s pair (5,0), (4 5) 2/8, and better from
// (3)(4)'s pair (5,2), (3)(4 5) 2/6, with cause 0.0 for want of a count of
// (5). (3)(4 5) matches the same patterns, 5 being unknown, but the 5 in its
// current set, known or not, is excluded.
TEST_F(CurrentItems, ExcludedItemsNeedNotBeKnownAndUnknownItemsHaveNoCause) {
  const Sequence five = test::toSequence({{5}});
  dict->remove(&five);
  test::expectPredictions(predict({{3}, {4}}, 10), {{5, 2.0 / 6, 0.2, 0.0}});
  EXPECT_TRUE(predict({{3}, {4, 5}}, 10).empty());
}

TEST_F(CurrentItems, ZeroOrNegativeMaxItemsAppendsNothing) {
  EXPECT_TRUE(predict({{2}}, 0).empty());
  EXPECT_TRUE(predict({{2}}, -1).empty());
}

TEST_F(CurrentItems, NullCustomerReturnsTheMostFrequentItems) {
  std::vector<SeqConsequentDescriptor> out;
  ASSERT_TRUE(dict->GetCurrentItems(out, nullptr, 2).IsOK());
  test::expectPredictions(out, {{4, 0.8, 0.8, 1.0}, {2, 0.8, 0.8, 1.0}});
  ASSERT_TRUE(dict->GetCurrentItems(out, nullptr, 0).IsOK());
  EXPECT_EQ(out.size(), 2u);
}

TEST_F(CurrentItems, CancelFlagHasNoEffect) {
  dict->setCancel();
  std::vector<SeqConsequentDescriptor> out(1, {7, 0.1, 0.2, 0.3});
  const Sequence customer = test::toSequence({{5}});
  ASSERT_TRUE(dict->GetCurrentItems(out, &customer, 10).IsOK());
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[0].GetItem(), 7);
  EXPECT_EQ(out[1].GetItem(), 4);
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
