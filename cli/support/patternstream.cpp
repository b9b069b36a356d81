#include "support/patternstream.h"

#include <nlohmann/json.hpp>

namespace seqlattice_cli {

namespace {

bool endsWith(const std::string& text, const std::string& suffix) {
  return text.size() >= suffix.size() &&
         text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
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
  if (format_ != PatternFormat::kSpmf) return;
  auto named = labels_.stringLabels();
  if (named.empty()) return;
  out_ << "@CONVERTED_FROM_TEXT\n";
  for (const auto& [code, label] : named) {
    out_ << "@ITEM=" << code << "=" << label << "\n";
  }
}

const std::string& PatternStream::itemText(int item) {
  auto found = itemTexts_.find(item);
  if (found != itemTexts_.end()) return found->second;
  std::string text;
  if (format_ == PatternFormat::kSpmf) {
    text = std::to_string(item);
  } else {
    std::string label = labels_.labelOf(item);
    // A numeric label is its code's decimal text; anything else is a string.
    text = label == std::to_string(item) ? label : nlohmann::json(label).dump();
  }
  return itemTexts_.emplace(item, std::move(text)).first->second;
}

void PatternStream::addPattern(int** sets, int nSets, long count,
                               long /*firstCustomer*/) {
  line_.clear();
  if (format_ == PatternFormat::kSpmf) {
    for (int s = 0; s < nSets; ++s) {
      for (int i = 1; i <= sets[s][0]; ++i) {
        line_ += itemText(sets[s][i]);
        line_ += ' ';
      }
      line_ += "-1 ";
    }
    line_ += "#SUP: ";
  } else {
    line_ += "{\"sequence\":[";
    for (int s = 0; s < nSets; ++s) {
      line_ += s == 0 ? "[" : ",[";
      for (int i = 1; i <= sets[s][0]; ++i) {
        if (i > 1) line_ += ',';
        line_ += itemText(sets[s][i]);
      }
      line_ += ']';
    }
    line_ += "],\"freq\":";
  }
  line_ += std::to_string(count);
  line_ += format_ == PatternFormat::kSpmf ? "\n" : "}\n";
  out_.write(line_.data(), static_cast<std::streamsize>(line_.size()));
}

}  // namespace seqlattice_cli
