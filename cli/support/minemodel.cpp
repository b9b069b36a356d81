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
#include "support/atomicfile.h"
#include "support/clierror.h"

namespace seqlattice_cli {

namespace {

namespace mining = SEQUENCE_NAMESPACE_800::mining;

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

mining::MinerOptions prepareMining(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, Progress& progress, Model* model) {
  const mining::SequenceDatabase& db = log.database;
  if (db.customerCount() == 0) failInput(inputName + ": no customers");
  MiningParameters& parameters = model->mining;
  parameters.minSupportIsFraction = settings.minSupport.value.isFraction;
  parameters.minSupport = settings.minSupport.value.value;
  parameters.maxItems = settings.maxItems;
  parameters.inputName = inputName;
  parameters.inputFormat = inputFormat;
  describeDatabase(db, &parameters);
  model->items = log.items;

  mining::MinerOptions minerOptions;
  minerOptions.minSupport =
      parameters.minSupportIsFraction
          ? mining::MinSupport::fraction(parameters.minSupport)
          : mining::MinSupport::count(static_cast<long>(parameters.minSupport));
  minerOptions.maxItems = settings.maxItems;
  minerOptions.threads = settings.threads;
  parameters.minCount = minerOptions.minSupport.countFor(db.customerCount());
  // The search and the model may use most of what is left once the
  // database is loaded; a model that would need more is refused with a
  // message instead of being killed for want of memory.
  minerOptions.memoryBudget = mining::availableMemoryBytes() / 4 * 3;
  parameters.timeLimit = settings.timeLimit;
  if (settings.timeLimit > 0) {
    minerOptions.deadline =
        std::chrono::steady_clock::now() +
        std::chrono::duration_cast<std::chrono::steady_clock::duration>(
            std::chrono::duration<double>(settings.timeLimit));
  }
  minerOptions.progress = searchProgress(progress, settings.timeLimit);
  return minerOptions;
}

mining::MiningSummary mineModel(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, Model* model) {
  Progress progress(settings.progress);
  mining::MinerOptions minerOptions =
      prepareMining(log, settings, inputName, inputFormat, progress, model);
  SEQUENCE_NAMESPACE_800::SeqDictionarySettings dictionarySettings;
  dictionarySettings.nLevels = settings.maxItems + 1;
  model->dictionary =
      std::make_unique<SEQUENCE_NAMESPACE_800::SequenceDictionary>(
          dictionarySettings);
  mining::MiningSummary summary = mining::mineIntoDictionary(
      log.database, minerOptions, *model->dictionary);
  if (!summary.complete) {
    progress.note("keeping the patterns whose sub-patterns were all found ...");
    auto kept = std::make_unique<SEQUENCE_NAMESPACE_800::SequenceDictionary>(
        dictionarySettings);
    mining::keepClosedPart(*model->dictionary, *kept, summary);
    model->dictionary = std::move(kept);
  }
  model->mining.complete = summary.complete;
  // Every stored count reaches the minimum, so this removes nothing; it
  // records the minimum support that the documents state.
  model->dictionary->reduceAll(static_cast<double>(summary.minCount));
  return summary;
}

mining::MiningSummary minePatternFile(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, const std::string& path,
    PatternFormat format, Model* model) {
  Progress progress(settings.progress);
  mining::MinerOptions minerOptions =
      prepareMining(log, settings, inputName, inputFormat, progress, model);
  mining::MiningSummary summary;
  writeOutput(path, [&](std::ostream& out) {
    PatternStream stream(out, format, log.items);
    summary = mining::SequenceMiner(minerOptions).mine(log.database, stream);
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
