#include "seqlattice/input/inputerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

namespace {

std::string located(const std::string& file, long line,
                    const std::string& problem) {
  return file + (line > 0 ? ":" + std::to_string(line) : "") + ": " + problem;
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
