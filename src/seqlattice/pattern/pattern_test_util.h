// Test helpers: item sets in the int** convention built from nested lists,
// and patterns built from them.
#ifndef SEQLATTICE_PATTERN_PATTERN_TEST_UTIL_H_
#define SEQLATTICE_PATTERN_PATTERN_TEST_UTIL_H_

#include <sstream>
#include <string>
#include <vector>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/pattern/packedsequence.h"
#include "seqlattice/sequence/sequence_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// The int** form of a pattern: sets()[k][0] is the size of set k, followed
// by its items. Owns the arrays.
class PatternArrays {
 public:
  explicit PatternArrays(const Sets& sets) {
    for (const std::vector<int>& set : sets) {
      std::vector<int> row(1, static_cast<int>(set.size()));
      row.insert(row.end(), set.begin(), set.end());
      rows_.push_back(row);
    }
    for (std::vector<int>& row : rows_) pointers_.push_back(row.data());
  }
  int** sets() { return pointers_.data(); }
  int nSets() const { return static_cast<int>(rows_.size()); }

 private:
  std::vector<std::vector<int>> rows_;
  std::vector<int*> pointers_;
};

inline NTSequence MakePattern(const Sets& sets) {
  PatternArrays arrays(sets);
  return NTSequence(arrays.sets(), arrays.nSets());
}

// Set k gets the times (starts[k], ends[k]).
inline PackedSequence MakePacked(const Sets& sets, std::vector<double> starts,
                                 std::vector<double> ends) {
  PatternArrays arrays(sets);
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

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_PATTERN_PATTERN_TEST_UTIL_H_
