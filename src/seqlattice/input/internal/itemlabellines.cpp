#include "seqlattice/input/internal/itemlabellines.h"

#include "seqlattice/input/inputerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {
namespace internal {

bool ItemLabelLines::take(const std::string& line, long lineNumber) {
  static const std::string kPrefix = "@ITEM=";
  if (line.compare(0, kPrefix.size(), kPrefix) != 0) return false;
  std::string rest = line.substr(kPrefix.size());
  if (!rest.empty() && rest.back() == '\r') rest.pop_back();
  std::size_t equals = rest.find('=');
  int code = 0;
  if (equals == std::string::npos ||
      !ItemLabels::parseNumeric(rest.substr(0, equals), &code) || code < 0) {
    fail(lineNumber, "expected @ITEM=code=label with a non-negative code");
  }
  std::string label = rest.substr(equals + 1);
  int numeric = 0;
  if (label.empty() || ItemLabels::parseNumeric(label, &numeric)) {
    fail(lineNumber, "the label of item " + std::to_string(code) +
                         " must be a non-numeric text");
  }
  if (!codes_.insert(code).second) {
    fail(lineNumber, "item " + std::to_string(code) + " is labelled twice");
  }
  if (!labels_.insert(label).second) {
    fail(lineNumber, "label \"" + label + "\" names two items");
  }
  pairs_.emplace_back(code, std::move(label));
  return true;
}

void ItemLabelLines::fail(long lineNumber, const std::string& problem) const {
  throw InputError(name_, lineNumber, problem);
}

}  // namespace internal
}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
