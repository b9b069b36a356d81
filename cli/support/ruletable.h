// The model's sequential association rules as "rules" lists them, shared
// with the Python package's Model.rules: rank, antecedent, consequent and the
// rule's measures, in the order RuleBounds asks for.
#ifndef SEQLATTICE_CLI_SUPPORT_RULETABLE_H_
#define SEQLATTICE_CLI_SUPPORT_RULETABLE_H_

#include "support/modelfile.h"
#include "support/output.h"
#include "support/rulebounds.h"

namespace seqlattice_cli {

// The first top rules within bounds (top 0: all). Throws CliError (exit 1)
// when the extraction fails.
ResultTable ruleTable(Model& model, const RuleBounds& bounds, int top);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_RULETABLE_H_
