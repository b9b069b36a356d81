// The rule selection shared by "rules" and "export pmml": bounds on support,
// confidence and cause (fractions, inclusive), the measure that orders the
// rules, and whether only maximal patterns yield rules. "rules" also orders by
// the measures the tool computes itself (lift, leverage, conviction).
#ifndef SEQLATTICE_CLI_SUPPORT_RULEBOUNDS_H_
#define SEQLATTICE_CLI_SUPPORT_RULEBOUNDS_H_

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace seqlattice_cli {

struct RuleBounds {
  double minSupport = 0.0;
  double maxSupport = 1.0;
  double minConfidence = 0.0;
  double maxConfidence = 1.0;
  double minCause = 0.0;
  double maxCause = 1.0;
  // The library's letter of the ordering measure: 'S'upport, 'C'onfidence
  // or cause ('A').
  char sortLetter = 'C';
  // The measure's name as given ("confidence" by default).
  std::string sortName = "confidence";
  bool maximal = false;
};

// The measures rules can be ordered by: the library's (support, confidence,
// cause) and, with toolMeasures, the tool's (lift, leverage, conviction).
std::vector<std::string> ruleSortNames(bool toolMeasures);

// Whether name is one of the tool's measures, which the library cannot order
// by (it orders by confidence and the rule table reorders).
bool isToolMeasure(const std::string& name);

// Orders by the measure name, one of ruleSortNames(true).
void setRuleSort(RuleBounds* bounds, const std::string& name);

// Adds the bounds, --sort and --maximal to command. With toolMeasures, --sort
// also takes lift, leverage and conviction: the library then orders by
// confidence and the command reorders.
void addRuleBoundOptions(CLI::App* command, RuleBounds* bounds,
                         bool toolMeasures = false);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_RULEBOUNDS_H_
