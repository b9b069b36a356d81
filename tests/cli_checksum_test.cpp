// The model file's checksum is the CRC-32 of zlib and PNG, so that readers in
// other languages can check it with their standard library.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "support/modelfile.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// One bit at a time, straight from the polynomial.
std::uint32_t bitwiseCrc32(const std::string& bytes) {
  std::uint32_t crc = 0xFFFFFFFFu;
  for (unsigned char byte : bytes) {
    crc ^= byte;
    for (int k = 0; k < 8; ++k)
      crc = (crc & 1) ? 0xEDB88320u ^ (crc >> 1) : crc >> 1;
  }
  return crc ^ 0xFFFFFFFFu;
}

TEST(ModelChecksumTest, IsTheStandardCrc32) {
  EXPECT_EQ(seqlattice_cli::crc32(""), 0u);
  EXPECT_EQ(seqlattice_cli::crc32("123456789"), 0xCBF43926u);
  EXPECT_EQ(seqlattice_cli::crc32("a"), 0xE8B7BE43u);
}

TEST(ModelChecksumTest, EveryLengthAndAlignmentMatchesTheBitwiseCrc) {
  std::string bytes;
  for (int i = 0; i < 300; ++i)
    bytes += static_cast<char>((i * 131 + 7) & 0xFF);
  for (std::size_t from = 0; from < 9; ++from) {
    for (std::size_t length = 0; from + length <= bytes.size(); length += 7) {
      const std::string part = bytes.substr(from, length);
      EXPECT_EQ(seqlattice_cli::crc32(part), bitwiseCrc32(part))
          << "from " << from << " length " << length;
    }
  }
}

// Long inputs take the folding path on processors that have it; adding in
// pieces of any size must give the CRC of the whole.
TEST(ModelChecksumTest, LongInputsInPiecesMatchTheBitwiseCrc) {
  std::string bytes;
  for (int i = 0; i < 5000; ++i)
    bytes += static_cast<char>((i * 2654435761u) >> 24);
  const std::uint32_t whole = bitwiseCrc32(bytes);
  EXPECT_EQ(seqlattice_cli::crc32(bytes), whole);
  EXPECT_EQ(whole, 0x8A6E226Fu);
  for (std::size_t piece : {1u, 15u, 16u, 63u, 64u, 65u, 100u, 1024u, 4999u}) {
    seqlattice_cli::Crc32 sum;
    for (std::size_t from = 0; from < bytes.size(); from += piece) {
      const std::size_t n =
          from + piece > bytes.size() ? bytes.size() - from : piece;
      sum.add(bytes.data() + from, n);
    }
    EXPECT_EQ(sum.value(), whole) << "pieces of " << piece;
  }
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
