// Current-item prediction: items likely to join the customer's most recent
// item set. One pass over the patterns that end in that set; an item the set
// already holds is never predicted. The cancel flag is not looked at.
#include <unordered_set>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/rules/internal/itemprediction.h"
#include "seqlattice/sequence/sequence.h"

namespace SEQUENCE_NAMESPACE_800 {

using KvCommon_850::KvStatus;

KvStatus SequenceDictionary::GetCurrentItems(
    std::vector<SeqConsequentDescriptor>& predictions, const Sequence* customer,
    int maxItems) {
  return itemprediction::answer(
      *this, customer, maxItems, predictions,
      [&](itemprediction::ItemCandidates& candidates) {
        itemprediction::OwnedPatterns found;
        getSubsequencesInSequence(found.get(), customer, 0);
        std::unordered_set<int> lastSetItems;
        itemprediction::addItemsOfSet(*customer, customer->Length() - 1,
                                      lastSetItems);
        candidates.addExtensions(
            found.get(), itemprediction::Placement::kIntoLastSet, lastSetItems);
        return KvStatus();
      });
}

}  // namespace SEQUENCE_NAMESPACE_800
