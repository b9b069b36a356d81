// The stored patterns as "patterns" lists them, shared with the Python
// package's Model.patterns: all of them, or those containing, beginning or
// ending with a sequence, filtered by size, count and maximality, most
// frequent first (then shorter, then by text, so the listing is stable).
#ifndef SEQLATTICE_CLI_SUPPORT_PATTERNTABLE_H_
#define SEQLATTICE_CLI_SUPPORT_PATTERNTABLE_H_

#include <climits>
#include <string>
#include <vector>

#include "support/itemsyntax.h"
#include "support/modelfile.h"
#include "support/output.h"

namespace seqlattice_cli {

struct PatternQuery {
  enum class Kind { kAll, kContains, kBeginning, kEnding };
  Kind kind = Kind::kAll;
  LabelSets sequence;  // what the patterns contain, begin or end with
  int size = 0;        // only patterns of this many items (0: any)
  bool maximal = false;
  int minCount = 0;
  int maxCount = INT_MAX;
};

// Columns pattern, items, count and support. Labels of the query the model
// does not know are appended to *unknown (such a query matches nothing).
// Throws CliError (exit 1) when the listing fails.
ResultTable patternTable(Model& model, const PatternQuery& query,
                         std::vector<std::string>* unknown);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_PATTERNTABLE_H_
