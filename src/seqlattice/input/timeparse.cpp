#include "seqlattice/input/timeparse.h"

#include <cmath>
#include <cstdlib>
#include <string>

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

namespace {

// Reads exactly `width` digits at text[*at]; advances *at on success.
bool readDigits(std::string_view text, size_t* at, size_t width, int* value) {
  if (*at + width > text.size()) return false;
  int result = 0;
  for (size_t i = 0; i < width; ++i) {
    char c = text[*at + i];
    if (c < '0' || c > '9') return false;
    result = result * 10 + (c - '0');
  }
  *at += width;
  *value = result;
  return true;
}

bool isLeapYear(int year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysInMonth(int year, int month) {
  static const int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && isLeapYear(year) ? 29 : kDays[month - 1];
}

// Days from 1970-01-01 to the given proleptic Gregorian date.
long daysFromCivil(int year, int month, int day) {
  year -= month <= 2 ? 1 : 0;
  long era = (year >= 0 ? year : year - 399) / 400;
  long yearOfEra = year - era * 400;
  long dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  long dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

std::optional<double> parseNumber(std::string_view text) {
  std::string copy(text);
  // strtod would also take leading spaces and hexadecimal numbers.
  if (copy.empty() || copy.front() == ' ' ||
      copy.find_first_of("xX") != std::string::npos) {
    return std::nullopt;
  }
  char* end = nullptr;
  double value = std::strtod(copy.c_str(), &end);
  if (end != copy.c_str() + copy.size() || !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

// Seconds east of UTC of a zone designator that fills the rest of text.
std::optional<int> parseZone(std::string_view text, size_t at) {
  if (at == text.size()) return 0;
  if (text[at] == 'Z') {
    return at + 1 == text.size() ? std::optional<int>(0) : std::nullopt;
  }
  if (text[at] != '+' && text[at] != '-') return std::nullopt;
  int sign = text[at] == '-' ? -1 : 1;
  ++at;
  int hours = 0, minutes = 0;
  if (!readDigits(text, &at, 2, &hours)) return std::nullopt;
  if (at < text.size() && text[at] == ':') ++at;
  if (at < text.size() && !readDigits(text, &at, 2, &minutes)) {
    return std::nullopt;
  }
  if (at != text.size() || hours > 23 || minutes > 59) return std::nullopt;
  return sign * (hours * 3600 + minutes * 60);
}

std::optional<double> parseDate(std::string_view text) {
  size_t at = 0;
  int year = 0, month = 0, day = 0;
  if (!readDigits(text, &at, 4, &year) || at >= text.size() ||
      text[at++] != '-' || !readDigits(text, &at, 2, &month) ||
      at >= text.size() || text[at++] != '-' ||
      !readDigits(text, &at, 2, &day)) {
    return std::nullopt;
  }
  if (month < 1 || month > 12 || day < 1 || day > daysInMonth(year, month)) {
    return std::nullopt;
  }
  double seconds = daysFromCivil(year, month, day) * 86400.0;
  if (at == text.size()) return seconds;

  if (text[at] != 'T' && text[at] != ' ') return std::nullopt;
  ++at;
  int hour = 0, minute = 0, second = 0;
  if (!readDigits(text, &at, 2, &hour) || at >= text.size() ||
      text[at++] != ':' || !readDigits(text, &at, 2, &minute)) {
    return std::nullopt;
  }
  double fraction = 0.0;
  if (at < text.size() && text[at] == ':') {
    ++at;
    if (!readDigits(text, &at, 2, &second)) return std::nullopt;
    if (at < text.size() && (text[at] == '.' || text[at] == ',')) {
      ++at;
      double scale = 0.1;
      size_t first = at;
      while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
        fraction += (text[at++] - '0') * scale;
        scale /= 10;
      }
      if (at == first) return std::nullopt;
    }
  }
  // 24:00 is not accepted; a leap second 60 is, as ISO-8601 allows it.
  if (hour > 23 || minute > 59 || second > 60) return std::nullopt;
  std::optional<int> zone = parseZone(text, at);
  if (!zone) return std::nullopt;
  return seconds + hour * 3600.0 + minute * 60.0 + second + fraction - *zone;
}

}  // namespace

std::optional<TransactionTime> parseTransactionTime(std::string_view text) {
  if (std::optional<double> date = parseDate(text)) {
    return TransactionTime{*date, true};
  }
  if (std::optional<double> number = parseNumber(text)) {
    return TransactionTime{*number, false};
  }
  return std::nullopt;
}

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
