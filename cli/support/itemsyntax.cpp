#include "support/itemsyntax.h"

namespace seqlattice_cli {

namespace {

std::string trimmed(const std::string& text) {
  std::string::size_type first = text.find_first_not_of(" \t");
  if (first == std::string::npos) return "";
  std::string::size_type last = text.find_last_not_of(" \t");
  return text.substr(first, last - first + 1);
}

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::string::size_type start = 0;
  while (true) {
    std::string::size_type end = text.find(separator, start);
    parts.push_back(trimmed(text.substr(start, end - start)));
    if (end == std::string::npos) return parts;
    start = end + 1;
  }
}

}  // namespace

std::string parseItemSequence(const std::string& text, LabelSets* sets) {
  sets->clear();
  if (trimmed(text).empty()) return "";
  for (const std::string& setText : split(text, ';')) {
    std::vector<std::string> labels = split(setText, ',');
    for (const std::string& label : labels) {
      if (label.empty()) {
        return "\"" + text + "\": empty item (write item sets as \"a,b;c\")";
      }
    }
    sets->push_back(labels);
  }
  return "";
}

CLI::Option* addItemSequenceOption(CLI::App* command, const std::string& name,
                                   ItemSequenceOption* target, bool allowEmpty,
                                   const std::string& description) {
  return addParsedOption<std::optional<LabelSets>>(
      command, name, target,
      [allowEmpty](const std::string& text, std::optional<LabelSets>* value) {
        LabelSets sets;
        std::string problem = parseItemSequence(text, &sets);
        if (!problem.empty()) return problem;
        if (sets.empty() && !allowEmpty) return std::string("empty sequence");
        *value = std::move(sets);
        return std::string();
      },
      "SEQ", description);
}

}  // namespace seqlattice_cli
