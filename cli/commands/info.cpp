// seqlattice info: what a model holds and how it was mined.
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "commands/commands.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "support/modelfile.h"
#include "support/output.h"

namespace seqlattice_cli {

namespace {

struct InfoOptions {
  std::string model;
  Format format = Format::kTable;
};

std::string supportText(const MiningParameters& m) {
  char text[64];
  std::snprintf(text, sizeof text, m.minSupportIsFraction ? "%g" : "%.0f",
                m.minSupport);
  return text;
}

// A text table shows "field  value" lines; CSV has the columns field and
// value; JSON is one object.
void writeFields(const std::vector<std::pair<std::string, Json>>& fields,
                 Format format) {
  if (format == Format::kJson) {
    Json object = Json::object();
    for (const auto& [field, value] : fields) object[field] = value;
    std::cout << object.dump(2) << "\n";
    return;
  }
  if (format == Format::kCsv) {
    ResultTable table({"field", "value"});
    for (const auto& [field, value] : fields) table.addRow({field, value});
    table.write(std::cout, format);
    return;
  }
  std::size_t width = 0;
  for (const auto& field : fields) width = std::max(width, field.first.size());
  for (const auto& [field, value] : fields) {
    std::cout << field << std::string(width + 2 - field.size(), ' ')
              << cellText(value, true) << "\n";
  }
}

void runInfo(const InfoOptions& options) {
  Model model = loadModel(options.model);
  const auto& dict = *model.dictionary;
  const MiningParameters& m = model.mining;
  const auto& s = dict.getSettings();
  auto* level0 = dict.getLevel0Descriptor();

  std::vector<std::pair<std::string, Json>> fields;
  auto add = [&](const std::string& field, Json value) {
    fields.emplace_back(field, std::move(value));
  };
  add("model", options.model);
  add("format", model.xml ? "xml" : "binary");
  add("input", m.inputName);
  add("input format", m.inputFormat);
  add("customers (N)", level0 != nullptr ? level0->getCount() : 0);
  add("transactions", m.transactions);
  add("item occurrences", m.itemOccurrences);
  add("max items per transaction", m.maxItemsPerTransaction);
  add("avg items per transaction", m.avgItemsPerTransaction());
  add("labelled items", model.items.stringLabels().size());
  add("min support (as given)", supportText(m));
  add("min count", m.minCount);
  add("min support (dictionary)", dict.getMinSupport());
  add("max items per pattern", m.maxItems);
  if (!m.complete) {
    // Only a search stopped early says so; complete models show what they
    // always showed.
    char limit[32];
    std::snprintf(limit, sizeof limit, "%g", m.timeLimit);
    add("complete", "no (the time limit of " + std::string(limit) +
                        " s stopped the search)");
  }
  add("patterns", dict.NumberOfSequences() - 1);
  for (int k = 1; k <= dict.LargestSequence(); ++k) {
    std::string field =
        "patterns of " + std::to_string(k) + (k == 1 ? " item" : " items");
    add(field, dict.CountSequencesOfSize(k));
  }
  add("lattice built", dict.isLatticeBuilt() ? "yes" : "no");
  add("levels (nLevels)", s.nLevels);
  add("level sizes",
      std::to_string(s.level0Size) + " " + std::to_string(s.level1Size) + " " +
          std::to_string(s.level2Size) + " " + std::to_string(s.level3Size) +
          " " + std::to_string(s.level4Size) + " " +
          std::to_string(s.level5Size) + " " + std::to_string(s.level6Size) +
          " " + std::to_string(s.level7Size));
  add("higher level size", s.higherLevelSize);
  add("sliding window", dict.getSlidingWindow());
  add("min gap", dict.getMinGap());
  add("max gap", dict.getMaxGap());
  writeFields(fields, options.format);
}

}  // namespace

Command addInfoCommand(CLI::App& app) {
  auto options = std::make_shared<InfoOptions>();
  CLI::App* command = app.add_subcommand(
      "info", "Show a model's settings, size per level and mining parameters");
  command->add_option("MODEL", options->model, "Model file")->required();
  addFormatOption(command, &options->format);
  command->footer("Example:\n  seqlattice info orders.model");
  return {command, [options] { runInfo(*options); }};
}

}  // namespace seqlattice_cli
