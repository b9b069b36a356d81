// Durations of the time constraints as `mine` takes them: a number and, for a
// log whose times are dates (seconds since the epoch), a unit: "90m",
// "12h", "30d", "2w", "45s". A log of plain times (numbers, or an SPMF file's
// item set indexes) takes plain numbers in its own unit.
#ifndef SEQLATTICE_CLI_SUPPORT_DURATION_H_
#define SEQLATTICE_CLI_SUPPORT_DURATION_H_

#include <string>

namespace seqlattice_cli {

// Parses text into *out (seconds for dated times, else the number itself);
// returns "" or what is wrong ("unknown unit 'x'"), without the option.
std::string parseDuration(const std::string& text, bool datedTimes,
                          double* out);

// A duration in the log's unit as a person reads it: "1.5 d" style days for
// dated times, the plain number otherwise.
std::string durationText(double value, bool datedTimes);

// Seconds in a day: the unit `rules` shows the gaps of dated logs in.
constexpr double kSecondsPerDay = 86400.0;

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_DURATION_H_
