#include "seqlattice/input/spmfreader.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "seqlattice/input/inputerror.h"
#include "seqlattice/input/internal/itemlabellines.h"
#include "seqlattice/input/internal/linereader.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

// Parses one sequence line into the database as one customer.
class LineParser {
 public:
  LineParser(const std::string& name, long lineNumber,
             mining::SequenceDatabase& db)
      : name_(name), lineNumber_(lineNumber), db_(db) {}

  void parse(const std::string& line) {
    db_.beginCustomer();
    std::size_t pos = 0;
    bool closed = false;
    while (true) {
      while (pos < line.size() && isBlank(line[pos])) ++pos;
      if (pos == line.size()) break;
      std::size_t start = pos;
      while (pos < line.size() && !isBlank(line[pos])) ++pos;
      std::string token = line.substr(start, pos - start);
      if (closed) fail("unexpected '" + token + "' after -2");
      closed = take(token);
    }
    if (!closed) fail("expected -2 at end of sequence");
    db_.endCustomer();
  }

 private:
  // Returns true when the token closes the sequence.
  bool take(const std::string& token) {
    errno = 0;
    char* end = nullptr;
    long value = std::strtol(token.c_str(), &end, 10);
    // The whole token must be the number: strtol stops at a NUL byte, which
    // would hide what follows it.
    if (end != token.c_str() + token.size() || end == token.c_str()) {
      fail("expected an item, -1 or -2, found '" + token + "'");
    }
    if (errno == ERANGE || value > INT_MAX) {
      fail("item " + token + " is out of range");
    }
    if (value == -2) {
      if (!itemSet_.empty()) fail("expected -1 before -2");
      return true;
    }
    if (value == -1) {
      if (itemSet_.empty()) fail("empty item set");
      db_.addTransaction(static_cast<double>(setIndex_++), itemSet_);
      itemSet_.clear();
      return false;
    }
    if (value < 0) fail("negative item " + token);
    itemSet_.push_back(static_cast<int>(value));
    return false;
  }

  [[noreturn]] void fail(const std::string& problem) const {
    throw InputError(name_, lineNumber_, problem);
  }

  const std::string& name_;
  long lineNumber_;
  mining::SequenceDatabase& db_;
  std::vector<int> itemSet_;
  long setIndex_ = 0;
};

bool isSkipped(const std::string& line) {
  std::size_t pos = 0;
  while (pos < line.size() && isBlank(line[pos])) ++pos;
  if (pos == line.size()) return true;
  char c = line[pos];
  return c == '@' || c == '#' || c == '%';
}

}  // namespace

void readSpmf(std::istream& in, const std::string& name,
              mining::SequenceDatabase& db, ItemLabels* labels) {
  internal::ItemLabelLines labelLines(name);
  internal::LineReader lines(in);
  std::string line;
  while (lines.next(&line)) {
    if (labelLines.take(line, lines.number()) || isSkipped(line)) continue;
    LineParser(name, lines.number(), db).parse(line);
  }
  if (in.bad()) throw InputError(name, 0, "read error");
  if (labels != nullptr) *labels = labelLines.labels();
}

void readSpmfFile(const std::string& path, mining::SequenceDatabase& db,
                  ItemLabels* labels) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw InputError(path, 0, "cannot open file");
  readSpmf(in, path, db, labels);
}

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
