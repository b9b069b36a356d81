#include "seqlattice/input/inputerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

namespace {

// what() is a C string: a NUL byte of the input (in a quoted token) would
// cut the message short, so it is written out as \x00.
std::string withoutNul(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '\0') {
      out += "\\x00";
    } else {
      out += c;
    }
  }
  return out;
}

std::string located(const std::string& file, long line,
                    const std::string& problem) {
  return withoutNul(file + (line > 0 ? ":" + std::to_string(line) : "") + ": " +
                    problem);
}

}  // namespace

InputError::InputError(const std::string& file, long line,
                       const std::string& problem)
    : std::runtime_error(located(file, line, problem)),
      file_(file),
      line_(line),
      problem_(problem) {}

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
