// seqlattice mine: read a transaction file, mine every frequent sequential
// pattern into a dictionary, build its lattice and save the model.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include "commands/commands.h"
#include "commands/modelatexit.h"
#include "seqlattice/mining/miner.h"
#include "support/atomicfile.h"
#include "support/clierror.h"
#include "support/inputlog.h"
#include "support/minemodel.h"
#include "support/modelfile.h"
#include "support/parsedoption.h"
#include "support/patternmodel.h"
#include "support/patternstream.h"
#include "support/progress.h"

namespace seqlattice_cli {

namespace {

namespace mining = SEQUENCE_NAMESPACE_800::mining;

struct MineOptions {
  std::string input;
  std::string output;
  MineSettings settings;
  InputOptions inputOptions;
  bool xml = false;
  std::string patternsOnly;  // a file for the patterns instead of a model
  std::string patternsFormat = "auto";
  bool noSequences = false;
  std::string fromPatterns;  // a pattern file to build the model from
  long customers = 0;        // the customers its patterns were counted in
};

void printLine(const std::string& field, const std::string& value) {
  std::string padding(field.size() < 14 ? 14 - field.size() : 1, ' ');
  std::cout << field << padding << value << "\n";
}

std::string secondsText(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%g s", seconds);
  return text;
}

void printSummary(const mining::MiningSummary& summary, int maxItems) {
  printLine("patterns", std::to_string(summary.patterns) + " of at most " +
                            std::to_string(maxItems) + " items");
  for (int k = 1; k < static_cast<int>(summary.patternsPerSize.size()); ++k) {
    if (summary.patternsPerSize[k] == 0) continue;
    printLine("  " + std::to_string(k) + (k == 1 ? " item" : " items"),
              std::to_string(summary.patternsPerSize[k]));
  }
}

void runMine(const MineOptions& options) {
  refuseSameFile(options.input, options.patternsOnly.empty()
                                    ? options.output
                                    : options.patternsOnly);
  auto start = std::chrono::steady_clock::now();
  Progress progress(options.settings.progress);
  progress.note("reading " + options.input + " ...");
  SEQUENCE_NAMESPACE_800::input::LabelledDatabase log =
      loadInput(options.input, options.inputOptions);
  const mining::SequenceDatabase& db = log.database;

  progress.note("mining " + std::to_string(db.customerCount()) +
                " customers ...");
  Model model;
  ModelAtExit atExit(model);
  const MiningParameters& parameters = model.mining;
  MineSettings settings = options.settings;
  settings.sequences = !options.noSequences;
  std::string supportText;
  const std::string logFormat =
      inputFormat(options.input, options.inputOptions);
  mining::MiningSummary summary;
  std::string written;
  if (!options.patternsOnly.empty()) {
    PatternFormat format =
        patternFormatFor(options.patternsOnly, options.patternsFormat);
    summary =
        minePatternFile(log, settings, options.input, logFormat,
                        options.patternsOnly, format, &model, &supportText);
    written = options.patternsOnly +
              (format == PatternFormat::kJson ? " (json lines)" : " (spmf)");
  } else {
    summary = mineModel(log, settings, options.input, logFormat, &model,
                        &supportText);
    progress.note("writing " + options.output + " ...");
    saveModel(model, options.output, options.xml);
    written = options.output + (options.xml ? " (xml)" : " (binary)");
  }
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
  printLine(
      "min support",
      supportText + " = " + std::to_string(parameters.minCount) + " customers");
  printSummary(summary, parameters.maxItems);
  if (!summary.complete) {
    printLine(
        "complete",
        "no: the time limit of " + secondsText(options.settings.timeLimit) +
            " stopped the search; " + std::to_string(summary.patternsDropped) +
            " patterns found were dropped because a sub-pattern of "
            "theirs was not reached");
  }
  printLine(options.patternsOnly.empty() ? "model" : "pattern file", written);
  char time[32];
  std::snprintf(time, sizeof time, "%.2f s", seconds);
  printLine("time", time);
  if (!summary.complete) {
    std::cerr << "seqlattice: mine: the search stopped at the time limit of "
              << secondsText(options.settings.timeLimit) << "; "
              << (options.patternsOnly.empty() ? "the model in "
                                               : "the pattern file ")
              << (options.patternsOnly.empty() ? options.output
                                               : options.patternsOnly)
              << " holds only part of the frequent patterns\n";
  }
}

// mine --from-patterns: a model of patterns counted elsewhere.
void runFromPatterns(const MineOptions& options) {
  if (options.settings.maxPatterns > 0 || options.settings.timeLimit > 0) {
    failUsage(
        "--from-patterns builds the model of the patterns given: "
        "--max-patterns and --time-limit do not apply");
  }
  refuseSameFile(options.fromPatterns, options.output);
  Model model;
  PatternFileSummary read;
  mining::MiningSummary summary = modelFromPatternFile(
      options.fromPatterns, options.customers, options.settings, &model, &read);
  saveModel(model, options.output, options.xml);
  printLine("patterns from",
            options.fromPatterns + (read.json ? " (json lines)" : " (spmf)"));
  printLine("customers", std::to_string(model.mining.customers));
  printLine("min support",
            std::to_string(model.mining.minCount) + " customers");
  printSummary(summary, options.settings.maxItems);
  if (read.dropped > 0) {
    printLine("left out", std::to_string(read.dropped) + " of " +
                              std::to_string(read.read) +
                              " patterns, below the minimum support or "
                              "longer than --max-items");
  }
  printLine("model", options.output + (options.xml ? " (xml)" : " (binary)"));
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
  CLI::Option* input =
      command->add_option("INPUT", options->input,
                          "Transaction file: CSV/TSV with a header, or SPMF");
  CLI::Option* output = command->add_option("-o,--output", options->output,
                                            "Model file to write");
  CLI::Option* patternsOnly =
      command
          ->add_option("--patterns-only", options->patternsOnly,
                       "Write the frequent patterns to this file, one a line, "
                       "instead of a model: needs no memory for a model, so "
                       "it finishes searches whose model would not fit")
          ->excludes(output);
  command
      ->add_option("--patterns-format", options->patternsFormat,
                   "Form of the --patterns-only lines: spmf (1 -1 2 3 -1 "
                   "#SUP: 7), json ({\"sequence\":[[1],[2,3]],\"freq\":7}) "
                   "or auto (json for .json, .jsonl and .ndjson files)")
      ->check(CLI::IsMember({"auto", "spmf", "json"}))
      ->needs(patternsOnly)
      ->capture_default_str();
  CLI::Option* fromPatterns =
      command
          ->add_option("--from-patterns", options->fromPatterns,
                       "Build the model from this pattern file (SPMF lines "
                       "1 -1 2 -1 #SUP: 7, or JSON lines "
                       "{\"sequence\":[[1],[2,3]],\"freq\":7}) instead of "
                       "mining INPUT")
          ->excludes(input)
          ->excludes(patternsOnly)
          ->needs(output);
  CLI::Option* customers =
      command
          ->add_option("--customers", options->customers,
                       "With --from-patterns: the number of customers the "
                       "patterns were counted in (the model's N)")
          ->check(CLI::Range(1L, 2147483647L))
          ->needs(fromPatterns);
  // One input and one of the two outputs are needed; CLI11 checks this
  // after parsing.
  command->callback([input, output, patternsOnly, fromPatterns, customers] {
    if (fromPatterns->count() > 0 && customers->count() == 0) {
      throw CLI::RequiredError("--customers (with --from-patterns)");
    }
    if (input->count() == 0 && fromPatterns->count() == 0) {
      throw CLI::RequiredError("INPUT");
    }
    if (output->count() == 0 && patternsOnly->count() == 0) {
      throw CLI::RequiredError("--output or --patterns-only");
    }
  });
  addMiningOptions(command, &options->settings);
  addTimeOptions(command, &options->settings);
  addInputOptions(command, &options->inputOptions, "--format");
  command
      ->add_option("--time-limit", options->settings.timeLimit,
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
  command->add_flag("--progress", options->settings.progress,
                    "Report progress on standard error even when it is not "
                    "a terminal");
  command
      ->add_flag("--xml", options->xml,
                 "Write the model in the XML object format")
      ->excludes(patternsOnly);
  command
      ->add_flag("--no-sequences", options->noSequences,
                 "Leave the customers' sequences out of the model (the "
                 "recommender then uses the lattice alone)")
      ->excludes(patternsOnly);
  command->footer(
      "Examples:\n"
      "  seqlattice mine data/sample/orders.csv -o orders.model "
      "--min-support 0.02\n"
      "  seqlattice mine log.tsv -o log.model --customer client --time date "
      "--item product\n"
      "  seqlattice mine BMS1_spmf.txt -o bms.model --min-support 60\n"
      "  seqlattice mine BMS1_spmf.txt --patterns-only bms.patterns "
      "--min-support 30\n"
      "  seqlattice mine --from-patterns part-00000.json --customers 31790 "
      "-o spark.model");
  return {command, [options] {
            if (options->fromPatterns.empty()) {
              runMine(*options);
            } else {
              runFromPatterns(*options);
            }
          }};
}

}  // namespace seqlattice_cli
