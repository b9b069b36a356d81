#include "seqlattice/input/timeparse.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
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

// Reads 1 to maxWidth digits at text[*at]; advances *at on success.
bool readUpTo(std::string_view text, size_t* at, size_t maxWidth, int* value) {
  size_t width = 0;
  while (width < maxWidth && *at + width < text.size() &&
         text[*at + width] >= '0' && text[*at + width] <= '9') {
    ++width;
  }
  return width > 0 && readDigits(text, at, width, value);
}

// Reads an English month abbreviation ("Jan" ... "Dec", any case).
bool readMonthName(std::string_view text, size_t* at, int* month) {
  static const char kNames[] = "janfebmaraprmayjunjulaugsepoctnovdec";
  if (*at + 3 > text.size()) return false;
  std::string name(text.substr(*at, 3));
  for (char& c : name) {
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  for (int m = 0; m < 12; ++m) {
    if (name.compare(0, 3, kNames + 3 * m, 3) == 0) {
      *at += 3;
      *month = m + 1;
      return true;
    }
  }
  return false;
}

// The fields of a formatted time, in the order of the directives "YmdHMS".
constexpr char kFieldLetters[] = "YmdHMS";

// Which field a directive letter sets (%y the year, %b the month), or -1.
int fieldOf(char letter) {
  if (letter == 'y') return 0;
  if (letter == 'b') return 1;
  const char* found = std::strchr(kFieldLetters, letter);
  return found != nullptr && letter != '\0'
             ? static_cast<int>(found - kFieldLetters)
             : -1;
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

std::string checkTimeFormat(std::string_view format) {
  bool seen[6] = {false, false, false, false, false, false};
  for (size_t at = 0; at < format.size(); ++at) {
    if (format[at] != '%') continue;
    if (++at == format.size()) return "the format ends in a lone '%'";
    if (format[at] == '%') continue;
    int field = fieldOf(format[at]);
    if (field < 0) {
      return std::string("unknown directive %") + format[at] +
             " (known: %Y %y %m %b %d %H %M %S %%)";
    }
    if (seen[field]) {
      return std::string("the format gives the ") +
             (field == 0   ? "year"
              : field == 1 ? "month"
                           : "field %") +
             (field > 1 ? std::string(1, kFieldLetters[field]) : "") + " twice";
    }
    seen[field] = true;
  }
  if (!seen[0] && !seen[1] && !seen[2]) {
    return "the format has no date field (%Y, %y, %m, %b or %d)";
  }
  return "";
}

std::optional<TransactionTime> parseFormattedTime(std::string_view text,
                                                  std::string_view format) {
  int value[6] = {1970, 1, 1, 0, 0, 0};
  size_t at = 0;
  for (size_t f = 0; f < format.size(); ++f) {
    char c = format[f];
    if (c == '%' && f + 1 < format.size() && format[f + 1] != '%') {
      char letter = format[++f];
      bool ok = letter == 'b'   ? readMonthName(text, &at, &value[1])
                : letter == 'y' ? readDigits(text, &at, 2, &value[0])
                : letter == 'Y'
                    ? readUpTo(text, &at, 4, &value[0])
                    : readUpTo(text, &at, 2, &value[fieldOf(letter)]);
      if (!ok) return std::nullopt;
      if (letter == 'y') value[0] += value[0] < 69 ? 2000 : 1900;
      continue;
    }
    if (c == '%') ++f;  // "%%" stands for one '%'
    if (at >= text.size() || text[at] != c) return std::nullopt;
    ++at;
  }
  const int year = value[0], month = value[1], day = value[2];
  if (at != text.size() || month < 1 || month > 12 || day < 1 ||
      day > daysInMonth(year, month) || value[3] > 23 || value[4] > 59 ||
      value[5] > 60) {
    return std::nullopt;
  }
  return TransactionTime{daysFromCivil(year, month, day) * 86400.0 +
                             value[3] * 3600.0 + value[4] * 60.0 + value[5],
                         true};
}

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
