#include "seqlattice/input/csvrecords.h"

#include <utility>

#include "seqlattice/input/inputerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

namespace {

bool isBlank(char c, char delimiter) {
  return (c == ' ' || c == '\t') && c != delimiter;
}

bool isBlankLine(const std::string& text, char delimiter) {
  for (char c : text) {
    if (!isBlank(c, delimiter)) return false;
  }
  return true;
}

}  // namespace

CsvRecords::CsvRecords(std::istream& in, std::string fileName, char delimiter)
    : in_(in), fileName_(std::move(fileName)), delimiter_(delimiter) {}

void CsvRecords::fail(long line, const std::string& problem) const {
  throw InputError(fileName_, line, problem);
}

bool CsvRecords::readLine() {
  if (!std::getline(in_, text_)) {
    if (in_.bad()) fail(lineNumber_ + 1, "read error");
    return false;
  }
  ++lineNumber_;
  if (!text_.empty() && text_.back() == '\r') text_.pop_back();
  if (lineNumber_ == 1 && text_.compare(0, 3, "\xEF\xBB\xBF") == 0) {
    text_.erase(0, 3);
  }
  return true;
}

bool CsvRecords::next(std::vector<std::string>& fields) {
  do {
    if (!readLine()) return false;
  } while (isBlankLine(text_, delimiter_));
  recordLine_ = lineNumber_;
  fields.clear();

  size_t at = 0;
  while (true) {
    std::string field;
    while (at < text_.size() && isBlank(text_[at], delimiter_)) ++at;
    if (at < text_.size() && text_[at] == '"') {
      ++at;
      while (true) {
        if (at == text_.size()) {
          // The quoted field goes on in the next line, break included.
          if (!readLine()) fail(recordLine_, "unterminated quoted field");
          field += '\n';
          at = 0;
          continue;
        }
        char c = text_[at++];
        if (c != '"') {
          field += c;
        } else if (at < text_.size() && text_[at] == '"') {
          field += '"';
          ++at;
        } else {
          break;
        }
      }
      while (at < text_.size() && isBlank(text_[at], delimiter_)) ++at;
      if (at < text_.size() && text_[at] != delimiter_) {
        fail(lineNumber_, "unexpected text after a closing quote");
      }
    } else {
      size_t end = at;
      while (end < text_.size() && text_[end] != delimiter_) ++end;
      size_t last = end;
      while (last > at && isBlank(text_[last - 1], delimiter_)) --last;
      field.assign(text_, at, last - at);
      at = end;
    }
    fields.push_back(std::move(field));
    if (at == text_.size()) return true;
    ++at;  // past the delimiter
  }
}

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
