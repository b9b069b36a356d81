#include "seqlattice/input/patternfile.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "seqlattice/input/inputerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {
namespace {

PatternFile read(const std::string& text) {
  std::istringstream in(text);
  return readPatterns(in, "p.txt");
}

std::string problemOf(const std::string& text) {
  try {
    read(text);
  } catch (const InputError& e) {
    return e.what();
  }
  return "no error";
}

TEST(PatternFileTest, ReadsTheSpmfForm) {
  PatternFile file = read(
      "@CONVERTED_FROM_TEXT\n@ITEM=3=tea\n# a comment\n\n"
      "1 -1 #SUP: 9\n3 1 -1 2 -1 #SUP: 7\r\n");
  EXPECT_FALSE(file.json);
  EXPECT_EQ(file.patterns, 2);
  EXPECT_EQ(file.records,
            (std::vector<int>{9, 0, 1, 1, 1, 7, 0, 2, 2, 1, 3, 1, 2}));
  EXPECT_EQ(file.items.labelOf(3), "tea");
}

TEST(PatternFileTest, ReadsJsonLines) {
  PatternFile file = read(
      "{\"sequence\":[[1],[2,3]],\"freq\":7}\n"
      " { \"freq\" : 4 , \"sequence\" : [ [\"t\\u00e9\"] , [\"a\", 2] ] }\n");
  EXPECT_TRUE(file.json);
  EXPECT_EQ(file.patterns, 2);
  // "a" and "té" take the smallest codes no numeric label uses: 0 and 4.
  EXPECT_EQ(file.items.labelOf(0), "a");
  EXPECT_EQ(file.items.labelOf(4), "t\xC3\xA9");
  EXPECT_EQ(file.records, (std::vector<int>{7, 0, 2, 1, 1, 2, 2, 3,  //
                                            4, 0, 2, 1, 4, 2, 0, 2}));
}

TEST(PatternFileTest, NamesTheLineOfBadText) {
  EXPECT_EQ(problemOf("1 -1 #SUP: 2\n1 2 #SUP: 3\n"),
            "p.txt:2: expected -1 before #SUP:");
  EXPECT_EQ(problemOf("1 -1 2 -1\n"),
            "p.txt:1: expected #SUP: after the pattern");
  EXPECT_EQ(problemOf("1 -1 #SUP: 0\n"),
            "p.txt:1: expected a count from 1 to 2147483647 after #SUP:, "
            "found '0'");
  EXPECT_EQ(problemOf("1 x -1 #SUP: 2\n"),
            "p.txt:1: expected an item or -1, found 'x'");
  EXPECT_EQ(problemOf("2 2 -1 #SUP: 2\n"),
            "p.txt:1: an item set holds an item twice");
  EXPECT_EQ(problemOf("{\"sequence\":[[1]],\"freq\":3}\n{\"sequence\":[]"
                      ",\"freq\":3}\n"),
            "p.txt:2: empty sequence");
  EXPECT_EQ(problemOf("{\"sequence\":[[1]]}\n"), "p.txt:1: no \"freq\"");
  EXPECT_EQ(problemOf("{\"sequence\":[[1.5]],\"freq\":1}\n"),
            "p.txt:1: expected ',' or ']'");
  EXPECT_EQ(problemOf("{\"sequence\":[[true]],\"freq\":1}\n"),
            "p.txt:1: expected an item (an integer or a string), found "
            "\"true]],\"freq\"");
  EXPECT_EQ(problemOf("{\"items\":[[1]],\"freq\":1}\n"),
            "p.txt:1: unexpected key \"items\"");
  EXPECT_EQ(problemOf("{\"sequence\":[[1]],\"freq\":1} x\n"),
            "p.txt:1: unexpected text after the object");
}

TEST(PatternFileTest, MissingFileIsAnInputError) {
  try {
    readPatternFile("/nonexistent/p.txt");
    FAIL() << "no error";
  } catch (const InputError& e) {
    EXPECT_EQ(std::string(e.what()), "/nonexistent/p.txt: cannot open file");
  }
}

}  // namespace
}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
