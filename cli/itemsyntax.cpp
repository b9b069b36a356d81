#include "itemsyntax.h"

#include "clierror.h"

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

LabelSets parseItemSequence(const std::string& text) {
  LabelSets sets;
  for (const std::string& setText : split(text, ';')) {
    std::vector<std::string> labels = split(setText, ',');
    for (const std::string& label : labels) {
      if (label.empty()) {
        failUsage("\"" + text +
                  "\": empty item (write item sets as \"a,b;c\")");
      }
    }
    sets.push_back(labels);
  }
  return sets;
}

CLI::Validator itemSequenceValidator() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        try {
          parseItemSequence(text);
        } catch (const CliError& e) {
          return e.what();
        }
        return "";
      },
      "SEQ");
}

}  // namespace seqlattice_cli
