// InputError is the one exception type of the input subsystem: a transaction
// file that cannot be opened or read, or text in it that breaks its format.
// It names where the problem is, so that a person can go and look: what() is
// "file:line: problem" ("orders.csv:17: expected 3 columns, found 2"), or
// "file: problem" when the problem belongs to the whole file (it cannot be
// opened, it has no data rows).
//
// Values that a caller passes directly rather than reads from a file are
// checked as arguments: ItemLabels::fromStringLabels throws
// std::invalid_argument, as the rest of the library does.
#ifndef SEQLATTICE_INPUT_INPUTERROR_H_
#define SEQLATTICE_INPUT_INPUTERROR_H_

#include <stdexcept>
#include <string>

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

class InputError : public std::runtime_error {
 public:
  // line counts from 1; 0 for a problem of the whole file.
  InputError(const std::string& file, long line, const std::string& problem);

  const std::string& file() const { return file_; }
  long line() const { return line_; }
  const std::string& problem() const { return problem_; }

 private:
  std::string file_;
  long line_;
  std::string problem_;
};

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_INPUTERROR_H_
