#include "seqlattice/support/xmlobj.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <streambuf>
#include <system_error>
#include <type_traits>
#include <utility>

#include "seqlattice/support/internal/xmlnumber.h"

namespace KvXML_850 {
namespace {

static_assert(sizeof(long) == 8, "long values are 64-bit in the format");

// Deeper indentation helps no reader and would only make lines long.
constexpr int kMaxDepth = 64;
constexpr int kIndentPerDepth = 2;

constexpr const char* kIntTag = "int";
constexpr const char* kLongTag = "long";
constexpr const char* kDoubleTag = "double";

int IndentOf(int depth) { return kIndentPerDepth * (depth - 1); }

void WriteTag(std::ostream& out, int depth, const char* open,
              const std::string& name) {
  static const std::string kSpaces(IndentOf(kMaxDepth), ' ');
  out.write(kSpaces.data(), IndentOf(depth));
  out << open << name << ">\n";
}

// A value line is built in one buffer and written with one call, which keeps
// writing many values cheap.
class ValueLine {
 public:
  explicit ValueLine(int depth) : end_(buf_ + IndentOf(depth)) {
    std::fill(buf_, end_, ' ');
  }
  ValueLine& Add(const char* text) {
    end_ = std::copy(text, text + std::strlen(text), end_);
    return *this;
  }
  char* Free() { return end_; }
  void Advance(char* to) { end_ = to; }
  void WriteTo(std::ostream& out) {
    *end_++ = '\n';
    out.write(buf_, end_ - buf_);
  }

 private:
  // Values sit one level below the deepest object: indentation, the longest
  // tag pair, a number and the line break.
  char buf_[kIndentPerDepth * kMaxDepth + sizeof("<double></double>\n") +
            internal::kNumberChars];
  char* end_;
};

template <typename Number>
void WriteValue(std::ostream& out, int depth, const char* tag, Number value) {
  ValueLine line(depth);
  line.Add("<").Add(tag).Add(">");
  if constexpr (std::is_floating_point_v<Number>) {
    line.Advance(internal::FormatExact(line.Free(), value));
  } else {
    line.Advance(
        std::to_chars(line.Free(), line.Free() + internal::kNumberChars, value)
            .ptr);
  }
  line.Add("</").Add(tag).Add(">").WriteTo(out);
}

// Reading works on the stream buffer directly: the texts are short and
// fixed, and the stream's own extractors would accept forms (leading white
// space, "+1", locale grouping) that the writers never produce.
class Reader {
 public:
  explicit Reader(std::istream& in) : in_(in), sb_(in.rdbuf()) {}

  bool Ready() const { return sb_ != nullptr && in_.good(); }

  void SkipSpace() {
    for (int c = Peek(); c == ' ' || c == '\t' || c == '\n' || c == '\r';
         c = Peek()) {
      sb_->sbumpc();
    }
  }

  // Consumes text as long as it matches; true when all of it did.
  bool Expect(const char* text) {
    for (; *text != '\0'; ++text) {
      if (Peek() != static_cast<unsigned char>(*text)) return false;
      sb_->sbumpc();
    }
    return true;
  }

  // Reads up to the next '<' into buf (at most capacity characters); false
  // when the text is longer or the stream ends first.
  bool ReadText(char* buf, int capacity, int* length) {
    int n = 0;
    for (int c = Peek(); c != '<'; c = Peek()) {
      if (c == std::char_traits<char>::eof() || n == capacity) return false;
      buf[n++] = static_cast<char>(c);
      sb_->sbumpc();
    }
    *length = n;
    return true;
  }

  bool Fail() {
    in_.setstate(atEof_ ? std::ios_base::failbit | std::ios_base::eofbit
                        : std::ios_base::failbit);
    return false;
  }

 private:
  int Peek() {
    const int c = sb_->sgetc();
    if (c == std::char_traits<char>::eof()) atEof_ = true;
    return c;
  }

