// MemoryBuffer: a read-only stream buffer over bytes held in memory, so that
// the library's readers, which take a stream, read a model file that was
// read whole instead of going to a file buffer for every field. A read is a
// memcpy; seeking works from the start, the position and the end, as the
// readers' size checks need. The bytes are not owned and must outlive the
// buffer. Not thread-safe.
#ifndef SEQLATTICE_CLI_SUPPORT_MEMORYBUFFER_H_
#define SEQLATTICE_CLI_SUPPORT_MEMORYBUFFER_H_

#include <cstddef>
#include <streambuf>

namespace seqlattice_cli {

class MemoryBuffer : public std::streambuf {
 public:
  MemoryBuffer(const char* data, std::size_t size);

 protected:
  std::streamsize xsgetn(char* dst, std::streamsize n) override;
  pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                   std::ios_base::openmode which) override;
  pos_type seekpos(pos_type position, std::ios_base::openmode which) override;
};

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_MEMORYBUFFER_H_
