#include "support/filebytes.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

#include "support/clierror.h"

namespace seqlattice_cli {

namespace {

// The mapping of the file's first `size` bytes with its pages already in
// place, or null.
void* mapWhole(const std::string& path, std::size_t size) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return nullptr;
  // The path may name another, shorter file by now (replaced while we
  // opened it): touching pages past its end would kill the process.
  struct stat info;
  if (::fstat(fd, &info) != 0 ||
      static_cast<std::size_t>(info.st_size) < size) {
    ::close(fd);
    return nullptr;
  }
  void* mapped =
      ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0);
  ::close(fd);
  return mapped == MAP_FAILED ? nullptr : mapped;
}

}  // namespace

FileBytes::FileBytes(const std::string& path, std::istream& file,
                     std::size_t size)
    : size_(size) {
  mapped_ = mapWhole(path, size);
  if (mapped_ != nullptr) {
    data_ = static_cast<const char*>(mapped_);
    return;
  }
  buffer_.reset(new (std::nothrow) char[size]);
  if (buffer_ == nullptr) {
    failInput(path + ": damaged dictionary record (too large to load)");
  }
  file.seekg(0);
  if (!file.read(buffer_.get(), static_cast<std::streamsize>(size))) {
    failInput(path + ": cannot read: " + std::strerror(errno));
  }
  data_ = buffer_.get();
}

FileBytes::~FileBytes() {
  if (mapped_ != nullptr) ::munmap(mapped_, size_);
}

}  // namespace seqlattice_cli
