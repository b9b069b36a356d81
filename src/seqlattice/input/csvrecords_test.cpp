#include "seqlattice/input/csvrecords.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "seqlattice/input/inputerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {
namespace {

using Records = std::vector<std::vector<std::string>>;

// All records of text, each with the line it starts on.
Records readAll(const std::string& text, char delimiter = ',',
                std::vector<long>* lines = nullptr) {
  std::istringstream in(text);
  CsvRecords records(in, "t.csv", delimiter);
  Records result;
  std::vector<std::string> fields;
  while (records.next(fields)) {
    result.push_back(fields);
    if (lines != nullptr) lines->push_back(records.line());
  }
  return result;
}

std::string errorOf(const std::string& text) {
  try {
    readAll(text);
  } catch (const InputError& error) {
    return error.what();
  }
  return "no error";
}

TEST(CsvRecordsTest, SplitsPlainFields) {
  EXPECT_EQ(readAll("a,b,c\n1,2,3\n"),
            (Records{{"a", "b", "c"}, {"1", "2", "3"}}));
}

TEST(CsvRecordsTest, LastLineWithoutBreak) {
  EXPECT_EQ(readAll("a,b\nc,d"), (Records{{"a", "b"}, {"c", "d"}}));
}

TEST(CsvRecordsTest, EmptyFieldsAreKept) {
  EXPECT_EQ(readAll(",a,,\n"), (Records{{"", "a", "", ""}}));
}

TEST(CsvRecordsTest, QuotedFieldsWithDelimitersQuotesAndBreaks) {
  std::vector<long> lines;
  Records records = readAll(
      "\"a,b\",\"say \"\"hi\"\"\",\"two\nlines\"\nnext,\"\",x\n", ',', &lines);
  EXPECT_EQ(records,
            (Records{{"a,b", "say \"hi\"", "two\nlines"}, {"next", "", "x"}}));
  EXPECT_EQ(lines, (std::vector<long>{1, 3}));
}

TEST(CsvRecordsTest, CrlfLineEnds) {
  EXPECT_EQ(readAll("a,b\r\n1,\"x\r\ny\"\r\n"),
            (Records{{"a", "b"}, {"1", "x\ny"}}));
}

TEST(CsvRecordsTest, EmptyAndBlankLinesAreSkipped) {
  std::vector<long> lines;
  Records records = readAll("\n\na,b\n\r\n   \n1,2\n\n", ',', &lines);
  EXPECT_EQ(records, (Records{{"a", "b"}, {"1", "2"}}));
  EXPECT_EQ(lines, (std::vector<long>{3, 6}));
}

TEST(CsvRecordsTest, SpacesAroundFieldsAreDropped) {
  EXPECT_EQ(readAll(" a , b b ,  \" c \"  \n"), (Records{{"a", "b b", " c "}}));
}

TEST(CsvRecordsTest, QuoteInsideUnquotedFieldIsText) {
  EXPECT_EQ(readAll("12\" pipe,x\n"), (Records{{"12\" pipe", "x"}}));
}

TEST(CsvRecordsTest, TabDelimiterKeepsSpacesInsideFields) {
  EXPECT_EQ(readAll("a b\tc\t\n", '\t'), (Records{{"a b", "c", ""}}));
}

TEST(CsvRecordsTest, ByteOrderMarkIsSkipped) {
  EXPECT_EQ(readAll("\xEF\xBB\xBF"
                    "customer,item\n"),
            (Records{{"customer", "item"}}));
}

TEST(CsvRecordsTest, UnterminatedQuoteNamesTheLineWhereItOpened) {
  EXPECT_EQ(errorOf("a,b\n1,\"open\nmore\n"),
            "t.csv:2: unterminated quoted field");
}

TEST(CsvRecordsTest, TextAfterClosingQuoteIsAnError) {
  EXPECT_EQ(errorOf("a,b\n\n\"x\"y,2\n"),
            "t.csv:3: unexpected text after a closing quote");
}

TEST(CsvRecordsTest, EmptyInputHasNoRecords) {
  EXPECT_TRUE(readAll("").empty());
  EXPECT_TRUE(readAll("\n\r\n").empty());
}

}  // namespace
}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
