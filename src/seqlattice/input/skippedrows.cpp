#include "seqlattice/input/skippedrows.h"

#include <algorithm>

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

void SkippedRows::add(const std::string& what, long line) {
  auto at = std::find_if(reasons_.begin(), reasons_.end(),
                         [&what](const Reason& r) { return r.what == what; });
  if (at == reasons_.end()) at = reasons_.insert(at, Reason{what, 0, {}});
  ++at->count;
  if (at->firstLines.size() < kLinesKept) at->firstLines.push_back(line);
}

long SkippedRows::total() const {
  long total = 0;
  for (const Reason& reason : reasons_) total += reason.count;
  return total;
}

std::string SkippedRows::summary() const {
  std::string text;
  for (const Reason& reason : reasons_) {
    if (!text.empty()) text += ", ";
    text += std::to_string(reason.count) + " " + reason.what +
            (reason.firstLines.size() > 1 ? " (lines " : " (line ");
    for (std::size_t i = 0; i < reason.firstLines.size(); ++i) {
      text += (i > 0 ? ", " : "") + std::to_string(reason.firstLines[i]);
    }
    text += reason.count > static_cast<long>(reason.firstLines.size())
                ? ", ...)"
                : ")";
  }
  return text;
}

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
