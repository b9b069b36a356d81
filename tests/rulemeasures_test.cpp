// The rule measures of the "rules" command, from counts worked out by hand.
#include "support/rulemeasures.h"

#include <gtest/gtest.h>

#include <cmath>

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// N = 10 customers; 4 bought the antecedent, 5 the consequent, and 3 the
// antecedent and later the consequent.
TEST(RuleMeasuresTest, HandWorkedCounts) {
  seqlattice_cli::RuleMeasures m = seqlattice_cli::measuresOf({3, 4, 5, 10});
  EXPECT_DOUBLE_EQ(m.support, 0.3);
  EXPECT_DOUBLE_EQ(m.confidence, 0.75);
  EXPECT_DOUBLE_EQ(m.cause, 0.6);
  EXPECT_DOUBLE_EQ(m.lift, 1.5);        // 0.75 / 0.5
  EXPECT_DOUBLE_EQ(m.leverage, 0.1);    // 0.3 - 0.4 * 0.5
  EXPECT_DOUBLE_EQ(m.conviction, 2.0);  // (1 - 0.5) / (1 - 0.75)
}

TEST(RuleMeasuresTest, ConsequentRarerThanChance) {
  // 2 of 8 customers follow the antecedent (4) with the consequent (6).
  seqlattice_cli::RuleMeasures m = seqlattice_cli::measuresOf({2, 4, 6, 8});
  EXPECT_DOUBLE_EQ(m.lift, 0.5 / 0.75);
  EXPECT_DOUBLE_EQ(m.leverage, 0.25 - 0.5 * 0.75);
  EXPECT_DOUBLE_EQ(m.conviction, 0.25 / 0.5);
}

TEST(RuleMeasuresTest, CertainRuleHasInfiniteConviction) {
  seqlattice_cli::RuleMeasures m = seqlattice_cli::measuresOf({2, 2, 2, 5});
  EXPECT_DOUBLE_EQ(m.confidence, 1.0);
  EXPECT_DOUBLE_EQ(m.lift, 2.5);
  EXPECT_DOUBLE_EQ(m.leverage, 0.24);
  EXPECT_TRUE(std::isinf(m.conviction));
  EXPECT_GT(m.conviction, 0);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
