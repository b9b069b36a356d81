#include "seqlattice/mining/internal/patternemitter.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

namespace {

constexpr std::size_t kIntsPerDouble = sizeof(double) / sizeof(int);

double readDouble(const int* at) {
  double v;
  std::memcpy(&v, at, sizeof v);
  return v;
}

}  // namespace

void appendGaps(std::vector<int>& buffer, double n, double sum, double min,
                double max) {
  for (double v : {n, sum, min, max}) {
    int ints[kIntsPerDouble];
    std::memcpy(ints, &v, sizeof v);
    buffer.insert(buffer.end(), ints, ints + kIntsPerDouble);
  }
}

void PatternEmitter::emit(std::vector<int>& buffer) {
  std::size_t at = 0;
  while (at < buffer.size()) {
    long count = buffer[at];
    long first = buffer[at + 1];
    int nSets = buffer[at + 2];
    at += 3;
    sets_.clear();
    std::size_t items = 0;
    for (int k = 0; k < nSets; ++k) {
      sets_.push_back(&buffer[at]);
      items += static_cast<std::size_t>(buffer[at]);
      at += static_cast<std::size_t>(buffer[at]) + 1;
    }
    if (summary_.patternsPerSize.size() <= items) {
      summary_.patternsPerSize.resize(items + 1, 0);
    }
    ++summary_.patternsPerSize[items];
    ++summary_.patterns;
    summary_.longestPattern =
        std::max(summary_.longestPattern, static_cast<int>(items));
    if (gaps_ != nullptr && nSets >= 2) {
      const int* g = &buffer[at];
      gaps_->addGaps(static_cast<long>(readDouble(g)),
                     readDouble(g + kIntsPerDouble),
                     readDouble(g + 2 * kIntsPerDouble),
                     readDouble(g + 3 * kIntsPerDouble));
      at += 4 * kIntsPerDouble;
    }
    sink_.addPattern(sets_.data(), nSets, count, first);
  }
  if (progress_ && !progress_(summary_.patterns)) throw SearchStopped();
}

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
