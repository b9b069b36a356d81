// Result tables of the commands and their three output formats: an aligned
// text table for people, CSV and JSON for programs. Cells are JSON values:
// strings, integers, doubles, and item sequences (arrays of item sets, each an
// array of labels). The text and CSV forms show a sequence as "(a, b) (c)";
// the JSON form keeps the nested arrays. Doubles show 4 decimals in the text
// table and their shortest exact form in CSV and JSON; an infinite double
// shows "inf" in the text table and CSV and null in JSON.
#ifndef SEQLATTICE_CLI_SUPPORT_OUTPUT_H_
#define SEQLATTICE_CLI_SUPPORT_OUTPUT_H_

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

namespace seqlattice_cli {

using Json = nlohmann::ordered_json;

enum class Format { kTable, kCsv, kJson };

// Adds "--format table|csv|json" (default table) to a subcommand.
void addFormatOption(CLI::App* command, Format* format);

class ResultTable {
 public:
  explicit ResultTable(std::vector<std::string> columns);
  // One cell per column.
  void addRow(std::vector<Json> cells);
  std::size_t rows() const { return rows_.size(); }
  const std::vector<std::string>& columns() const { return columns_; }
  const std::vector<std::vector<Json>>& cells() const { return rows_; }
  void write(std::ostream& out, Format format) const;

 private:
  void writeText(std::ostream& out) const;
  void writeCsv(std::ostream& out) const;
  void writeJson(std::ostream& out) const;

  std::vector<std::string> columns_;
  std::vector<std::vector<Json>> rows_;
};

// A cell's text in the table (tableForm) or CSV form.
std::string cellText(const Json& cell, bool tableForm);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_OUTPUT_H_
