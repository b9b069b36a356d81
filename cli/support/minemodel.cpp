#include "support/minemodel.h"

#include <algorithm>
#include <cstdlib>
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
    const std::string& inputFormat, Model* model) {
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
  return minerOptions;
}

mining::MiningSummary mineModel(
    const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const MineSettings& settings, const std::string& inputName,
    const std::string& inputFormat, Model* model) {
  mining::MinerOptions minerOptions =
      prepareMining(log, settings, inputName, inputFormat, model);
  SEQUENCE_NAMESPACE_800::SeqDictionarySettings dictionarySettings;
  dictionarySettings.nLevels = settings.maxItems + 1;
  model->dictionary =
      std::make_unique<SEQUENCE_NAMESPACE_800::SequenceDictionary>(
          dictionarySettings);
  mining::MiningSummary summary = mining::mineIntoDictionary(
      log.database, minerOptions, *model->dictionary);
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
  mining::MinerOptions minerOptions =
      prepareMining(log, settings, inputName, inputFormat, model);
  mining::MiningSummary summary;
  writeOutput(path, [&](std::ostream& out) {
    PatternStream stream(out, format, log.items);
    summary = mining::SequenceMiner(minerOptions).mine(log.database, stream);
  });
  return summary;
}

PatternFormat patternFormatFor(const std::string& path,
                               const std::string& name) {
  if (name == "auto") return patternFormatOf(path);
  return name == "json" ? PatternFormat::kJson : PatternFormat::kSpmf;
}

}  // namespace seqlattice_cli
