// seqlattice mine: read a transaction file, mine every frequent sequential
// pattern into a dictionary, build its lattice and save the model.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

#include "commands/commands.h"
#include "seqlattice/dictionary/dictionarysettings.h"
#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miner.h"
#include "support/atomicfile.h"
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
  double timeLimit = 0;  // seconds; 0: none
  bool progress = false;
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

// What finishing a model costs per pattern found (keeping the closed part,
// building the lattice, saving), between about 2 (most patterns dropped)
// and 9 microseconds (none dropped) on the sample log:
// a search under a time limit stops early enough to leave that time.
constexpr double kFinishSecondsPerPattern = 4e-6;

// Progress of the search, at most twice a second: the patterns found so far
// and how fast they come. Under a time limit (seconds, 0: none) it stops the
// search once the time spent and the time finishing would take reach it.
std::function<bool(long)> searchProgress(Progress& progress, double timeLimit) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  auto shown = std::make_shared<Clock::time_point>(start);
  return [&progress, start, shown, timeLimit](long patterns) {
    const Clock::time_point now = Clock::now();
    const double seconds = std::chrono::duration<double>(now - start).count();
    const bool goOn =
        timeLimit <= 0 ||
        seconds + static_cast<double>(patterns) * kFinishSecondsPerPattern <
            timeLimit;
    if (now - *shown < std::chrono::milliseconds(500)) return goOn;
    *shown = now;
    char text[128];
    std::snprintf(text, sizeof text,
                  "mining: %ld patterns so far, %.0f patterns/s, %.0f s",
                  patterns, patterns / std::max(seconds, 1e-9), seconds);
    progress.note(text);
    return goOn;
  };
}

std::string secondsText(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%g s", seconds);
  return text;
}

void printLine(const std::string& field, const std::string& value) {
  std::string padding(field.size() < 14 ? 14 - field.size() : 1, ' ');
  std::cout << field << padding << value << "\n";
}

void runMine(const MineOptions& options) {
  refuseSameFile(options.input, options.output);
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

  Progress progress(options.progress);
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
  if (options.timeLimit > 0) {
    minerOptions.deadline =
        std::chrono::steady_clock::now() +
        std::chrono::duration_cast<std::chrono::steady_clock::duration>(
            std::chrono::duration<double>(options.timeLimit));
  }
  minerOptions.progress = searchProgress(progress, options.timeLimit);
  SEQUENCE_NAMESPACE_800::SeqDictionarySettings settings;
  settings.nLevels = options.maxItems + 1;
  model.dictionary =
      std::make_unique<SEQUENCE_NAMESPACE_800::SequenceDictionary>(settings);
  mining::MiningSummary summary =
      mining::mineIntoDictionary(db, minerOptions, *model.dictionary);
  if (!summary.complete) {
    progress.note("keeping the patterns whose sub-patterns were all found ...");
    auto kept =
        std::make_unique<SEQUENCE_NAMESPACE_800::SequenceDictionary>(settings);
    mining::keepClosedPart(*model.dictionary, *kept, summary);
    // Freeing millions of patterns one by one would take longer than the
    // search that found them; the system takes the memory back at exit.
#ifndef SEQLATTICE_FREE_AT_EXIT
    static_cast<void>(model.dictionary.release());
#endif
    model.dictionary = std::move(kept);
  }
  // Every stored count reaches the minimum, so this removes nothing; it
  // records the minimum support that the documents state.
  model.dictionary->reduceAll(static_cast<double>(summary.minCount));
  parameters.complete = summary.complete;
  parameters.timeLimit = options.timeLimit;

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
  if (!summary.complete) {
    printLine("complete",
              "no: the time limit of " + secondsText(options.timeLimit) +
                  " stopped the search; " +
                  std::to_string(summary.patternsDropped) +
                  " patterns found were dropped because a sub-pattern of "
                  "theirs was not reached");
  }
  printLine("model", options.output + (options.xml ? " (xml)" : " (binary)"));
  char time[32];
  std::snprintf(time, sizeof time, "%.2f s", seconds);
  printLine("time", time);
  if (!summary.complete) {
    std::cerr << "seqlattice: mine: the search stopped at the time limit of "
              << secondsText(options.timeLimit) << "; the model in "
              << options.output
              << " holds only part of the frequent patterns\n";
  }
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
  command
      ->add_option("--time-limit", options->timeLimit,
                   "Stop the search in time for the model to be saved about S "
                   "seconds after mining began, with the patterns found so "
                   "far, marked incomplete")
      ->type_name("S")
      ->check(CLI::Validator(
          [](std::string& text) -> std::string {
            char* end = nullptr;
            double seconds = std::strtod(text.c_str(), &end);
            if (!text.empty() && end == text.c_str() + text.size() &&
                seconds > 0 && seconds <= 1e9) {
              return "";
            }
            return "expected a number of seconds above 0, not \"" + text + "\"";
          },
          ""));
  command->add_flag("--progress", options->progress,
                    "Report progress on standard error even when it is not "
                    "a terminal");
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
