// Transaction times as a transaction file writes them: a plain number (a day
// index, a timestamp, any ordered quantity) or an ISO-8601 calendar date or
// date-time. Dates become seconds since 1970-01-01T00:00:00Z, so that date
// and date-time rows of one file compare correctly; numbers stay as they are.
// A file mixing numbers and dates cannot be ordered, so the kind is returned
// for the reader to check.
#ifndef SEQLATTICE_INPUT_TIMEPARSE_H_
#define SEQLATTICE_INPUT_TIMEPARSE_H_

#include <optional>
#include <string>
#include <string_view>

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

struct TransactionTime {
  double value;  // the number, or seconds since the epoch for a date
  bool isDate;
};

// Accepts a finite decimal number ("17", "-2.5", "1e3"), a date
// "YYYY-MM-DD", or a date-time "YYYY-MM-DDThh:mm[:ss[.fff]]" (a space may
// stand for the T) with an optional zone "Z", "+hh:mm", "+hhmm" or "+hh";
// without a zone the time is taken as UTC. Returns nothing for anything else,
// including impossible dates such as 2023-02-29.
std::optional<TransactionTime> parseTransactionTime(std::string_view text);

// Dates written another way, described by a strftime-style format: %Y the
// year (1 to 4 digits), %y a two-digit year (69-99 are 1969-1999, 00-68 are
// 2000-2068), %m the month, %d the day, %H the hour, %M the minute, %S the
// second (1 or 2 digits each), %b the month's English three-letter
// abbreviation in any case, %% a '%'; every other character stands for
// itself. Fields the format leaves out are January, the 1st, 00:00:00.
// Times are UTC seconds since the epoch, as for ISO dates.
//
// checkTimeFormat returns "" or what is wrong with the format (an unknown
// directive, a field given twice, no date field at all).
std::string checkTimeFormat(std::string_view format);

// The time of text in a format that checkTimeFormat accepts; nothing when
// text does not match it completely or names an impossible date.
std::optional<TransactionTime> parseFormattedTime(std::string_view text,
                                                  std::string_view format);

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_TIMEPARSE_H_
