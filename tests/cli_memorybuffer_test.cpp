// The stream buffer over memory that model loading hands to the library's
// readers must read, seek and tell as a file buffer does at the same bytes.
#include <gtest/gtest.h>

#include <fstream>
#include <istream>
#include <string>

#include "support/memorybuffer.h"

namespace SEQUENCE_NAMESPACE_800 {

TEST(MemoryBufferTest, ReadsTheBytesInOrderAndStopsAtTheEnd) {
  const std::string bytes = "ABCDEFGHIJ";
  seqlattice_cli::MemoryBuffer buffer(bytes.data(), bytes.size());
  std::istream in(&buffer);
  char got[8] = {};
  ASSERT_TRUE(in.read(got, 4));
  EXPECT_EQ(std::string(got, 4), "ABCD");
  EXPECT_EQ(in.tellg(), 4);
  EXPECT_FALSE(in.read(got, 8));
  EXPECT_EQ(in.gcount(), 6);
  EXPECT_EQ(std::string(got, 6), "EFGHIJ");
  EXPECT_TRUE(in.eof());
  EXPECT_TRUE(in.fail());
}

TEST(MemoryBufferTest, SeeksFromTheStartThePositionAndTheEnd) {
  const std::string bytes = "0123456789";
  seqlattice_cli::MemoryBuffer buffer(bytes.data(), bytes.size());
  std::istream in(&buffer);
  in.seekg(0, std::ios::end);
  EXPECT_EQ(in.tellg(), 10);
  in.seekg(3);
  EXPECT_EQ(in.get(), '3');
  in.seekg(2, std::ios::cur);
  EXPECT_EQ(in.get(), '6');
  in.seekg(-2, std::ios::end);
  EXPECT_EQ(in.get(), '8');
  EXPECT_TRUE(in.good());
}

TEST(MemoryBufferTest, RefusesSeeksOutsideTheBytesAndKeepsThePosition) {
  const std::string bytes = "0123456789";
  seqlattice_cli::MemoryBuffer buffer(bytes.data(), bytes.size());
  EXPECT_EQ(buffer.pubseekpos(4, std::ios::in), 4);
  EXPECT_EQ(buffer.pubseekoff(1, std::ios::end, std::ios::in), -1);
  EXPECT_EQ(buffer.pubseekoff(-5, std::ios::beg, std::ios::in), -1);
  EXPECT_EQ(buffer.pubseekoff(0, std::ios::cur, std::ios::out), -1);
  EXPECT_EQ(buffer.pubseekoff(0, std::ios::cur, std::ios::in), 4);
  EXPECT_EQ(buffer.sgetc(), '4');
}

TEST(MemoryBufferTest, ServesAnFstreamWhoseBufferIsSwapped) {
  const std::string bytes = "xyz";
  seqlattice_cli::MemoryBuffer buffer(bytes.data(), bytes.size());
  std::fstream in;
  static_cast<std::ios&>(in).rdbuf(&buffer);
  char got[3] = {};
  ASSERT_TRUE(in.read(got, 3));
  EXPECT_EQ(std::string(got, 3), "xyz");
  EXPECT_EQ(in.tellg(), 3);
}

}  // namespace SEQUENCE_NAMESPACE_800
