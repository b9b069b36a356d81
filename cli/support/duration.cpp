#include "support/duration.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace seqlattice_cli {

namespace {

// Seconds per unit letter; 0 for an unknown one.
double secondsPer(const std::string& unit) {
  if (unit == "s") return 1;
  if (unit == "m") return 60;
  if (unit == "h") return 3600;
  if (unit == "d") return kSecondsPerDay;
  if (unit == "w") return 7 * kSecondsPerDay;
  return 0;
}

}  // namespace

std::string parseDuration(const std::string& text, bool datedTimes,
                          double* out) {
  const char* begin = text.c_str();
  char* end = nullptr;
  const double number = std::strtod(begin, &end);
  if (end == begin ||
      text.find_first_of("xXnN") < static_cast<std::size_t>(end - begin)) {
    // No number, or strtod's hexadecimal, infinity or nan forms.
    return "expected a duration such as 30d, 12h or 90m (or a number for a "
           "log of plain times)";
  }
  const std::string unit(end);
  if (!std::isfinite(number) || number < 0) {
    return "expected a duration of 0 or more";
  }
  if (unit.empty()) {
    if (datedTimes) {
      return "the log's times are dates: give a unit (s, m, h, d or w), "
             "such as 30d";
    }
    *out = number;
    return "";
  }
  const double seconds = secondsPer(unit);
  if (seconds == 0) return "unknown unit '" + unit + "'";
  if (!datedTimes) {
    return "the log's times are plain numbers, not dates: give a plain "
           "number";
  }
  *out = number * seconds;
  return "";
}

std::string durationText(double value, bool datedTimes) {
  char text[48];
  if (datedTimes) {
    std::snprintf(text, sizeof text, "%g d", value / kSecondsPerDay);
  } else {
    std::snprintf(text, sizeof text, "%g", value);
  }
  return text;
}

}  // namespace seqlattice_cli
