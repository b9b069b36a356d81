#include "seqlattice/input/itemlabels.h"

#include <climits>
#include <set>
#include <stdexcept>

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

bool ItemLabels::parseNumeric(std::string_view text, int* value) {
  bool negative = !text.empty() && text.front() == '-';
  std::string_view digits = negative ? text.substr(1) : text;
  // Canonical means the decimal text of the value is the label itself, so
  // "-0" and leading zeros are string labels.
  if (digits.empty() || (digits.front() == '0' && digits.size() > 1) ||
      (negative && digits == "0")) {
    return false;
  }
  long long magnitude = 0;
  for (char c : digits) {
    if (c < '0' || c > '9') return false;
    magnitude = magnitude * 10 + (c - '0');
    if (magnitude > static_cast<long long>(INT_MAX) + 1) return false;
  }
  long long result = negative ? -magnitude : magnitude;
  if (result > INT_MAX) return false;
  *value = static_cast<int>(result);
  return true;
}

ItemLabels ItemLabels::assign(const std::vector<std::string>& labels) {
  std::set<int> numericCodes;
  std::set<std::string> strings;
  for (const std::string& label : labels) {
    int code;
    if (parseNumeric(label, &code)) {
      numericCodes.insert(code);
    } else {
      strings.insert(label);
    }
  }
  ItemLabels result;
  int next = 0;
  for (const std::string& label : strings) {
    while (numericCodes.count(next) != 0) ++next;
    result.labelByCode_.emplace(next, label);
    result.codeByLabel_.emplace(label, next);
    ++next;
  }
  return result;
}

ItemLabels ItemLabels::fromStringLabels(
    const std::vector<std::pair<int, std::string>>& pairs) {
  ItemLabels result;
  for (const auto& [code, label] : pairs) {
    int ignored;
    if (code < 0) {
      throw std::invalid_argument("negative code " + std::to_string(code) +
                                  " for item label \"" + label + "\"");
    }
    if (parseNumeric(label, &ignored)) {
      throw std::invalid_argument("numeric item label \"" + label +
                                  "\" stored as a string label");
    }
    if (!result.labelByCode_.emplace(code, label).second) {
      throw std::invalid_argument("item code " + std::to_string(code) +
                                  " labelled twice");
    }
    if (!result.codeByLabel_.emplace(label, code).second) {
      throw std::invalid_argument("item label \"" + label + "\" stored twice");
    }
  }
  return result;
}

std::optional<int> ItemLabels::codeOf(std::string_view label) const {
  auto found = codeByLabel_.find(label);
  if (found != codeByLabel_.end()) return found->second;
  int code;
  if (parseNumeric(label, &code) && labelByCode_.count(code) == 0) return code;
  return std::nullopt;
}

std::string ItemLabels::labelOf(int code) const {
  auto found = labelByCode_.find(code);
  return found != labelByCode_.end() ? found->second : std::to_string(code);
}

std::vector<std::pair<int, std::string>> ItemLabels::stringLabels() const {
  return {labelByCode_.begin(), labelByCode_.end()};
}

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
