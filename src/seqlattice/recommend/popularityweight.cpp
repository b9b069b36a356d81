#include "seqlattice/recommend/popularityweight.h"

#include <algorithm>
#include <cmath>

#include "seqlattice/recommend/recommender.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

double popularityFactor(double popularity, double minPopularity, double power) {
  if (power == 0.0) return 1.0;
  return std::pow(std::max(popularity, minPopularity), power);
}

double automaticPopularityPower(double nextShare) {
  return nextShare >= kMostlyRightNext && nextShare < kNearlyAlwaysRightNext
             ? kPopularityPower
             : 0.0;
}

}  // namespace recommend
}  // namespace SEQUENCE_NAMESPACE_800
