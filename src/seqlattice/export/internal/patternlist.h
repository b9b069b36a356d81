// PatternList holds the stored patterns of one dictionary level as the new
// Sequence objects that SequenceDictionary::getSequencesOfSize hands out, and
// deletes them when refilled or destroyed, so that no path leaks them.
#ifndef SEQLATTICE_EXPORT_INTERNAL_PATTERNLIST_H_
#define SEQLATTICE_EXPORT_INTERNAL_PATTERNLIST_H_

#include <vector>

#include "seqlattice/sequence/sequence.h"

namespace SEQUENCE_NAMESPACE_800 {

class SequenceDictionary;

namespace internal {

class PatternList {
 public:
  PatternList() = default;
  ~PatternList();
  PatternList(const PatternList&) = delete;
  PatternList& operator=(const PatternList&) = delete;

  // Replaces the list by the patterns of k items, in the table's order, each
  // set timed with its index. Throws std::bad_alloc when the dictionary
  // cannot list them all.
  void Fill(const SequenceDictionary& dictionary, int k);
  const std::vector<Sequence const*>& Patterns() const { return patterns_; }

 private:
  void Clear();

  std::vector<Sequence const*> patterns_;
};

}  // namespace internal
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_EXPORT_INTERNAL_PATTERNLIST_H_
