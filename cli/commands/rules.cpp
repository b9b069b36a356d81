// seqlattice rules: the model's sequential association rules.
#include <iostream>
#include <memory>
#include <string>

#include "commands/commands.h"
#include "support/modelfile.h"
#include "support/output.h"
#include "support/rulebounds.h"
#include "support/ruletable.h"

namespace seqlattice_cli {

namespace {

struct RulesOptions {
  std::string model;
  RuleBounds bounds;
  int top = 0;
  Format format = Format::kTable;
};

void runRules(const RulesOptions& options) {
  Model model = loadModel(options.model);
  ruleTable(model, options.bounds, options.top)
      .write(std::cout, options.format);
}

}  // namespace

Command addRulesCommand(CLI::App& app) {
  auto options = std::make_shared<RulesOptions>();
  CLI::App* command = app.add_subcommand(
      "rules",
      "List the model's sequential association rules: all item sets of a "
      "pattern but the last, then the last");
  command->add_option("MODEL", options->model, "Model file")->required();
  addRuleBoundOptions(command, &options->bounds);
  command->add_option("--top", options->top, "Show the first N rules (0: all)")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  addFormatOption(command, &options->format);
  command->footer(
      "Example:\n"
      "  seqlattice rules orders.model --min-confidence 0.5 --sort "
      "confidence --top 10");
  return {command, [options] { runRules(*options); }};
}

}  // namespace seqlattice_cli
