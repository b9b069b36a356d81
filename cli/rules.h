// seqlattice rules: the model's sequential association rules.
#ifndef SEQLATTICE_CLI_RULES_H_
#define SEQLATTICE_CLI_RULES_H_

#include <string>

#include "output.h"
#include "rulebounds.h"

namespace seqlattice_cli {

struct RulesOptions {
  std::string model;
  RuleBounds bounds;
  int top = 0;
  Format format = Format::kTable;
};

void runRules(const RulesOptions& options);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_RULES_H_
