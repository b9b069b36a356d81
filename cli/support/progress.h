// Progress notes for a person watching a long command, on standard error:
// when it is a terminal each note replaces the previous one on the same
// line; when it is not, notes are written only if asked for (--progress),
// one line each, so that pipes, logs and tests see nothing by default.
#ifndef SEQLATTICE_CLI_SUPPORT_PROGRESS_H_
#define SEQLATTICE_CLI_SUPPORT_PROGRESS_H_

#include <string>

namespace seqlattice_cli {

class Progress {
 public:
  // forced: write notes even when standard error is not a terminal.
  explicit Progress(bool forced = false);
  ~Progress();  // clears the line
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void note(const std::string& text);

 private:
  bool terminal_;
  bool enabled_;
  std::size_t shown_ = 0;  // length of the note on screen
};

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_PROGRESS_H_
