// seqlattice mine: read a transaction file, mine every frequent sequential
// pattern into a dictionary, build its lattice and save the model.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include "commands/commands.h"
#include "seqlattice/dictionary/dictionarysettings.h"
#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miner.h"
#include "support/clierror.h"
#include "support/inputlog.h"
#include "support/modelfile.h"
#include "support/parsedoption.h"
#include "support/progress.h"

namespace seqlattice_cli {

namespace {

namespace mining = SEQUENCE_NAMESPACE_800::mining;

// --min-support: "0.02" is a fraction of the customers, "12" a count.
struct MinSupportValue {
  bool isFraction = false;
  double value = 0;
};

struct MineOptions {
  std::string input;
  std::string output;
  Parsed<MinSupportValue> minSupport;
  int maxItems = 9;
  InputOptions inputOptions;
  bool xml = false;
};

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
  parameters.minSupportIsFraction = options.minSupport.value.isFraction;
  parameters.minSupport = options.minSupport.value.value;
  mining::MinerOptions minerOptions;
  minerOptions.minSupport =
      parameters.minSupportIsFraction
          ? mining::MinSupport::fraction(parameters.minSupport)
          : mining::MinSupport::count(static_cast<long>(parameters.minSupport));
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
  SEQUENCE_NAMESPACE_800::SeqDictionarySettings settings;
  settings.nLevels = options.maxItems + 1;
  model.dictionary =
      std::make_unique<SEQUENCE_NAMESPACE_800::SequenceDictionary>(settings);
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
  if (log.skipped.total() > 0) {
    printLine("skipped rows", std::to_string(log.skipped.total()) + ": " +
                                  log.skipped.summary());
  }
  printLine("customers", std::to_string(parameters.customers));
  printLine("transactions", std::to_string(parameters.transactions));
  printLine("items", std::to_string(db.distinctItemCount()) + " distinct, " +
                         std::to_string(parameters.itemOccurrences) +
                         " occurrences, at most " +
                         std::to_string(parameters.maxItemsPerTransaction) +
                         " per transaction");
  printLine("min support", options.minSupport.text + " = " +
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
  addParsedOption<MinSupportValue>(
      command, "--min-support", &options->minSupport, parseMinSupport, "F|N",
      "Least support of a pattern: a fraction of the customers (0.05) or a "
      "count of customers (30)")
      ->default_val("0.05");
  command
      ->add_option("--max-items", options->maxItems,
                   "Largest number of items in a pattern")
      ->check(CLI::Range(1, 31))
      ->capture_default_str();
  addInputOptions(command, &options->inputOptions, "--format");
  command->add_flag("--xml", options->xml,
                    "Write the model in the XML object format");
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
