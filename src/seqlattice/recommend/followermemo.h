// FollowerMemo remembers, across calls of SequenceIndex::followersOf, what
// followed each sub-context: how many customers held it and the summed
// weight of each item after it. Customers' recent contexts share their
// popular items and pairs, and those sub-contexts are the costly ones (many
// customers, long tails to walk), so a later call finds them here instead
// of walking the same sequences again (the index leaves only such costly
// walks here). The remembered figures are the very ones a fresh walk gives,
// so the answers do not change.
//
// A memo serves one index and one decay: given another, it forgets what it
// held. It holds at most kMaxCells cells (a cell: one remembered follower,
// or one entry's bookkeeping) and forgets everything when an entry would
// not fit, so its memory stays below a few megabytes whatever the calls.
// Not thread-safe: one memo per thread (a Recommender owns one).
#ifndef SEQLATTICE_RECOMMEND_FOLLOWERMEMO_H_
#define SEQLATTICE_RECOMMEND_FOLLOWERMEMO_H_

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

class FollowerMemo {
 public:
  static constexpr std::size_t kMaxCells = std::size_t{1} << 20;

  struct Entry {
    long holders = 0;  // customers holding the sub-context
    // (dense item of the index, summed weight), in the order the walk met
    // them.
    std::vector<std::pair<std::uint32_t, double>> followers;
  };

  // The entry of the ascending sub-context for this index and decay; null
  // when none is remembered.
  const Entry* find(const void* index, double decay,
                    const std::vector<int>& subContext) const;

  // Remembers entry for the sub-context (making room as described above).
  void remember(const void* index, double decay,
                const std::vector<int>& subContext, Entry entry);

  std::size_t entries() const { return entries_.size(); }
  std::size_t cells() const { return cells_; }

 private:
  struct Hash {
    std::size_t operator()(const std::vector<int>& items) const;
  };

  const void* index_ = nullptr;
  double decay_ = 0;
  std::size_t cells_ = 0;
  std::unordered_map<std::vector<int>, Entry, Hash> entries_;
};

}  // namespace recommend
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RECOMMEND_FOLLOWERMEMO_H_
