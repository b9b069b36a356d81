#include "support/patternstream.h"

#include <cstring>
#include <nlohmann/json.hpp>

namespace seqlattice_cli {

namespace {

bool endsWith(const std::string& text, const std::string& suffix) {
  return text.size() >= suffix.size() &&
         text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// Codes below this many get their texts from a table indexed by code.
constexpr int kDenseItems = 1 << 20;
// The buffer goes to the stream once it holds this many bytes.
constexpr std::size_t kFlushBytes = std::size_t{1} << 20;

// Appends the decimal text of v, two digits a step from a table.
void appendDecimal(long v, std::string& out) {
  static constexpr char kPairs[] =
      "0001020304050607080910111213141516171819"
      "2021222324252627282930313233343536373839"
      "4041424344454647484950515253545556575859"
      "6061626364656667686970717273747576777879"
      "8081828384858687888990919293949596979899";
  char text[24];
  char* end = text + sizeof text;
  char* at = end;
  const bool negative = v < 0;
  unsigned long u = negative ? 0ul - static_cast<unsigned long>(v)
                             : static_cast<unsigned long>(v);
  while (u >= 100) {
    const unsigned long pair = u % 100;
    u /= 100;
    at -= 2;
    std::memcpy(at, kPairs + 2 * pair, 2);
  }
  if (u >= 10) {
    at -= 2;
    std::memcpy(at, kPairs + 2 * u, 2);
  } else {
    *--at = static_cast<char>('0' + u);
  }
  if (negative) *--at = '-';
  out.append(at, static_cast<std::size_t>(end - at));
}

}  // namespace

PatternFormat patternFormatOf(const std::string& path) {
  for (const char* suffix : {".json", ".jsonl", ".ndjson"}) {
    if (endsWith(path, suffix)) return PatternFormat::kJson;
  }
  return PatternFormat::kSpmf;
}

PatternStream::PatternStream(
    std::ostream& out, PatternFormat format,
    const SEQUENCE_NAMESPACE_800::input::ItemLabels& labels)
    : out_(out), format_(format), labels_(labels) {
  buffer_.reserve(kFlushBytes + 4096);
  if (format_ != PatternFormat::kSpmf) return;
  auto named = labels_.stringLabels();
  if (named.empty()) return;
  out_ << "@CONVERTED_FROM_TEXT\n";
  for (const auto& [code, label] : named) {
    out_ << "@ITEM=" << code << "=" << label << "\n";
  }
}

std::string PatternStream::makeItemText(int item) const {
  if (format_ == PatternFormat::kSpmf) return std::to_string(item);
  std::string label = labels_.labelOf(item);
  // A numeric label is its code's decimal text; anything else is a string.
  return label == std::to_string(item) ? label : nlohmann::json(label).dump();
}

const std::string& PatternStream::itemText(int item) {
  if (item >= 0 && item < kDenseItems) {
    const auto at = static_cast<std::size_t>(item);
    if (at >= denseTexts_.size()) denseTexts_.resize(at + 1);
    if (denseTexts_[at].empty()) denseTexts_[at] = makeItemText(item);
    return denseTexts_[at];
  }
  auto found = otherTexts_.find(item);
  if (found != otherTexts_.end()) return found->second;
  return otherTexts_.emplace(item, makeItemText(item)).first->second;
}

void PatternStream::addPattern(int** sets, int nSets, long count,
                               long /*firstCustomer*/) {
  if (format_ == PatternFormat::kSpmf) {
    for (int s = 0; s < nSets; ++s) {
      for (int i = 1; i <= sets[s][0]; ++i) {
        append(itemText(sets[s][i]));
        buffer_ += ' ';
      }
      buffer_ += "-1 ";
    }
    buffer_ += "#SUP: ";
  } else {
    buffer_ += "{\"sequence\":[";
    for (int s = 0; s < nSets; ++s) {
      if (s > 0) buffer_ += ',';
      buffer_ += '[';
      for (int i = 1; i <= sets[s][0]; ++i) {
        if (i > 1) buffer_ += ',';
        append(itemText(sets[s][i]));
      }
      buffer_ += ']';
    }
    buffer_ += "],\"freq\":";
  }
  appendDecimal(count, buffer_);
  if (format_ == PatternFormat::kJson) buffer_ += '}';
  buffer_ += '\n';
  if (buffer_.size() >= kFlushBytes) finish();
}

void PatternStream::finish() {
  out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  buffer_.clear();
}

}  // namespace seqlattice_cli
