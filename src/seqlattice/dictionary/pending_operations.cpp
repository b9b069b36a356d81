// Rule, prediction and document operations whose implementations have not
// landed yet: each answers "not done" with the bulk failure status.
#include "seqlattice/dictionary/sequencedictionary.h"

namespace SEQUENCE_NAMESPACE_800 {

using KvCommon_850::KvStatus;

// Replaced by the PMML sequence model export.
KvStatus SequenceDictionary::ExportRulesXML(std::ostream&, double, double,
                                            double, double, double, double, int,
                                            double, char, bool) const {
  return KvStatus(60000, false);
}

// Replaced by current-item prediction.
KvStatus SequenceDictionary::GetCurrentItems(
    std::vector<SeqConsequentDescriptor>&, const Sequence*, int) {
  return KvStatus(60000, false);
}

// Replaced by future-item prediction.
KvStatus SequenceDictionary::GetFutureItems(
    std::vector<SeqConsequentDescriptor>&, const Sequence*, int, bool) {
  return KvStatus(60000, false);
}

// Replaced by rule extraction.
KvStatus SequenceDictionary::GetRules(std::vector<SeqAssociationRule>&, double,
                                      double, double, double, double, double,
                                      char, bool) const {
  return KvStatus(60000, false);
}

// Replaced by subsequence matching; until then nothing matches.
KvStatus SequenceDictionary::getSubsequencesInSequence(
    std::vector<NTSequence*>&, const Sequence*, int) {
  return KvStatus();
}

}  // namespace SEQUENCE_NAMESPACE_800
