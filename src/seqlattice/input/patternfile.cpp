#include "seqlattice/input/patternfile.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <map>
#include <utility>

#include "seqlattice/input/inputerror.h"
#include "seqlattice/input/internal/itemlabellines.h"
#include "seqlattice/input/internal/linereader.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

// A pattern as read: its sets of item keys (codes in the SPMF form, label
// indexes in JSON lines), its count and its line.
struct RawPattern {
  std::vector<std::vector<int>> sets;
  long count = 0;
  long line = 0;
};

// Parses one JSON object line {"sequence":[[...],...],"freq":N}; string
// and number items are interned as label texts.
class JsonLine {
 public:
  JsonLine(const std::string& name, long lineNumber, const std::string& text,
           std::map<std::string, int>& labels)
      : name_(name), line_(lineNumber), text_(text), labels_(labels) {}

  RawPattern parse() {
    RawPattern pattern;
    pattern.line = line_;
    bool haveSequence = false, haveCount = false;
    expect('{');
    do {
      std::string key = string();
      expect(':');
      if (key == "sequence" && !haveSequence) {
        pattern.sets = sequence();
        haveSequence = true;
      } else if (key == "freq" && !haveCount) {
        pattern.count = count();
        haveCount = true;
      } else {
        fail(haveSequence || haveCount
                 ? "unexpected or repeated key \"" + key + "\""
                 : "unexpected key \"" + key + "\"");
      }
    } while (next(',', '}'));
    skipBlanks();
    if (pos_ != text_.size()) fail("unexpected text after the object");
    if (!haveSequence) fail("no \"sequence\"");
    if (!haveCount) fail("no \"freq\"");
    return pattern;
  }

 private:
  std::vector<std::vector<int>> sequence() {
    std::vector<std::vector<int>> sets;
    expect('[');
    if (peek() == ']') fail("empty sequence");
    do {
      std::vector<int> set;
      expect('[');
      if (peek() == ']') fail("empty item set");
      do {
        set.push_back(item());
      } while (next(',', ']'));
      sets.push_back(std::move(set));
    } while (next(',', ']'));
    return sets;
  }

  int item() {
    std::string label;
    if (peek() == '"') {
      label = string();
      if (label.empty()) fail("empty item");
    } else {
      std::size_t start = pos_;
      while (pos_ < text_.size() &&
             (text_[pos_] == '-' || (text_[pos_] >= '0' && text_[pos_] <= '9')))
        ++pos_;
      label = text_.substr(start, pos_ - start);
      int value = 0;
      if (!ItemLabels::parseNumeric(label, &value)) {
        fail("expected an item (an integer or a string), found \"" +
             text_.substr(start, 12) + "\"");
      }
    }
    return labels_.emplace(label, static_cast<int>(labels_.size()))
        .first->second;
  }

  long count() {
    skipBlanks();
    std::size_t start = pos_;
    while (pos_ < text_.size() && text_[pos_] >= '0' && text_[pos_] <= '9')
      ++pos_;
    std::string digits = text_.substr(start, pos_ - start);
    if (digits.empty() || digits.size() > 10 || std::stol(digits) < 1 ||
        std::stol(digits) > INT_MAX) {
      fail("\"freq\" must be a count from 1 to " + std::to_string(INT_MAX));
    }
    return std::stol(digits);
  }

  std::string string() {
    expect('"');
    std::string out;
    while (true) {
      if (pos_ >= text_.size()) fail("unterminated string");
      char c = text_[pos_++];
      if (c == '"') return out;
      if (c != '\\') {
        out += c;
        continue;
      }
      if (pos_ >= text_.size()) fail("unterminated string");
      char e = text_[pos_++];
      switch (e) {
        case '"':
        case '\\':
        case '/':
          out += e;
          break;
        case 'b':
          out += '\b';
          break;
        case 'f':
          out += '\f';
          break;
        case 'n':
          out += '\n';
          break;
        case 'r':
          out += '\r';
          break;
        case 't':
          out += '\t';
          break;
        case 'u':
          appendUtf8(out, codePoint());
          break;
        default:
          fail(std::string("bad escape \\") + e);
      }
    }
  }

  // The code point of a \u escape (the "\u" read), a surrogate pair joined.
  unsigned long codePoint() {
    unsigned long high = hex4();
    if (high < 0xD800 || high > 0xDFFF) return high;
    if (high > 0xDBFF || text_.compare(pos_, 2, "\\u") != 0) {
      fail("bad surrogate in \\u escape");
    }
    pos_ += 2;
    unsigned long low = hex4();
    if (low < 0xDC00 || low > 0xDFFF) fail("bad surrogate in \\u escape");
    return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
  }

  unsigned long hex4() {
    std::string digits = text_.substr(pos_, 4);
    char* end = nullptr;
    unsigned long value = std::strtoul(digits.c_str(), &end, 16);
    if (digits.size() != 4 || end != digits.c_str() + 4 ||
        digits.find_first_of("+- ") != std::string::npos) {
      fail("bad \\u escape");
    }
    pos_ += 4;
    return value;
  }

