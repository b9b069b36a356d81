#include "support/minemodel.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>

#include "seqlattice/dictionary/dictionarysettings.h"
#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/patternbudget.h"
#include "seqlattice/recommend/sequenceindex.h"
#include "support/atomicfile.h"
#include "support/clierror.h"
#include "support/duration.h"

namespace seqlattice_cli {

namespace {

namespace mining = SEQUENCE_NAMESPACE_800::mining;

}  // namespace

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

namespace {

// What finishing a model costs per pattern found (keeping the closed part,
// building the lattice, saving), between about 2 (most patterns dropped)
// and 9 microseconds (none dropped) on the sample log:
// a search under a time limit stops early enough to leave that time.
constexpr double kFinishSecondsPerPattern = 4e-6;

// Progress of the search, at most twice a second: the patterns found so far
// and how fast they come. Under a time limit (seconds, 0: none) it stops the
// search once the time spent and the time finishing would take (seconds per
// pattern found) reach it.
std::function<bool(long)> searchProgress(Progress& progress, double timeLimit,
                                         double finishSecondsPerPattern) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  auto shown = std::make_shared<Clock::time_point>(start);
  return [&progress, start, shown, timeLimit,
          finishSecondsPerPattern](long patterns) {
    const Clock::time_point now = Clock::now();
    const double seconds = std::chrono::duration<double>(now - start).count();
    const bool goOn =
        timeLimit <= 0 ||
        seconds + static_cast<double>(patterns) * finishSecondsPerPattern <
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

// The time constraints of settings for a log with (or without) dates, into
// options and the model's parameters.
void applyTimeConstraints(const MineSettings& settings, bool datedTimes,
                          mining::MinerOptions* options,
                          MiningParameters* parameters) {
  mining::TimeConstraints& time = options->time;
  const struct {
    const char* name;
    const std::string& text;
    double* value;
    bool positive;
  } limits[] = {{"--min-gap", settings.minGap, &time.minGap, false},
                {"--max-gap", settings.maxGap, &time.maxGap, true},
                {"--max-span", settings.maxSpan, &time.maxSpan, true},
                {"--window", settings.window, &time.window, false}};
  for (const auto& limit : limits) {
    if (limit.text.empty()) continue;
    std::string problem = parseDuration(limit.text, datedTimes, limit.value);
    if (problem.empty() && limit.positive && *limit.value == 0) {
      problem = "expected a duration above 0";
    }
    if (!problem.empty()) {
      failUsage(std::string(limit.name) + " " + limit.text + ": " + problem);
    }
  }
  options->gapStatistics = settings.gapStats || time.any();
  parameters->timeAware = options->gapStatistics;
  parameters->datedTimes = parameters->timeAware && datedTimes;
  parameters->maxSpan =
      time.maxSpan == mining::TimeConstraints::kNone ? 0 : time.maxSpan;
}

// The dictionary's record of the limits: 0 for a maximum gap without one.
void recordTimeConstraints(const mining::TimeConstraints& time,
                           SEQUENCE_NAMESPACE_800::SequenceDictionary* dict) {
  dict->setSlidingWindow(time.window);
  dict->setMinGap(time.minGap);
  dict->setMaxGap(time.maxGap == mining::TimeConstraints::kNone ? 0
                                                                : time.maxGap);
}

}  // namespace

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

void addMiningOptions(CLI::App* command, MineSettings* settings) {
  addParsedOption<MinSupportValue>(
      command, "--min-support", &settings->minSupport, parseMinSupport, "F|N",
      "Least support of a pattern: a fraction of the customers (0.05) or a "
      "count of customers (30); by default the lowest support of at most "
      "--max-patterns patterns (needed with --patterns-only)");
  command
      ->add_option("--max-patterns", settings->maxPatterns,
                   "Pattern budget: the minimum support is raised until the "
                   "model holds at most this many patterns (default "
                   "without --min-support: " +
                       std::to_string(kDefaultMaxPatterns) + ", or " +
                       std::to_string(kManyItemsMaxPatterns) + " of at most " +
                       std::to_string(kManyItemsMaxItems) +
                       " items for a log of " + std::to_string(kManyItems) +
                       " items or more when --max-items is not given)")
      ->check(CLI::Range(1L, 100000000L));
  command
      ->add_option("--max-items", settings->maxItems,
                   "Largest number of items in a pattern (without "
                   "--min-support and --max-patterns, a log of " +
                       std::to_string(kManyItems) + " items or more gets " +
                       std::to_string(kManyItemsMaxItems) +
                       " when this is not given)")
      ->check(CLI::Range(1, 31))
      ->each([settings](const std::string&) { settings->maxItemsGiven = true; })
      ->capture_default_str();
}

void addTimeOptions(CLI::App* command, MineSettings* settings) {
  const std::string units =
      " (a date log takes units: 90m, 12h, 30d, 2w; other logs plain "
      "numbers in their time unit, item set indexes for SPMF files)";
  command->add_option("--min-gap", settings->minGap,
                      "Consecutive item sets of a pattern at least this far "
                      "apart" +
                          units);
  command->add_option("--max-gap", settings->maxGap,
                      "Consecutive item sets of a pattern at most this far "
                      "apart");
  command->add_option("--max-span", settings->maxSpan,
                      "A whole pattern, first item set to last, within this "
                      "time");
  command->add_option("--window", settings->window,
                      "The items of one item set of a pattern may come from "
                      "transactions this close together (0: one "
                      "transaction)");
  command->add_flag("--gap-stats", settings->gapStats,
                    "Keep the time from the next-to-last item set to the "
                    "last of every pattern (always with a time constraint); "
                    "`rules` shows it");
}

mining::MinerOptions prepareMining(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, Progress& progress, Model* model,
    std::string* supportText) {
  const mining::SequenceDatabase& db = log.database;
  if (db.customerCount() == 0) failInput(inputName + ": no customers");
  MiningParameters& parameters = model->mining;
  const MinSupportValue& given = settings.minSupport.value;
  const bool supportGiven = !settings.minSupport.text.empty();
  const bool manyItems =
      !supportGiven && settings.maxPatterns == 0 && !settings.maxItemsGiven &&
      db.distinctItemCount() >= static_cast<std::size_t>(kManyItems);
  const int maxItems = manyItems ? kManyItemsMaxItems : settings.maxItems;
  parameters.minSupportIsFraction = given.isFraction;
  parameters.minSupport = given.value;
  parameters.maxItems = maxItems;
  parameters.inputName = inputName;
  parameters.inputFormat = inputFormat;
  describeDatabase(db, &parameters);
  model->items = log.items;

  mining::MinerOptions minerOptions;
  minerOptions.minSupport = given.isFraction
                                ? mining::MinSupport::fraction(given.value)
                                : mining::MinSupport::count(std::max(
                                      1L, static_cast<long>(given.value)));
  minerOptions.maxItems = maxItems;
  minerOptions.threads = settings.threads;
  applyTimeConstraints(settings, log.datedTimes, &minerOptions, &parameters);
  // The search and the model may use most of what is left once the
  // database is loaded; a model that would need more is refused with a
  // message instead of being killed for want of memory.
  minerOptions.memoryBudget = mining::availableMemoryBytes() / 4 * 3;
  parameters.minCount = minerOptions.minSupport.countFor(db.customerCount());
  std::string text = settings.minSupport.text;
  if (!supportGiven || settings.maxPatterns > 0) {
    // The lowest support whose patterns fit the budget; never below the
    // support asked for, nor (when none was) below 2 customers, since a
    // pattern of one customer says nothing about the others. Without a
    // support the budget is split in two tiers: predictions gain most from
    // many pairs at a low support, and a few longer patterns add the context
    // that pairs lack.
    const long budget = settings.maxPatterns > 0 ? settings.maxPatterns
                        : manyItems              ? kManyItemsMaxPatterns
                                                 : kDefaultMaxPatterns;
    const bool split = !supportGiven && maxItems > 2;
    const long floor = supportGiven ? parameters.minCount : 2;
    mining::MinerOptions pairs = minerOptions;
    if (split) pairs.maxItems = 2;
    const long tierBudget = split ? std::max(1L, budget / 2) : budget;
    parameters.minCount =
        mining::lowestCountWithin(db, pairs, tierBudget, floor);
    const long longCount =
        split ? mining::lowestCountWithin(db, minerOptions, tierBudget,
                                          parameters.minCount)
              : parameters.minCount;
    parameters.minSupportIsFraction = false;
    parameters.minSupport = static_cast<double>(parameters.minCount);
    minerOptions.minSupport = mining::MinSupport::count(longCount);
    text = "at most " + std::to_string(budget) +
           " patterns: " + std::to_string(parameters.minCount);
    if (longCount != parameters.minCount) {
      text += " (" + std::to_string(longCount) +
              " for patterns of 3 or more items)";
    }
  }
  if (supportText != nullptr) *supportText = text;
  parameters.timeLimit = settings.timeLimit;
  if (settings.timeLimit > 0) {
    minerOptions.deadline =
        std::chrono::steady_clock::now() +
        std::chrono::duration_cast<std::chrono::steady_clock::duration>(
            std::chrono::duration<double>(settings.timeLimit));
  }
  minerOptions.progress =
      searchProgress(progress, settings.timeLimit, kFinishSecondsPerPattern);
  return minerOptions;
}

mining::MiningSummary mineModel(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, Model* model, std::string* supportText) {
  Progress progress(settings.progress);
  mining::MinerOptions minerOptions = prepareMining(
      log, settings, inputName, inputFormat, progress, model, supportText);
  if (settings.sequences) {
    model->sequences =
        SEQUENCE_NAMESPACE_800::recommend::SequenceIndex(log.database);
  }
  const long pairCount = model->mining.minCount;
  bool pairsComplete = true;
  SEQUENCE_NAMESPACE_800::SeqDictionarySettings dictionarySettings;
  dictionarySettings.nLevels = model->mining.maxItems + 1;
  model->dictionary =
      std::make_unique<SEQUENCE_NAMESPACE_800::SequenceDictionary>(
          dictionarySettings);
  recordTimeConstraints(minerOptions.time, model->dictionary.get());
  if (minerOptions.minSupport.countFor(log.database.customerCount()) !=
      pairCount) {
    // Every sub-pattern of a stored pattern is stored too: a longer pattern's
    // sub-patterns reach its count, which is above the pairs' support.
    mining::MinerOptions pairs = minerOptions;
    pairs.maxItems = 2;
    pairs.minSupport = mining::MinSupport::count(pairCount);
    pairsComplete =
        mining::mineIntoDictionary(log.database, pairs, *model->dictionary)
            .complete;
  }
  mining::MiningSummary summary;
  if (pairsComplete) {
    summary = mining::mineIntoDictionary(log.database, minerOptions,
                                         *model->dictionary);
  } else {
    summary.customers = static_cast<long>(log.database.customerCount());
    summary.complete = false;
  }
  if (!summary.complete) {
    progress.note("keeping the patterns whose sub-patterns were all found ...");
    auto kept = std::make_unique<SEQUENCE_NAMESPACE_800::SequenceDictionary>(
        dictionarySettings);
    mining::keepClosedPart(
        *model->dictionary, *kept, summary,
        minerOptions.time.maxGap != mining::TimeConstraints::kNone);
    recordTimeConstraints(minerOptions.time, kept.get());
    model->dictionary = std::move(kept);
  }
  return finishModel(summary, model);
}

mining::MiningSummary finishModel(mining::MiningSummary summary, Model* model) {
  const long minCount = model->mining.minCount;
  const int maxItems = model->mining.maxItems;
  model->mining.complete = summary.complete;
  // Every stored count reaches the minimum, so this removes nothing; it
  // records the minimum support that the documents state.
  model->dictionary->reduceAll(static_cast<double>(minCount));
  summary.minCount = minCount;
  summary.patterns = 0;
  summary.patternsPerSize.assign(static_cast<std::size_t>(maxItems) + 1, 0);
  for (int k = 1; k <= maxItems; ++k) {
    const long n = model->dictionary->CountSequencesOfSize(k);
    summary.patternsPerSize[static_cast<std::size_t>(k)] = n;
    summary.patterns += n;
    if (n > 0) summary.longestPattern = k;
  }
  return summary;
}

mining::MiningSummary minePatternFile(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, const std::string& path,
    PatternFormat format, Model* model, std::string* supportText) {
  if (settings.minSupport.text.empty()) {
    failUsage("a pattern file needs a minimum support (--min-support)");
  }
  Progress progress(settings.progress);
  mining::MinerOptions minerOptions = prepareMining(
      log, settings, inputName, inputFormat, progress, model, supportText);
  // A line written is finished: the search may use the whole time limit.
  minerOptions.progress = searchProgress(progress, settings.timeLimit, 0);
  mining::MiningSummary summary;
  writeOutput(path, [&](std::ostream& out) {
    PatternStream stream(out, format, log.items);
    summary = mining::SequenceMiner(minerOptions).mine(log.database, stream);
    stream.finish();
  });
  model->mining.complete = summary.complete;
  return summary;
}

PatternFormat patternFormatFor(const std::string& path,
                               const std::string& name) {
  if (name == "auto") return patternFormatOf(path);
  return name == "json" ? PatternFormat::kJson : PatternFormat::kSpmf;
}

}  // namespace seqlattice_cli
