// seqlattice rules: the model's sequential association rules.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "seqlattice/rules/seqassociationrule.h"
#include "support/clierror.h"
#include "support/modelfile.h"
#include "support/output.h"
#include "support/parsedoption.h"
#include "support/rulebounds.h"
#include "support/sequencelabels.h"

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
  const RuleBounds& b = options.bounds;
  std::vector<SEQUENCE_NAMESPACE_800::SeqAssociationRule> rules;
  KvCommon_850::KvStatus status = model.dictionary->GetRules(
      rules, b.minSupport, b.maxSupport, b.minConfidence, b.maxConfidence,
      b.minCause, b.maxCause, b.sortLetter, b.maximal);
  if (!status.IsOK()) {
    failInput("rules: rule extraction failed (status " +
              std::to_string(status.GetCode()) + ")");
  }
  ResultTable table(
      {"rank", "antecedent", "consequent", "support", "confidence", "cause"});
  for (std::size_t i = 0; i < rules.size(); ++i) {
    if (options.top > 0 && i == static_cast<std::size_t>(options.top)) break;
    const auto& rule = rules[i];
    table.addRow({static_cast<long>(i + 1),
                  sequenceCell(rule.GetAntecedent(), model.items),
                  sequenceCell(rule.GetConsequent(), model.items),
                  rule.GetSupport(), rule.GetConfidence(), rule.GetCause()});
  }
  table.write(std::cout, options.format);
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
      ->check(wholeNumber(0))
      ->capture_default_str();
  addFormatOption(command, &options->format);
  command->footer(
      "Example:\n"
      "  seqlattice rules orders.model --min-confidence 0.5 --sort "
      "confidence --top 10");
  return {command, [options] { runRules(*options); }};
}

}  // namespace seqlattice_cli