  static void appendUtf8(std::string& out, unsigned long c) {
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else if (c < 0x800) {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      out += static_cast<char>(0xE0 | (c >> 12));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (c >> 18));
      out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    }
  }

  void skipBlanks() {
    while (pos_ < text_.size() && (isBlank(text_[pos_]) || text_[pos_] == '\n'))
      ++pos_;
  }
  char peek() {
    skipBlanks();
    return pos_ < text_.size() ? text_[pos_] : '\0';
  }
  void expect(char c) {
    if (peek() != c) fail(std::string("expected '") + c + "'");
    ++pos_;
  }
  // Reads `more` (true) or `end` (false).
  bool next(char more, char end) {
    char c = peek();
    if (c != more && c != end) {
      fail(std::string("expected '") + more + "' or '" + end + "'");
    }
    ++pos_;
    return c == more;
  }

  [[noreturn]] void fail(const std::string& problem) const {
    throw InputError(name_, line_, problem);
  }

  const std::string& name_;
  long line_;
  const std::string& text_;
  std::map<std::string, int>& labels_;
  std::size_t pos_ = 0;
};

// Parses one SPMF pattern line: items, -1 closing each set, "#SUP: n".
RawPattern spmfLine(const std::string& name, long lineNumber,
                    const std::string& line) {
  auto fail = [&](const std::string& problem) {
    throw InputError(name, lineNumber, problem);
  };
  RawPattern pattern;
  pattern.line = lineNumber;
  std::size_t support = line.find("#SUP:");
  if (support == std::string::npos) fail("expected #SUP: after the pattern");
  std::vector<int> set;
  std::size_t pos = 0;
  while (true) {
    while (pos < support && isBlank(line[pos])) ++pos;
    if (pos == support) break;
    std::size_t start = pos;
    while (pos < support && !isBlank(line[pos])) ++pos;
    std::string token = line.substr(start, pos - start);
    errno = 0;
    char* end = nullptr;
    long value = std::strtol(token.c_str(), &end, 10);
    if (end != token.c_str() + token.size() || end == token.c_str() ||
        errno == ERANGE || value > INT_MAX || value < -1) {
      fail("expected an item or -1, found '" + token + "'");
    }
    if (value == -1) {
      if (set.empty()) fail("empty item set");
      pattern.sets.push_back(std::move(set));
      set.clear();
    } else {
      set.push_back(static_cast<int>(value));
    }
  }
  if (!set.empty()) fail("expected -1 before #SUP:");
  if (pattern.sets.empty()) fail("empty pattern");
  std::string count = line.substr(support + 5);
  while (!count.empty() && isBlank(count.back())) count.pop_back();
  std::size_t first = count.find_first_not_of(" \t");
  count = first == std::string::npos ? "" : count.substr(first);
  char* end = nullptr;
  errno = 0;
  long value = std::strtol(count.c_str(), &end, 10);
  if (count.empty() || end != count.c_str() + count.size() || errno == ERANGE ||
      value < 1 || value > INT_MAX) {
    fail("expected a count from 1 to " + std::to_string(INT_MAX) +
         " after #SUP:, found '" + count + "'");
  }
  pattern.count = value;
  return pattern;
}

bool isComment(const std::string& line) {
  std::size_t pos = line.find_first_not_of(" \t\r");
  return pos == std::string::npos || line[pos] == '#' || line[pos] == '%';
}

// Appends pattern as a record, its keys turned into codes.
void appendRecord(const RawPattern& pattern, const std::vector<int>& codeOf,
                  const std::string& name, std::vector<int>& records) {
  records.push_back(static_cast<int>(pattern.count));
  records.push_back(0);
  records.push_back(static_cast<int>(pattern.sets.size()));
  for (const std::vector<int>& keys : pattern.sets) {
    std::vector<int> set;
    for (int key : keys) {
      set.push_back(codeOf.empty() ? key
                                   : codeOf[static_cast<std::size_t>(key)]);
    }
    std::sort(set.begin(), set.end());
    if (std::adjacent_find(set.begin(), set.end()) != set.end()) {
      throw InputError(name, pattern.line, "an item set holds an item twice");
    }
    records.push_back(static_cast<int>(set.size()));
    records.insert(records.end(), set.begin(), set.end());
  }
}

}  // namespace

PatternFile readPatterns(std::istream& in, const std::string& name) {
  internal::ItemLabelLines labelLines(name);
  internal::LineReader lines(in);
  std::map<std::string, int> jsonLabels;
  std::vector<RawPattern> patterns;
  PatternFile file;
  bool formKnown = false;
  std::string line;
  while (lines.next(&line)) {
    const long lineNumber = lines.number();
    std::size_t first = line.find_first_not_of(" \t\r");
    if (first == std::string::npos) continue;
    if (!formKnown) {
      file.json = line[first] == '{';
      formKnown = true;
    }
    if (file.json) {
      patterns.push_back(JsonLine(name, lineNumber, line, jsonLabels).parse());
    } else if (!labelLines.take(line, lineNumber) && line[first] != '@' &&
               !isComment(line)) {
      patterns.push_back(spmfLine(name, lineNumber, line));
    }
  }
  if (in.bad()) throw InputError(name, 0, "read error");
  std::vector<int> codeOf;
  if (file.json) {
    std::vector<std::string> texts(jsonLabels.size());
    for (const auto& [text, key] : jsonLabels) {
      texts[static_cast<std::size_t>(key)] = text;
    }
    file.items = ItemLabels::assign(texts);
    for (const std::string& text : texts)
      codeOf.push_back(*file.items.codeOf(text));
  } else {
    file.items = labelLines.labels();
  }
  for (const RawPattern& pattern : patterns) {
    appendRecord(pattern, codeOf, name, file.records);
  }
  file.patterns = static_cast<long>(patterns.size());
  return file;
}

PatternFile readPatternFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw InputError(path, 0, "cannot open file");
  return readPatterns(in, path);
}

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
