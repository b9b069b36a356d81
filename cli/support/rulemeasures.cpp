#include "support/rulemeasures.h"

#include <limits>

#include "seqlattice/sequence/sequence.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace seqlattice_cli {

namespace {

long countOf(SEQUENCE_NAMESPACE_800::SequenceDictionary& dict,
             const SEQUENCE_NAMESPACE_800::Sequence& pattern) {
  const SEQUENCE_NAMESPACE_800::SequenceCounter* counter =
      dict.getDescriptor(&pattern);
  return counter != nullptr ? counter->getCount() : 0;
}

}  // namespace

RuleMeasures measuresOf(const RuleCounts& counts) {
  const double n = static_cast<double>(counts.customers);
  const double m = static_cast<double>(counts.pattern);
  const double consequentSupport = static_cast<double>(counts.consequent) / n;
  const double antecedentSupport = static_cast<double>(counts.antecedent) / n;
  RuleMeasures measures;
  measures.support = m / n;
  measures.confidence = m / static_cast<double>(counts.antecedent);
  measures.cause = m / static_cast<double>(counts.consequent);
  measures.lift = measures.confidence / consequentSupport;
  measures.leverage = measures.support - antecedentSupport * consequentSupport;
  // Tested on the counts, not on the rounded confidence, so that only a rule
  // that never fails is infinitely convinced.
  measures.conviction =
      counts.pattern == counts.antecedent
          ? std::numeric_limits<double>::infinity()
          : (1.0 - consequentSupport) / (1.0 - measures.confidence);
  return measures;
}

RuleCounts ruleCounts(SEQUENCE_NAMESPACE_800::SequenceDictionary& dict,
                      const SEQUENCE_NAMESPACE_800::SeqAssociationRule& rule) {
  SEQUENCE_NAMESPACE_800::Sequence pattern(rule.GetAntecedent());
  pattern.JoinTemporal(&rule.GetConsequent());
  RuleCounts counts;
  const auto* level0 = dict.getLevel0Descriptor();
  counts.customers = level0 != nullptr ? level0->getCount() : 0;
  counts.pattern = countOf(dict, pattern);
  counts.antecedent = countOf(dict, rule.GetAntecedent());
  counts.consequent = countOf(dict, rule.GetConsequent());
  return counts;
}

}  // namespace seqlattice_cli
