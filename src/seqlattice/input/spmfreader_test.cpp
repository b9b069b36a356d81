#include "seqlattice/input/spmfreader.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "seqlattice/input/inputerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {
namespace {

// Each customer as "t:items;t:items" for compact comparisons.
std::string describe(const mining::SequenceDatabase& db) {
  std::ostringstream out;
  for (std::size_t c = 0; c < db.customerCount(); ++c) {
    if (c > 0) out << " | ";
    for (std::size_t t = db.firstTransaction(c); t < db.endTransaction(c);
         ++t) {
      if (t > db.firstTransaction(c)) out << ';';
      out << db.time(t) << ':';
      for (const int* i = db.itemsBegin(t); i < db.itemsEnd(t); ++i) {
        out << (i > db.itemsBegin(t) ? "," : "") << *i;
      }
    }
  }
  return out.str();
}

mining::SequenceDatabase read(const std::string& text) {
  std::istringstream in(text);
  mining::SequenceDatabase db;
  readSpmf(in, "data.txt", db);
  return db;
}

// The message of the InputError that reading throws, or "no error".
template <class Read>
std::string errorFrom(const Read& readIt) {
  try {
    readIt();
  } catch (const InputError& e) {
    return e.what();
  }
  return "no error";
}

std::string errorOf(const std::string& text) {
  return errorFrom([&text]() { read(text); });
}

TEST(SpmfReaderTest, ReadsItemSetsInOrderWithIndexTimes) {
  mining::SequenceDatabase db = read("1 -1 3 2 3 -1 -2\n7 -1 -2\n");
  EXPECT_EQ(describe(db), "0:1;1:2,3 | 0:7");
  EXPECT_EQ(db.customerCount(), 2u);
  EXPECT_EQ(db.transactionCount(), 3u);
}

TEST(SpmfReaderTest, SkipsCommentsBlankLinesAndCarriageReturns) {
  mining::SequenceDatabase db = read(
      "@CONVERTED_FROM_TEXT\r\n# comment\n% other comment\n\n   \t\n"
      "1 -1 2 -1 -2\r\n\t5  6 -1 -2   \r\n-2\n");
  EXPECT_EQ(describe(db), "0:1;1:2 | 0:5,6 | ");
  EXPECT_EQ(db.customerCount(), 3u);
}

TEST(SpmfReaderTest, LastLineWithoutNewlineIsRead) {
  EXPECT_EQ(describe(read("4 -1 -2")), "0:4");
}

TEST(SpmfReaderTest, MalformedLinesNameFileAndLine) {
  EXPECT_EQ(errorOf("1 -1 -2\n1 -1 2 -1\n"),
            "data.txt:2: expected -2 at end of sequence");
  EXPECT_EQ(errorOf("1 -1 2 -2\n"), "data.txt:1: expected -1 before -2");
  EXPECT_EQ(errorOf("1 -1 -1 -2\n"), "data.txt:1: empty item set");
  EXPECT_EQ(errorOf("\n\n1 x -1 -2\n"),
            "data.txt:3: expected an item, -1 or -2, found 'x'");
  EXPECT_EQ(errorOf("1.5 -1 -2\n"),
            "data.txt:1: expected an item, -1 or -2, found '1.5'");
  EXPECT_EQ(errorOf("1 -3 -1 -2\n"), "data.txt:1: negative item -3");
  EXPECT_EQ(errorOf("1 -1 -2 4\n"), "data.txt:1: unexpected '4' after -2");
  EXPECT_EQ(errorOf("2147483648 -1 -2\n"),
            "data.txt:1: item 2147483648 is out of range");
}

TEST(SpmfReaderTest, ReadsAFileAndNamesItInErrors) {
  std::string path =
      testing::TempDir() + std::to_string(getpid()) + "_spmfreader_test.txt";
  {
    std::ofstream out(path);
    out << "1 2 -1 3 -1 -2\n2 -1 -2\n3 -1 x\n";
  }
  mining::SequenceDatabase db;
  EXPECT_EQ(errorFrom([&]() { readSpmfFile(path, db); }),
            path + ":3: expected an item, -1 or -2, found 'x'");
  EXPECT_EQ(db.customerCount(), 2u);
  std::remove(path.c_str());
}

TEST(SpmfReaderTest, MissingFileIsReported) {
  mining::SequenceDatabase db;
  EXPECT_EQ(errorFrom([&]() { readSpmfFile("/nonexistent/seq.txt", db); }),
            "/nonexistent/seq.txt: cannot open file");
}

TEST(SpmfReaderTest, FixtureFileMinesAsExpected) {
  mining::SequenceDatabase db;
  readSpmfFile(SEQLATTICE_SOURCE_DIR "/tests/data/mining/small.txt", db);
  EXPECT_EQ(db.customerCount(), 4u);
  EXPECT_EQ(describe(db),
            "0:1;1:1,2,3;2:1,3;3:4;4:3,6 | 0:1,4;1:3;2:2,3;3:1,5 | "
            "0:5,6;1:1,2;2:4,6;3:3;4:2 | 0:5;1:7;2:1,6;3:3;4:2;5:3");
}

}  // namespace
}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
