#include "support/patternmodel.h"

#include <algorithm>
#include <memory>

#include "seqlattice/dictionary/dictionarysettings.h"
#include "seqlattice/input/patternfile.h"
#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miningerror.h"
#include "seqlattice/mining/patternorder.h"
#include "seqlattice/mining/patternrecords.h"
#include "support/clierror.h"

namespace seqlattice_cli {

namespace mining = SEQUENCE_NAMESPACE_800::mining;

mining::MiningSummary buildPatternModel(const std::vector<int>& records,
                                        Model* model) {
  SEQUENCE_NAMESPACE_800::SeqDictionarySettings dictionarySettings;
  dictionarySettings.nLevels = model->mining.maxItems + 1;
  model->dictionary =
      std::make_unique<SEQUENCE_NAMESPACE_800::SequenceDictionary>(
          dictionarySettings);
  mining::MiningSummary summary = mining::fillFromRecords(
      records, model->mining.customers, model->mining.maxItems,
      *model->dictionary, mining::availableMemoryBytes() / 4 * 3);
  return finishModel(summary, model);
}

mining::MiningSummary modelFromPatternFile(const std::string& path,
                                           long customers,
                                           const MineSettings& settings,
                                           Model* model,
                                           PatternFileSummary* read) {
  SEQUENCE_NAMESPACE_800::input::PatternFile file =
      SEQUENCE_NAMESPACE_800::input::readPatternFile(path);
  if (file.patterns == 0) failInput(path + ": no patterns");
  read->read = file.patterns;
  read->json = file.json;
  MiningParameters& parameters = model->mining;
  const std::vector<std::size_t> starts = mining::recordStarts(file.records);
  long lowest = file.records[starts.front()];
  for (std::size_t at : starts) {
    const long count = file.records[at];
    if (count > customers) {
      failInput(path + ": pattern " + mining::recordText(file.records, at) +
                " is counted in " + std::to_string(count) +
                " customers, more than the " + std::to_string(customers) +
                " of --customers");
    }
    lowest = std::min(lowest, count);
  }
  const MinSupportValue& given = settings.minSupport.value;
  if (settings.minSupport.text.empty()) {
    parameters.minSupportIsFraction = false;
    parameters.minSupport = static_cast<double>(lowest);
    parameters.minCount = lowest;
  } else {
    parameters.minSupportIsFraction = given.isFraction;
    parameters.minSupport = given.value;
    parameters.minCount =
        (given.isFraction
             ? mining::MinSupport::fraction(given.value)
             : mining::MinSupport::count(static_cast<long>(given.value)))
            .countFor(static_cast<std::size_t>(customers));
  }
  parameters.maxItems = settings.maxItems;
  parameters.customers = customers;
  parameters.inputName = path;
  parameters.inputFormat = file.json ? "json patterns" : "spmf patterns";
  model->items = file.items;
  std::vector<int> kept;
  for (std::size_t k = 0; k < starts.size(); ++k) {
    const std::size_t at = starts[k];
    const std::size_t end =
        k + 1 < starts.size() ? starts[k + 1] : file.records.size();
    if (file.records[at] < parameters.minCount ||
        mining::recordItems(file.records, at) > settings.maxItems) {
      ++read->dropped;
      continue;
    }
    kept.insert(kept.end(), file.records.begin() + static_cast<long>(at),
                file.records.begin() + static_cast<long>(end));
  }
  try {
    return buildPatternModel(kept, model);
  } catch (const mining::MiningError& e) {
    failInput(path + ": " + e.what());
  }
}

}  // namespace seqlattice_cli
