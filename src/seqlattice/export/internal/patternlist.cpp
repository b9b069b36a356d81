#include "seqlattice/export/internal/patternlist.h"

#include <new>

#include "seqlattice/dictionary/sequencedictionary.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace internal {

PatternList::~PatternList() { Clear(); }

void PatternList::Fill(const SequenceDictionary& dictionary, int k) {
  Clear();
  // The dictionary fails only when memory runs out; what it listed before
  // that is deleted with the list.
  if (!dictionary.getSequencesOfSize(patterns_, k, false).IsOK()) {
    throw std::bad_alloc();
  }
}

void PatternList::Clear() {
  for (Sequence const* pattern : patterns_) delete pattern;
  patterns_.clear();
}

}  // namespace internal
}  // namespace SEQUENCE_NAMESPACE_800
