#include "support/modelinfo.h"

#include <cstdio>

#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "support/duration.h"

namespace seqlattice_cli {

namespace {

std::string supportText(const MiningParameters& m) {
  char text[64];
  std::snprintf(text, sizeof text, m.minSupportIsFraction ? "%g" : "%.0f",
                m.minSupport);
  return text;
}

// Whether some stored pattern carries gap statistics.
bool hasGapStatistics(const SEQUENCE_NAMESPACE_800::SequenceDictionary& dict) {
  for (int k = 2; k < dict.getNLevels(); ++k) {
    const SEQUENCE_NAMESPACE_800::HashtableSQPair* table = dict.getLevel(k);
    if (table == nullptr) continue;
    for (const auto& entry : *table) {
      if (entry.value != nullptr && entry.value->getStatsBucket() != nullptr) {
        return true;
      }
    }
  }
  return false;
}

}  // namespace

InfoFields modelInfo(const Model& model, const std::string& name) {
  const auto& dict = *model.dictionary;
  const MiningParameters& m = model.mining;
  const auto& s = dict.getSettings();
  auto* level0 = dict.getLevel0Descriptor();

  InfoFields fields;
  auto add = [&](const std::string& field, Json value) {
    fields.emplace_back(field, std::move(value));
  };
  add("model", name);
  add("format", model.xml ? "xml" : "binary");
  add("input", m.inputName);
  add("input format", m.inputFormat);
  add("customers (N)", level0 != nullptr ? level0->getCount() : 0);
  add("transactions", m.transactions);
  add("item occurrences", m.itemOccurrences);
  add("max items per transaction", m.maxItemsPerTransaction);
  add("avg items per transaction", m.avgItemsPerTransaction());
  add("labelled items", model.items.stringLabels().size());
  add("min support (as given)", supportText(m));
  add("min count", m.minCount);
  add("min support (dictionary)", dict.getMinSupport());
  add("max items per pattern", m.maxItems);
  if (!m.complete) {
    // Only a search stopped early says so; complete models show what they
    // always showed.
    char limit[32];
    std::snprintf(limit, sizeof limit, "%g", m.timeLimit);
    add("complete", "no (the time limit of " + std::string(limit) +
                        " s stopped the search)");
  }
  add("patterns", dict.NumberOfSequences() - 1);
  for (int k = 1; k <= dict.LargestSequence(); ++k) {
    std::string field =
        "patterns of " + std::to_string(k) + (k == 1 ? " item" : " items");
    add(field, dict.CountSequencesOfSize(k));
  }
  add("lattice built", dict.isLatticeBuilt() ? "yes" : "no");
  add("levels (nLevels)", s.nLevels);
  add("level sizes",
      std::to_string(s.level0Size) + " " + std::to_string(s.level1Size) + " " +
          std::to_string(s.level2Size) + " " + std::to_string(s.level3Size) +
          " " + std::to_string(s.level4Size) + " " +
          std::to_string(s.level5Size) + " " + std::to_string(s.level6Size) +
          " " + std::to_string(s.level7Size));
  add("higher level size", s.higherLevelSize);
  add("sliding window", dict.getSlidingWindow());
  add("min gap", dict.getMinGap());
  add("max gap", dict.getMaxGap());
  if (m.timeAware) {
    add("max span", m.maxSpan);
    add("times", m.datedTimes ? "dates (limits in seconds)" : "numbers");
  }
  add("gap statistics", hasGapStatistics(dict) ? "yes" : "no");
  return fields;
}

}  // namespace seqlattice_cli
