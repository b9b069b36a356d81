// Future-item prediction: items likely to come in a new item set after the
// customer's history. Pass k matches the history with its last k item sets
// left out and excludes their items, so that patterns anchored in earlier
// item sets contribute without predicting what the customer has acquired
// since.
#include <unordered_set>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/rules/internal/historymatch.h"
#include "seqlattice/rules/internal/itemprediction.h"
#include "seqlattice/sequence/sequence.h"

namespace SEQUENCE_NAMESPACE_800 {

using KvCommon_850::kStatusCancelled;
using KvCommon_850::KvStatus;

KvStatus SequenceDictionary::GetFutureItems(
    std::vector<SeqConsequentDescriptor>& predictions, const Sequence* customer,
    int maxItems, bool lastSetOnly) {
  return itemprediction::answer(
      *this, customer, maxItems, predictions,
      [&](itemprediction::ItemCandidates& candidates) {
        if (cancelled) return KvStatus(kStatusCancelled, false);
        const int length = customer->Length();
        // The history is filtered once; pass k drops the item sets from
        // length - k on from the index and adds their items to the
        // excluded ones, so each pass costs what its matches cost.
        historymatch::KnownItems known(*this, *customer, length);
        std::unordered_set<int> excluded;
        for (int k = 0;;) {
          known.keepFirst(length - k);
          if (k > 0)
            itemprediction::addItemsOfSet(*customer, length - k, excluded);
          itemprediction::OwnedPatterns found;
          historymatch::matchAnchored(*this, known, found.get());
          candidates.addExtensions(found.get(),
                                   itemprediction::Placement::kNewSetAfterLast,
                                   excluded);
          ++k;
          if (k >= length) break;
          if (cancelled) return KvStatus(kStatusCancelled, false);
          if (lastSetOnly) break;
        }
        return KvStatus();
      });
}

}  // namespace SEQUENCE_NAMESPACE_800
