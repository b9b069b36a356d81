// AtomicFile writes a file so that a reader, or a crash, sees either the file
// as it was or the complete new one, never a half-written or clobbered file:
// the content goes to a temporary file in the target's directory, which
// commit() renames over the target. A file not committed (an error, an
// exception) is removed by the destructor. Not copyable; one writer only.
#ifndef SEQLATTICE_CLI_SUPPORT_ATOMICFILE_H_
#define SEQLATTICE_CLI_SUPPORT_ATOMICFILE_H_

#include <fstream>
#include <functional>
#include <ostream>
#include <string>

namespace seqlattice_cli {

class AtomicFile {
 public:
  // Creates the temporary file; throws CliError (exit 1) when it cannot.
  explicit AtomicFile(std::string path);
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  // Binary read-write stream on the temporary file (the library's savers
  // take a std::fstream).
  std::fstream& stream() { return stream_; }

  // Flushes, closes and renames into place; throws CliError (exit 1) when
  // any of it fails, leaving the target untouched.
  void commit();

 private:
  std::string path_;
  std::string tempPath_;
  std::fstream stream_;
  bool committed_ = false;
};

// Runs write on standard output when path is empty or "-", else on an
// AtomicFile for path that is committed when write returns.
void writeOutput(const std::string& path,
                 const std::function<void(std::ostream&)>& write);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_ATOMICFILE_H_
