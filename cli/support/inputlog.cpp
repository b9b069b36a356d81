#include "support/inputlog.h"

#include <iostream>

#include "seqlattice/input/spmfreader.h"
#include "seqlattice/input/timeparse.h"
#include "seqlattice/mining/memorybudget.h"

namespace seqlattice_cli {

namespace {

namespace input = SEQUENCE_NAMESPACE_800::input;
namespace mining = SEQUENCE_NAMESPACE_800::mining;

bool endsWith(const std::string& text, const std::string& suffix) {
  return text.size() >= suffix.size() &&
         text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

char delimiterFor(const std::string& path, const InputOptions& options) {
  if (options.delimiter.value != '\0') return options.delimiter.value;
  return endsWith(path, ".tsv") || endsWith(path, ".tab") ? '\t' : ',';
}

}  // namespace

std::string parseDelimiter(const std::string& text, char* delimiter) {
  if (text == "tab" || text == "\\t" || text == "\t") {
    *delimiter = '\t';
  } else if (text.size() == 1 && text != "\"" && text != "\n" && text != "\r") {
    *delimiter = text[0];
  } else {
    return "expected one character other than a quote, or \"tab\", not \"" +
           text + "\"";
  }
  return "";
}

std::string parseTimeFormat(const std::string& text, std::string* format) {
  std::string problem = input::checkTimeFormat(text);
  if (problem.empty()) *format = text;
  return problem;
}

void addInputOptions(CLI::App* command, InputOptions* options,
                     const std::string& formatOption,
                     const std::string& columnSuffix) {
  command
      ->add_option(formatOption, options->format,
                   "Input format: csv, spmf or auto (*.txt and *.spmf are "
                   "SPMF, other files CSV)")
      ->check(CLI::IsMember({"csv", "spmf", "auto"}))
      ->default_str("auto");
  command
      ->add_option("--customer" + columnSuffix, options->customerColumn,
                   "CSV column of the customer")
      ->default_str("customer");
  command
      ->add_option("--time" + columnSuffix, options->timeColumn,
                   "CSV column of the time: a number or an ISO-8601 date")
      ->default_str("time");
  command
      ->add_option("--item" + columnSuffix, options->itemColumn,
                   "CSV column of the item")
      ->default_str("item");
  addParsedOption<char>(command, "--delimiter", &options->delimiter,
                        parseDelimiter, "C",
                        "CSV field delimiter: one character or \"tab\" "
                        "(default: tab for *.tsv, else ',')");
  addParsedOption<std::string>(
      command, "--time-format", &options->timeFormat, parseTimeFormat, "FORMAT",
      "CSV dates written another way: %Y %y %m %b %d %H %M %S and literal "
      "characters, e.g. \"%m/%d/%Y %H:%M\" or \"%d-%m-%Y\"");
  command->add_flag("--skip-invalid", options->skipInvalid,
                    "Drop CSV rows with a blank customer or item, a bad time "
                    "or a wrong column count, and report them, instead of "
                    "stopping at the first");
}

std::string inputFormat(const std::string& path, const InputOptions& options) {
  if (options.format != "auto") return options.format;
  return endsWith(path, ".txt") || endsWith(path, ".spmf") ? "spmf" : "csv";
}

input::LabelledDatabase loadInput(
    const std::string& path, const InputOptions& options,
    const std::function<int(const std::string&)>& itemCode) {
  // A database that does not fit is refused with a message, not killed.
  std::size_t memoryLimit = mining::availableMemoryBytes() / 2;
  if (inputFormat(path, options) == "spmf") {
    input::LabelledDatabase result;
    result.database.setMemoryLimit(memoryLimit);
    input::readSpmfFile(path, result.database, &result.items);
    for (std::size_t c = 0; c < result.database.customerCount(); ++c) {
      result.customers.push_back(std::to_string(c + 1));
    }
    return result;
  }
  input::CsvOptions csv;
  csv.customerColumn = options.customerColumn;
  csv.timeColumn = options.timeColumn;
  csv.itemColumn = options.itemColumn;
  csv.delimiter = delimiterFor(path, options);
  csv.memoryLimit = memoryLimit;
  csv.itemCode = itemCode;
  csv.timeFormat = options.timeFormat.value;
  csv.skipInvalid = options.skipInvalid;
  input::LabelledDatabase result = input::readCsvFile(path, csv);
  if (result.skipped.total() > 0) {
    std::cerr << "seqlattice: " << path << ": skipped "
              << result.skipped.total()
              << " invalid rows: " << result.skipped.summary() << "\n";
  }
  return result;
}

}  // namespace seqlattice_cli
