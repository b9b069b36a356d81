#include "seqlattice/mining/patternbudget.h"

#include "gtest/gtest.h"
#include "seqlattice/mining/mining_test_util.h"
#include "seqlattice/mining/miningerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

// Items 1..4 held by 4, 3, 2 and 1 customers, one item set each; every
// pattern of two items has a count of at most 3.
mining::SequenceDatabase budgetDatabase() {
  return test::makeDatabase(
      {{{1}, {2}, {3}, {4}}, {{1}, {2}, {3}}, {{1}, {2}}, {{1}}});
}

TEST(PatternBudget, LowestCountWhosePatternsFit) {
  mining::MinerOptions options;
  options.maxItems = 2;
  options.threads = 1;
  // At count 1: 4 items + 6 pairs (1)(2) (1)(3) (1)(4) (2)(3) (2)(4) (3)(4);
  // at 2: items 1, 2, 3 and (1)(2), (1)(3), (2)(3); at 3: 1, 2, (1)(2);
  // at 4: item 1 alone.
  EXPECT_EQ(mining::lowestCountWithin(budgetDatabase(), options, 10, 1), 1);
  EXPECT_EQ(mining::lowestCountWithin(budgetDatabase(), options, 6, 1), 2);
  EXPECT_EQ(mining::lowestCountWithin(budgetDatabase(), options, 3, 1), 3);
  EXPECT_EQ(mining::lowestCountWithin(budgetDatabase(), options, 1, 1), 4);
  // Never below the floor.
  EXPECT_EQ(mining::lowestCountWithin(budgetDatabase(), options, 10, 3), 3);
  EXPECT_THROW(mining::lowestCountWithin(budgetDatabase(), options, 0, 1),
               mining::MiningError);
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
