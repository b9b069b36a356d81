#include "seqlattice/store/statsbucket.h"

namespace SEQUENCE_NAMESPACE_800 {

StatsBucket::StatsBucket()
    : nOfGaps(0.0), sumOfGaps(0.0), minOfGaps(0.0), maxOfGaps(0.0) {}

StatsBucket::~StatsBucket() = default;

void StatsBucket::InitialGap(double g) {
  nOfGaps = 1.0;
  sumOfGaps = g;
  minOfGaps = g;
  maxOfGaps = g;
}

void StatsBucket::UpdateGap(double g) {
  nOfGaps += 1.0;
  sumOfGaps += g;
  if (g < minOfGaps) minOfGaps = g;
  if (g > maxOfGaps) maxOfGaps = g;
}

double StatsBucket::GetNOfGaps() const { return nOfGaps; }
double StatsBucket::GetSumOfGaps() const { return sumOfGaps; }
double StatsBucket::GetMinOfGaps() const { return minOfGaps; }
double StatsBucket::GetMaxOfGaps() const { return maxOfGaps; }

double StatsBucket::GetMeanOfGaps() const {
  return nOfGaps == 0.0 ? 0.0 : sumOfGaps / nOfGaps;
}

}  // namespace SEQUENCE_NAMESPACE_800
