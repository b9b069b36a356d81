#include "seqlattice/io/internal/chunkbuffer.h"

#include <gtest/gtest.h>

#include <ostream>
#include <sstream>
#include <string>

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Bytes 0, 1, ... 250, 0, 1, ... : no two neighbouring chunks look alike.
std::string pattern(std::size_t n) {
  std::string bytes(n, '\0');
  for (std::size_t i = 0; i < n; ++i) bytes[i] = static_cast<char>(i % 251);
  return bytes;
}

TEST(ChunkBufferTest, KeepsWritesAcrossChunksInOrder) {
  constexpr std::size_t kChunk = io_internal::ChunkBuffer::kChunkBytes;
  const std::string bytes = pattern(2 * kChunk + 3);
  io_internal::ChunkBuffer buffer;
  std::ostream out(&buffer);
  out.put('x');
  out.write(bytes.data(), static_cast<std::streamsize>(kChunk));
  out.write(bytes.data() + kChunk,
            static_cast<std::streamsize>(bytes.size() - kChunk));
  out << 'y';
  ASSERT_TRUE(out.good());
  EXPECT_EQ(buffer.size(), bytes.size() + 2);
  std::ostringstream copy;
  buffer.moveTo(copy);
  EXPECT_EQ(copy.str(), "x" + bytes + "y");
  EXPECT_EQ(buffer.size(), 0u);
}

TEST(ChunkBufferTest, IsReusedOnceMoved) {
  io_internal::ChunkBuffer buffer;
  std::ostream out(&buffer);
  out << "first";
  std::ostringstream first;
  buffer.moveTo(first);
  out << "second";
  std::ostringstream second;
  buffer.moveTo(second);
  EXPECT_EQ(first.str(), "first");
  EXPECT_EQ(second.str(), "second");
}

TEST(ChunkBufferTest, AnEmptyBufferWritesNothing) {
  io_internal::ChunkBuffer buffer;
  std::ostringstream out;
  buffer.moveTo(out);
  EXPECT_EQ(out.str(), "");
  EXPECT_EQ(buffer.size(), 0u);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
