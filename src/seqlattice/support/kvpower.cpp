#include "seqlattice/support/kvpower.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace KvMath_850 {

bool KvPower::AlmostEqual(double a, double b, double maxUlps) {
  if (a == b) return true;
  if (std::isnan(a) || std::isnan(b) || std::isnan(maxUlps)) return false;
  if (!std::isfinite(a) || !std::isfinite(b)) return false;
  if (std::signbit(a) != std::signbit(b)) return false;
  // For doubles of one sign the bit patterns, read as integers, are ordered
  // like the values, and neighbouring doubles differ by one.
  std::int64_t ia;
  std::int64_t ib;
  std::memcpy(&ia, &a, sizeof ia);
  std::memcpy(&ib, &b, sizeof ib);
  ia &= INT64_MAX;
  ib &= INT64_MAX;
  const std::uint64_t distance = ia > ib ? static_cast<std::uint64_t>(ia - ib)
                                         : static_cast<std::uint64_t>(ib - ia);
  return static_cast<double>(distance) <= maxUlps;
}

}  // namespace KvMath_850
