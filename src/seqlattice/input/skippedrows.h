// The data rows a forgiving reader dropped instead of stopping at the first
// bad one, counted per reason ("blank customer", "bad time", ...) in order of
// first occurrence, with the first few line numbers of each so that a person
// can look at them. A plain value; not thread-safe.
#ifndef SEQLATTICE_INPUT_SKIPPEDROWS_H_
#define SEQLATTICE_INPUT_SKIPPEDROWS_H_

#include <cstddef>
#include <string>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

class SkippedRows {
 public:
  // How many line numbers of each reason are kept.
  static constexpr std::size_t kLinesKept = 5;

  struct Reason {
    std::string what;  // "blank customer", "blank item", "bad time", ...
    long count = 0;
    std::vector<long> firstLines;  // at most kLinesKept
  };

  void add(const std::string& what, long line);
  long total() const;
  const std::vector<Reason>& reasons() const { return reasons_; }
  // "2 blank customer (lines 4, 7), 1 bad time (line 9)"; "" when none.
  std::string summary() const;

 private:
  std::vector<Reason> reasons_;
};

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_SKIPPEDROWS_H_
