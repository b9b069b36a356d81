// AtomicFile writes an output file so that a reader, or a crash, sees either
// the file as it was or the complete new one, never a half-written or
// clobbered file. The content goes to a temporary file first; commit() puts
// it in place. How depends on what the path names:
//
//   nothing yet, or a regular file with one link
//       the temporary file is made in the target's directory and renamed
//       over it (atomic); a replaced file keeps its mode and, where the
//       system allows, its owner and group
//   a regular file with several hard links
//       renaming would cut the links, so the complete content is copied into
//       the file itself (the file is only touched once the content is whole)
//   a device, a FIFO or a socket (/dev/null, /dev/stdout, a pipe)
//       written directly, through a temporary file that has no name
//   a symbolic link
//       followed: the file it leads to is written as above
//   a directory
//       refused
//
// A file not committed (an error, an exception) is removed by the
// destructor, and by a SIGINT, SIGTERM or SIGHUP handler (tempcleanup.h).
// Not copyable; one writer only.
#ifndef SEQLATTICE_CLI_SUPPORT_ATOMICFILE_H_
#define SEQLATTICE_CLI_SUPPORT_ATOMICFILE_H_

#include <sys/stat.h>

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

  // Flushes, closes and puts the content in place; throws CliError (exit 1)
  // when any of it fails, leaving a renamed-over target untouched.
  void commit();

  // Throws CliError (exit 1): the path cannot be written, with the reason
  // of the last failed call when there is one.
  [[noreturn]] void failWrite() const;

 private:
  enum class Placement { kRename, kCopyIntoFile, kDirect };

  void openTemporary(const std::string& directory);
  void copyIntoTarget();

  std::string path_;    // as the user named it, for messages
  std::string target_;  // with symbolic links followed
  Placement placement_ = Placement::kRename;
  struct stat existing_ = {};
  bool exists_ = false;
  std::string tempPath_;  // empty once removed or renamed
  int cleanupSlot_ = -1;
  std::fstream stream_;
};

// Runs write on standard output when path is empty or "-", else on an
// AtomicFile for path that is committed when write returns.
void writeOutput(const std::string& path,
                 const std::function<void(std::ostream&)>& write);

// Refuses (CliError, exit 2) an output path that names the same regular
// file as the input path, which writing would destroy before or while it
// is read.
void refuseSameFile(const std::string& input, const std::string& output);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_ATOMICFILE_H_
