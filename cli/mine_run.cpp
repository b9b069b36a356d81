// seqlattice mine: read a transaction file, mine every frequent sequential
// pattern into a dictionary, build its lattice and save the model.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <string>

#include "clierror.h"
#include "inputlog.h"
#include "mine.h"
#include "modelfile.h"
#include "progress.h"
#include "seqlattice/dictionary/dictionarysettings.h"
#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miner.h"

namespace seqlattice_cli {

namespace {

namespace mining = SEQUENCE_NAMESPACE_800::mining;
using SEQUENCE_NAMESPACE_800::SeqDictionarySettings;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;

// "0.02" is a fraction of the customers, "12" a count of customers.
// The miner's form of an option value that parseMinSupport accepted.
mining::MinSupport minSupportOf(const std::string& text,
                                MiningParameters* parameters) {
  parseMinSupport(text, &parameters->minSupportIsFraction,
                  &parameters->minSupport);
  return parameters->minSupportIsFraction
             ? mining::MinSupport::fraction(parameters->minSupport)
             : mining::MinSupport::count(
                   static_cast<long>(parameters->minSupport));
}

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

}  // namespace

void runMine(const MineOptions& options) {
  auto start = std::chrono::steady_clock::now();
  Model model;
  MiningParameters& parameters = model.mining;
  mining::MinerOptions minerOptions;
  minerOptions.minSupport = minSupportOf(options.minSupport, &parameters);
  minerOptions.maxItems = options.maxItems;
  parameters.maxItems = options.maxItems;
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
  parameters.minCount = minerOptions.minSupport.countFor(db.customerCount());

  progress.note("mining " + std::to_string(db.customerCount()) +
                " customers ...");
  // The search and the model may use most of what is left once the
  // database is loaded; a model that would need more is refused with a
  // message instead of being killed for want of memory.
  minerOptions.memoryBudget = mining::availableMemoryBytes() / 4 * 3;
  SeqDictionarySettings settings;
  settings.nLevels = options.maxItems + 1;
  model.dictionary = std::make_unique<SequenceDictionary>(settings);
  mining::MiningSummary summary =
      mining::mineIntoDictionary(db, minerOptions, *model.dictionary);
  // Every stored count reaches the minimum, so this removes nothing; it
  // records the minimum support that the documents state.
  model.dictionary->reduceAll(static_cast<double>(summary.minCount));

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
  printLine("min support", options.minSupport + " = " +
                               std::to_string(parameters.minCount) +
                               " customers");
  printLine("patterns", std::to_string(summary.patterns) + " of at most " +
                            std::to_string(options.maxItems) + " items");
  for (int k = 1; k < static_cast<int>(summary.patternsPerSize.size()); ++k) {
    if (summary.patternsPerSize[k] == 0) continue;
    printLine("  " + std::to_string(k) + (k == 1 ? " item" : " items"),
              std::to_string(summary.patternsPerSize[k]));
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

}  // namespace seqlattice_cli