  std::istream& in_;
  std::streambuf* sb_;
  bool atEof_ = false;
};

bool ParseTag(std::istream& in, const char* open, const std::string& name) {
  Reader reader(in);
  if (!reader.Ready()) return reader.Fail();
  reader.SkipSpace();
  if (!reader.Expect(open) || !reader.Expect(name.c_str()) ||
      !reader.Expect(">")) {
    return reader.Fail();
  }
  return true;
}

// The text between a value's tags must be a number of the type, all of it.
// Integers are decimal with an optional '-'.
template <typename Integer>
bool ConvertInteger(const char* first, const char* last, Integer* value) {
  Integer parsed;
  const auto [end, error] = std::from_chars(first, last, parsed);
  if (error != std::errc() || end != last) return false;
  *value = parsed;
  return true;
}

bool ConvertDouble(const char* first, const char* last, double* value) {
  const std::size_t n = last - first;
  const auto is = [&](const char* text) {
    return n == std::strlen(text) && std::memcmp(first, text, n) == 0;
  };
  if (is("INF") || is("-INF")) {
    *value = *first == '-' ? -std::numeric_limits<double>::infinity()
                           : std::numeric_limits<double>::infinity();
    return true;
  }
  std::uint64_t bits = internal::kDefaultNaNBits;
  const std::size_t kPayloadForm = std::strlen("NaN(0x0123456789abcdef)");
  if (n == kPayloadForm && std::memcmp(first, "NaN(0x", 6) == 0 &&
      last[-1] == ')') {
    const auto [end, error] = std::from_chars(first + 6, last - 1, bits, 16);
    if (error != std::errc() || end != last - 1) return false;
    double nan;
    std::memcpy(&nan, &bits, sizeof nan);
    if (!std::isnan(nan)) return false;
    *value = nan;
    return true;
  }
  if (is("NaN")) {
    std::memcpy(value, &bits, sizeof bits);
    return true;
  }
  // from_chars also takes "inf", "nan" and ".5", which are not ours.
  const char* digit = n > 0 && *first == '-' ? first + 1 : first;
  if (digit == last || *digit < '0' || *digit > '9') return false;
  double parsed;
  const auto [end, error] = std::from_chars(first, last, parsed);
  if (error != std::errc() || end != last) return false;
  *value = parsed;
  return true;
}

template <typename Number>
bool ParseNumber(std::istream& in, const char* tag, Number* value) {
  Reader reader(in);
  if (value == nullptr || !reader.Ready()) return reader.Fail();
  char text[internal::kNumberChars];
  int length = 0;
  reader.SkipSpace();
  if (!reader.Expect("<") || !reader.Expect(tag) || !reader.Expect(">") ||
      !reader.ReadText(text, internal::kNumberChars, &length) ||
      !reader.Expect("</") || !reader.Expect(tag) || !reader.Expect(">")) {
    return reader.Fail();
  }
  bool converted;
  if constexpr (std::is_floating_point_v<Number>) {
    converted = ConvertDouble(text, text + length, value);
  } else {
    converted = ConvertInteger(text, text + length, value);
  }
  return converted || reader.Fail();
}

}  // namespace

XMLObj::XMLObj(std::string name, int depth)
    : name_(std::move(name)), depth_(std::clamp(depth, 1, kMaxDepth)) {}

void XMLObj::StartObj(std::ostream& out) const {
  WriteTag(out, depth_, "<", name_);
}

void XMLObj::WriteSubElement(std::ostream& out, int value) const {
  WriteValue(out, depth_ + 1, kIntTag, value);
}

void XMLObj::WriteSubElement(std::ostream& out, long value) const {
  WriteValue(out, depth_ + 1, kLongTag, value);
}

void XMLObj::WriteSubElement(std::ostream& out, double value) const {
  WriteValue(out, depth_ + 1, kDoubleTag, value);
}

void XMLObj::EndObj(std::ostream& out) const {
  WriteTag(out, depth_, "</", name_);
}

bool XMLObj::ParseStartObj(std::istream& in) const {
  return ParseTag(in, "<", name_);
}

bool XMLObj::ParseValue(std::istream& in, int* value) const {
  return ParseNumber(in, kIntTag, value);
}

bool XMLObj::ParseValue(std::istream& in, long* value) const {
  return ParseNumber(in, kLongTag, value);
}

bool XMLObj::ParseValue(std::istream& in, double* value) const {
  return ParseNumber(in, kDoubleTag, value);
}

bool XMLObj::ParseEndObj(std::istream& in) const {
  return ParseTag(in, "</", name_);
}

}  // namespace KvXML_850
