// Building a model from patterns counted elsewhere rather than mined here:
// `mine --from-patterns` (a pattern file of another miner, a distributed
// PrefixSpan's output) and the distributed miner of the Python package,
// whose driver holds the patterns that all workers counted. Given the
// patterns, counts and first customers the miner would find, the model file
// is the one `mine` writes, byte for byte, since the dictionary is filled
// by mining::fillFromRecords in the miner's report order and finished by the
// same finishModel.
#ifndef SEQLATTICE_CLI_SUPPORT_PATTERNMODEL_H_
#define SEQLATTICE_CLI_SUPPORT_PATTERNMODEL_H_

#include <string>
#include <vector>

#include "seqlattice/mining/miner.h"
#include "support/minemodel.h"
#include "support/modelfile.h"

namespace seqlattice_cli {

// Fills a fresh dictionary of model with the patterns of records
// (mining/patternrecords.h) and finishes the model. model->mining must
// already say what the model is mined from and with (customers, minCount,
// maxItems, ...); its items and sequences are the caller's. Every record
// must reach minCount and hold at most maxItems items. Passes on
// mining::MiningError (patterns not closed under sub-patterns, a model
// beyond the memory the machine has free).
SEQUENCE_NAMESPACE_800::mining::MiningSummary buildPatternModel(
    const std::vector<int>& records, Model* model);

// What `mine --from-patterns` read and left out.
struct PatternFileSummary {
  long read = 0;     // patterns in the file
  long dropped = 0;  // below the minimum support or beyond --max-items
  bool json = false;
};

// `mine --from-patterns path --customers N`: the model of the patterns of a
// pattern file counted over `customers` customers. The minimum support is
// settings' (its count for N; patterns below it are left out) or, without
// one, the lowest count of the file; patterns of more than settings.maxItems
// items are left out. Throws CliError (exit 1) for a file without patterns,
// a count above the customers, or patterns that are not closed under
// sub-patterns, and the reader's InputError for bad text.
SEQUENCE_NAMESPACE_800::mining::MiningSummary modelFromPatternFile(
    const std::string& path, long customers, const MineSettings& settings,
    Model* model, PatternFileSummary* read);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_PATTERNMODEL_H_
