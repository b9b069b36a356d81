// seqlattice mine: read a transaction file, mine every frequent sequential
// pattern into a dictionary, build its lattice and save the model.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "seqlattice/dictionary/dictionarysettings.h"
#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/patternbudget.h"
#include "seqlattice/recommend/sequenceindex.h"
#include "support/clierror.h"
#include "support/inputlog.h"
#include "support/miningrecipe.h"
#include "support/modelfile.h"
#include "support/parsedoption.h"
#include "support/progress.h"

namespace seqlattice_cli {

namespace {

namespace mining = SEQUENCE_NAMESPACE_800::mining;

struct MineOptions {
  std::string input;
  std::string output;
  MiningRecipe recipe;
  InputOptions inputOptions;
  bool xml = false;
  bool noSequences = false;
};

void describeDatabase(const mining::SequenceDatabase& db,
                      MiningParameters* parameters) {
  parameters->customers = static_cast<long>(db.customerCount());
  parameters->transactions = static_cast<long>(db.transactionCount());
  parameters->itemOccurrences = static_cast<long>(db.itemOccurrenceCount());
  std::size_t widest = 0;
  for (std::size_t t = 0; t < db.transactionCount(); ++t) {
    widest = std::max(
        widest, static_cast<std::size_t>(db.itemsEnd(t) - db.itemsBegin(t)));
  }
  parameters->maxItemsPerTransaction = static_cast<int>(widest);
}

void printLine(const std::string& field, const std::string& value) {
  std::string padding(field.size() < 14 ? 14 - field.size() : 1, ' ');
  std::cout << field << padding << value << "\n";
}

void runMine(const MineOptions& options) {
  auto start = std::chrono::steady_clock::now();
  Model model;
  MiningParameters& parameters = model.mining;
  parameters.maxItems = options.recipe.maxItems;
  parameters.inputName = options.input;
  parameters.inputFormat = inputFormat(options.input, options.inputOptions);

  Progress progress;
  progress.note("reading " + options.input + " ...");
  SEQUENCE_NAMESPACE_800::input::LabelledDatabase log =
      loadInput(options.input, options.inputOptions);
  const mining::SequenceDatabase& db = log.database;
  if (db.customerCount() == 0) failInput(options.input + ": no customers");
  describeDatabase(db, &parameters);
  model.items = log.items;
  if (!options.noSequences) {
    model.sequences = SEQUENCE_NAMESPACE_800::recommend::SequenceIndex(db);
  }
  MinedDictionary mined = mineDictionary(db, options.recipe, progress);
  model.dictionary = std::move(mined.dictionary);
  parameters.minSupportIsFraction = mined.minSupportIsFraction;
  parameters.minSupport = mined.minSupport;
  parameters.minCount = mined.pairCount;

  progress.note("writing " + options.output + " ...");
  saveModel(model, options.output, options.xml);
  double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
          .count();

  printLine("input", options.input + " (" + parameters.inputFormat + ")");
  printLine("customers", std::to_string(parameters.customers));
  printLine("transactions", std::to_string(parameters.transactions));
  printLine("items", std::to_string(db.distinctItemCount()) + " distinct, " +
                         std::to_string(parameters.itemOccurrences) +
                         " occurrences, at most " +
                         std::to_string(parameters.maxItemsPerTransaction) +
                         " per transaction");
  printLine("min support", mined.supportText + " = " +
                               std::to_string(parameters.minCount) +
                               " customers");
  printLine("patterns", std::to_string(mined.patterns) + " of at most " +
                            std::to_string(options.recipe.maxItems) + " items");
  for (int k = 1; k < static_cast<int>(mined.patternsPerSize.size()); ++k) {
    if (mined.patternsPerSize[k] == 0) continue;
    printLine("  " + std::to_string(k) + (k == 1 ? " item" : " items"),
              std::to_string(mined.patternsPerSize[k]));
  }
  printLine("model", options.output + (options.xml ? " (xml)" : " (binary)"));
  char time[32];
  std::snprintf(time, sizeof time, "%.2f s", seconds);
  printLine("time", time);
  // The process ends next. Freeing a model of millions of patterns node by
  // node takes a fifth of a large run, and the system takes the memory back
  // at once, so the model is left to it; builds that check for leaks free it.
#ifndef SEQLATTICE_FREE_AT_EXIT
  static_cast<void>(model.dictionary.release());
#endif
}

}  // namespace

Command addMineCommand(CLI::App& app) {
  auto options = std::make_shared<MineOptions>();
  CLI::App* command = app.add_subcommand(
      "mine",
      "Mine the frequent sequential patterns of a transaction file into a "
      "model");
  command
      ->add_option("INPUT", options->input,
                   "Transaction file: CSV/TSV with a header, or SPMF")
      ->required();
  command->add_option("-o,--output", options->output, "Model file to write")
      ->required();
  addMiningRecipeOptions(command, &options->recipe);
  addInputOptions(command, &options->inputOptions, "--format");
  command->add_flag("--xml", options->xml,
                    "Write the model in the XML object format");
  command->add_flag("--no-sequences", options->noSequences,
                    "Leave the customers' sequences out of the model (the "
                    "recommender then uses the lattice alone)");
  command->footer(
      "Examples:\n"
      "  seqlattice mine data/sample/orders.csv -o orders.model "
      "--min-support 0.02\n"
      "  seqlattice mine log.tsv -o log.model --customer client --time date "
      "--item product\n"
      "  seqlattice mine BMS1_spmf.txt -o bms.model --min-support 60");
  return {command, [options] { runMine(*options); }};
}

}  // namespace seqlattice_cli
