#include "seqlattice/recommend/latticeindex.h"

#include <algorithm>

#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

LatticeIndex::LatticeIndex(SequenceDictionary& dict)
    : dict_(dict), largest_(dict.LargestSequence()) {
  const SequenceCounter* level0 = dict.getLevel0Descriptor();
  n_ = level0 != nullptr ? level0->getCount() : 0;
}

LatticeIndex::Node* LatticeIndex::nodeOf(const NTSequence& pattern) {
  return nodeFor(pattern, dict_.getDescriptor(&pattern));
}

LatticeIndex::Node* LatticeIndex::nodeFor(const NTSequence& pattern,
                                          const SequenceCounter* counter) {
  if (counter == nullptr) return nullptr;
  auto [at, added] = byCounter_.try_emplace(counter, nullptr);
  if (added) {
    try {
      at->second = &nodes_.emplace_back(pattern, counter);
    } catch (...) {
      byCounter_.erase(at);
      throw;
    }
  }
  return at->second;
}

const LatticeIndex::Single& LatticeIndex::singleOf(int item) {
  auto [at, added] = singles_.try_emplace(item);
  if (added) {
    int set[2] = {1, item};
    int* sets[1] = {set};
    try {
      at->second.stored = dict_.hasSequence(sets, 1);
      if (at->second.stored) at->second.node = nodeOf(NTSequence(set));
    } catch (...) {
      singles_.erase(at);
      throw;
    }
  }
  return at->second;
}

double LatticeIndex::popularity(int item) {
  const Single& single = singleOf(item);
  if (single.node == nullptr || n_ <= 0) return 0.0;
  return static_cast<double>(single.node->counter->getCount()) / n_;
}

void LatticeIndex::compile(Node& node) {
  const SequenceCounter::PairRange pairs = node.counter->adjacentPairs();
  if (node.compiled || !pairs.present()) return;
  const int after = 2 * node.pattern.getNSets() + 1;
  std::vector<Edge> edges;
  followerItems_.clear();
  for (const std::pair<int, int>& entry : pairs) {
    if (entry.second <= 1) {
      edges.push_back({entry.first, entry.second, nullptr, false});
    } else if (entry.second == after) {
      followerItems_.push_back(entry.first);
    }
  }
  std::vector<Follower> followers;
  const HashtableSQPair* level = dict_.getLevel(node.pattern.size() + 1);
  if (level != nullptr && !followerItems_.empty()) {
    lookUpFollowers(node.pattern, *level);
    for (std::size_t k = 0; k < followerItems_.size(); ++k) {
      const ISQCPair* entry = found_[k];
      if (entry == nullptr || entry->value == nullptr) continue;
      const int item = followerItems_[k];
      followers.push_back({item, entry->value->getCount(), popularity(item)});
    }
  }
  node.edges = std::move(edges);
  node.followers = std::move(followers);
  node.compiled = true;
}

void LatticeIndex::lookUpFollowers(const NTSequence& pattern,
                                   const HashtableSQPair& level) {
  // The pattern's item sets in the int** convention (each set's item count,
  // then its items), and one more set holding the follower.
  const int nSets = pattern.getNSets();
  setItems_.assign(static_cast<std::size_t>(pattern.size() + nSets + 2), 0);
  std::size_t at = 0;
  std::vector<int*>& sets = setPointers_;
  sets.resize(static_cast<std::size_t>(nSets) + 1);
  for (int s = 0; s < nSets; ++s) {
    const int size = pattern.getSizeOfSet(s);
    sets[static_cast<std::size_t>(s)] = setItems_.data() + at;
    setItems_[at] = size;
    pattern.getSetAsArray(s, setItems_.data() + at + 1);
    at += static_cast<std::size_t>(size) + 1;
  }
  int* last = setItems_.data() + at;
  last[0] = 1;
  sets[static_cast<std::size_t>(nSets)] = last;
  const std::size_t n = followerItems_.size();
  // The probes of each size keep their arrays, so that refilling them does
  // not allocate.
  const std::size_t size = static_cast<std::size_t>(pattern.size()) + 1;
  if (probes_.size() <= size) probes_.resize(size + 1);
  std::vector<NTSequence>& probes = probes_[size];
  if (probes.size() < n) probes.resize(n);
  probeKeys_.resize(n);
  found_.resize(n);
  for (std::size_t k = 0; k < n; ++k) {
    last[1] = followerItems_[k];
    probes[k].reuseAs(sets.data(), nSets + 1);
    probeKeys_[k] = &probes[k];
  }
  level.getAll(probeKeys_.data(), static_cast<int>(n), found_.data());
}

const std::vector<LatticeIndex::Follower>& LatticeIndex::followersOf(
    const NTSequence& pattern) {
  static const std::vector<Follower> kNone;
  Node* node = nodeOf(pattern);
  if (node == nullptr) return kNone;
  compile(*node);
  return node->followers;
}

int LatticeIndex::targetSet(const Occurrences& at, int position, int j) const {
  // Position 0 puts the item into the set where the pattern's first set is
  // matched (j), which must hold it; position 1 makes a new set before it,
  // matched at the latest earlier set that holds the item.
  const int* begin = sets_.data() + at.begin;
  const int* end = sets_.data() + at.end;
  const int* after = std::upper_bound(begin, end, j);
  if (after == begin) return -1;
  const int latest = *(after - 1);
  if (position == 0) return latest == j ? j : -1;
  if (latest < j) return latest;
  return after - 1 == begin ? -1 : *(after - 2);
}

void LatticeIndex::offer(Node* node, std::vector<Match>* out) {
  if (node == nullptr || node->offeredIn == matchNumber_) return;
  node->offeredIn = matchNumber_;
  compile(*node);
  out->push_back({&node->pattern, node->counter->getCount(), &node->followers});
}

