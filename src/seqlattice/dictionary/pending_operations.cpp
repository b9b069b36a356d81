// Rule, prediction and document operations whose implementations have not
// landed yet: each answers "not done" with the bulk failure status.
#include "seqlattice/dictionary/sequencedictionary.h"

namespace SEQUENCE_NAMESPACE_800 {

using KvCommon_850::KvStatus;

// Replaced by the lattice document export.
KvStatus SequenceDictionary::ExportLatticeXML(std::ostream&, double) const {
  return KvStatus(60000, false);
}

// Replaced by the PMML sequence model export.
KvStatus SequenceDictionary::ExportRulesXML(std::ostream&, double, double,
                                            double, double, double, double, int,
                                            double, char, bool) const {
  return KvStatus(60000, false);
}

}  // namespace SEQUENCE_NAMESPACE_800
