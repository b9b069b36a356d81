// Mining a labelled customer database into a Model: the one path from a
// transaction log to a model, shared by "mine" and the Python package, so a
// model mined in either is the same model (the same dictionary bytes).
//
// The settings are the mine command's; a setting added here reaches both
// front ends (the Python package exposes each field as a keyword argument).
#ifndef SEQLATTICE_CLI_SUPPORT_MINEMODEL_H_
#define SEQLATTICE_CLI_SUPPORT_MINEMODEL_H_

#include <string>

#include "seqlattice/input/columnreader.h"
#include "seqlattice/mining/miner.h"
#include "support/modelfile.h"
#include "support/parsedoption.h"
#include "support/patternstream.h"
#include "support/progress.h"

namespace seqlattice_cli {

// A minimum support: "0.02" is a fraction of the customers, "12" a count.
struct MinSupportValue {
  bool isFraction = false;
  double value = 0;
};

// Parses the text of a minimum support; returns "" or what is wrong.
std::string parseMinSupport(const std::string& text, MinSupportValue* out);

struct MineSettings {
  Parsed<MinSupportValue> minSupport;  // set through parseMinSupport
  int maxItems = 9;                    // 1 .. 31
  int threads = 0;                     // 0: the hardware's concurrency
  // Seconds after which the search stops in time for the model to be
  // finished about then, keeping the patterns found so far (the model is
  // marked incomplete); 0: none.
  double timeLimit = 0;
  // Progress notes on standard error even when it is not a terminal.
  bool progress = false;
};

// Records in model what it is mined from and with (item labels, mining
// parameters; inputName and inputFormat as given) and returns the miner's
// options for log, with a memory budget of most of what the machine has free
// and, through progress (which must outlive the search), notes on how the
// search goes and the stop at the time limit. Throws CliError (exit 1) when
// the log has no customers.
SEQUENCE_NAMESPACE_800::mining::MinerOptions prepareMining(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, Progress& progress, Model* model);

// prepareMining, then mines log into the model's fresh dictionary and
// returns the miner's summary. A search stopped by the time limit keeps the
// patterns whose sub-patterns were all found (summary.complete is false and
// the model's parameters say so). Passes on the miner's MiningError (a model
// beyond the memory the machine has free is refused that way).
SEQUENCE_NAMESPACE_800::mining::MiningSummary mineModel(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, Model* model);

// prepareMining, then streams the patterns to path (standard output for ""
// or "-") in format instead of storing them: `mine --patterns-only`. The
// model keeps no dictionary.
SEQUENCE_NAMESPACE_800::mining::MiningSummary minePatternFile(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, const std::string& path,
    PatternFormat format, Model* model);

// The pattern file format a --patterns-format value names for path: "json",
// "spmf", or "auto" (by the file name).
PatternFormat patternFormatFor(const std::string& path,
                               const std::string& name);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_MINEMODEL_H_
