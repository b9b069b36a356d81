// Test helpers: customer sequences from nested lists, and std::cout's number
// format saved and restored around display tests.
#ifndef SEQLATTICE_SEQUENCE_SEQUENCE_TEST_UTIL_H_
#define SEQLATTICE_SEQUENCE_SEQUENCE_TEST_UTIL_H_

#include <cstddef>
#include <initializer_list>
#include <iostream>
#include <vector>

#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// Item sets as nested lists: {{1, 2}, {3}} stands for (1 2)(3).
using Sets = std::vector<std::vector<int>>;

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

// Appends the sets to `sequence`, set k at the time k + 1 (for tests where
// times must not matter).
inline void addSets(Sequence& sequence, const Sets& sets) {
  for (std::size_t k = 0; k < sets.size(); ++k) {
    TimedItemSet set(static_cast<int>(sets[k].size()),
                     static_cast<double>(k + 1));
    for (int item : sets[k]) set.AddItem(item);
    sequence.AddTimedItemSet(&set);
  }
}

inline Sequence MakeSequence(const Sets& sets) {
  Sequence sequence;
  addSets(sequence, sets);
  return sequence;
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

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_SEQUENCE_SEQUENCE_TEST_UTIL_H_
