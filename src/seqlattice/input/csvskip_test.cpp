// Reading a CSV log that has bad rows: skipped and counted under
// CsvOptions::skipInvalid, and dates in a format of the caller's.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "seqlattice/input/csvreader.h"
#include "seqlattice/input/inputerror.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

input::LabelledDatabase readLog(const std::string& text,
                                const input::CsvOptions& options) {
  std::istringstream in(text);
  return input::readCsv(in, "log.csv", options);
}

std::string errorOf(const std::string& text, const input::CsvOptions& options) {
  try {
    readLog(text, options);
  } catch (const input::InputError& error) {
    return error.what();
  }
  return "no error";
}

// Lines 3 and 6 lack a customer, line 4 an item, line 5 has a bad time,
// line 7 a missing column and line 8 a number among dates.
constexpr char kDirtyLog[] =
    "customer,time,item\n"
    "ann,2024-01-01,tea\n"
    ",2024-01-02,pot\n"
    "bob,2024-01-02,\n"
    "bob,yesterday,pot\n"
    ",2024-01-03,cups\n"
    "bob,2024-01-04\n"
    "bob,17,pot\n"
    "bob,2024-01-05,pot\n";

TEST(CsvSkipTest, StopsAtTheFirstBadRowByDefault) {
  EXPECT_EQ(errorOf(kDirtyLog, input::CsvOptions()),
            "log.csv:3: empty customer");
}

TEST(CsvSkipTest, SkipsAndCountsBadRowsPerReason) {
  input::CsvOptions options;
  options.skipInvalid = true;
  input::LabelledDatabase log = readLog(kDirtyLog, options);
  EXPECT_EQ(log.customers, (std::vector<std::string>{"ann", "bob"}));
  EXPECT_EQ(log.database.transactionCount(), 2u);
  const input::SkippedRows& skipped = log.skipped;
  EXPECT_EQ(skipped.total(), 6);
  ASSERT_EQ(skipped.reasons().size(), 4u);
  EXPECT_EQ(skipped.reasons()[0].what, "blank customer");
  EXPECT_EQ(skipped.reasons()[0].count, 2);
  EXPECT_EQ(skipped.reasons()[0].firstLines, (std::vector<long>{3, 6}));
  EXPECT_EQ(skipped.summary(),
            "2 blank customer (lines 3, 6), 1 blank item (line 4), 2 bad time "
            "(lines 5, 8), 1 wrong column count (line 7)");
}

TEST(CsvSkipTest, KeepsTheFirstFewLineNumbers) {
  std::string text = "customer,time,item\nann,1,tea\n";
  for (int i = 0; i < 7; ++i) text += ",1,tea\n";
  input::CsvOptions options;
  options.skipInvalid = true;
  input::LabelledDatabase log = readLog(text, options);
  EXPECT_EQ(log.skipped.total(), 7);
  EXPECT_EQ(log.skipped.summary(),
            "7 blank customer (lines 3, 4, 5, 6, 7, ...)");
}

TEST(CsvSkipTest, NothingLeftIsStillAnError) {
  input::CsvOptions options;
  options.skipInvalid = true;
  EXPECT_EQ(errorOf("customer,time,item\n,1,a\nb,x,c\n", options),
            "log.csv: no valid data rows (skipped 1 blank customer (line 2), "
            "1 bad time (line 3))");
}

TEST(CsvSkipTest, DatesInTheCallersFormat) {
  input::CsvOptions options;
  options.timeFormat = "%m/%d/%Y %H:%M";
  input::LabelledDatabase log = readLog(
      "customer,time,item\nann,12/1/2010 8:26,tea\nann,12/1/2010 10:00,pot\n",
      options);
  ASSERT_EQ(log.database.transactionCount(), 2u);
  EXPECT_EQ(log.database.time(0), 1291191960.0);
  EXPECT_EQ(log.database.time(1), 1291191960.0 + 94 * 60.0);
  EXPECT_EQ(errorOf("customer,time,item\nann,2010-12-01,tea\n", options),
            "log.csv:2: bad time \"2010-12-01\": does not match the format "
            "\"%m/%d/%Y %H:%M\"");
  options.timeFormat = "%q";
  EXPECT_EQ(errorOf("customer,time,item\nann,1,tea\n", options),
            "log.csv: time format \"%q\": unknown directive %q (known: %Y %y "
            "%m %b %d %H %M %S %%)");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
