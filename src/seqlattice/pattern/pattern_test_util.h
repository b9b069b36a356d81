// Test helpers: item sets in the int** convention built from nested lists,
// and patterns built from them.
#ifndef SEQLATTICE_PATTERN_PATTERN_TEST_UTIL_H_
#define SEQLATTICE_PATTERN_PATTERN_TEST_UTIL_H_

#include <sstream>
#include <string>
#include <vector>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/pattern/packedsequence.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace testing_util {

// Item sets as lists of items.
using SetList = std::vector<std::vector<int>>;

// Owns the arrays: set k is {count, items...}.
class SetArrays {
 public:
  explicit SetArrays(const SetList& sets) {
    for (const std::vector<int>& items : sets) {
      std::vector<int> set{static_cast<int>(items.size())};
      set.insert(set.end(), items.begin(), items.end());
      storage_.push_back(set);
    }
    for (std::vector<int>& set : storage_) pointers_.push_back(set.data());
  }
  int** sets() { return pointers_.data(); }
  int nSets() const { return static_cast<int>(pointers_.size()); }

 private:
  std::vector<std::vector<int>> storage_;
  std::vector<int*> pointers_;
};

inline NTSequence MakePattern(const SetList& sets) {
  SetArrays arrays(sets);
  return NTSequence(arrays.sets(), arrays.nSets());
}

// Set k gets the times (starts[k], ends[k]).
inline PackedSequence MakePacked(const SetList& sets,
                                 std::vector<double> starts,
                                 std::vector<double> ends) {
  SetArrays arrays(sets);
  return PackedSequence(arrays.sets(), starts.data(), ends.data(),
                        arrays.nSets());
}

// Every item, set by set, through the public queries.
template <typename Pattern>
std::vector<std::vector<int>> SetsOf(const Pattern& p) {
  std::vector<std::vector<int>> sets(static_cast<size_t>(p.getNSets()));
  for (int s = 0; s < p.getNSets(); ++s) {
    for (int i = 0; i < p.getSizeOfSet(s); ++i) {
      sets[s].push_back(p.getItemInSet(i, s));
    }
  }
  return sets;
}

template <typename Pattern>
std::string Shown(const Pattern& p) {
  std::ostringstream os;
  p.display(os);
  return os.str();
}

}  // namespace testing_util
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_PATTERN_PATTERN_TEST_UTIL_H_
