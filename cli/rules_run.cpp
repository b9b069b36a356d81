// seqlattice rules: the model's sequential association rules.
#include <vector>

#include "clierror.h"
#include "modelfile.h"
#include "output.h"
#include "rulebounds.h"
#include "rules.h"
#include "seqlattice/rules/seqassociationrule.h"
#include "sequencelabels.h"

namespace seqlattice_cli {

void runRules(const RulesOptions& options) {
  Model model = loadModel(options.model);
  const RuleBounds& b = options.bounds;
  std::vector<SEQUENCE_NAMESPACE_800::SeqAssociationRule> rules;
  KvCommon_850::KvStatus status = model.dictionary->GetRules(
      rules, b.minSupport, b.maxSupport, b.minConfidence, b.maxConfidence,
      b.minCause, b.maxCause, b.sortLetter(), b.maximal);
  if (!status.IsOK()) {
    failInput("rules: rule extraction failed (status " +
              std::to_string(status.GetCode()) + ")");
  }
  ResultTable table(
      {"rank", "antecedent", "consequent", "support", "confidence", "cause"});
  for (std::size_t i = 0; i < rules.size(); ++i) {
    if (options.top > 0 && i == static_cast<std::size_t>(options.top)) break;
    const auto& rule = rules[i];
    table.addRow({static_cast<long>(i + 1),
                  sequenceCell(rule.GetAntecedent(), model.items),
                  sequenceCell(rule.GetConsequent(), model.items),
                  rule.GetSupport(), rule.GetConfidence(), rule.GetCause()});
  }
  table.write(std::cout, options.format);
}

}  // namespace seqlattice_cli
