// How mine and evaluate turn a customer database into a dictionary: the
// minimum support (given, or chosen from the pattern budget), the largest
// pattern, and the two-tier default that predictions work best with
// (docs/recommender.md, "Mining defaults for prediction").
#ifndef SEQLATTICE_CLI_SUPPORT_MININGRECIPE_H_
#define SEQLATTICE_CLI_SUPPORT_MININGRECIPE_H_

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/mining/sequencedatabase.h"
#include "support/parsedoption.h"
#include "support/progress.h"

namespace seqlattice_cli {

// --min-support: "0.02" is a fraction of the customers, "12" a count.
struct MinSupportValue {
  bool isFraction = false;
  double value = 0;
};

struct MiningRecipe {
  Parsed<MinSupportValue> minSupport;  // empty text: chosen by the budget
  long maxPatterns = 300000;
  bool maxPatternsGiven = false;
  int maxItems = 4;
};

// Adds --min-support, --max-patterns and --max-items.
void addMiningRecipeOptions(CLI::App* command, MiningRecipe* recipe);

struct MinedDictionary {
  std::unique_ptr<SEQUENCE_NAMESPACE_800::SequenceDictionary> dictionary;
  // The support of patterns of up to two items and of longer ones (equal
  // unless the budget was split), and the support as the summary shows it.
  long pairCount = 0;
  long longCount = 0;
  std::string supportText;
  bool minSupportIsFraction = false;
  double minSupport = 0;  // as given, or the pairs' count when chosen
  long patterns = 0;
  std::vector<long> patternsPerSize;  // entry k: patterns of k items
};

// Mines db as the recipe says, lattice built. Throws MiningError (memory
// budget, bad options) like the miner.
MinedDictionary mineDictionary(
    const SEQUENCE_NAMESPACE_800::mining::SequenceDatabase& db,
    const MiningRecipe& recipe, Progress& progress);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_MININGRECIPE_H_
