// The recommender's options as predict and evaluate take them: the ranking,
// the history filter, the number of items and the evidence weights, turned
// into the library's RecommendOptions.
#ifndef SEQLATTICE_CLI_SUPPORT_RECOMMENDOPTIONS_H_
#define SEQLATTICE_CLI_SUPPORT_RECOMMENDOPTIONS_H_

#include <CLI/CLI.hpp>
#include <string>

#include "seqlattice/recommend/recommender.h"

namespace seqlattice_cli {

struct RecommendChoice {
  std::string rank = "recommend";
  bool newOnly = false;
  bool repeatOnly = false;
  SEQUENCE_NAMESPACE_800::recommend::RecommendOptions options;

  SEQUENCE_NAMESPACE_800::recommend::Ranking ranking() const;
  // options with the ranking and the history filter filled in.
  SEQUENCE_NAMESPACE_800::recommend::RecommendOptions settings() const;
};

// Adds --top, --rank, --new-only, --repeat-only, --last-set-only and the
// evidence weights (--prior, --earlier-weight, --sequence-weight,
// --context-sets).
void addRecommendOptions(CLI::App* command, RecommendChoice* choice);

// The name of a source in tables: "lattice", "sequences" or "popular".
std::string sourceName(SEQUENCE_NAMESPACE_800::recommend::Source source);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_RECOMMENDOPTIONS_H_
