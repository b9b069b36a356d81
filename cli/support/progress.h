// Progress notes for a person watching a long command: written to standard
// error, and only when it is a terminal, so that pipes, logs and tests see
// nothing. Each note replaces the previous one on the same line.
#ifndef SEQLATTICE_CLI_SUPPORT_PROGRESS_H_
#define SEQLATTICE_CLI_SUPPORT_PROGRESS_H_

#include <string>

namespace seqlattice_cli {

class Progress {
 public:
  Progress();
  ~Progress();  // clears the line
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void note(const std::string& text);

 private:
  bool enabled_;
  std::size_t shown_ = 0;  // length of the note on screen
};

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_PROGRESS_H_
