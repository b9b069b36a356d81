// Options whose text the tool turns into a value (a minimum support, a
// delimiter, an item sequence) are parsed once, at parse time, by the
// option's validator, which keeps the value beside the text; the command
// then uses the value. A bad value is a usage error reported by the parser
// before any file is read, and no command parses the text a second time,
// where the two parses could drift apart.
#ifndef SEQLATTICE_CLI_SUPPORT_PARSEDOPTION_H_
#define SEQLATTICE_CLI_SUPPORT_PARSEDOPTION_H_

#include <CLI/CLI.hpp>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <functional>
#include <string>

namespace seqlattice_cli {

template <class T>
struct Parsed {
  std::string text;  // as given, or the default
  T value{};         // the parse of text once the option was given
};

// Parses text into *value; returns "" or what is wrong with the text.
template <class T>
using Parser = std::function<std::string(const std::string& text, T* value)>;

// Adds the option `name` to command, parsed into *target by parse.
// validatorName is shown after the type in the help ("TEXT:SEQ"). An option
// with a default takes it with ->default_val(text), which parses it too.
// target must outlive the command line's parsing.
template <class T>
CLI::Option* addParsedOption(CLI::App* command, const std::string& name,
                             Parsed<T>* target, Parser<T> parse,
                             const std::string& validatorName,
                             const std::string& description) {
  return command->add_option(name, target->text, description)
      ->check(CLI::Validator(
          [target, parse](std::string& text) {
            return parse(text, &target->value);
          },
          validatorName));
}

// A whole number from least to most, for counts such as --top: CLI11's own
// range checks print their bounds as doubles of three hundred digits.
inline CLI::Validator wholeNumber(long least, long most = INT_MAX) {
  const std::string range =
      "a whole number from " + std::to_string(least) + " to " +
      (most == INT_MAX ? std::string("2147483647") : std::to_string(most));
  return CLI::Validator(
      [least, most, range](std::string& text) -> std::string {
        errno = 0;
        char* end = nullptr;
        long value = std::strtol(text.c_str(), &end, 10);
        bool whole =
            !text.empty() && end == text.c_str() + text.size() && errno == 0;
        if (whole && value >= least && value <= most) return "";
        return "expected " + range + ", not \"" + text + "\"";
      },
      "N");
}

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_PARSEDOPTION_H_
