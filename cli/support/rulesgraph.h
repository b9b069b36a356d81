// The rules as a Graphviz graph ("export dot --rules"): one box per item
// sequence, an arrow from each rule's antecedent to its consequent whose
// width and label give the chosen measure, laid out left to right; 20 rules
// (the default) fit a page at full size, and Graphviz scales larger graphs
// down to one. The rules come from the rules table (ruletable.h),
// strongest by the measure first. Around an item, the graph keeps the rules
// that lead to it (it is in the consequent) and those that follow it (it is
// in the antecedent), half of the places each, and fills the item's own box.
#ifndef SEQLATTICE_CLI_SUPPORT_RULESGRAPH_H_
#define SEQLATTICE_CLI_SUPPORT_RULESGRAPH_H_

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "support/modelfile.h"

namespace seqlattice_cli {

struct RulesGraphSettings {
  std::string measure = "lift";  // one of rulesGraphMeasures()
  int top = 20;                  // rules drawn
  std::optional<std::string> around;
};

// The measures a rules graph orders and weighs its rules by.
std::vector<std::string> rulesGraphMeasures();

// Throws CliError (exit 1) when settings.around names an item the model does
// not know, or when rule extraction fails.
void writeRulesGraph(std::ostream& out, Model& model,
                     const RulesGraphSettings& settings);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_RULESGRAPH_H_
