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
};

// Mines log into a fresh model (dictionary, item labels and mining
// parameters) and returns the miner's summary. inputName and inputFormat
// are recorded in the model. Throws CliError (exit 1) when the log has no
// customers, and passes on the miner's MiningError (a model beyond the
// memory the machine has free is refused that way).
SEQUENCE_NAMESPACE_800::mining::MiningSummary mineModel(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, Model* model);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_MINEMODEL_H_