void LatticeIndex::extend(Node& node, int j, int n, int totalItems,
                          std::vector<Match>* out) {
  const NTSequence& p = node.pattern;
  if (p.size() >= totalItems || p.getNSets() > n || p.size() >= largest_ ||
      node.counter->getNAdjacent() <= 0) {
    return;
  }
  compile(node);
  // The extensions this history can reach are resolved together first (see
  // resolve()), then visited in the library's order.
  pending_.clear();
  forEachHeldEdge(node.edges, [&](const Occurrences& at, Edge& edge) {
    if (!edge.resolved && targetSet(at, edge.position, j) >= 0) {
      pending_.push_back(&edge);
    }
  });
  resolve(p);
  forEachHeldEdge(node.edges, [&](const Occurrences& at, Edge& edge) {
    const int target = targetSet(at, edge.position, j);
    if (target < 0) return;
    // An extension without a descriptor is never extended further.
    if (edge.to == nullptr) return;
    const int size = p.size() + 1;
    const int nSets = p.getNSets() + edge.position;
    if (nSets <= n && size <= totalItems && size <= largest_) {
      offer(edge.to, out);
    }
    work_[static_cast<std::size_t>(target)].insert(edge.to);
  });
}

template <typename Visit>
void LatticeIndex::forEachHeldEdge(std::vector<Edge>& edges, Visit visit) {
  // Only extensions by items the history holds can match: join the two
  // lists, both ascending by item, from the shorter side.
  if (edges.size() < occurrences_.size()) {
    for (Edge& edge : edges) {
      auto at = std::lower_bound(
          occurrences_.begin(), occurrences_.end(), edge.item,
          [](const Occurrences& o, int item) { return o.item < item; });
      if (at != occurrences_.end() && at->item == edge.item) visit(*at, edge);
    }
  } else {
    for (const Occurrences& at : occurrences_) {
      auto edge = std::lower_bound(
          edges.begin(), edges.end(), at.item,
          [](const Edge& e, int item) { return e.item < item; });
      for (; edge != edges.end() && edge->item == at.item; ++edge) {
        visit(at, *edge);
      }
    }
  }
}

void LatticeIndex::resolve(const NTSequence& pattern) {
  if (pending_.empty()) return;
  const HashtableSQPair* level = dict_.getLevel(pattern.size() + 1);
  const std::size_t n = pending_.size();
  if (level != nullptr) {
    edgeProbes_.clear();
    probeKeys_.resize(n);
    found_.resize(n);
    for (const Edge* edge : pending_) {
      edgeProbes_.emplace_back(pattern, edge->item, edge->position);
    }
    for (std::size_t k = 0; k < n; ++k) probeKeys_[k] = &edgeProbes_[k];
    level->getAll(probeKeys_.data(), static_cast<int>(n), found_.data());
  }
  for (std::size_t k = 0; k < n; ++k) {
    Edge& edge = *pending_[k];
    const ISQCPair* entry = level != nullptr ? found_[k] : nullptr;
    edge.to = entry != nullptr ? nodeFor(*entry->key, entry->value) : nullptr;
    edge.resolved = true;
  }
}

void LatticeIndex::match(const Sequence& history, int skipLast,
                         std::vector<Match>* out) {
  out->clear();
  const int used = history.Length() - skipLast;
  if (used < 1) return;
  ++matchNumber_;
  for (auto& patterns : work_) patterns.clear();  // after an exception
  // The history as matching sees it: only items that are stored one-item
  // patterns, only item sets that keep one.
  itemSets_.clear();
  int n = 0;
  int totalItems = 0;
  for (int s = 0; s < used; ++s) {
    const TimedItemSet& set = *history[s];
    lastSet_.clear();
    for (const int* item = set.Begin(); item != set.End(); ++item) {
      if (singleOf(*item).stored) lastSet_.push_back(*item);
    }
    if (lastSet_.empty()) continue;
    for (int item : lastSet_) itemSets_.emplace_back(item, n);
    totalItems += static_cast<int>(lastSet_.size());
    ++n;
  }
  // Matching is anchored on the last item set, which must keep an item.
  if (lastSet_.empty()) return;
  std::sort(itemSets_.begin(), itemSets_.end());
  itemSets_.erase(std::unique(itemSets_.begin(), itemSets_.end()),
                  itemSets_.end());
  sets_.clear();
  occurrences_.clear();
  for (const auto& [item, s] : itemSets_) {
    if (occurrences_.empty() || occurrences_.back().item != item) {
      occurrences_.push_back({item, sets_.size(), sets_.size()});
    }
    sets_.push_back(s);
    ++occurrences_.back().end;
  }
  if (largest_ < 3) {
    for (int item : lastSet_) offer(singleOf(item).node, out);
    return;
  }
  // work_[j]: patterns still to be extended whose first item set is matched
  // at kept set j, taken from the highest j down; an extension lands at j or
  // below.
  if (work_.size() < static_cast<std::size_t>(n)) {
    work_.resize(static_cast<std::size_t>(n));
  }
  for (int item : lastSet_) {
    Node* single = singleOf(item).node;
    offer(single, out);
    if (single != nullptr)
      work_[static_cast<std::size_t>(n - 1)].insert(single);
  }
  for (int j = n - 1; j >= 0; --j) {
    std::set<Node*, ByPattern>& patterns = work_[static_cast<std::size_t>(j)];
    while (!patterns.empty()) {
      Node* p = *patterns.begin();
      extend(*p, j, n, totalItems, out);
      patterns.erase(p);
    }
  }
}

}  // namespace recommend
}  // namespace SEQUENCE_NAMESPACE_800
