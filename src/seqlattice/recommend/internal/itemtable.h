// ItemTable holds one value per item code for the length of one
// recommendation, without allocating per call: each item code gets a slot the
// first time it is met (kept for the table's life), and a new round makes every
// slot's value fresh again without visiting the slots, by a round stamp per
// slot. A recommendation proposes hundreds or thousands of items from a model's
// few thousand; a node-based map would allocate and free one node for each,
// every call. Item codes are mostly small and dense, so codes below
// kDirectCodes find their slot by one read of an array indexed by the code (a
// hash probe per proposed item was a tenth of a call on models with thousands
// of items); other codes go through an open-addressing hash.
//
// The table owns its values. Its memory grows with the distinct item codes
// met and, for the direct array, with the largest code below kDirectCodes
// met (4 bytes per code); it never shrinks and stays with the table. Not
// thread-safe: one table per thread (the recommender that holds it is one per
// thread).
#ifndef SEQLATTICE_RECOMMEND_INTERNAL_ITEMTABLE_H_
#define SEQLATTICE_RECOMMEND_INTERNAL_ITEMTABLE_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

template <typename Value>
class ItemTable {
 public:
  ItemTable() : index_(kInitialCapacity, {0, kEmpty}) {}

  // Starts a round: every item's value is a default Value again.
  void newRound() {
    touched_.clear();
    if (++round_ == 0) {  // the stamps wrapped: none may match round 1 by luck
      std::fill(stamps_.begin(), stamps_.end(), 0);
      round_ = 1;
    }
  }

  // The item's value in this round, a default Value when the round has not
  // met the item yet. References stay valid until the next new item code.
  Value& operator[](int item) {
    const std::size_t slot = slotOf(item);
    if (stamps_[slot] != round_) {
      touched_.push_back(static_cast<std::uint32_t>(slot));
      stamps_[slot] = round_;
      entries_[slot].second = Value();
    }
    return entries_[slot].second;
  }

  // The (item, value) entries met in this round, in the order they were
  // first met.
  class iterator {
   public:
    iterator(std::vector<std::uint32_t>::const_iterator at,
             std::vector<std::pair<int, Value>>* entries)
        : at_(at), entries_(entries) {}
    std::pair<int, Value>& operator*() const { return (*entries_)[*at_]; }
    iterator& operator++() {
      ++at_;
      return *this;
    }
    bool operator!=(const iterator& o) const { return at_ != o.at_; }

   private:
    std::vector<std::uint32_t>::const_iterator at_;
    std::vector<std::pair<int, Value>>* entries_;
  };
  iterator begin() { return iterator(touched_.begin(), &entries_); }
  iterator end() { return iterator(touched_.end(), &entries_); }
  std::size_t size() const { return touched_.size(); }

 private:
  static constexpr std::size_t kInitialCapacity = 1024;  // a power of two
  static constexpr std::uint32_t kEmpty = UINT32_MAX;
  static constexpr std::size_t kDirectCodes = std::size_t{1} << 20;

  std::size_t bucketOf(int item) const {
    // Fibonacci hashing: consecutive codes spread over the buckets.
    const std::uint64_t h =
        static_cast<std::uint32_t>(item) * UINT64_C(0x9E3779B97F4A7C15);
    return static_cast<std::size_t>(h >> 32) & (index_.size() - 1);
  }

  std::size_t slotOf(int item) {
    const std::size_t code = static_cast<std::uint32_t>(item);
    if (code < kDirectCodes) {
      if (code >= direct_.size()) {
        std::size_t size = std::max<std::size_t>(direct_.size(), 1024);
        while (size <= code) size *= 2;
        direct_.resize(size, kEmpty);
      }
      std::uint32_t& slot = direct_[code];
      if (slot == kEmpty) slot = newSlot(item);
      return slot;
    }
    std::size_t b = bucketOf(item);
    for (; index_[b].slot != kEmpty; b = (b + 1) & (index_.size() - 1)) {
      if (index_[b].item == item) return index_[b].slot;
    }
    const std::uint32_t slot = newSlot(item);
    index_[b] = {item, slot};
    if (2 * hashed_ > index_.size()) grow();
    return slot;
  }

  // A slot for an item met for the first time. The stamps are sized first:
  // a failed allocation leaves the table usable (the next new code sizes
  // them again).
  std::uint32_t newSlot(int item) {
    const std::size_t slot = entries_.size();
    stamps_.resize(slot + 1, 0);
    entries_.emplace_back(item, Value());
    if (static_cast<std::uint32_t>(item) >= kDirectCodes) ++hashed_;
    return static_cast<std::uint32_t>(slot);
  }

  // Doubles the buckets, keeping at most half of them used.
  void grow() {
    std::vector<Bucket> bigger(2 * index_.size(), {0, kEmpty});
    index_.swap(bigger);
    for (const Bucket& kept : bigger) {
      if (kept.slot == kEmpty) continue;
      std::size_t b = bucketOf(kept.item);
      while (index_[b].slot != kEmpty) b = (b + 1) & (index_.size() - 1);
      index_[b] = kept;
    }
  }

  // The item codes sit in the buckets, so that a probe does not reach into
  // the (large) entries.
  struct Bucket {
    int item;
    std::uint32_t slot;  // kEmpty: a free bucket
  };
  std::vector<Bucket> index_;
  std::size_t hashed_ = 0;                      // codes kept in index_
  std::vector<std::uint32_t> direct_;           // code -> slot, for small codes
  std::vector<std::pair<int, Value>> entries_;  // slot -> (item, value)
  std::vector<std::uint32_t> stamps_;   // slot -> round that last met it
  std::vector<std::uint32_t> touched_;  // slots met in this round
  std::uint32_t round_ = 1;
};

}  // namespace recommend
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RECOMMEND_INTERNAL_ITEMTABLE_H_
