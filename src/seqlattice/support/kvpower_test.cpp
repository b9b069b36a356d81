#include "seqlattice/support/kvpower.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace SEQUENCE_NAMESPACE_800 {

namespace {

double Up(double x, int steps) {
  for (int i = 0; i < steps; ++i) x = std::nextafter(x, HUGE_VAL);
  return x;
}

TEST(KvPowerTest, EqualValues) {
  EXPECT_TRUE(KvMath_850::KvPower::AlmostEqual(3.0, 3.0, 0.0));
  EXPECT_TRUE(KvMath_850::KvPower::AlmostEqual(0.0, -0.0, 0.0));
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(KvMath_850::KvPower::AlmostEqual(inf, inf, 0.0));
  EXPECT_TRUE(KvMath_850::KvPower::AlmostEqual(-inf, -inf, 100.0));
}

TEST(KvPowerTest, UlpDistance) {
  EXPECT_TRUE(KvMath_850::KvPower::AlmostEqual(3.0, Up(3.0, 1), 1.0));
  EXPECT_TRUE(KvMath_850::KvPower::AlmostEqual(3.0, Up(3.0, 100), 100.0));
  EXPECT_FALSE(KvMath_850::KvPower::AlmostEqual(3.0, Up(3.0, 101), 100.0));
  EXPECT_TRUE(KvMath_850::KvPower::AlmostEqual(Up(3.0, 100), 3.0, 100.0));
  EXPECT_TRUE(KvMath_850::KvPower::AlmostEqual(-3.0, -Up(3.0, 50), 100.0));
  EXPECT_FALSE(KvMath_850::KvPower::AlmostEqual(3.0, 3.2, 100.0));
  // 0.1 * 3 is 0.30000000000000004, one unit above 0.3.
  EXPECT_TRUE(KvMath_850::KvPower::AlmostEqual(0.1 * 3, 0.3, 1.0));
}

TEST(KvPowerTest, NanIsNeverAlmostEqual) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(KvMath_850::KvPower::AlmostEqual(nan, nan, 100.0));
  EXPECT_FALSE(KvMath_850::KvPower::AlmostEqual(nan, 1.0, 100.0));
  EXPECT_FALSE(KvMath_850::KvPower::AlmostEqual(1.0, nan, 1e300));
}

TEST(KvPowerTest, OppositeSignsAndInfinities) {
  const double tiny = std::numeric_limits<double>::denorm_min();
  EXPECT_FALSE(KvMath_850::KvPower::AlmostEqual(tiny, -tiny, 100.0));
  EXPECT_TRUE(KvMath_850::KvPower::AlmostEqual(0.0, tiny, 1.0));
  const double inf = std::numeric_limits<double>::infinity();
  const double max = std::numeric_limits<double>::max();
  EXPECT_FALSE(KvMath_850::KvPower::AlmostEqual(max, inf, 100.0));
  EXPECT_FALSE(KvMath_850::KvPower::AlmostEqual(inf, -inf, 1e300));
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
