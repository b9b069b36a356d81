// Transaction files as mine and predict --input read them: CSV/TSV with a
// header (csvreader.h) or the SPMF sequence format (spmfreader.h), with the
// options that choose the format, the columns and the delimiter.
//
// With the format "auto", files named *.txt or *.spmf are SPMF and all others
// CSV; the delimiter defaults to a tab for *.tsv and *.tab and to ',' else.
// SPMF customers are labelled by their position, from 1. --skip-invalid drops
// bad CSV rows instead of stopping at the first (loadInput reports what it
// dropped on standard error); --time-format reads CSV dates written another
// way ("%m/%d/%Y %H:%M", timeparse.h).
#ifndef SEQLATTICE_CLI_SUPPORT_INPUTLOG_H_
#define SEQLATTICE_CLI_SUPPORT_INPUTLOG_H_

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "seqlattice/input/csvreader.h"
#include "support/parsedoption.h"

namespace seqlattice_cli {

struct InputOptions {
  std::string format = "auto";
  std::string customerColumn = "customer";
  std::string timeColumn = "time";
  std::string itemColumn = "item";
  Parsed<char> delimiter;  // '\0': by the file name
  bool skipInvalid = false;
  Parsed<std::string> timeFormat;  // "": numbers or ISO-8601 dates
};

// The delimiter an option value names: one character other than a quote or
// a line break, or "tab". Returns "" or what is wrong.
std::string parseDelimiter(const std::string& text, char* delimiter);

// A --time-format value: "" or what is wrong with it (input::checkTimeFormat).
std::string parseTimeFormat(const std::string& text, std::string* format);

// Adds the format option (named formatOption: "--format" for mine,
// "--input-format" for predict), the column options --customer, --time and
// --item, each name followed by columnSuffix (predict, whose --customer
// picks a customer, names them --customer-column ...), --delimiter,
// --time-format and --skip-invalid.
void addInputOptions(CLI::App* command, InputOptions* options,
                     const std::string& formatOption,
                     const std::string& columnSuffix = "");

// "csv" or "spmf" for this path and options.
std::string inputFormat(const std::string& path, const InputOptions& options);

// Reads the file. itemCode, when set, codes CSV item labels (see
// CsvOptions::itemCode); SPMF items are their own codes, labelled by the
// file's "@ITEM" lines. Rows dropped under --skip-invalid are reported on
// standard error and left in the result's `skipped`.
SEQUENCE_NAMESPACE_800::input::LabelledDatabase loadInput(
    const std::string& path, const InputOptions& options,
    const std::function<int(const std::string&)>& itemCode = {});

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_INPUTLOG_H_
