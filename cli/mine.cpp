// seqlattice mine: read a transaction file, mine every frequent sequential
// pattern into a dictionary, build its lattice and save the model.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <string>

#include "clierror.h"
#include "command.h"
#include "inputlog.h"
#include "minedictionary.h"
#include "modelfile.h"
#include "progress.h"
#include "seqlattice/dictionary/dictionarysettings.h"
#include "seqlattice/mining/miner.h"

namespace seqlattice_cli {

namespace {

namespace mining = SEQUENCE_NAMESPACE_800::mining;
using SEQUENCE_NAMESPACE_800::SeqDictionarySettings;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;

struct MineOptions {
  std::string input;
  std::string output;
  std::string minSupport = "0.05";
  int maxItems = 9;
  InputOptions inputOptions;
  bool xml = false;
};

// "0.02" is a fraction of the customers, "12" a count of customers.
mining::MinSupport parseMinSupport(const std::string& text,
                                   MiningParameters* parameters) {
  char* end = nullptr;
  double value = std::strtod(text.c_str(), &end);
  bool isCount = text.find_first_not_of("0123456789") == std::string::npos;
  bool parsed = !text.empty() && end == text.c_str() + text.size();
  if (parsed && isCount && value >= 1 && value <= 2147483647) {
    parameters->minSupportIsFraction = false;
    parameters->minSupport = value;
    return mining::MinSupport::count(static_cast<long>(value));
  }
  if (parsed && !isCount && value > 0 && value <= 1) {
    parameters->minSupportIsFraction = true;
    parameters->minSupport = value;
    return mining::MinSupport::fraction(value);
  }
  failUsage("--min-support \"" + text +
            "\": expected a fraction of the customers (0 < F <= 1, such as "
            "0.05) or a count of customers (N >= 1)");
}

void describeDatabase(const mining::SequenceDatabase& db,
                      MiningParameters* parameters) {
  parameters->customers = static_cast<long>(db.customerCount());
  parameters->transactions = static_cast<long>(db.transactionCount());
  parameters->itemOccurrences = static_cast<long>(db.itemOccurrenceCount());
  std::size_t widest = 0;
  for (std::size_t t = 0; t < db.transactionCount(); ++t) {
    widest = std::max(widest,
                      static_cast<std::size_t>(db.itemsEnd(t) - db.itemsBegin(t)));
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
  mining::MinerOptions minerOptions;
  minerOptions.minSupport = parseMinSupport(options.minSupport, &parameters);
  minerOptions.maxItems = options.maxItems;
  parameters.maxItems = options.maxItems;
  parameters.inputName = options.input;
  parameters.inputFormat = inputFormat(options.input, options.inputOptions);

  Progress progress;
  progress.note("reading " + options.input + " ...");
  mining::LabelledDatabase log = loadInput(options.input, options.inputOptions);
  const mining::SequenceDatabase& db = log.database;
  if (db.customerCount() == 0) failInput(options.input + ": no customers");
  describeDatabase(db, &parameters);
  model.items = log.items;
  parameters.minCount = minerOptions.minSupport.countFor(db.customerCount());

  progress.note("mining " + std::to_string(db.customerCount()) +
                " customers ...");
  SeqDictionarySettings settings;
  settings.nLevels = options.maxItems + 1;
  model.dictionary = std::make_unique<SequenceDictionary>(settings);
  mining::MiningSummary summary =
      mineIntoDictionary(db, minerOptions, *model.dictionary);

  progress.note("writing " + options.output + " ...");
  saveModel(model, options.output, options.xml);
  double seconds = std::chrono::duration<double>(
                       std::chrono::steady_clock::now() - start)
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
}

}  // namespace

Command addMineCommand(CLI::App& app) {
  auto options = std::make_shared<MineOptions>();
  CLI::App* command = app.add_subcommand(
      "mine",
      "Mine the frequent sequential patterns of a transaction file into a "
      "model");
  command->add_option("INPUT", options->input,
                      "Transaction file: CSV/TSV with a header, or SPMF")
      ->required();
  command->add_option("-o,--output", options->output, "Model file to write")
      ->required();
  command
      ->add_option("--min-support", options->minSupport,
                   "Least support of a pattern: a fraction of the customers "
                   "(0.05) or a count of customers (30)")
      ->capture_default_str();
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
