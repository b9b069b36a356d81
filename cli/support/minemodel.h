// Mining a labelled customer database into a Model: the one path from a
// transaction log to a model, shared by "mine", "evaluate" and the Python
// package, so a model mined in any of them is the same model (the same
// dictionary bytes). The defaults are the ones predictions work best with
// (docs/recommender.md, "Mining defaults for prediction").
//
// The settings are the mine command's; a setting added here reaches both
// front ends (the Python package exposes each field as a keyword argument).
#ifndef SEQLATTICE_CLI_SUPPORT_MINEMODEL_H_
#define SEQLATTICE_CLI_SUPPORT_MINEMODEL_H_

#include <string>

#include "seqlattice/input/columnreader.h"
#include "seqlattice/mining/miner.h"
#include "support/modelfile.h"
#include "support/parsedoption.h"
#include "support/patternstream.h"
#include "support/progress.h"

namespace seqlattice_cli {

// A minimum support: "0.02" is a fraction of the customers, "12" a count.
struct MinSupportValue {
  bool isFraction = false;
  double value = 0;
};

// Parses the text of a minimum support; returns "" or what is wrong.
std::string parseMinSupport(const std::string& text, MinSupportValue* out);

// The pattern budget when no minimum support is given.
constexpr long kDefaultMaxPatterns = 300000;

// A log of at least kManyItems distinct items, mined with neither a minimum
// support, a budget nor a largest pattern size given, gets a budget of
// kManyItemsMaxPatterns patterns of at most kManyItemsMaxItems items instead:
// with that many items the pairs that tell the candidates apart lie at supports
// the default budget does not reach, and longer patterns would take the budget
// from them (docs/recommender.md, "Mining defaults for prediction").
constexpr long kManyItems = 5000;
constexpr long kManyItemsMaxPatterns = 1000000;
constexpr int kManyItemsMaxItems = 2;

struct MineSettings {
  // Set through parseMinSupport; empty text: chosen from the pattern budget.
  Parsed<MinSupportValue> minSupport;
  // Pattern budget: the support is raised until the model holds at most this
  // many patterns. 0: without a minimum support kDefaultMaxPatterns (or
  // kManyItemsMaxPatterns, see above), no budget with one.
  long maxPatterns = 0;
  // 1 .. 31; kManyItemsMaxItems where kManyItemsMaxPatterns applies.
  int maxItems = 4;
  // maxItems was asked for, so it holds as given (and the budget for logs
  // of many items does not apply): a user who names a size gets it.
  bool maxItemsGiven = false;
  int threads = 0;        // 0: the hardware's concurrency
  bool sequences = true;  // keep the customers' sequences for the recommender
  // Seconds after which the search stops in time for the model to be
  // finished about then, keeping the patterns found so far (the model is
  // marked incomplete); 0: none.
  double timeLimit = 0;
  // Progress notes on standard error even when it is not a terminal.
  bool progress = false;
  // Time constraints as given (parseDuration's forms; "": none), read once
  // the log is, since their unit depends on its times.
  std::string minGap, maxGap, maxSpan, window;
  // Gap statistics on every pattern of two or more item sets; always with a
  // time constraint.
  bool gapStats = false;
};

// Adds --min-support, --max-patterns and --max-items (mine and evaluate).
void addMiningOptions(CLI::App* command, MineSettings* settings);

// Adds --min-gap, --max-gap, --max-span, --window and --gap-stats (mine).
void addTimeOptions(CLI::App* command, MineSettings* settings);

// Records in model what it is mined from and with (item labels, mining
// parameters; inputName and inputFormat as given) and returns the miner's
// options for log, with a memory budget of most of what the machine has free.
// Without a minimum support, half the budget goes to patterns of up to two
// items and half to longer ones, each at its own lowest support: the model's
// minCount is the pairs' support and the options' the longer patterns'. The
// budget and the largest pattern size depend on the log's distinct items as
// MineSettings says; model->mining.maxItems is the size used.
// *supportText (when not null) gets the support as the mine summary shows
// it. Through progress (which must outlive the search) the options report
// how the search goes and stop it at the time limit. Throws CliError (exit 1)
// when the log has no customers, (exit 2) when a time constraint is not a
// duration for the log's times ("--max-gap 3x: unknown unit 'x'").
SEQUENCE_NAMESPACE_800::mining::MinerOptions prepareMining(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, Progress& progress, Model* model,
    std::string* supportText = nullptr);

// prepareMining, then mines log into the model's fresh dictionary (and
// index of sequences, unless settings say not to) and returns the miner's
// summary, its patterns counted over both support tiers. A search stopped by
// the time limit keeps the patterns whose sub-patterns were all found
// (summary.complete is false and the model's parameters say so). Passes on the
// miner's MiningError (a model beyond the memory the machine has free is
// refused that way).
SEQUENCE_NAMESPACE_800::mining::MiningSummary mineModel(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, Model* model,
    std::string* supportText = nullptr);

// prepareMining, then streams the patterns to path (standard output for ""
// or "-") in format instead of storing them: `mine --patterns-only`. The
// model keeps no dictionary. A pattern file has one support, so this needs
// a minimum support: CliError (exit 2) without one.
SEQUENCE_NAMESPACE_800::mining::MiningSummary minePatternFile(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, const std::string& path,
    PatternFormat format, Model* model, std::string* supportText = nullptr);

// The last step of making a model, once its dictionary holds its patterns
// and its lattice: records that it is complete as summary says, records the
// minimum support (model->mining.minCount) in the dictionary, and returns
// summary with the model's patterns counted per size up to
// model->mining.maxItems.
SEQUENCE_NAMESPACE_800::mining::MiningSummary finishModel(
    SEQUENCE_NAMESPACE_800::mining::MiningSummary summary, Model* model);

// Sets the size fields of parameters (customers, transactions, item
// occurrences, the widest transaction) from db.
void describeDatabase(
    const SEQUENCE_NAMESPACE_800::mining::SequenceDatabase& db,
    MiningParameters* parameters);

// The pattern file format a --patterns-format value names for path: "json",
// "spmf", or "auto" (by the file name).
PatternFormat patternFormatFor(const std::string& path,
                               const std::string& name);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_MINEMODEL_H_
