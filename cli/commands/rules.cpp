// seqlattice rules: the model's sequential association rules.
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/modelatexit.h"
#include "support/itemsyntax.h"
#include "support/modelfile.h"
#include "support/output.h"
#include "support/parsedoption.h"
#include "support/printable.h"
#include "support/rulebounds.h"
#include "support/ruletable.h"

namespace seqlattice_cli {

namespace {

struct RulesOptions {
  std::string model;
  RuleBounds bounds;
  RuleFilters filters;
  ItemSequenceOption antecedentHas;
  ItemSequenceOption consequent;
  int top = 0;
  Format format = Format::kTable;
};

// The labels of an item filter given as one item set.
std::optional<std::vector<std::string>> filterLabels(
    const ItemSequenceOption& option) {
  if (!option.value) return std::nullopt;
  std::vector<std::string> labels;
  for (const auto& set : *option.value) {
    labels.insert(labels.end(), set.begin(), set.end());
  }
  return labels;
}

void runRules(const RulesOptions& options) {
  Model model = loadModel(options.model);
  ModelAtExit atExit(model);
  RuleFilters filters = options.filters;
  filters.antecedentHas = filterLabels(options.antecedentHas);
  filters.consequent = filterLabels(options.consequent);
  std::vector<std::string> unknown;
  ResultTable table =
      ruleTable(model, options.bounds, filters, options.top, &unknown);
  for (const std::string& label : unknown) {
    std::cerr << "seqlattice: rules: item \"" << printable(label)
              << "\" is not in the model\n";
  }
  table.write(std::cout, options.format);
}

// An item filter: items separated by ',' forming one item set.
void addItemFilterOption(CLI::App* command, const std::string& name,
                         ItemSequenceOption* target,
                         const std::string& description) {
  addItemSequenceOption(command, name, target, false, description)
      ->check(CLI::Validator(
          [target](std::string&) {
            return target->value && target->value->size() > 1
                       ? std::string(
                             "one item set expected, items "
                             "separated by ','")
                       : std::string();
          },
          ""));
}

}  // namespace

Command addRulesCommand(CLI::App& app) {
  auto options = std::make_shared<RulesOptions>();
  CLI::App* command = app.add_subcommand(
      "rules",
      "List the model's sequential association rules: all item sets of a "
      "pattern but the last, then the last");
  command->add_option("MODEL", options->model, "Model file")->required();
  addRuleBoundOptions(command, &options->bounds, true);
  command->add_option("--min-lift", options->filters.minLift, "Least lift")
      ->check(CLI::Validator(
          [](std::string& text) {
            double value = 0;
            return CLI::detail::lexical_cast(text, value) && value >= 0
                       ? std::string()
                       : "expected a number of at least 0, not \"" + text +
                             "\"";
          },
          "NONNEGATIVE"))
      ->capture_default_str();
  addItemFilterOption(command, "--antecedent-has", &options->antecedentHas,
                      "Only rules whose antecedent holds all these items "
                      "(in any of its item sets), e.g. \"tea,pot\"");
  addItemFilterOption(command, "--consequent", &options->consequent,
                      "Only rules whose consequent is exactly this item set");
  command->add_option("--top", options->top, "Show the first N rules (0: all)")
      ->check(wholeNumber(0))
      ->capture_default_str();
  addFormatOption(command, &options->format);
  command->footer(
      "Measures (N customers): support = count / N; confidence = count / "
      "count(antecedent);\n"
      "cause = count / count(consequent alone); lift = confidence / "
      "support(consequent);\n"
      "leverage = support - support(antecedent) * support(consequent);\n"
      "conviction = (1 - support(consequent)) / (1 - confidence), \"inf\" "
      "when confidence is 1\n"
      "(null in JSON).\n\n"
      "Example:\n"
      "  seqlattice rules orders.model --min-confidence 0.5 --sort "
      "lift --top 10");
  return {command, [options] { runRules(*options); }};
}

}  // namespace seqlattice_cli
