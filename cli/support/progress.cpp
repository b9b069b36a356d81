#include "support/progress.h"

#include <unistd.h>

#include <iostream>

namespace seqlattice_cli {

Progress::Progress(bool forced)
    : terminal_(isatty(STDERR_FILENO) == 1), enabled_(terminal_ || forced) {}

Progress::~Progress() {
  if (terminal_ && shown_ > 0) {
    std::cerr << "\r" << std::string(shown_, ' ') << "\r" << std::flush;
  }
}

void Progress::note(const std::string& text) {
  if (!enabled_) return;
  if (!terminal_) {
    std::cerr << "seqlattice: " << text << "\n" << std::flush;
    return;
  }
  std::string padding(shown_ > text.size() ? shown_ - text.size() : 0, ' ');
  std::cerr << "\r" << text << padding << std::flush;
  shown_ = text.size();
}

}  // namespace seqlattice_cli
