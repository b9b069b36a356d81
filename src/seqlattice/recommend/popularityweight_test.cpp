#include "seqlattice/recommend/popularityweight.h"

#include <utility>

#include "gtest/gtest.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

TEST(PopularityFactor, RaisesThePopularityToThePower) {
  EXPECT_DOUBLE_EQ(recommend::popularityFactor(0.25, 0.01, 0.5), 0.5);
  EXPECT_EQ(recommend::popularityFactor(0.25, 0.01, 1.0), 0.25);
  EXPECT_DOUBLE_EQ(recommend::popularityFactor(0.04, 0.01, 0.5), 0.2);
}

TEST(PopularityFactor, PowerZeroLeavesTheScoreAlone) {
  EXPECT_EQ(recommend::popularityFactor(0.25, 0.01, 0.0), 1.0);
  EXPECT_EQ(recommend::popularityFactor(0.0, 0.0, 0.0), 1.0);
}

TEST(PopularityFactor, AnUncountedItemCountsAsTheFloor) {
  EXPECT_DOUBLE_EQ(recommend::popularityFactor(0.0, 0.0625, 0.5), 0.25);
  EXPECT_DOUBLE_EQ(recommend::popularityFactor(0.01, 0.0625, 0.5), 0.25);
}

TEST(AutomaticPopularityPower, OnlyWhereNextIsMostlyButNotAlwaysSoon) {
  // (next share, power): the band of the mild next-item weight only.
  const std::pair<double, double> cases[] = {
      {0.53, 0.0},   {0.7499, 0.0}, {0.75, 0.1}, {0.78, 0.1},
      {0.8499, 0.1}, {0.85, 0.0},   {1.0, 0.0}};
  for (const auto& [share, power] : cases) {
    EXPECT_EQ(recommend::automaticPopularityPower(share), power) << share;
  }
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
