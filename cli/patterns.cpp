// seqlattice patterns: the stored patterns, all of them or those that
// contain, begin with or end with a given sequence.
#include "patterns.h"

#include "command.h"
#include "itemsyntax.h"

namespace seqlattice_cli {

Command addPatternsCommand(CLI::App& app) {
  auto options = std::make_shared<PatternsOptions>();
  CLI::App* command = app.add_subcommand(
      "patterns", "List stored patterns, most frequent first");
  command->add_option("MODEL", options->model, "Model file")->required();
  CLI::Option* contains =
      command->add_option("--contains", options->contains,
                          "Patterns that contain this sequence (\"a,b;c\")");
  CLI::Option* beginning = command->add_option(
      "--beginning", options->beginning,
      "Patterns that begin with this sequence and add later orders");
  CLI::Option* ending = command->add_option(
      "--ending", options->ending,
      "Patterns that end with this sequence and add earlier orders");
  for (CLI::Option* query : {contains, beginning, ending}) {
    query->check(itemSequenceValidator());
  }
  contains->excludes(beginning)->excludes(ending);
  beginning->excludes(contains)->excludes(ending);
  ending->excludes(contains)->excludes(beginning);
  options->containsOption = contains;
  options->beginningOption = beginning;
  options->endingOption = ending;
  command->add_option("--size", options->size, "Only patterns of K items")
      ->check(CLI::PositiveNumber);
  command->add_flag("--maximal", options->maximal,
                    "Only patterns that no longer stored pattern extends");
  command
      ->add_option("--min-count", options->minCount,
                   "Only patterns found in at least N customers")
      ->check(CLI::NonNegativeNumber);
  command
      ->add_option("--max-count", options->maxCount,
                   "Only patterns found in at most N customers")
      ->check(CLI::NonNegativeNumber);
  addFormatOption(command, &options->format);
  command->footer(
      "Examples:\n"
      "  seqlattice patterns orders.model --size 2 --min-count 20\n"
      "  seqlattice patterns orders.model --beginning \"espresso machine\"");
  return {command, [options] { runPatterns(*options); }};
}

}  // namespace seqlattice_cli
