// seqlattice patterns: the stored patterns, all of them or those that
// contain, begin with or end with a given sequence.
#include <algorithm>
#include <climits>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "support/clierror.h"
#include "support/itemsyntax.h"
#include "support/modelfile.h"
#include "support/output.h"
#include "support/parsedoption.h"
#include "support/printable.h"
#include "support/sequencelabels.h"

namespace seqlattice_cli {

namespace {

using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;

struct PatternsOptions {
  std::string model;
  // At most one query is given (an empty query is still a query).
  ItemSequenceOption contains;
  ItemSequenceOption beginning;
  ItemSequenceOption ending;
  int size = 0;
  bool maximal = false;
  int minCount = 0;
  int maxCount = INT_MAX;
  Format format = Format::kTable;
};

struct Found {
  Json pattern;
  std::string text;
  int size;
  int count;
};

// The patterns the query names, as Sequences the caller must delete.
std::vector<const Sequence*> queryPatterns(SequenceDictionary& dict,
                                           const Model& model,
                                           const PatternsOptions& options) {
  std::vector<const Sequence*> result;
  const LabelSets* sets = nullptr;
  auto find = &SequenceDictionary::FindSequences;
  if (options.contains.value) {
    sets = &*options.contains.value;
  } else if (options.beginning.value) {
    sets = &*options.beginning.value;
    find = &SequenceDictionary::FindSequencesBeginning;
  } else if (options.ending.value) {
    sets = &*options.ending.value;
    find = &SequenceDictionary::FindSequencesEnding;
  }
  if (sets == nullptr) {
    int largest = dict.LargestSequence();
    for (int k = 1; k <= largest; ++k) {
      if (options.size != 0 && k != options.size) continue;
      KvCommon_850::KvStatus status =
          dict.getSequencesOfSize(result, k, options.maximal);
      if (!status.IsOK()) {
        for (const Sequence* s : result) delete s;
        failInput("patterns: listing failed (status " +
                  std::to_string(status.GetCode()) + ")");
      }
    }
    return result;
  }
  std::vector<std::string> unknown;
  Sequence query =
      makeSequence(*sets, model.items, unknownItemCode(dict), &unknown);
  for (const std::string& label : unknown) {
    std::cerr << "seqlattice: patterns: item \"" << printable(label)
              << "\" is not in the model\n";
  }
  std::set<Sequence*> found;
  // An unknown item or a query longer than any level matches nothing.
  if (unknown.empty() && query.Size() < dict.getNLevels()) {
    (dict.*find)(&query, found, options.minCount, options.maxCount);
  }
  result.assign(found.begin(), found.end());
  return result;
}

void runPatterns(const PatternsOptions& options) {
  Model model = loadModel(options.model);
  SequenceDictionary& dict = *model.dictionary;
  std::vector<const Sequence*> patterns = queryPatterns(dict, model, options);
  std::vector<Found> rows;
  for (const Sequence* pattern : patterns) {
    auto* counter = dict.getDescriptor(pattern);
    int count = counter != nullptr ? counter->getCount() : 0;
    bool keep = count >= options.minCount && count <= options.maxCount &&
                (options.size == 0 || pattern->Size() == options.size) &&
                (!options.maximal ||
                 (counter != nullptr && counter->getNAdjacent() == 0));
    if (keep) {
      Json cell = sequenceCell(*pattern, model.items);
      rows.push_back({cell, cellText(cell, true), pattern->Size(), count});
    }
    delete pattern;
  }
  // Most frequent first; then shorter, then by text, for a stable listing.
  std::sort(rows.begin(), rows.end(), [](const Found& a, const Found& b) {
    if (a.count != b.count) return a.count > b.count;
    if (a.size != b.size) return a.size < b.size;
    return a.text < b.text;
  });
  auto* level0 = dict.getLevel0Descriptor();
  double n = level0 != nullptr ? level0->getCount() : 0;
  ResultTable table({"pattern", "items", "count", "support"});
  for (const Found& row : rows) {
    table.addRow(
        {row.pattern, row.size, row.count, n > 0 ? row.count / n : 0.0});
  }
  table.write(std::cout, options.format);
}

}  // namespace

Command addPatternsCommand(CLI::App& app) {
  auto options = std::make_shared<PatternsOptions>();
  CLI::App* command = app.add_subcommand(
      "patterns", "List stored patterns, most frequent first");
  command->add_option("MODEL", options->model, "Model file")->required();
  CLI::Option* contains =
      addItemSequenceOption(command, "--contains", &options->contains, false,
                            "Patterns that contain this sequence (\"a,b;c\")");
  CLI::Option* beginning = addItemSequenceOption(
      command, "--beginning", &options->beginning, false,
      "Patterns that begin with this sequence and add later orders");
  CLI::Option* ending = addItemSequenceOption(
      command, "--ending", &options->ending, false,
      "Patterns that end with this sequence and add earlier orders");
  contains->excludes(beginning)->excludes(ending);
  beginning->excludes(contains)->excludes(ending);
  ending->excludes(contains)->excludes(beginning);
  command->add_option("--size", options->size, "Only patterns of K items")
      ->check(wholeNumber(1));
  command->add_flag("--maximal", options->maximal,
                    "Only patterns that no longer stored pattern extends");
  command
      ->add_option("--min-count", options->minCount,
                   "Only patterns found in at least N customers")
      ->check(wholeNumber(0));
  command
      ->add_option("--max-count", options->maxCount,
                   "Only patterns found in at most N customers")
      ->check(wholeNumber(0));
  addFormatOption(command, &options->format);
  command->footer(
      "Examples:\n"
      "  seqlattice patterns orders.model --size 2 --min-count 20\n"
      "  seqlattice patterns orders.model --beginning \"espresso machine\"");
  return {command, [options] { runPatterns(*options); }};
}

}  // namespace seqlattice_cli
