// Test helpers: customer sequences from nested lists, and std::cout's number
// format saved and restored around display tests.
#ifndef SEQLATTICE_SEQUENCE_SEQUENCE_TEST_UTIL_H_
#define SEQLATTICE_SEQUENCE_SEQUENCE_TEST_UTIL_H_

#include <initializer_list>
#include <iostream>
#include <vector>

#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace testing_util {

inline TimedItemSet MakeSet(std::vector<int> items, double time) {
  TimedItemSet set;
  set.AddAllItems(items.data(), static_cast<int>(items.size()), time);
  return set;
}

// Set k holds sets[k] at times[k].
inline Sequence MakeSequence(std::initializer_list<std::vector<int>> sets,
                             std::vector<double> times) {
  Sequence seq;
  size_t k = 0;
  for (const std::vector<int>& items : sets) {
    const TimedItemSet set = MakeSet(items, times.at(k++));
    seq.AddTimedItemSet(&set);
  }
  return seq;
}

inline std::vector<int> ItemsOf(const TimedItemSet& set) {
  return std::vector<int>(set.Begin(), set.End());
}

// Restores std::cout's flags and precision when the test ends, so that the
// format left by a display does not leak into other tests.
class CoutFormatGuard {
 public:
  CoutFormatGuard()
      : flags_(std::cout.flags()), precision_(std::cout.precision()) {}
  ~CoutFormatGuard() {
    std::cout.flags(flags_);
    std::cout.precision(precision_);
  }

 private:
  std::ios::fmtflags flags_;
  std::streamsize precision_;
};

}  // namespace testing_util
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_SEQUENCE_SEQUENCE_TEST_UTIL_H_
