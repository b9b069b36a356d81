#include "support/miningrecipe.h"

#include <algorithm>
#include <cstdlib>

#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/patternbudget.h"

namespace seqlattice_cli {

namespace {

namespace mining = SEQUENCE_NAMESPACE_800::mining;

std::string parseMinSupport(const std::string& text, MinSupportValue* out) {
  char* end = nullptr;
  double parsed = std::strtod(text.c_str(), &end);
  bool isFraction = text.find_first_not_of("0123456789") != std::string::npos;
  bool valid = !text.empty() && end == text.c_str() + text.size() &&
               (isFraction ? parsed > 0 && parsed <= 1
                           : parsed >= 1 && parsed <= 2147483647);
  if (!valid) {
    return "expected a fraction of the customers (0 < F <= 1) or a count of "
           "customers (N >= 1), not \"" +
           text + "\"";
  }
  *out = MinSupportValue{isFraction, parsed};
  return "";
}

}  // namespace

void addMiningRecipeOptions(CLI::App* command, MiningRecipe* recipe) {
  addParsedOption<MinSupportValue>(
      command, "--min-support", &recipe->minSupport, parseMinSupport, "F|N",
      "Least support of a pattern: a fraction of the customers (0.05) or a "
      "count of customers (30); by default the lowest support of at most "
      "--max-patterns patterns");
  command
      ->add_option("--max-patterns", recipe->maxPatterns,
                   "Pattern budget: the minimum support is raised until the "
                   "model holds at most this many patterns")
      ->check(CLI::Range(1L, 100000000L))
      ->capture_default_str()
      ->each([recipe](const std::string&) { recipe->maxPatternsGiven = true; });
  command
      ->add_option("--max-items", recipe->maxItems,
                   "Largest number of items in a pattern")
      ->check(CLI::Range(1, 31))
      ->capture_default_str();
}

MinedDictionary mineDictionary(const mining::SequenceDatabase& db,
                               const MiningRecipe& recipe, Progress& progress) {
  MinedDictionary mined;
  const MinSupportValue& given = recipe.minSupport.value;
  const bool supportGiven = !recipe.minSupport.text.empty();
  mining::MinerOptions minerOptions;
  minerOptions.minSupport = given.isFraction
                                ? mining::MinSupport::fraction(given.value)
                                : mining::MinSupport::count(std::max(
                                      1L, static_cast<long>(given.value)));
  minerOptions.maxItems = recipe.maxItems;
  mined.minSupportIsFraction = given.isFraction;
  mined.minSupport = given.value;
  mined.supportText = recipe.minSupport.text;
  mined.pairCount = minerOptions.minSupport.countFor(db.customerCount());
  mined.longCount = mined.pairCount;
  if (!supportGiven || recipe.maxPatternsGiven) {
    // The lowest support whose patterns fit the budget; never below the
    // support asked for, nor (when none was) below 2 customers, since a
    // pattern of one customer says nothing about the others. Without a
    // support, half the budget goes to patterns of two items and half to
    // longer ones, each tier at its own lowest support: predictions gain
    // most from many pairs at a low support, and a few longer patterns add
    // the context that pairs lack.
    progress.note("choosing the minimum support for at most " +
                  std::to_string(recipe.maxPatterns) + " patterns ...");
    const bool split = !supportGiven && recipe.maxItems > 2;
    const long floor = supportGiven ? mined.pairCount : 2;
    mining::MinerOptions pairs = minerOptions;
    if (split) pairs.maxItems = 2;
    const long tierBudget =
        split ? std::max(1L, recipe.maxPatterns / 2) : recipe.maxPatterns;
    mined.pairCount = mining::lowestCountWithin(db, pairs, tierBudget, floor);
    mined.longCount = split ? mining::lowestCountWithin(
                                  db, minerOptions, tierBudget, mined.pairCount)
                            : mined.pairCount;
    mined.minSupportIsFraction = false;
    mined.minSupport = static_cast<double>(mined.pairCount);
    mined.supportText = "at most " + std::to_string(recipe.maxPatterns) +
                        " patterns: " + std::to_string(mined.pairCount);
    if (mined.longCount != mined.pairCount) {
      mined.supportText += " (" + std::to_string(mined.longCount) +
                           " for patterns of 3 or more items)";
    }
  }

  progress.note("mining " + std::to_string(db.customerCount()) +
                " customers ...");
  // The search and the model may use most of what is left once the
  // database is loaded; a model that would need more is refused with a
  // message instead of being killed for want of memory.
  minerOptions.memoryBudget = mining::availableMemoryBytes() / 4 * 3;
  SEQUENCE_NAMESPACE_800::SeqDictionarySettings settings;
  settings.nLevels = recipe.maxItems + 1;
  mined.dictionary =
      std::make_unique<SEQUENCE_NAMESPACE_800::SequenceDictionary>(settings);
  if (mined.longCount != mined.pairCount) {
    // Every sub-pattern of a stored pattern is stored too: a longer pattern's
    // sub-patterns reach its count, which is above the pairs' support.
    mining::MinerOptions pairs = minerOptions;
    pairs.maxItems = 2;
    pairs.minSupport = mining::MinSupport::count(mined.pairCount);
    mining::mineIntoDictionary(db, pairs, *mined.dictionary);
  }
  minerOptions.minSupport = mining::MinSupport::count(mined.longCount);
  mining::mineIntoDictionary(db, minerOptions, *mined.dictionary);
  // Every stored count reaches the minimum, so this removes nothing; it
  // records the minimum support that the documents state.
  mined.dictionary->reduceAll(static_cast<double>(mined.pairCount));
  mined.patternsPerSize.assign(static_cast<std::size_t>(recipe.maxItems) + 1,
                               0);
  for (int k = 1; k <= recipe.maxItems; ++k) {
    const long n = mined.dictionary->CountSequencesOfSize(k);
    mined.patternsPerSize[static_cast<std::size_t>(k)] = n;
    mined.patterns += n;
  }
  return mined;
}

}  // namespace seqlattice_cli
