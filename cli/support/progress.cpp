#include "support/progress.h"

#include <unistd.h>

#include <iostream>

namespace seqlattice_cli {

Progress::Progress() : enabled_(isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (enabled_ && shown_ > 0) {
    std::cerr << "\r" << std::string(shown_, ' ') << "\r" << std::flush;
  }
}

void Progress::note(const std::string& text) {
  if (!enabled_) return;
  std::string padding(shown_ > text.size() ? shown_ - text.size() : 0, ' ');
  std::cerr << "\r" << text << padding << std::flush;
  shown_ = text.size();
}

}  // namespace seqlattice_cli
