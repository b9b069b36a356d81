// The pattern file writer: the lines it buffers must be those a line-by-line
// writer gives, for any item code and count, and reach the stream only
// through finish() or a full buffer.
#include <gtest/gtest.h>

#include <climits>
#include <sstream>
#include <string>
#include <vector>

#include "support/patternstream.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace test {

// Writes one pattern of the given sets and count through stream.
inline void writePattern(seqlattice_cli::PatternStream& stream,
                         std::vector<std::vector<int>> sets, long count) {
  std::vector<int*> arrays;
  for (std::vector<int>& set : sets) {
    set.insert(set.begin(), static_cast<int>(set.size()));
    arrays.push_back(set.data());
  }
  stream.addPattern(arrays.data(), static_cast<int>(arrays.size()), count, 0);
}

}  // namespace test

TEST(PatternStreamTest, SpmfLinesForEveryKindOfCodeAndCount) {
  std::ostringstream out;
  input::ItemLabels labels;
  seqlattice_cli::PatternStream stream(
      out, seqlattice_cli::PatternFormat::kSpmf, labels);
  test::writePattern(stream, {{0, 7}, {1048575}}, 0);
  test::writePattern(stream, {{1048576, INT_MAX}, {-3}}, 9);
  test::writePattern(stream, {{INT_MIN}}, 10);
  test::writePattern(stream, {{5}, {5}, {12}}, 99);
  test::writePattern(stream, {{5}}, 100);
  test::writePattern(stream, {{7}}, 1234567890123L);
  EXPECT_EQ(out.str(), "");
  stream.finish();
  EXPECT_EQ(out.str(),
            "0 7 -1 1048575 -1 #SUP: 0\n"
            "1048576 2147483647 -1 -3 -1 #SUP: 9\n"
            "-2147483648 -1 #SUP: 10\n"
            "5 -1 5 -1 12 -1 #SUP: 99\n"
            "5 -1 #SUP: 100\n"
            "7 -1 #SUP: 1234567890123\n");
}

TEST(PatternStreamTest, JsonLinesQuoteTextLabels) {
  std::ostringstream out;
  const input::ItemLabels labels = input::ItemLabels::assign({"tea", "42"});
  seqlattice_cli::PatternStream stream(
      out, seqlattice_cli::PatternFormat::kJson, labels);
  const int tea = *labels.codeOf("tea");
  test::writePattern(stream, {{tea, 42}, {tea}}, 31);
  stream.finish();
  EXPECT_EQ(out.str(), "{\"sequence\":[[\"tea\",42],[\"tea\"]],\"freq\":31}\n");
}

TEST(PatternStreamTest, AFullBufferGoesToTheStreamBeforeFinish) {
  std::ostringstream out;
  input::ItemLabels labels;
  seqlattice_cli::PatternStream stream(
      out, seqlattice_cli::PatternFormat::kSpmf, labels);
  const std::string line = "123456 -1 #SUP: 10000\n";
  long lines = 0;
  while (out.str().empty()) {
    test::writePattern(stream, {{123456}}, 10000);
    ++lines;
  }
  const std::size_t before = out.str().size();
  EXPECT_EQ(before, static_cast<std::size_t>(lines) * line.size());
  EXPECT_GE(before, std::size_t{1} << 20);
  stream.finish();
  EXPECT_EQ(out.str().size(), before);
  EXPECT_EQ(out.str().substr(0, line.size()), line);
}

}  // namespace SEQUENCE_NAMESPACE_800
