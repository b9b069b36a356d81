// ItemLabelLines reads the "@ITEM=code=label" lines of the SPMF forms (a
// sequence file, a pattern file), checking each as it comes: a non-negative
// code, a non-numeric label, neither given twice. Problems throw InputError
// naming the source and the line. Holds a reference to the name it is given.
#ifndef SEQLATTICE_INPUT_INTERNAL_ITEMLABELLINES_H_
#define SEQLATTICE_INPUT_INTERNAL_ITEMLABELLINES_H_

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "seqlattice/input/itemlabels.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {
namespace internal {

class ItemLabelLines {
 public:
  explicit ItemLabelLines(const std::string& name) : name_(name) {}

  // Takes the line if it is an item label line; returns whether it was.
  bool take(const std::string& line, long lineNumber);

  ItemLabels labels() const { return ItemLabels::fromStringLabels(pairs_); }

 private:
  [[noreturn]] void fail(long lineNumber, const std::string& problem) const;

  const std::string& name_;
  std::set<int> codes_;
  std::set<std::string> labels_;
  std::vector<std::pair<int, std::string>> pairs_;
};

}  // namespace internal
}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_INTERNAL_ITEMLABELLINES_H_
