// SequenceIndex keeps the customers' sequences a model was mined from, with an
// inverted index from item to the customers holding it, so that a
// recommendation can look at the customers whose sequences contain a whole
// recent context, however rare, and at what they acquired right after it.
// The lattice stores only frequent patterns, each as "anywhere later"
// counts; this is the evidence it cannot give: long, rare contexts and the
// items that come soon after them.
//
// The index owns its arrays and is immutable once built; reading it from
// several threads is safe (each thread has its own scratch arrays). A
// FollowerMemo given to followersOf is the caller's: one per thread.
//
// Only the flat sequences are taken when an index is made; the postings
// that followersOf and similarCounts search are built by the first of those
// calls (once, also when several threads make it together), so that a model
// loaded for its patterns alone never pays for them. prepare() builds them
// ahead of the first query. A moved-from index may only be destroyed or
// assigned to.
#ifndef SEQLATTICE_RECOMMEND_SEQUENCEINDEX_H_
#define SEQLATTICE_RECOMMEND_SEQUENCEINDEX_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "seqlattice/mining/sequencedatabase.h"
#include "seqlattice/recommend/followermemo.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

// What followed a context in the indexed sequences.
struct FollowerCounts {
  // Sub-contexts that some customer holds, and the customers holding them
  // (a customer counted once per sub-context).
  int contexts = 0;
  long contextCustomers = 0;
  // (item, share) in ascending item order. In each sub-context, every
  // customer holding it adds, for every distinct item after the point where
  // the whole sub-context has been seen, 1 / (1 + decay * d), d being the
  // number of item sets between that point and the item's first occurrence
  // after it; the sum is divided by the sub-context's customers plus
  // `smoothing`, and the share is the mean of that over the sub-contexts.
  std::vector<std::pair<int, double>> followers;
  // The context items the index knows, ascending, and how many of them the
  // last round left out (0: the whole context matched often enough).
  std::vector<int> context;
  int dropped = 0;
};

class SequenceIndex {
 public:
  SequenceIndex() = default;
  // Copies the item sets of every customer of db (times are dropped).
  explicit SequenceIndex(const mining::SequenceDatabase& db);

  std::size_t customerCount() const { return customerStart_.size() - 1; }
  bool empty() const { return customerCount() == 0; }
  // Item sets per customer, on average (0 when empty).
  double meanLength() const {
    return empty() ? 0.0
                   : static_cast<double>(setStart_.size() - 1) /
                         static_cast<double>(customerCount());
  }

  // The flat form, as the model file stores it: all items, the start of each
  // item set in items, the first item set of each customer; each start array
  // has one closing entry more than it has sets or customers.
  const std::vector<int>& items() const { return items_; }
  const std::vector<std::uint32_t>& setStarts() const { return setStart_; }
  const std::vector<std::uint32_t>& customerStarts() const {
    return customerStart_;
  }
  // Rebuilds an index from its flat form; returns false (leaving *index
  // empty) when the arrays are not consistent.
  static bool fromFlat(std::vector<int> items,
                       std::vector<std::uint32_t> setStarts,
                       std::vector<std::uint32_t> customerStarts,
                       SequenceIndex* index);

  // Share of item sets, after the first `window` of a customer, holding an
  // item that one of the `window` item sets before them held: how often
  // customers of this data come back to what they acquired shortly before.
  double repeatRate(int window) const;

  // Builds the postings now rather than on the first query; safe to call
  // from several threads, and cheap once they are built.
  void prepare() const;

  // The items that followed `context` (distinct items, any order) in the
  // indexed sequences. When fewer than minCustomers customers contain the
  // whole context, items are left out, one more per round and every choice
  // of them tried, for at most maxDropped rounds; the shares of every
  // sub-context of every round run are averaged. With a memo, the
  // sub-contexts' figures are taken from it when it has them, and left in it
  // when it has not and their walk read many entries per item it found (the
  // answer is the same either way).
  FollowerCounts followersOf(const std::vector<int>& context, int minCustomers,
                             int maxDropped, double decay, double smoothing,
                             FollowerMemo* memo = nullptr) const;

