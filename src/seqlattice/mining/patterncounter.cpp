#include "seqlattice/mining/patterncounter.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "seqlattice/mining/miningerror.h"
#include "seqlattice/mining/patternorder.h"
#include "seqlattice/mining/patternrecords.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

namespace {

using u32 = std::uint32_t;

// The tree while it is built: children by (sameSet, item).
struct BuildNode {
  std::map<std::pair<bool, int>, std::size_t> children;
  std::vector<std::size_t> candidates;
};

}  // namespace

PatternCounter::PatternCounter(const std::vector<int>& records) {
  std::vector<BuildNode> tree(1);
  for (std::size_t start : recordStarts(records)) {
    std::size_t node = 0;
    std::size_t at = start + 3;
    int items = 0;
    for (int k = 0; k < records[start + 2]; ++k) {
      const int size = records[at];
      for (int i = 1; i <= size; ++i) {
        const int item = records[at + static_cast<std::size_t>(i)];
        if (i > 1 && item <= records[at + static_cast<std::size_t>(i) - 1]) {
          throw MiningError("pattern " + recordText(records, start) +
                            " has an item set not in ascending order");
        }
        const int code =
            dense_.emplace(item, static_cast<int>(dense_.size())).first->second;
        auto inserted =
            tree[node].children.emplace(std::make_pair(i > 1, code), 0);
        if (inserted.second) {
          inserted.first->second = tree.size();
          tree.emplace_back();
        }
        node = inserted.first->second;
        ++items;
      }
      at += static_cast<std::size_t>(size) + 1;
    }
    tree[node].candidates.push_back(candidates_++);
    depth_ = std::max(depth_, items);
  }
  // Breadth first, so that each node's children are neighbours.
  nodes_.resize(tree.size());
  std::vector<std::size_t> queue{0};
  std::vector<u32> placed(tree.size(), 0);
  u32 next = 1;
  for (std::size_t q = 0; q < queue.size(); ++q) {
    const BuildNode& from = tree[queue[q]];
    Node& to = nodes_[placed[queue[q]]];
    to.candidates = from.candidates;
    to.firstChild = next;
    for (const auto& [edge, child] : from.children) {
      Node& c = nodes_[next];
      c.sameSet = edge.first;
      c.item = edge.second;
      placed[child] = next++;
      queue.push_back(child);
    }
    to.endChild = next;
  }
}

// One thread's walk over its customers, with its own counts.
class PatternCounter::Walker {
 public:
  Walker(const PatternCounter& counter, const SequenceDatabase& db)
      : counter_(counter),
        db_(db),
        occurrences_(counter.dense_.size()),
        positions_(static_cast<std::size_t>(counter.depth_) + 1),
        counts_(counter.candidates_, 0),
        first_(counter.candidates_, -1) {}

  void walk(std::size_t begin, std::size_t end) {
    for (std::size_t c = begin; c < end; ++c) {
      const u32 t0 = db_.firstTransaction(c);
      const u32 t1 = db_.endTransaction(c);
      for (u32 t = t0; t < t1; ++t) {
        for (const int* a = db_.itemsBegin(t); a < db_.itemsEnd(t); ++a) {
          auto found = counter_.dense_.find(*a);
          if (found == counter_.dense_.end()) continue;
          std::vector<u32>& list =
              occurrences_[static_cast<std::size_t>(found->second)];
          if (list.empty()) touched_.push_back(found->second);
          list.push_back(t - t0);
        }
      }
      customer_ = static_cast<long>(c);
      visit(0, 0);
      for (int item : touched_) {
        occurrences_[static_cast<std::size_t>(item)].clear();
      }
      touched_.clear();
    }
  }

  const std::vector<long>& counts() const { return counts_; }
  const std::vector<long>& first() const { return first_; }

 private:
  // The children of node, whose pattern can end in the transactions
  // positions_[depth] (any transaction for the root).
  void visit(u32 index, std::size_t depth) {
    const Node& node = counter_.nodes_[index];
    for (u32 k = node.firstChild; k < node.endChild; ++k) {
      const Node& child = counter_.nodes_[k];
      const std::vector<u32>& at =
          occurrences_[static_cast<std::size_t>(child.item)];
      if (at.empty()) continue;
      std::vector<u32>& ends = positions_[depth + 1];
      ends.clear();
      if (depth == 0) {
        ends = at;
      } else if (child.sameSet) {
        const std::vector<u32>& p = positions_[depth];
        std::set_intersection(p.begin(), p.end(), at.begin(), at.end(),
                              std::back_inserter(ends));
      } else {
        ends.assign(
            std::upper_bound(at.begin(), at.end(), positions_[depth].front()),
            at.end());
      }
      if (ends.empty()) continue;
      for (std::size_t candidate : child.candidates) {
        if (counts_[candidate]++ == 0) first_[candidate] = customer_;
      }
      if (child.firstChild != child.endChild) visit(k, depth + 1);
    }
  }

  const PatternCounter& counter_;
  const SequenceDatabase& db_;
  std::vector<std::vector<u32>> occurrences_;  // per dense item, ascending
  std::vector<int> touched_;
  std::vector<std::vector<u32>> positions_;  // per depth
  std::vector<long> counts_, first_;
  long customer_ = 0;
};

PatternCounts PatternCounter::count(const SequenceDatabase& db,
                                    int threads) const {
  std::size_t n = threads > 0
                      ? static_cast<std::size_t>(threads)
                      : std::max(1u, std::thread::hardware_concurrency());
  const std::size_t customers = db.customerCount();
  n = std::max<std::size_t>(1, std::min(n, customers));
  std::vector<std::unique_ptr<Walker>> walkers;
  for (std::size_t k = 0; k < n; ++k) {
    walkers.push_back(std::make_unique<Walker>(*this, db));
  }
  auto range = [customers, n](std::size_t k) { return customers * k / n; };
  // A thread's failure (out of memory) is passed on from the calling thread.
  std::vector<std::exception_ptr> failures(n);
  auto work = [&walkers, &range, &failures](std::size_t k) {
    try {
      walkers[k]->walk(range(k), range(k + 1));
    } catch (...) {
      failures[k] = std::current_exception();
    }
  };
  std::vector<std::thread> running;
  for (std::size_t k = 1; k < n; ++k) running.emplace_back(work, k);
  work(0);
  for (std::thread& thread : running) thread.join();
  for (const std::exception_ptr& failure : failures) {
    if (failure) std::rethrow_exception(failure);
  }
  PatternCounts result;
  result.counts.assign(candidates_, 0);
  result.firstCustomers.assign(candidates_, -1);
  for (const auto& walker : walkers) {
    for (std::size_t c = 0; c < candidates_; ++c) {
      result.counts[c] += walker->counts()[c];
      if (result.firstCustomers[c] < 0) {
        result.firstCustomers[c] = walker->first()[c];
      }
    }
  }
  return result;
}

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
