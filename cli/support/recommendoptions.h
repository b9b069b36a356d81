// The recommender's options as predict and evaluate take them: the ranking,
// the history filter, the number of items and the evidence weights, into
// PredictSettings (whose recommendOptions makes the library's options).
#ifndef SEQLATTICE_CLI_SUPPORT_RECOMMENDOPTIONS_H_
#define SEQLATTICE_CLI_SUPPORT_RECOMMENDOPTIONS_H_

#include <CLI/CLI.hpp>
#include <string>

#include "seqlattice/recommend/recommender.h"
#include "support/prediction.h"

namespace seqlattice_cli {

// Adds --top, --rank, --new-only, --repeat-only, --last-set-only and the
// evidence weights (--prior, --earlier-weight, --sequence-weight,
// --next-weight, --context-sets).
void addRecommendOptions(CLI::App* command, PredictSettings* settings);

// The name of a source in tables: "lattice", "sequences", "next" or
// "popular".
std::string sourceName(SEQUENCE_NAMESPACE_800::recommend::Source source);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_RECOMMENDOPTIONS_H_
