#include "seqlattice/input/spmfreader.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "seqlattice/input/inputerror.h"

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

// The "@ITEM=code=label" lines of a file, checked as they come.
class ItemLabelLines {
 public:
  explicit ItemLabelLines(const std::string& name) : name_(name) {}

  // Takes the line if it is an item label line; returns whether it was.
  bool take(const std::string& line, long lineNumber) {
    static const std::string kPrefix = "@ITEM=";
    if (line.compare(0, kPrefix.size(), kPrefix) != 0) return false;
    std::string rest = line.substr(kPrefix.size());
    if (!rest.empty() && rest.back() == '\r') rest.pop_back();
    std::size_t equals = rest.find('=');
    int code = 0;
    if (equals == std::string::npos ||
        !ItemLabels::parseNumeric(rest.substr(0, equals), &code) || code < 0) {
      fail(lineNumber, "expected @ITEM=code=label with a non-negative code");
    }
    std::string label = rest.substr(equals + 1);
    int numeric = 0;
    if (label.empty() || ItemLabels::parseNumeric(label, &numeric)) {
      fail(lineNumber, "the label of item " + std::to_string(code) +
                           " must be a non-numeric text");
    }
    if (!codes_.insert(code).second) {
      fail(lineNumber, "item " + std::to_string(code) + " is labelled twice");
    }
    if (!labels_.insert(label).second) {
      fail(lineNumber, "label \"" + label + "\" names two items");
    }
    pairs_.emplace_back(code, std::move(label));
    return true;
  }

  ItemLabels labels() const { return ItemLabels::fromStringLabels(pairs_); }

 private:
  [[noreturn]] void fail(long lineNumber, const std::string& problem) const {
    throw InputError(name_, lineNumber, problem);
  }

  const std::string& name_;
  std::set<int> codes_;
  std::set<std::string> labels_;
  std::vector<std::pair<int, std::string>> pairs_;
};

}  // namespace

void readSpmf(std::istream& in, const std::string& name,
              mining::SequenceDatabase& db, ItemLabels* labels) {
  static const std::string kByteOrderMark = "\xEF\xBB\xBF";
  ItemLabelLines labelLines(name);
  std::string line;
  long lineNumber = 0;
  while (std::getline(in, line)) {
    ++lineNumber;
    if (lineNumber == 1 && line.compare(0, 3, kByteOrderMark) == 0) {
      line.erase(0, 3);
    }
    if (labelLines.take(line, lineNumber) || isSkipped(line)) continue;
    LineParser(name, lineNumber, db).parse(line);
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
