// Future-item prediction: items likely to come in a new item set after the
// customer's history. Pass k matches the history with its last k item sets
// left out and excludes their items, so that patterns anchored in earlier
// item sets contribute without predicting what the customer has acquired
// since.
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/rules/internal/itemprediction.h"
#include "seqlattice/sequence/sequence.h"

namespace SEQUENCE_NAMESPACE_800 {

using KvCommon_850::KvStatus;
using KvCommon_850::kStatusCancelled;

KvStatus SequenceDictionary::GetFutureItems(
    std::vector<SeqConsequentDescriptor>& predictions, const Sequence* customer,
    int maxItems, bool lastSetOnly) {
  return itemprediction::answer(
      *this, customer, maxItems, predictions,
      [&](itemprediction::ItemCandidates& candidates) {
        if (cancelled) return KvStatus(kStatusCancelled, false);
        const int length = customer->Length();
        for (int k = 0;;) {
          itemprediction::OwnedPatterns found;
          getSubsequencesInSequence(found.get(), customer, k);
          candidates.addExtensions(
              found.get(), itemprediction::Placement::kNewSetAfterLast,
              itemprediction::itemsOfLastSets(*customer, k));
          ++k;
          if (k >= length) break;
          if (cancelled) return KvStatus(kStatusCancelled, false);
          if (lastSetOnly) break;
        }
        return KvStatus();
      });
}

}  // namespace SEQUENCE_NAMESPACE_800
