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

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
