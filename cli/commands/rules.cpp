// seqlattice rules: the model's sequential association rules.
#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "seqlattice/rules/seqassociationrule.h"
#include "seqlattice/sequence/timeditemset.h"
#include "support/clierror.h"
#include "support/modelfile.h"
#include "support/output.h"
#include "support/rulebounds.h"
#include "support/rulemeasures.h"
#include "support/sequencelabels.h"

namespace seqlattice_cli {

namespace {

using SEQUENCE_NAMESPACE_800::SeqAssociationRule;
using SEQUENCE_NAMESPACE_800::Sequence;

struct RulesOptions {
  std::string model;
  RuleBounds bounds;
  double minLift = 0;
  ItemSequenceOption antecedentHas;
  ItemSequenceOption consequent;
  int top = 0;
  Format format = Format::kTable;
};

struct MeasuredRule {
  const SeqAssociationRule* rule;
  RuleMeasures measures;
};

// The codes of an item filter's labels, sorted; unknown labels are reported
// and make the filter match nothing (std::nullopt).
std::optional<std::vector<int>> filterCodes(const ItemSequenceOption& option,
                                            const Model& model) {
  std::vector<int> codes;
  bool known = true;
  for (const auto& set : option.value.value_or(LabelSets())) {
    for (const std::string& label : set) {
      std::optional<int> code = model.items.codeOf(label);
      if (!code) {
        std::cerr << "seqlattice: rules: item \"" << label
                  << "\" is not in the model\n";
        known = false;
      } else {
        codes.push_back(*code);
      }
    }
  }
  if (!known) return std::nullopt;
  std::sort(codes.begin(), codes.end());
  codes.erase(std::unique(codes.begin(), codes.end()), codes.end());
  return codes;
}

// The sorted, distinct items of all of sequence's item sets.
std::vector<int> itemsOf(const Sequence& sequence) {
  std::vector<int> items;
  for (int s = 0; s < sequence.Length(); ++s) {
    items.insert(items.end(), sequence[s]->Begin(), sequence[s]->End());
  }
  std::sort(items.begin(), items.end());
  items.erase(std::unique(items.begin(), items.end()), items.end());
  return items;
}

double sortKey(const RuleMeasures& measures, const std::string& name) {
  if (name == "lift") return measures.lift;
  if (name == "leverage") return measures.leverage;
  return measures.conviction;
}

void runRules(const RulesOptions& options) {
  Model model = loadModel(options.model);
  const RuleBounds& b = options.bounds;
  std::vector<SeqAssociationRule> rules;
  KvCommon_850::KvStatus status = model.dictionary->GetRules(
      rules, b.minSupport, b.maxSupport, b.minConfidence, b.maxConfidence,
      b.minCause, b.maxCause, b.sortLetter, b.maximal);
  if (!status.IsOK()) {
    failInput("rules: rule extraction failed (status " +
              std::to_string(status.GetCode()) + ")");
  }
  const bool filterAntecedent = options.antecedentHas.value.has_value();
  const bool filterConsequent = options.consequent.value.has_value();
  std::optional<std::vector<int>> antecedentHas =
      filterCodes(options.antecedentHas, model);
  std::optional<std::vector<int>> consequent =
      filterCodes(options.consequent, model);
  std::vector<MeasuredRule> kept;
  if (antecedentHas && consequent) {
    for (const SeqAssociationRule& rule : rules) {
      if (filterAntecedent) {
        std::vector<int> items = itemsOf(rule.GetAntecedent());
        if (!std::includes(items.begin(), items.end(), antecedentHas->begin(),
                           antecedentHas->end())) {
          continue;
        }
      }
      if (filterConsequent && itemsOf(rule.GetConsequent()) != *consequent) {
        continue;
      }
      RuleMeasures measures = measuresOf(ruleCounts(*model.dictionary, rule));
      if (measures.lift < options.minLift) continue;
      kept.push_back({&rule, measures});
    }
  }
  if (b.sortLetter == 'C' && b.sortName != "confidence") {
    // Stable: rules of equal key keep the library's confidence order.
    std::stable_sort(kept.begin(), kept.end(),
                     [&b](const MeasuredRule& x, const MeasuredRule& y) {
                       return sortKey(x.measures, b.sortName) >
                              sortKey(y.measures, b.sortName);
                     });
  }
  ResultTable table({"rank", "antecedent", "consequent", "support",
                     "confidence", "cause", "lift", "leverage", "conviction"});
  for (std::size_t i = 0; i < kept.size(); ++i) {
    if (options.top > 0 && i == static_cast<std::size_t>(options.top)) break;
    const SeqAssociationRule& rule = *kept[i].rule;
    const RuleMeasures& m = kept[i].measures;
    table.addRow({static_cast<long>(i + 1),
                  sequenceCell(rule.GetAntecedent(), model.items),
                  sequenceCell(rule.GetConsequent(), model.items),
                  rule.GetSupport(), rule.GetConfidence(), rule.GetCause(),
                  m.lift, m.leverage, m.conviction});
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
  command->add_option("--min-lift", options->minLift, "Least lift")
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
      ->check(CLI::NonNegativeNumber)
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
