#include "support/atomicfile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <utility>
#include <vector>

#include "support/clierror.h"

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

// mkstemp makes files readable by the owner only; a model is an ordinary
// file, so give it the mode a plain create would.
void setUsualMode(int fd) {
  mode_t mask = umask(0);
  umask(mask);
  fchmod(fd, 0666 & ~mask);
}

}  // namespace

AtomicFile::AtomicFile(std::string path) : path_(std::move(path)) {
  std::string pattern =
      directoryOf(path_) + "/." + baseNameOf(path_) + ".tmp-XXXXXX";
  std::vector<char> name(pattern.begin(), pattern.end());
  name.push_back('\0');
  int fd = mkstemp(name.data());
  if (fd < 0) {
    failInput(path_ + ": cannot write: " + std::strerror(errno));
  }
  setUsualMode(fd);
  close(fd);
  tempPath_ = name.data();
  stream_.open(tempPath_, std::ios::in | std::ios::out | std::ios::binary |
                              std::ios::trunc);
  if (!stream_) {
    std::remove(tempPath_.c_str());
    failInput(path_ + ": cannot write: " + std::strerror(errno));
  }
}

AtomicFile::~AtomicFile() {
  if (!committed_) {
    stream_.close();
    std::remove(tempPath_.c_str());
  }
}

void AtomicFile::commit() {
  stream_.flush();
  bool written = stream_.good();
  stream_.close();
  if (!written || stream_.fail()) {
    failInput(path_ + ": cannot write: output error");
  }
  if (std::rename(tempPath_.c_str(), path_.c_str()) != 0) {
    failInput(path_ + ": cannot write: " + std::strerror(errno));
  }
  committed_ = true;
}

void writeOutput(const std::string& path,
                 const std::function<void(std::ostream&)>& write) {
  if (path.empty() || path == "-") {
    write(std::cout);
    std::cout.flush();
    if (!std::cout) failInput("cannot write to standard output");
    return;
  }
  AtomicFile file(path);
  write(file.stream());
  file.commit();
}

}  // namespace seqlattice_cli
