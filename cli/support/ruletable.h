// The model's sequential association rules as "rules" lists them, shared
// with the Python package's Model.rules: rank, antecedent, consequent, the
// library's measures (support, confidence, cause) and the tool's own
// (lift, leverage, conviction; rulemeasures.h), in the order RuleBounds asks
// for. A model mined with gap statistics adds the mean, minimum and maximum
// time to the consequent ("mean gap", "min gap", "max gap"; days for a log of
// dates, else the log's time unit). Ordering by one of the tool's measures
// reorders the library's confidence order stably, so rules of equal key keep
// it.
#ifndef SEQLATTICE_CLI_SUPPORT_RULETABLE_H_
#define SEQLATTICE_CLI_SUPPORT_RULETABLE_H_

#include <optional>
#include <string>
#include <vector>

#include "support/modelfile.h"
#include "support/output.h"
#include "support/rulebounds.h"

namespace seqlattice_cli {

// What the table selects beyond the library's bounds.
struct RuleFilters {
  double minLift = 0.0;
  // Only rules whose antecedent holds all these items, in any of its item
  // sets.
  std::optional<std::vector<std::string>> antecedentHas;
  // Only rules whose consequent is exactly this item set.
  std::optional<std::vector<std::string>> consequent;
};

// The first top rules within bounds and filters (top 0: all). Labels of the
// filters the model does not know are appended to *unknown (such a filter
// matches nothing). Throws CliError (exit 1) when the extraction fails.
ResultTable ruleTable(Model& model, const RuleBounds& bounds,
                      const RuleFilters& filters, int top,
                      std::vector<std::string>* unknown);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_RULETABLE_H_
