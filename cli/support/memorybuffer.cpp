#include "support/memorybuffer.h"

#include <algorithm>
#include <cstring>

namespace seqlattice_cli {

MemoryBuffer::MemoryBuffer(const char* data, std::size_t size) {
  // The get area never changes the bytes; streambuf only wants them mutable.
  char* begin = const_cast<char*>(data);
  setg(begin, begin, begin + size);
}

std::streamsize MemoryBuffer::xsgetn(char* dst, std::streamsize n) {
  const std::streamsize got = std::min<std::streamsize>(n, egptr() - gptr());
  if (got <= 0) return 0;
  std::memcpy(dst, gptr(), static_cast<std::size_t>(got));
  gbump(static_cast<int>(got));
  return got;
}

MemoryBuffer::pos_type MemoryBuffer::seekoff(off_type offset,
                                             std::ios_base::seekdir from,
                                             std::ios_base::openmode which) {
  if ((which & std::ios_base::in) == 0) return pos_type(off_type(-1));
  off_type base = 0;
  if (from == std::ios_base::cur) base = gptr() - eback();
  if (from == std::ios_base::end) base = egptr() - eback();
  const off_type target = base + offset;
  if (target < 0 || target > egptr() - eback()) return pos_type(off_type(-1));
  setg(eback(), eback() + target, egptr());
  return pos_type(target);
}

MemoryBuffer::pos_type MemoryBuffer::seekpos(pos_type position,
                                             std::ios_base::openmode which) {
  return seekoff(off_type(position), std::ios_base::beg, which);
}

}  // namespace seqlattice_cli
