// The measures of one sequential association rule, computed from the counts
// of its three patterns: the rule's whole pattern, its antecedent (all item
// sets but the last) and its consequent (the last item set taken alone). The
// "rules" command and the Python binding show the same rows, so both compute
// them here.
//
// With N customers, m = count(pattern), a = count(antecedent) and
// c = count(consequent):
//   support    = m / N
//   confidence = m / a
//   cause      = m / c
//   lift       = confidence / (c / N)
//   leverage   = m / N - (a / N) * (c / N)
//   conviction = (1 - c / N) / (1 - confidence), +infinity when confidence
//                is 1 (the antecedent is never followed by anything else).
//
// ruleCounts reads the dictionary's counters; the dictionary's lookups rewrite
// its scratch key, so it is taken by non-const reference and is not
// thread-safe.
#ifndef SEQLATTICE_CLI_SUPPORT_RULEMEASURES_H_
#define SEQLATTICE_CLI_SUPPORT_RULEMEASURES_H_

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/rules/seqassociationrule.h"

namespace seqlattice_cli {

struct RuleCounts {
  long pattern = 0;
  long antecedent = 0;
  long consequent = 0;
  long customers = 0;  // N, the count of the empty pattern
};

struct RuleMeasures {
  double support = 0;
  double confidence = 0;
  double cause = 0;
  double lift = 0;
  double leverage = 0;
  double conviction = 0;
};

// The six measures; every count must be positive.
RuleMeasures measuresOf(const RuleCounts& counts);

// The counts of rule's patterns in dict (0 for a pattern it does not hold).
RuleCounts ruleCounts(SEQUENCE_NAMESPACE_800::SequenceDictionary& dict,
                      const SEQUENCE_NAMESPACE_800::SeqAssociationRule& rule);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_RULEMEASURES_H_
