// ChunkBuffer is a stream buffer in memory that keeps what is written to it
// in chunks of a megabyte: it grows without moving what it holds (a string
// buffer copies all it holds each time it doubles, and once more to hand it
// out), and it passes its bytes on to another stream chunk by chunk. The
// parallel save makes each level's record in one of these.
//
// Not part of the public interface. Not safe for concurrent use.
#ifndef SEQLATTICE_IO_INTERNAL_CHUNKBUFFER_H_
#define SEQLATTICE_IO_INTERNAL_CHUNKBUFFER_H_

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <ostream>
#include <streambuf>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace io_internal {

class ChunkBuffer : public std::streambuf {
 public:
  static constexpr std::size_t kChunkBytes = std::size_t{1} << 20;

  ChunkBuffer() = default;
  ChunkBuffer(const ChunkBuffer&) = delete;
  ChunkBuffer& operator=(const ChunkBuffer&) = delete;

  // Bytes written so far.
  std::size_t size() const {
    return chunks_.empty() ? 0
                           : (chunks_.size() - 1) * kChunkBytes +
                                 static_cast<std::size_t>(pptr() - pbase());
  }

  // Writes every byte held to out, in order, and lets go of the chunks as
  // they are written; the buffer is then empty.
  void moveTo(std::ostream& out) {
    for (std::size_t c = 0; c < chunks_.size(); ++c) {
      const std::size_t n = c + 1 < chunks_.size()
                                ? kChunkBytes
                                : static_cast<std::size_t>(pptr() - pbase());
      out.write(chunks_[c].get(), static_cast<std::streamsize>(n));
      chunks_[c].reset();
    }
    chunks_.clear();
    setp(nullptr, nullptr);
  }

 protected:
  int_type overflow(int_type c) override {
    if (traits_type::eq_int_type(c, traits_type::eof())) {
      return traits_type::not_eof(c);
    }
    addChunk();
    *pptr() = traits_type::to_char_type(c);
    pbump(1);
    return c;
  }

  std::streamsize xsputn(const char* s, std::streamsize n) override {
    std::streamsize done = 0;
    while (done < n) {
      if (pptr() == epptr()) addChunk();
      const std::streamsize step =
          std::min<std::streamsize>(n - done, epptr() - pptr());
      std::memcpy(pptr(), s + done, static_cast<std::size_t>(step));
      pbump(static_cast<int>(step));
      done += step;
    }
    return n;
  }

 private:
  void addChunk() {
    // Left uninitialised: every byte is written before it is read.
    chunks_.emplace_back(new char[kChunkBytes]);
    char* begin = chunks_.back().get();
    setp(begin, begin + kChunkBytes);
  }

  std::vector<std::unique_ptr<char[]>> chunks_;
};

}  // namespace io_internal
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_IO_INTERNAL_CHUNKBUFFER_H_
