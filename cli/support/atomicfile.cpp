#include "support/atomicfile.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <utility>
#include <vector>

#include "support/clierror.h"
#include "support/tempcleanup.h"

namespace seqlattice_cli {

namespace {

std::string directoryOf(const std::string& path) {
  std::string::size_type slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string baseNameOf(const std::string& path) {
  std::string::size_type slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

[[noreturn]] void failWith(const std::string& path, int error) {
  failInput(path + ": cannot write: " +
            (error != 0 ? std::strerror(error) : "output error"));
}

// The path with every symbolic link of its last component followed, also a
// link to a file that does not exist yet (it is created where it points).
std::string followLinks(const std::string& path) {
  std::string current = path;
  for (int hops = 0; hops < 40; ++hops) {
    struct stat info;
    if (lstat(current.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) {
      return current;
    }
    std::vector<char> link(PATH_MAX + 1);
    ssize_t n = readlink(current.c_str(), link.data(), PATH_MAX);
    if (n <= 0) return current;
    std::string next(link.data(), static_cast<std::size_t>(n));
    current = next[0] == '/' ? next : directoryOf(current) + "/" + next;
  }
  failWith(path, ELOOP);
}

// mkstemp makes files readable by the owner only; a new file gets the mode
// a plain create would give it.
void setUsualMode(int fd) {
  mode_t mask = umask(0);
  umask(mask);
  fchmod(fd, 0666 & ~mask);
}

// Writes all n bytes to fd; false with errno set when it cannot.
bool writeAll(int fd, const char* data, std::size_t n) {
  while (n > 0) {
    ssize_t written = write(fd, data, n);
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    data += written;
    n -= static_cast<std::size_t>(written);
  }
  return true;
}

}  // namespace

AtomicFile::AtomicFile(std::string path) : path_(std::move(path)) {
  exists_ = stat(path_.c_str(), &existing_) == 0;
  if (exists_ && S_ISDIR(existing_.st_mode)) failWith(path_, EISDIR);
  if (exists_ && !S_ISREG(existing_.st_mode)) {
    // A device or a pipe, also behind a link (/dev/stdout): opened by the
    // name given. Its directory may not be writable (/dev) and is no place
    // for a file; the content waits in a nameless temporary file.
    target_ = path_;
    placement_ = Placement::kDirect;
    const char* tmp = std::getenv("TMPDIR");
    openTemporary(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp");
    unregisterTempFile(cleanupSlot_);
    cleanupSlot_ = -1;
    std::remove(tempPath_.c_str());
    tempPath_.clear();
    return;
  }
  target_ = followLinks(path_);
  placement_ = exists_ && existing_.st_nlink > 1 ? Placement::kCopyIntoFile
                                                 : Placement::kRename;
  openTemporary(directoryOf(target_));
}

void AtomicFile::openTemporary(const std::string& directory) {
  std::string pattern = directory + "/." + baseNameOf(target_) + ".tmp-XXXXXX";
  std::vector<char> name(pattern.begin(), pattern.end());
  name.push_back('\0');
  int fd = mkstemp(name.data());
  if (fd < 0) failWith(path_, errno);
  tempPath_ = name.data();
  cleanupSlot_ = registerTempFile(tempPath_);
  if (placement_ == Placement::kRename && exists_) {
    // The replaced file's owner, group and mode carry over; changing the
    // owner needs privileges and is skipped without them.
    if (fchown(fd, existing_.st_uid, existing_.st_gid) != 0) errno = 0;
    fchmod(fd, existing_.st_mode & 07777);
  } else {
    setUsualMode(fd);
  }
  close(fd);
  stream_.open(tempPath_, std::ios::in | std::ios::out | std::ios::binary |
                              std::ios::trunc);
  if (!stream_) failWith(path_, errno);
}

AtomicFile::~AtomicFile() {
  stream_.close();
  if (!tempPath_.empty()) std::remove(tempPath_.c_str());
  unregisterTempFile(cleanupSlot_);
}

void AtomicFile::failWrite() const { failWith(path_, errno); }

void AtomicFile::commit() {
  errno = 0;
  stream_.flush();
  if (!stream_.good()) failWrite();
  if (placement_ != Placement::kRename) {
    copyIntoTarget();
    stream_.close();
    return;
  }
  stream_.close();
  if (stream_.fail()) failWrite();
  if (std::rename(tempPath_.c_str(), target_.c_str()) != 0) failWrite();
  tempPath_.clear();
}

void AtomicFile::copyIntoTarget() {
  int flags = O_WRONLY | O_NOCTTY | O_CLOEXEC;
  if (placement_ == Placement::kCopyIntoFile) flags |= O_TRUNC;
  int fd = open(target_.c_str(), flags);
  if (fd < 0) failWrite();
  stream_.seekg(0);
  std::vector<char> buffer(1 << 20);
  bool ok = true;
  int error = 0;
  while (ok) {
    stream_.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    const std::streamsize got = stream_.gcount();
    if (got <= 0) break;
    ok = writeAll(fd, buffer.data(), static_cast<std::size_t>(got));
    if (!ok) error = errno;
  }
  if (close(fd) != 0 && ok) {
    ok = false;
    error = errno;
  }
  if (!ok || stream_.bad()) failWith(path_, error);
}

void writeOutput(const std::string& path,
                 const std::function<void(std::ostream&)>& write) {
  if (path.empty() || path == "-") {
    write(std::cout);  // main checks standard output once the command ends
    return;
  }
  AtomicFile file(path);
  write(file.stream());
  file.commit();
}

void refuseSameFile(const std::string& input, const std::string& output) {
  struct stat in;
  struct stat out;
  if (stat(input.c_str(), &in) == 0 && stat(output.c_str(), &out) == 0 &&
      S_ISREG(in.st_mode) && in.st_dev == out.st_dev &&
      in.st_ino == out.st_ino) {
    failUsage("the output file " + output + " is the input file " + input +
              ": writing it would destroy the input");
  }
}

}  // namespace seqlattice_cli
