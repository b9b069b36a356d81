// Dates read with a strftime-style format (parseFormattedTime).
#include <gtest/gtest.h>

#include "seqlattice/input/timeparse.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// The seconds of text in format, or -1 when it does not parse.
double secondsOf(const char* text, const char* format) {
  std::optional<input::TransactionTime> time =
      input::parseFormattedTime(text, format);
  if (!time) return -1;
  EXPECT_TRUE(time->isDate);
  return time->value;
}

TEST(TimeFormatTest, UsDateTimesWithOneOrTwoDigitFields) {
  // 2010-12-01T08:26:00Z.
  EXPECT_EQ(secondsOf("12/1/2010 8:26", "%m/%d/%Y %H:%M"), 1291191960.0);
  EXPECT_EQ(secondsOf("12/01/2010 08:26", "%m/%d/%Y %H:%M"), 1291191960.0);
}

TEST(TimeFormatTest, DayFirstDatesAndSeconds) {
  EXPECT_EQ(secondsOf("05-03-2024", "%d-%m-%Y"), 1709596800.0);
  EXPECT_EQ(secondsOf("29.02.2024 23:59:59", "%d.%m.%Y %H:%M:%S"),
            1709251199.0);
  EXPECT_EQ(secondsOf("20100112", "%Y%m%d"), 1263254400.0);
}

TEST(TimeFormatTest, TwoDigitYearsAndMonthNames) {
  EXPECT_EQ(secondsOf("31-Jan-99", "%d-%b-%y"), 917740800.0);
  EXPECT_EQ(secondsOf("29 FEB 68", "%d %b %y"), 3097699200.0);
  EXPECT_EQ(secondsOf("mar 5, 2024", "%b %d, %Y"), 1709596800.0);
}

TEST(TimeFormatTest, PercentLiteralAndMissingFields) {
  // The day is the 1st when the format leaves it out: 2024-03-01.
  EXPECT_EQ(secondsOf("2024%03", "%Y%%%m"), 1709251200.0);
  // The year is 1970 when left out: 1970-01-02T03:00:00Z.
  EXPECT_EQ(secondsOf("2 3h", "%d %Hh"), 86400.0 + 3 * 3600.0);
}

TEST(TimeFormatTest, RejectsTextThatDoesNotMatch) {
  EXPECT_EQ(secondsOf("2010-12-01", "%m/%d/%Y"), -1);
  EXPECT_EQ(secondsOf("12/1/2010 8:26", "%m/%d/%Y"), -1);  // text left over
  EXPECT_EQ(secondsOf("12/1", "%m/%d/%Y"), -1);            // text missing
  EXPECT_EQ(secondsOf("2/30/2024", "%m/%d/%Y"), -1);       // no such day
  EXPECT_EQ(secondsOf("13/1/2024", "%m/%d/%Y"), -1);
  EXPECT_EQ(secondsOf("1/1/2024 24:00", "%m/%d/%Y %H:%M"), -1);
  EXPECT_EQ(secondsOf("1-Foo-2024", "%d-%b-%Y"), -1);
  EXPECT_EQ(secondsOf("1/1/24", "%m/%d/%y"), 1704067200.0);
  EXPECT_EQ(secondsOf("1/1/2024", "%m/%d/%y"), -1);
}

TEST(TimeFormatTest, ChecksFormats) {
  EXPECT_EQ(input::checkTimeFormat("%m/%d/%Y %H:%M"), "");
  EXPECT_EQ(input::checkTimeFormat("%d-%b-%y %%"), "");
  EXPECT_EQ(input::checkTimeFormat("%Y-%j"),
            "unknown directive %j (known: %Y %y %m %b %d %H %M %S %%)");
  EXPECT_EQ(input::checkTimeFormat("%Y-%m-%d %H%"),
            "the format ends in a lone '%'");
  EXPECT_EQ(input::checkTimeFormat("%Y %y"), "the format gives the year twice");
  EXPECT_EQ(input::checkTimeFormat("%m %b"),
            "the format gives the month twice");
  EXPECT_EQ(input::checkTimeFormat("%d %H %H"),
            "the format gives the field %H twice");
  EXPECT_EQ(input::checkTimeFormat("%H:%M"),
            "the format has no date field (%Y, %y, %m, %b or %d)");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
