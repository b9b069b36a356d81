#include "seqlattice/recommend/followermemo.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

namespace {

// An entry's own bookkeeping (its node, its key), in cells.
constexpr std::size_t kEntryCells = 8;

std::size_t cellsOf(const std::vector<int>& subContext,
                    const FollowerMemo::Entry& entry) {
  return kEntryCells + subContext.size() + entry.followers.size();
}

}  // namespace

std::size_t FollowerMemo::Hash::operator()(
    const std::vector<int>& items) const {
  std::size_t h = items.size();
  for (int item : items) {
    h ^= static_cast<std::size_t>(static_cast<unsigned>(item)) +
         0x9E3779B97F4A7C15ULL + (h << 6) + (h >> 2);
  }
  return h;
}

const FollowerMemo::Entry* FollowerMemo::find(
    const void* index, double decay, const std::vector<int>& subContext) const {
  if (index != index_ || decay != decay_) return nullptr;
  auto at = entries_.find(subContext);
  return at == entries_.end() ? nullptr : &at->second;
}

void FollowerMemo::remember(const void* index, double decay,
                            const std::vector<int>& subContext, Entry entry) {
  const std::size_t cells = cellsOf(subContext, entry);
  if (cells > kMaxCells) return;
  if (index != index_ || decay != decay_ || cells_ + cells > kMaxCells) {
    entries_.clear();
    cells_ = 0;
    index_ = index;
    decay_ = decay;
  }
  if (entries_.try_emplace(subContext, std::move(entry)).second) {
    cells_ += cells;
  }
}

}  // namespace recommend
}  // namespace SEQUENCE_NAMESPACE_800
