#include "support/stdoutbuffer.h"

#include <unistd.h>

#include <cerrno>

namespace seqlattice_cli {

StdoutBuffer::StdoutBuffer(int fd) : fd_(fd), buffer_(std::size_t{1} << 16) {
  setp(buffer_.data(), buffer_.data() + buffer_.size());
}

StdoutBuffer::~StdoutBuffer() { drain(); }

bool StdoutBuffer::drain() {
  const char* at = pbase();
  const char* end = pptr();
  while (error_ == 0 && at < end) {
    ssize_t written = write(fd_, at, static_cast<std::size_t>(end - at));
    if (written < 0) {
      if (errno != EINTR) error_ = errno;
      continue;
    }
    at += written;
  }
  setp(buffer_.data(), buffer_.data() + buffer_.size());
  return error_ == 0;
}

int StdoutBuffer::overflow(int c) {
  if (!drain()) return traits_type::eof();
  if (!traits_type::eq_int_type(c, traits_type::eof())) {
    *pptr() = traits_type::to_char_type(c);
    pbump(1);
  }
  return traits_type::not_eof(c);
}

int StdoutBuffer::sync() { return drain() ? 0 : -1; }

}  // namespace seqlattice_cli
