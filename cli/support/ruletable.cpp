#include "support/ruletable.h"

#include <algorithm>

#include "seqlattice/rules/seqassociationrule.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "support/clierror.h"
#include "support/duration.h"
#include "support/rulemeasures.h"
#include "support/sequencelabels.h"

namespace seqlattice_cli {

namespace {

using SEQUENCE_NAMESPACE_800::SeqAssociationRule;
using SEQUENCE_NAMESPACE_800::Sequence;

struct MeasuredRule {
  const SeqAssociationRule* rule;
  RuleMeasures measures;
};

// The codes of an item filter's labels, sorted and distinct; labels the model
// does not know go to *unknown and make the filter match nothing
// (std::nullopt).
std::optional<std::vector<int>> filterCodes(
    const std::vector<std::string>& labels, const Model& model,
    std::vector<std::string>* unknown) {
  std::vector<int> codes;
  bool known = true;
  for (const std::string& label : labels) {
    std::optional<int> code = model.items.codeOf(label);
    if (!code) {
      unknown->push_back(label);
      known = false;
    } else {
      codes.push_back(*code);
    }
  }
  if (!known) return std::nullopt;
  std::sort(codes.begin(), codes.end());
  codes.erase(std::unique(codes.begin(), codes.end()), codes.end());
  return codes;
}

// The sorted, distinct items of all of sequence's item sets.
std::vector<int> itemsOf(const Sequence& sequence) {
  std::vector<int> items;
  for (int s = 0; s < sequence.Length(); ++s) {
    items.insert(items.end(), sequence[s]->Begin(), sequence[s]->End());
  }
  std::sort(items.begin(), items.end());
  items.erase(std::unique(items.begin(), items.end()), items.end());
  return items;
}

double sortKey(const RuleMeasures& measures, const std::string& name) {
  if (name == "lift") return measures.lift;
  if (name == "leverage") return measures.leverage;
  return measures.conviction;
}

// The rules that pass the filters, with their measures; nothing when a
// filter names an unknown item.
std::vector<MeasuredRule> filteredRules(
    Model& model, const std::vector<SeqAssociationRule>& rules,
    const RuleFilters& filters, std::vector<std::string>* unknown) {
  const std::vector<std::string> none;
  std::optional<std::vector<int>> antecedentHas =
      filterCodes(filters.antecedentHas.value_or(none), model, unknown);
  std::optional<std::vector<int>> consequent =
      filterCodes(filters.consequent.value_or(none), model, unknown);
  std::vector<MeasuredRule> kept;
  if (!antecedentHas || !consequent) return kept;
  for (const SeqAssociationRule& rule : rules) {
    if (filters.antecedentHas) {
      std::vector<int> items = itemsOf(rule.GetAntecedent());
      if (!std::includes(items.begin(), items.end(), antecedentHas->begin(),
                         antecedentHas->end())) {
        continue;
      }
    }
    if (filters.consequent && itemsOf(rule.GetConsequent()) != *consequent) {
      continue;
    }
    RuleMeasures measures = measuresOf(ruleCounts(*model.dictionary, rule));
    if (measures.lift < filters.minLift) continue;
    kept.push_back({&rule, measures});
  }
  return kept;
}

// The mean, minimum and maximum time to the consequent from the rule's
// pattern's gap statistics, in days for dated logs; nulls without them.
std::vector<Json> gapCells(Model& model, const SeqAssociationRule& rule) {
  Sequence pattern(rule.GetAntecedent());
  pattern.JoinTemporal(&rule.GetConsequent());
  const SEQUENCE_NAMESPACE_800::SequenceCounter* counter =
      model.dictionary->getDescriptor(&pattern);
  const SEQUENCE_NAMESPACE_800::StatsBucket* bucket =
      counter != nullptr ? counter->getStatsBucket() : nullptr;
  if (bucket == nullptr) return {nullptr, nullptr, nullptr};
  const double unit = model.mining.datedTimes ? kSecondsPerDay : 1.0;
  return {bucket->GetMeanOfGaps() / unit, bucket->GetMinOfGaps() / unit,
          bucket->GetMaxOfGaps() / unit};
}

}  // namespace

ResultTable ruleTable(Model& model, const RuleBounds& b,
                      const RuleFilters& filters, int top,
                      std::vector<std::string>* unknown) {
  std::vector<SeqAssociationRule> rules;
  KvCommon_850::KvStatus status = model.dictionary->GetRules(
      rules, b.minSupport, b.maxSupport, b.minConfidence, b.maxConfidence,
      b.minCause, b.maxCause, b.sortLetter, b.maximal);
  if (!status.IsOK()) {
    failInput("rules: rule extraction failed (status " +
              std::to_string(status.GetCode()) + ")");
  }
  std::vector<MeasuredRule> kept =
      filteredRules(model, rules, filters, unknown);
  if (isToolMeasure(b.sortName)) {
    std::stable_sort(kept.begin(), kept.end(),
                     [&b](const MeasuredRule& x, const MeasuredRule& y) {
                       return sortKey(x.measures, b.sortName) >
                              sortKey(y.measures, b.sortName);
                     });
  }
  std::vector<std::string> columns = {"rank",    "antecedent", "consequent",
                                      "support", "confidence", "cause",
                                      "lift",    "leverage",   "conviction"};
  // Models mined with gap statistics add the time to the consequent.
  const bool gaps = model.mining.timeAware;
  if (gaps) columns.insert(columns.end(), {"mean gap", "min gap", "max gap"});
  ResultTable table(columns);
  for (std::size_t i = 0; i < kept.size(); ++i) {
    if (top > 0 && i == static_cast<std::size_t>(top)) break;
    const SeqAssociationRule& rule = *kept[i].rule;
    const RuleMeasures& m = kept[i].measures;
    std::vector<Json> row = {static_cast<long>(i + 1),
                             sequenceCell(rule.GetAntecedent(), model.items),
                             sequenceCell(rule.GetConsequent(), model.items),
                             rule.GetSupport(),
                             rule.GetConfidence(),
                             rule.GetCause(),
                             m.lift,
                             m.leverage,
                             m.conviction};
    if (gaps) {
      for (Json& cell : gapCells(model, rule)) row.push_back(std::move(cell));
    }
    table.addRow(std::move(row));
  }
  return table;
}

}  // namespace seqlattice_cli
