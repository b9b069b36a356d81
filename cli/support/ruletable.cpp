#include "support/ruletable.h"

#include <string>
#include <vector>

#include "seqlattice/rules/seqassociationrule.h"
#include "support/clierror.h"
#include "support/sequencelabels.h"

namespace seqlattice_cli {

ResultTable ruleTable(Model& model, const RuleBounds& b, int top) {
  std::vector<SEQUENCE_NAMESPACE_800::SeqAssociationRule> rules;
  KvCommon_850::KvStatus status = model.dictionary->GetRules(
      rules, b.minSupport, b.maxSupport, b.minConfidence, b.maxConfidence,
      b.minCause, b.maxCause, b.sortLetter, b.maximal);
  if (!status.IsOK()) {
    failInput("rules: rule extraction failed (status " +
              std::to_string(status.GetCode()) + ")");
  }
  ResultTable table(
      {"rank", "antecedent", "consequent", "support", "confidence", "cause"});
  for (std::size_t i = 0; i < rules.size(); ++i) {
    if (top > 0 && i == static_cast<std::size_t>(top)) break;
    const auto& rule = rules[i];
    table.addRow({static_cast<long>(i + 1),
                  sequenceCell(rule.GetAntecedent(), model.items),
                  sequenceCell(rule.GetConsequent(), model.items),
                  rule.GetSupport(), rule.GetConfidence(), rule.GetCause()});
  }
  return table;
}

}  // namespace seqlattice_cli
