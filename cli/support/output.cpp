#include "support/output.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

namespace seqlattice_cli {

namespace {

// Display width of UTF-8 text: one column per character.
std::size_t widthOf(const std::string& text) {
  std::size_t width = 0;
  for (unsigned char c : text) width += (c & 0xC0) != 0x80 ? 1 : 0;
  return width;
}

std::string csvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text) {
    quoted += c;
    if (c == '"') quoted += '"';
  }
  return quoted + "\"";
}

}  // namespace

void addFormatOption(CLI::App* command, Format* format) {
  command
      ->add_option_function<std::string>(
          "--format",
          [format](const std::string& name) {
            *format = name == "csv"    ? Format::kCsv
                      : name == "json" ? Format::kJson
                                       : Format::kTable;
          },
          "Output format: table, csv or json")
      ->check(CLI::IsMember({"table", "csv", "json"}))
      ->default_str("table");
}

std::string cellText(const Json& cell, bool tableForm) {
  if (cell.is_string()) return cell.get<std::string>();
  if (cell.is_number_float()) {
    // JSON has no infinity (dump() gives null); the text forms say "inf".
    if (!std::isfinite(cell.get<double>())) {
      return std::isnan(cell.get<double>()) ? "nan"
             : cell.get<double>() > 0       ? "inf"
                                            : "-inf";
    }
    if (!tableForm) return cell.dump();
    char text[64];
    std::snprintf(text, sizeof text, "%.4f", cell.get<double>());
    return text;
  }
  if (cell.is_array()) {
    std::string text;
    for (const Json& set : cell) {
      text += text.empty() ? "(" : " (";
      bool first = true;
      for (const Json& item : set) {
        text += (first ? "" : ", ") + item.get<std::string>();
        first = false;
      }
      text += ")";
    }
    return text;
  }
  return cell.dump();
}

ResultTable::ResultTable(std::vector<std::string> columns)
    : columns_(std::move(columns)) {}

void ResultTable::addRow(std::vector<Json> cells) {
  rows_.push_back(std::move(cells));
}

void ResultTable::write(std::ostream& out, Format format) const {
  switch (format) {
    case Format::kTable:
      writeText(out);
      break;
    case Format::kCsv:
      writeCsv(out);
      break;
    case Format::kJson:
      writeJson(out);
      break;
  }
}

void ResultTable::writeText(std::ostream& out) const {
  std::vector<std::vector<std::string>> texts;
  std::vector<std::size_t> widths;
  for (const std::string& column : columns_) widths.push_back(widthOf(column));
  for (const auto& row : rows_) {
    std::vector<std::string> line;
    for (std::size_t c = 0; c < row.size(); ++c) {
      line.push_back(cellText(row[c], true));
      widths[c] = std::max(widths[c], widthOf(line.back()));
    }
    texts.push_back(std::move(line));
  }
  // Numbers align right, text left; the last column is not padded.
  auto writeLine = [&](const std::vector<std::string>& cells,
                       const std::vector<Json>* values) {
    std::string line;
    for (std::size_t c = 0; c < cells.size(); ++c) {
      std::string padding(widths[c] - widthOf(cells[c]), ' ');
      bool number = values != nullptr && (*values)[c].is_number();
      if (c > 0) line += "  ";
      line += number ? padding + cells[c]
                     : cells[c] + (c + 1 < cells.size() ? padding : "");
    }
    out << line << "\n";
  };
  writeLine(columns_, nullptr);
  for (std::size_t r = 0; r < rows_.size(); ++r) writeLine(texts[r], &rows_[r]);
}

void ResultTable::writeCsv(std::ostream& out) const {
  auto writeLine = [&](const std::vector<std::string>& cells) {
    for (std::size_t c = 0; c < cells.size(); ++c) {
      out << (c > 0 ? "," : "") << csvField(cells[c]);
    }
    out << "\n";
  };
  writeLine(columns_);
  for (const auto& row : rows_) {
    std::vector<std::string> cells;
    for (const Json& cell : row) cells.push_back(cellText(cell, false));
    writeLine(cells);
  }
}

void ResultTable::writeJson(std::ostream& out) const {
  Json array = Json::array();
  for (const auto& row : rows_) {
    Json object = Json::object();
    for (std::size_t c = 0; c < row.size(); ++c) object[columns_[c]] = row[c];
    array.push_back(std::move(object));
  }
  out << array.dump(2) << "\n";
}

}  // namespace seqlattice_cli