  // What followed `context` in the customers whose sequences are most alike
  // it, counted the way compact prediction trees count: in round r, every
  // sub-context keeping at least n - r of the n context items (the whole
  // context first) gives its customers' items after the point where the
  // sub-context has been seen, every occurrence counting
  // (kept / n) / (customers holding the sub-context), each customer counted
  // for its largest sub-context only. Rounds run from firstRound until one
  // yields an item. `dropped` is the round that did, `contexts` its
  // sub-contexts held by some customer, `contextCustomers` the customers
  // counted.
  FollowerCounts similarCounts(const std::vector<int>& context,
                               int firstRound) const;

  // A customer holding a whole context, and the item set after the one by
  // which it has held every item of it.
  struct Holder {
    std::uint32_t customer;
    std::uint32_t after;
  };

 private:
  // Run once, by prepare(), over the flat arrays.
  void buildPostings() const;
  // Sets distinctItems_ and each entry's dense number.
  void numberItems() const;
  // Arrays by dense item for followersOf, one set per thread (so that a
  // call neither allocates nor clears them), zero between calls.
  struct Scratch {
    // The thread's arrays, grown to at least `items` entries.
    static Scratch& forItems(std::size_t items);
    // The table of 1 / (1 + decay * distance) for distances below count,
    // kept for the last decay, so that a walk does not divide once per item
    // set. Valid until the next call.
    const double* distanceWeights(std::uint32_t count, double decay);
    std::vector<double> weights;
    std::vector<double> subsetWeights;
    std::vector<double> byDistance;
    double weightsDecay = 0;
    // The dense items whose subsetWeights are not zero, in the order they
    // were met: the first metCount entries (one slot more than there are
    // items, for a store that is not kept).
    std::vector<int> met;
    std::size_t metCount = 0;
    // The same for weights.
    std::vector<int> touched;
    std::size_t touchedCount = 0;
  };
  // Adds to scratch->subsetWeights what followed in each holder's sequence
  // after its `after` set, each distinct item once per holder, and appends
  // the items met for the first time to scratch->met. Returns the entries
  // read.
  std::size_t addFollowers(const std::vector<Holder>& holders, double decay,
                           Scratch* scratch) const;
  // The context items this index knows, ascending and distinct.
  std::vector<int> knownItems(const std::vector<int>& context) const;
  // Sets *holders to the customers containing every item of context,
  // ascending.
  void holdersOf(const std::vector<int>& context,
                 std::vector<Holder>* holders) const;

  std::vector<int> items_;
  std::vector<std::uint32_t> setStart_{0};
  std::vector<std::uint32_t> customerStart_{0};
  // Guards the build of everything below, which prepare() fills once.
  std::unique_ptr<std::once_flag> built_ = std::make_unique<std::once_flag>();
  // Per entry of items_, side by side so that a walk reads one array: the
  // item renumbered densely, and one past the position of the same item's
  // previous entry in the customer's sequence (0: none), so that a walk from
  // a position knows an item is new to it without marking what it has met.
  struct Entry {
    std::uint32_t dense;
    std::uint32_t previous;
  };
  mutable std::vector<Entry> entries_;
  // Items are renumbered densely for the postings and the weights.
  mutable std::vector<int> distinctItems_;  // dense number -> item, ascending
  mutable std::vector<std::uint32_t> postingStart_;
  mutable std::vector<std::uint32_t> postings_;  // customers per dense item
  // Per posting: the customer's first item set holding the item.
  mutable std::vector<std::uint32_t> firstSets_;
  // For the items held by at least 1 / kDirectShare of the customers: by
  // customer, the first item set holding the item plus one (0: not held), so
  // that checking a holder against a popular item is one read instead of a
  // search through its long posting list. directAt_[d] is the item's row
  // in direct_ (in customers), or kNoRow.
  static constexpr std::size_t kDirectShare = 8;
  static constexpr std::size_t kNoRow = SIZE_MAX;
  mutable std::vector<std::size_t> directAt_;
  mutable std::vector<std::uint32_t> direct_;
  // Whether some item set holds no item (a model file may say so); without
  // any, a tail with as many entries as item sets has one item per set.
  mutable bool emptySets_ = false;
};

}  // namespace recommend
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RECOMMEND_SEQUENCEINDEX_H_
