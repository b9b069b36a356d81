#include "seqlattice/input/timeparse.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace SEQUENCE_NAMESPACE_800 {
namespace input {
namespace {

double value(const std::string& text) {
  auto time = parseTransactionTime(text);
  EXPECT_TRUE(time.has_value()) << text;
  return time ? time->value : -1.0;
}

bool accepted(const std::string& text) {
  return parseTransactionTime(text).has_value();
}

TEST(TimeParseTest, NumbersStayAsTheyAre) {
  EXPECT_EQ(value("17"), 17.0);
  EXPECT_EQ(value("-2.5"), -2.5);
  EXPECT_EQ(value("1e3"), 1000.0);
  EXPECT_FALSE(parseTransactionTime("17")->isDate);
}

TEST(TimeParseTest, DatesAreSecondsSinceTheEpoch) {
  EXPECT_EQ(value("1970-01-01"), 0.0);
  EXPECT_EQ(value("1970-01-02"), 86400.0);
  EXPECT_EQ(value("2024-03-01"), 1709251200.0);
  EXPECT_EQ(value("1969-12-31"), -86400.0);
  EXPECT_TRUE(parseTransactionTime("2024-03-01")->isDate);
}

TEST(TimeParseTest, DateTimes) {
  EXPECT_EQ(value("2024-03-01T10:30"), 1709251200.0 + 37800.0);
  EXPECT_EQ(value("2024-03-01 10:30:15"), 1709251200.0 + 37815.0);
  EXPECT_EQ(value("2024-03-01T10:30:15.5Z"), 1709251200.0 + 37815.5);
  EXPECT_TRUE(parseTransactionTime("2024-03-01T00:00")->isDate);
}

TEST(TimeParseTest, ZonesShiftToUtc) {
  EXPECT_EQ(value("2024-03-01T10:30+02:00"), 1709251200.0 + 30600.0);
  EXPECT_EQ(value("2024-03-01T10:30-0130"), 1709251200.0 + 43200.0);
  EXPECT_EQ(value("2024-03-01T10:30+02"), 1709251200.0 + 30600.0);
  EXPECT_EQ(value("2024-03-01T00:00"), value("2024-03-01"));
}

TEST(TimeParseTest, LeapDays) {
  EXPECT_EQ(value("2024-02-29"), 1709164800.0);
  EXPECT_TRUE(accepted("2000-02-29"));
  EXPECT_FALSE(accepted("2023-02-29"));
  EXPECT_FALSE(accepted("1900-02-29"));
}

TEST(TimeParseTest, RejectsMalformedTimes) {
  for (const char* text : {"",
                           "abc",
                           "2024-13-01",
                           "2024-00-10",
                           "2024-04-31",
                           "2024-1-5",
                           "24-01-05",
                           "2024-01-05T",
                           "2024-01-05T25:00",
                           "2024-01-05T10:60",
                           "2024-01-05T10:00:00.",
                           "2024-01-05T10:00Q",
                           "2024-01-05T10:00+2",
                           "2024-01-05x",
                           "nan",
                           "inf",
                           "0x10",
                           "1,5",
                           "12abc",
                           " 5"}) {
    EXPECT_FALSE(accepted(text)) << text;
  }
}

}  // namespace
}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
