// Transaction times as a transaction file writes them: a plain number (a day
// index, a timestamp, any ordered quantity) or an ISO-8601 calendar date or
// date-time. Dates become seconds since 1970-01-01T00:00:00Z, so that date
// and date-time rows of one file compare correctly; numbers stay as they are.
// A file mixing numbers and dates cannot be ordered, so the kind is returned
// for the reader to check.
#ifndef SEQLATTICE_INPUT_TIMEPARSE_H_
#define SEQLATTICE_INPUT_TIMEPARSE_H_

#include <optional>
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

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_TIMEPARSE_H_
