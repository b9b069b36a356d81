// The steps that future-item and current-item prediction share: the three
// measures of a candidate item, the best candidate per item, the order and
// cut of the answer, the answer for a customer without history, and the
// conversion of failures into statuses. Each prediction only says which
// patterns it matches, where a candidate item goes and which items it
// excludes.
//
// Used by one prediction request at a time on the dictionary's thread; the
// dictionary is only read, but its lookups refill its scratch key.
#ifndef SEQLATTICE_RULES_INTERNAL_ITEMPREDICTION_H_
#define SEQLATTICE_RULES_INTERNAL_ITEMPREDICTION_H_

#include <functional>
#include <map>
#include <unordered_set>
#include <vector>

#include "seqlattice/rules/seqconsequentdescript.h"
#include "seqlattice/support/kvstatus.h"

namespace SEQUENCE_NAMESPACE_800 {

class NTSequence;
class Sequence;
class SequenceDictionary;

namespace itemprediction {

// Where a candidate item goes relative to a matched pattern p of s item sets
// (the adjacency position code taken).
enum class Placement {
  kNewSetAfterLast,  // a new item set after p's last one: code 2s + 1
  kIntoLastSet,      // into p's last item set: code 2s - 2
};

// The patterns that matching hands out, deleted with this object.
class OwnedPatterns {
 public:
  OwnedPatterns() = default;
  OwnedPatterns(const OwnedPatterns&) = delete;
  OwnedPatterns& operator=(const OwnedPatterns&) = delete;
  ~OwnedPatterns();

  std::vector<NTSequence*>& get() { return patterns_; }

 private:
  std::vector<NTSequence*> patterns_;
};

// The best candidate per item over all matched patterns (and passes) of one
// request.
class ItemCandidates {
 public:
  // n: the number of customer sequences (count of the empty pattern).
  ItemCandidates(SequenceDictionary& dict, double n);

  // For each pattern, in order, every adjacent item placed as `placement`
  // says whose extended pattern is stored, unless the item is excluded.
  void addExtensions(const std::vector<NTSequence*>& patterns,
                     Placement placement,
                     const std::unordered_set<int>& excluded);
  // Appends the first maxItems candidates in prediction order.
  void appendBest(std::vector<SeqConsequentDescriptor>& out,
                  int maxItems) const;

 private:
  // Merges the candidate `item` whose extended pattern has `count` and whose
  // matched pattern has `patternCount`: a new item is kept; a known one takes
  // the greater confidence, or at equal confidence the greater support with
  // the cause computed beside it. The cause is looked up only when kept.
  void offer(int item, double count, double patternCount);
  // count / count of the one-item pattern (item); 0.0 when it is not stored.
  double causeOf(int item, double count);

  SequenceDictionary& dict_;
  double n_;
  std::map<int, SeqConsequentDescriptor> best_;
};

// Adds the items of the customer's item set i, unknown items included.
void addItemsOfSet(const Sequence& customer, int i,
                   std::unordered_set<int>& items);

// Answers one prediction request. A customer that is null or without item
// sets gets the most frequent single items. Otherwise `collect` gathers the
// candidates and returns OK, or a status (cancellation) under which nothing
// is appended. Running out of memory appends nothing and gives code
// kStatusFailure.
KvCommon_850::KvStatus answer(
    SequenceDictionary& dict, const Sequence* customer, int maxItems,
    std::vector<SeqConsequentDescriptor>& out,
    const std::function<KvCommon_850::KvStatus(ItemCandidates&)>& collect);

}  // namespace itemprediction
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RULES_INTERNAL_ITEMPREDICTION_H_
