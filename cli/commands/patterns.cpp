// seqlattice patterns: the stored patterns, all of them or those that
// contain, begin with or end with a given sequence.
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "commands/commands.h"
#include "commands/modelatexit.h"
#include "support/itemsyntax.h"
#include "support/modelfile.h"
#include "support/output.h"
#include "support/parsedoption.h"
#include "support/patterntable.h"
#include "support/printable.h"

namespace seqlattice_cli {

namespace {

struct PatternsOptions {
  std::string model;
  // At most one query is given (an empty query is still a query).
  ItemSequenceOption contains;
  ItemSequenceOption beginning;
  ItemSequenceOption ending;
  PatternQuery query;
  Format format = Format::kTable;
};

void runPatterns(const PatternsOptions& options) {
  Model model = loadModel(options.model);
  ModelAtExit atExit(model);
  PatternQuery query = options.query;
  using Kind = PatternQuery::Kind;
  for (const auto& [option, kind] :
       {std::pair{&options.contains, Kind::kContains},
        std::pair{&options.beginning, Kind::kBeginning},
        std::pair{&options.ending, Kind::kEnding}}) {
    if (option->value) {
      query.kind = kind;
      query.sequence = *option->value;
    }
  }
  std::vector<std::string> unknown;
  ResultTable table = patternTable(model, query, &unknown);
  for (const std::string& label : unknown) {
    std::cerr << "seqlattice: patterns: item \"" << printable(label)
              << "\" is not in the model\n";
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
  command->add_option("--size", options->query.size, "Only patterns of K items")
      ->check(wholeNumber(1));
  command->add_flag("--maximal", options->query.maximal,
                    "Only patterns that no longer stored pattern extends");
  command
      ->add_option("--min-count", options->query.minCount,
                   "Only patterns found in at least N customers")
      ->check(wholeNumber(0));
  command
      ->add_option("--max-count", options->query.maxCount,
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
