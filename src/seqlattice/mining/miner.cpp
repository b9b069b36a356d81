#include "seqlattice/mining/miner.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <thread>
#include <utility>

#include "seqlattice/mining/internal/hugepages.h"
#include "seqlattice/mining/internal/orderedtasks.h"
#include "seqlattice/mining/internal/patternemitter.h"
#include "seqlattice/mining/internal/timedsearch.h"
#include "seqlattice/mining/internal/workdatabase.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miningerror.h"

// A map of the search (miner.h says what it finds):
//
//   work database   internal::buildWorkDatabase keeps the frequent items,
//                   renumbered, each customer's last occurrences and,
//                   beside them, the transactions holding each item
//   roots           buildRoots: per item the projection of every
//                   transaction holding it (ProjectionStore)
//   1 item          emitted straight from the work database
//   2 items         a task per item: Worker::expand counts its extensions
//                   without descending; they are the only candidates of
//                   the deeper patterns that begin with the item
//   3 items and up  a task per frequent two-item pattern, most frequent
//                   first, the largest split further (planSearch: their
//                   children become tasks, with their projections) so that
//                   the cores end together: Worker::expandPair (or
//                   expandNode, for a pair the plan split) joins a
//                   pair's projection from the roots (joinRoots), then
//                   Worker::expand goes depth first: count -> collect ->
//                   emit -> build -> recurse (where a node's customers
//                   hold few items beside its candidates, count every item
//                   met and look the frequent ones up: fewItemsMet)
//   memory          the customer loops fetch a customer's lists some
//                   customers ahead (prefetchCustomer), and build reads the
//                   children's transactions from the occurrence lists, so a
//                   database beyond the cache costs about what one inside it
//                   does per customer
//   output          workers append pattern records (PatternEmitter's form)
//                   to their buffer; internal::runOrderedTasks hands the
//                   buffers, in task order, to the calling thread, where
//                   PatternEmitter feeds the sink
//
// The kernel (projections, counting, the Worker) is here; the task driver,
// the emitter and the work database are in internal/.

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

MinSupport MinSupport::fraction(double f) {
  if (!(f > 0.0 && f <= 1.0)) {
    throw MiningError("minimum support fraction " + std::to_string(f) +
                      " is not in (0, 1]");
  }
  return MinSupport(true, f);
}

MinSupport MinSupport::count(long n) {
  if (n < 1) {
    throw MiningError("minimum support count " + std::to_string(n) +
                      " is less than 1");
  }
  return MinSupport(false, static_cast<double>(n));
}

long MinSupport::countFor(std::size_t customers) const {
  if (!isFraction_) return static_cast<long>(value_);
  double product = value_ * static_cast<double>(customers);
  double nearest = std::round(product);
  long result = std::fabs(product - nearest) <= 1e-9 * std::max(1.0, product)
                    ? static_cast<long>(nearest)
                    : static_cast<long>(std::ceil(product));
  return std::max(1L, result);
}

namespace {

using u32 = std::uint32_t;

// A pseudo-projected database: for n customers (ascending work indexes) the
// transactions where the pattern's last item set can end, ascending. The
// transactions of entry e are pos[start[e] .. start[e+1]).
struct Projection {
  const u32* cust;
  const u32* start;
  const u32* pos;
  u32 n;
};

// Several projections in three shared arrays, laid out once from their exact
// sizes and then filled in customer order.
class ProjectionStore {
 public:
  // sizes[k] = (customers, transactions) of projection k.
  void layout(const std::vector<std::pair<u32, u32>>& sizes) {
    slots_.resize(sizes.size());
    std::size_t entries = 0, positions = 0;
    for (std::size_t k = 0; k < sizes.size(); ++k) {
      Slot& s = slots_[k];
      s = Slot();
      s.entryOffset = entries;
      s.startOffset = entries + k;
      s.posOffset = positions;
      entries += sizes[k].first;
      positions += sizes[k].second;
    }
    grow(cust_, entries);
    grow(start_, entries + sizes.size());
    grow(pos_, positions);
  }
  void append(u32 k, u32 customer, u32 transaction) {
    Slot& s = slots_[k];
    if (s.lastCustomer != customer) {
      s.lastCustomer = customer;
      cust_[s.entryOffset + s.filled] = customer;
      start_[s.startOffset + s.filled] = s.positions;
      ++s.filled;
    }
    pos_[s.posOffset + s.positions++] = transaction;
  }
  u32 lastCustomer(u32 k) const { return slots_[k].lastCustomer; }
  void finish() {
    for (Slot& s : slots_) start_[s.startOffset + s.filled] = s.positions;
  }
  Projection view(u32 k) const {
    const Slot& s = slots_[k];
    return Projection{cust_.data() + s.entryOffset,
                      start_.data() + s.startOffset, pos_.data() + s.posOffset,
                      s.filled};
  }

 private:
  // Sizes v to n elements whose values do not matter: a larger buffer is
  // taken fresh, on huge pages, rather than copied.
  static void grow(std::vector<u32>& v, std::size_t n) {
    if (n > v.capacity()) {
      v.clear();
      internal::reserveOnHugePages(v, n);
    }
    v.resize(n);
  }

  struct Slot {
    std::size_t entryOffset = 0, startOffset = 0, posOffset = 0;
    u32 filled = 0, positions = 0, lastCustomer = UINT32_MAX;
  };
  std::vector<Slot> slots_;
  std::vector<u32> cust_, start_, pos_;
};

// The one-item patterns' projections: every occurrence of every item.
void buildRoots(const internal::WorkDatabase& db, ProjectionStore& roots) {
  std::vector<std::pair<u32, u32>> sizes(db.itemCount(), {0, 0});
  for (std::size_t x = 0; x < db.itemCount(); ++x)
    sizes[x].first = db.support[x];
  for (u32 x : db.items) ++sizes[x].second;
  roots.layout(sizes);
  for (u32 c = 0; c + 1 < db.customerStart.size(); ++c) {
    for (u32 t = db.customerStart[c]; t < db.customerStart[c + 1]; ++t) {
      for (u32 k = db.transactionStart[t]; k < db.transactionStart[t + 1];
           ++k) {
        roots.append(db.items[k], c, t);
      }
    }
  }
  roots.finish();
}

// The first item above `last` of a transaction. Transactions are short, so
// a linear scan beats a binary search.
inline const u32* itemsAbove(const u32* begin, const u32* end, u32 last) {
  while (begin < end && *begin <= last) ++begin;
  return begin;
}

// The first position of [at, end) holding a value >= key, found by doubling
// steps from `at`: cheap when the key is near, logarithmic when it is far.
inline u32 gallop(const u32* values, u32 at, u32 end, u32 key) {
  u32 step = 1;
  u32 low = at;
  while (at < end && values[at] < key) {
    low = at + 1;
    at = end - at > step ? at + step : end;
    step *= 2;
  }
  return static_cast<u32>(std::lower_bound(values + low, values + at, key) -
                          values);
}

// The first of the ascending values [begin, end) above key, for a range
// that holds one. The comparisons are unpredictable, so the halving picks
// its side without a branch.
inline const u32* firstAbove(const u32* begin, const u32* end, u32 key) {
  std::size_t n = static_cast<std::size_t>(end - begin);
  while (n > 1) {
    std::size_t half = n / 2;
    begin = begin[half] <= key ? begin + half : begin;
    n -= half;
  }
  return begin + (*begin <= key ? 1 : 0);
}

// Calls visit(a, b) for each entry a of p and b of x of the same customer,
// ascending, until visit returns false.
template <class Visit>
void forEachSharedCustomer(const Projection& p, const Projection& x,
                           const Visit& visit) {
  u32 a = 0, b = 0;
  while (a < p.n && b < x.n) {
    if (p.cust[a] < x.cust[b]) {
      a = gallop(p.cust, a, p.n, x.cust[b]);
      continue;
    }
    if (p.cust[a] > x.cust[b]) {
      b = gallop(x.cust, b, x.n, p.cust[a]);
      continue;
    }
    if (!visit(a, b)) return;
    ++a;
    ++b;
  }
}

// Joins two one-item projections into the projection of a two-item pattern:
// root's item followed by x in a later set, or both in one set.
void joinRoots(const Projection& root, const Projection& x, bool sameSet,
               std::vector<u32>& cust, std::vector<u32>& start,
               std::vector<u32>& pos) {
  cust.clear();
  start.clear();
  pos.clear();
  forEachSharedCustomer(root, x, [&](u32 a, u32 b) {
    const u32* p = root.pos + root.start[a];
    const u32* pEnd = root.pos + root.start[a + 1];
    const u32* q = x.pos + x.start[b];
    const u32* qEnd = x.pos + x.start[b + 1];
    std::size_t before = pos.size();
    if (sameSet) {
      std::set_intersection(p, pEnd, q, qEnd, std::back_inserter(pos));
    } else {
      pos.insert(pos.end(), std::upper_bound(q, qEnd, *p), qEnd);
    }
    if (pos.size() > before) {
      cust.push_back(root.cust[a]);
      start.push_back(static_cast<u32>(before));
    }
    return true;
  });
  start.push_back(static_cast<u32>(pos.size()));
}

// A frequent extension found at a node.
struct Extension {
  u32 item;
  bool sameSet;  // item set extension (joins the last set)
  u32 support;
  u32 occurrences;    // transactions of its projection
  u32 firstCustomer;  // work index
};

// A projection in vectors of its own.
struct OwnedProjection {
  std::vector<u32> cust, start, pos;
  Projection view() const {
    return Projection{cust.data(), start.data(), pos.data(),
                      static_cast<u32>(cust.size())};
  }
  std::size_t words() const { return cust.size() + start.size() + pos.size(); }
};

// The tail, from `from` on, of a candidate list that many nodes share: the
// siblings of a level pass down the same lists, so each node holding a copy
// would take the square of the frequent items (gigabytes on a database with
// thousands of them).
struct SharedCandidates {
  std::shared_ptr<const std::vector<u32>> list;
  std::size_t from = 0;
  const u32* data() const { return list->data() + from; }
  std::size_t size() const { return list->size() - from; }
};

// The candidates after `item` in an ascending shared list.
SharedCandidates candidatesAfter(std::shared_ptr<const std::vector<u32>> list,
                                 u32 item) {
  std::size_t from = static_cast<std::size_t>(
      std::upper_bound(list->begin(), list->end(), item) - list->begin());
  return SharedCandidates{std::move(list), from};
}

// A frequent two-item pattern, where most search tasks start: first's item
// followed by item (in first's set when sameSet). Its candidates are first's
// frequent extensions after item, and its projection is joined from the
// roots when its task runs, so a database with millions of frequent pairs
// holds sixteen bytes for each.
struct Pair {
  u32 first, item, support;
  bool sameSet;
};

// The frequent extensions of each item, split into sequence and item set
// ones, ascending: the candidates of the pairs and of the nodes below them.
struct RootCandidates {
  std::vector<std::shared_ptr<std::vector<u32>>> s, i;
  // The list whose items after pair.item are the pair's item set
  // candidates.
  const std::shared_ptr<std::vector<u32>>& itemSetSource(
      const Pair& pair) const {
    return (pair.sameSet ? i : s)[pair.first];
  }
};

// A pattern at which a search task starts: its items (sameSet[k]: item k
// joins the set of item k - 1; sameSet[0] is unused), the candidates of its
// extensions, as the search would pass them down to it, and, below the
// two-item patterns, its projection until its task has run. Pairs become
// nodes only where the plan splits them.
struct SearchNode {
  std::vector<u32> items;
  std::vector<char> sameSet;
  SharedCandidates s, i;  // sequence and item set candidates, ascending
  u32 support = 0;
  OwnedProjection projection;
};

// The node of a pair that the plan splits.
SearchNode pairNode(const Pair& pair, const RootCandidates& roots) {
  SearchNode node;
  node.items = {pair.first, pair.item};
  node.sameSet = {0, pair.sameSet};
  node.s = SharedCandidates{roots.s[pair.first], 0};
  node.i = candidatesAfter(roots.itemSetSource(pair), pair.item);
  node.support = pair.support;
  return node;
}

// The nodes below `node` that the search would visit next, in its order,
// given node's frequent extensions.
std::vector<SearchNode> childNodes(const SearchNode& node,
                                   const std::vector<Extension>& extensions) {
  auto sf = std::make_shared<std::vector<u32>>();
  auto fi = std::make_shared<std::vector<u32>>();
  for (const Extension& x : extensions) {
    (x.sameSet ? fi : sf)->push_back(x.item);
  }
  std::vector<SearchNode> children(extensions.size());
  for (std::size_t k = 0; k < extensions.size(); ++k) {
    const Extension& x = extensions[k];
    SearchNode& child = children[k];
    child.items = node.items;
    child.items.push_back(x.item);
    child.sameSet = node.sameSet;
    child.sameSet.push_back(x.sameSet);
    child.s = SharedCandidates{sf, 0};
    child.i = candidatesAfter(x.sameSet ? fi : sf, x.item);
    child.support = x.support;
  }
  return children;
}

// One worker's scratch state: per-item counters (indexed by code), one store
// per pattern size for the children of the node being expanded, and the
// pattern on the current search path.
class Worker {
 public:
  Worker(const internal::WorkDatabase& db, long minCount, int maxItems,
         std::chrono::steady_clock::time_point deadline)
      : db_(db),
        minCount_(static_cast<u32>(minCount)),
        maxItems_(maxItems),
        deadline_(deadline) {
    std::size_t f = db.itemCount();
    for (Counters* c : {&s_, &i_}) {
      c->flag.assign(f, 0);
      c->count.assign(f, 0);
      c->first.assign(f, 0);
      c->occurrences.assign(f, 0);
      c->stamp.assign(f, 0);
      c->child.assign(f, UINT32_MAX);
    }
    std::size_t depth =
        std::min<std::size_t>(static_cast<std::size_t>(maxItems),
                              db.longestCustomer) +
        2;
    levels_.resize(depth);
    for (std::size_t c = 0; c + 1 < db.lastStart.size(); ++c) {
      longestList_ = std::max<std::size_t>(
          longestList_, db.lastStart[c + 1] - db.lastStart[c]);
    }
  }

  // How far expand goes below the extensions it finds.
  enum Descend { kNo, kBuild, kYes };

  // The one-item patterns' projections, which the joins below read; set
  // before any pattern of two items or more is expanded.
  void useRoots(const ProjectionStore* roots) { roots_ = roots; }

  // Patterns are appended to *out; when `full` is given it is called each
  // time out holds kChunkInts or more, to pass the chunk on.
  void setOutput(std::vector<int>* out, std::function<void()> full = {}) {
    out_ = out;
    full_ = std::move(full);
  }
  void startPattern(u32 item) {
    pattern_.clear();
    newSet_.clear();
    push(item, false);
  }
  // Counts the extensions of the current pattern (whose projection is proj
  // and whose last item is last) among the candidates, reports the frequent
  // ones and, when `descend` is kYes, expands them in turn (kBuild: builds
  // their projections in the level's store and stops). Returns the frequent
  // extensions (valid until the next call at this depth).
  const std::vector<Extension>& expand(const Projection& proj, u32 last,
                                       const u32* sCand, std::size_t nS,
                                       const u32* iCand, std::size_t nI,
                                       Descend descend) {
    if (!db_.multiItemSets) nI = 0;
    std::size_t depth = pattern_.size();
    Level& level = levels_[depth];
    level.extensions.clear();
    level.sFrequent.clear();
    level.iFrequent.clear();
    if (static_cast<int>(depth) >= maxItems_ || (nS == 0 && nI == 0)) {
      return level.extensions;
    }
    const bool joins = preferJoins(proj, nS + nI);
    if (joins && descend == kYes && proj.n <= kLanes && !db_.multiItemSets) {
      expandNarrow(proj, sCand, nS);
      return level.extensions;
    }
    if (joins) {
      countByJoins(proj, sCand, nS, false, level.sFrequent, level);
      countByJoins(proj, iCand, nI, true, level.iFrequent, level);
    } else if (fewItemsMet(proj, nS + nI)) {
      count<true>(proj, last, sCand, nS, iCand, nI);
      collectMet(sCand, nS, s_, false, level.sFrequent, level);
      findFirstCustomers(proj, level);
      collectMet(iCand, nI, i_, true, level.iFrequent, level);
    } else {
      count<false>(proj, last, sCand, nS, iCand, nI);
      collect(sCand, nS, s_, false, level.sFrequent, level);
      findFirstCustomers(proj, level);
      collect(iCand, nI, i_, true, level.iFrequent, level);
    }
    for (const Extension& x : level.extensions) {
      push(x.item, x.sameSet);
      emit(x.support, x.firstCustomer);
      pop();
    }
    if (level.extensions.empty() || descend == kNo ||
        static_cast<int>(depth) + 1 >= maxItems_) {
      return level.extensions;
    }
    if (joins) {
      buildByJoins(proj, level);
    } else {
      build(proj, last, level);
    }
    if (descend == kBuild) return level.extensions;
    const std::vector<u32>& sf = level.sFrequent;
    const std::vector<u32>& fi = level.iFrequent;
    for (u32 k = 0; k < level.extensions.size(); ++k) {
      const Extension x = level.extensions[k];
      const std::vector<u32>& iSource = x.sameSet ? fi : sf;
      std::size_t after = static_cast<std::size_t>(
          std::upper_bound(iSource.begin(), iSource.end(), x.item) -
          iSource.begin());
      push(x.item, x.sameSet);
      expand(level.store.view(k), x.item, sf.data(), sf.size(),
             iSource.data() + after, iSource.size() - after, kYes);
      pop();
    }
    return level.extensions;
  }

  // Counts the extensions of the node's pattern and emits them, then
  // searches the subtree below each: the search resumed at the node, on
  // whichever worker runs it. The node's projection is no longer needed
  // after.
  void expandNode(SearchNode& node) {
    Projection proj = enterNode(node);
    expand(proj, node.items.back(), node.s.data(), node.s.size(), node.i.data(),
           node.i.size(), kYes);
    node.projection = OwnedProjection();
  }

  // expandNode for a pair not turned into a node.
  void expandPair(const Pair& pair, const RootCandidates& candidates) {
    Projection proj = enterPair(pair.first, pair.item, pair.sameSet);
    const std::vector<u32>& s = *candidates.s[pair.first];
    const std::vector<u32>& i = *candidates.itemSetSource(pair);
    std::size_t after = static_cast<std::size_t>(
        std::upper_bound(i.begin(), i.end(), pair.item) - i.begin());
    expand(proj, pair.item, s.data(), s.size(), i.data() + after,
           i.size() - after, kYes);
  }

  // Counts the extensions of the node's pattern, appending their records to
  // *records, and returns the nodes below it, each with its projection.
  std::vector<SearchNode> splitNode(SearchNode& node,
                                    std::vector<int>* records) {
    Projection proj = enterNode(node);
    setOutput(records);
    std::vector<SearchNode> children = childNodes(
        node, expand(proj, node.items.back(), node.s.data(), node.s.size(),
                     node.i.data(), node.i.size(), kBuild));
    const ProjectionStore& store = levels_[node.items.size()].store;
    for (u32 k = 0; k < children.size(); ++k) {
      keep(store.view(k), children[k].projection);
    }
    node.projection = OwnedProjection();
    return children;
  }

  // Passes on pattern records found earlier, as emit would have.
  void emitRecords(const std::vector<int>& records) {
    out_->insert(out_->end(), records.begin(), records.end());
    if (full_ && out_->size() >= internal::kChunkInts) full_();
  }

  // Appends the current pattern, found in `support` customers, to the output
  // as a PatternEmitter record.
  void emit(u32 support, u32 firstWorkCustomer) {
    std::vector<int>& out = *out_;
    out.push_back(static_cast<int>(support));
    out.push_back(static_cast<int>(db_.customerId[firstWorkCustomer]));
    std::size_t setsAt = out.size();
    out.push_back(0);
    std::size_t sizeAt = 0;
    for (std::size_t k = 0; k < pattern_.size(); ++k) {
      if (newSet_[k]) {
        ++out[setsAt];
        sizeAt = out.size();
        out.push_back(0);
      }
      ++out[sizeAt];
      out.push_back(db_.itemValue[pattern_[k]]);
    }
    if (full_ && out.size() >= internal::kChunkInts) full_();
    if ((++emitted_ & 1023) == 0 &&
        deadline_ != std::chrono::steady_clock::time_point::max() &&
        std::chrono::steady_clock::now() >= deadline_) {
      throw internal::SearchStopped();
    }
  }

 private:
  struct Counters {
    std::vector<u32> flag;  // 0 or 1, added without a branch
    std::vector<u32> count, first, occurrences, child;
    std::vector<std::uint64_t> stamp;
    std::vector<u32> met;  // items counted by count<true>, for collectMet
    void clear(u32 x) {
      flag[x] = 0;
      count[x] = 0;
      occurrences[x] = 0;
    }
    void hit(u32 x, u32 customer, std::uint64_t now) {
      ++occurrences[x];
      if (stamp[x] == now) return;
      stamp[x] = now;
      if (count[x]++ == 0) first[x] = customer;
    }
  };
  struct Level {
    std::vector<Extension> extensions;
    std::vector<u32> sFrequent, iFrequent;
    ProjectionStore store;
    std::vector<std::pair<u32, u32>> sizes;
    // Below a narrow node: per frequent extension its customers (a bit per
    // lane) and, lane by lane, the transaction where it ends.
    std::vector<std::uint64_t> masks;
    std::vector<u32> ends;
  };

  // A subtree of at most kLanes customers, in a database whose transactions
  // hold one item each (so a customer's place in a pattern is one
  // transaction), is searched lane by lane: one lane per customer of the
  // subtree's root, and per candidate item of the root and lane where the
  // item's occurrences are and the last of them. A node is then a set of
  // lanes (one word) and an end transaction per lane, and counting an item
  // compares its last occurrences with the ends, without reading the
  // customers again: long, narrow patterns, deep in a sparse database, cost
  // a few operations per candidate rather than per item of the customers.
  // Taken where joins would be (few candidates, long lists): elsewhere the
  // setup, a join per candidate, costs more than the subtree saves.
  static constexpr u32 kLanes = 64;
  struct Narrow {
    std::vector<u32> item;  // candidate index -> item code
    std::vector<u32> cust;  // lane -> work customer
    // Per candidate index i and lane a, at i * kLanes + a: the item's
    // occurrences in the customer and the last one (0 when none: no end
    // lies before transaction 0).
    std::vector<const u32*> from, to;
    std::vector<u32> last;
  };

  // Copies p into out; without multi-item transactions only each
  // customer's first position, the only one a sequence extension reads.
  void keep(const Projection& p, OwnedProjection& out) const {
    out.cust.assign(p.cust, p.cust + p.n);
    if (db_.multiItemSets) {
      out.start.assign(p.start, p.start + p.n + 1);
      out.pos.assign(p.pos, p.pos + p.start[p.n]);
      return;
    }
    out.start.resize(p.n + 1);
    out.pos.resize(p.n);
    for (u32 e = 0; e < p.n; ++e) {
      out.start[e] = e;
      out.pos[e] = p.pos[p.start[e]];
    }
    out.start[p.n] = p.n;
  }

  // Puts the node's pattern on the search path and returns its projection:
  // its own, or for a two-item pattern the join of its items' roots.
  Projection enterNode(const SearchNode& node) {
    const std::vector<u32>& items = node.items;
    if (items.size() == 2) {
      return enterPair(items[0], items[1], node.sameSet[1] != 0);
    }
    startPattern(items[0]);
    for (std::size_t k = 1; k < items.size(); ++k) {
      push(items[k], node.sameSet[k] != 0);
    }
    return node.projection.view();
  }

  // Puts the pair on the search path and returns its projection, the join
  // of its items' roots.
  Projection enterPair(u32 first, u32 item, bool sameSet) {
    startPattern(first);
    push(item, sameSet);
    joinRoots(roots_->view(first), roots_->view(item), sameSet, path_.cust,
              path_.start, path_.pos);
    return path_.view();
  }

  void push(u32 item, bool sameSet) {
    pattern_.push_back(item);
    newSet_.push_back(!sameSet);
  }
  void pop() {
    pattern_.pop_back();
    newSet_.pop_back();
  }

  // Sequence extensions: each distinct item after the first transaction
  // counts once per customer, read from the last-occurrence list. Item set
  // extensions: items above `last` in the transactions of the projection.
  // With kEveryItem the candidates are not marked: every item met is
  // counted and listed in its counters' `met`, for collectMet.
  template <bool kEveryItem>
  void count(const Projection& proj, u32 last, const u32* sCand, std::size_t nS,
             const u32* iCand, std::size_t nI) {
    if (!kEveryItem) {
      for (std::size_t k = 0; k < nS; ++k) s_.flag[sCand[k]] = 1;
      for (std::size_t k = 0; k < nI; ++k) i_.flag[iCand[k]] = 1;
    }
    const u32* items = db_.items.data();
    const u32* ts = db_.transactionStart.data();
    const u32* ls = db_.lastStart.data();
    const u32* lt = db_.lastTransaction.data();
    const u32* li = db_.lastItem.data();
    for (u32 e = 0; e < proj.n; ++e) {
      prefetchCustomer(proj, e, false);
      u32 c = proj.cust[e];
      const u32* p = proj.pos + proj.start[e];
      const u32* pEnd = proj.pos + proj.start[e + 1];
      if (nS != 0) {
        // Locals, so that the stores into the counts need no reloads.
        u32* counts = s_.count.data();
        const u32* flags = s_.flag.data();
        const u32 f = *p;
        for (u32 k = ls[c], end = ls[c + 1]; k < end && lt[k] > f; ++k) {
          if (!kEveryItem) {
            counts[li[k]] += flags[li[k]];
          } else if (counts[li[k]]++ == 0) {
            s_.met.push_back(li[k]);
          }
        }
      }
      if (nI != 0) {
        ++now_;
        for (; p < pEnd; ++p) {
          const u32* b = items + ts[*p + 1];
          for (const u32* a = itemsAbove(items + ts[*p], b, last); a < b; ++a) {
            if (!kEveryItem && !i_.flag[*a]) continue;
            if (kEveryItem && i_.occurrences[*a] == 0) i_.met.push_back(*a);
            i_.hit(*a, c, now_);
          }
        }
      }
    }
  }

  // The loops over a projection read, per customer, its last-occurrence
  // lists (and in build its occurrence lists): a few cache lines far apart
  // once the database outgrows the cache. Fetching them some customers ahead
  // overlaps those misses instead of waiting for each in turn: first the
  // list bounds, then, once they have arrived, the lists they point to.
  // Inlined early on purpose: a separate function that only prefetches
  // looks free of effects to the compiler, which then drops its calls.
  __attribute__((always_inline)) void prefetchCustomer(const Projection& proj,
                                                       u32 e,
                                                       bool occurrences) const {
    constexpr u32 kFar = 24, kMid = 16, kNear = 8;
    const u32* ls = db_.lastStart.data();
    if (e + kFar < proj.n) __builtin_prefetch(ls + proj.cust[e + kFar]);
    if (e + kMid < proj.n) {
      u32 k = ls[proj.cust[e + kMid]];
      __builtin_prefetch(db_.lastTransaction.data() + k);
      __builtin_prefetch(db_.lastItem.data() + k);
      if (occurrences) __builtin_prefetch(db_.occurrenceStart.data() + k);
    }
    if (occurrences && e + kNear < proj.n) {
      u32 k = ls[proj.cust[e + kNear]];
      __builtin_prefetch(db_.occurrences.data() + db_.occurrenceStart[k]);
    }
  }

  // Takes the frequent candidates into the level and clears the counters.
  void collect(const u32* cand, std::size_t n, Counters& counters, bool sameSet,
               std::vector<u32>& frequent, Level& level) {
    for (std::size_t k = 0; k < n; ++k) {
      u32 x = cand[k];
      if (counters.count[x] >= minCount_) {
        frequent.push_back(x);
        level.extensions.push_back(Extension{x, sameSet, counters.count[x],
                                             counters.occurrences[x],
                                             counters.first[x]});
      }
      counters.clear(x);
    }
  }

  // Whether the items the projection's customers hold are so few beside
  // the candidates that counting every item met and then looking the
  // frequent ones up among the candidates is cheaper than marking and
  // collecting every candidate: so at the many small nodes of a database
  // with thousands of frequent items. A customer's distinct items bound the
  // items met in both counts.
  bool fewItemsMet(const Projection& proj, std::size_t candidates) const {
    const std::size_t limit = candidates / 2;
    return listedUpTo(proj, limit) < limit;
  }

  // The entries of the projection's customers' last-occurrence lists,
  // counted until they reach limit.
  std::size_t listedUpTo(const Projection& proj, std::size_t limit) const {
    const u32* ls = db_.lastStart.data();
    std::size_t listed = 0;
    for (u32 e = 0; e < proj.n && listed < limit; ++e) {
      listed += ls[proj.cust[e] + 1] - ls[proj.cust[e]];
    }
    return listed;
  }

  // collect after count<true>: the frequent candidates among the items met,
  // ascending as the candidates are, taken into the level; the counters of
  // every item met are cleared.
  void collectMet(const u32* cand, std::size_t n, Counters& counters,
                  bool sameSet, std::vector<u32>& frequent, Level& level) {
    const std::size_t from = frequent.size();
    for (u32 x : counters.met) {
      if (counters.count[x] >= minCount_ &&
          std::binary_search(cand, cand + n, x)) {
        frequent.push_back(x);
      }
    }
    std::sort(frequent.begin() + static_cast<std::ptrdiff_t>(from),
              frequent.end());
    for (std::size_t k = from; k < frequent.size(); ++k) {
      const u32 x = frequent[k];
      level.extensions.push_back(Extension{x, sameSet, counters.count[x],
                                           counters.occurrences[x],
                                           counters.first[x]});
    }
    for (u32 x : counters.met) counters.clear(x);
    counters.met.clear();
  }

  // The sequence counts above keep no first customer (a branch there costs
  // more than this search): the first entries with the item after their
  // first transaction hold it, usually among the first few.
  void findFirstCustomers(const Projection& proj, Level& level) {
    std::size_t remaining = level.extensions.size();
    for (const Extension& x : level.extensions) s_.flag[x.item] = 1;
    const u32* ls = db_.lastStart.data();
    const u32* lt = db_.lastTransaction.data();
    const u32* li = db_.lastItem.data();
    for (u32 e = 0; e < proj.n && remaining > 0; ++e) {
      u32 c = proj.cust[e];
      u32 f = proj.pos[proj.start[e]];
      for (u32 k = ls[c], end = ls[c + 1]; k < end && lt[k] > f; ++k) {
        u32 x = li[k];
        if (!s_.flag[x]) continue;
        s_.flag[x] = 0;
        s_.first[x] = c;
        --remaining;
      }
    }
    for (Extension& x : level.extensions) x.firstCustomer = s_.first[x.item];
  }

  // Lays out and fills the projections of the node's frequent extensions.
  // Without multi-item transactions no pattern has item set extensions, so
  // a projection needs only each customer's first transaction.
  void build(const Projection& proj, u32 last, Level& level) {
    bool allPositions = db_.multiItemSets;
    level.sizes.clear();
    for (u32 k = 0; k < level.extensions.size(); ++k) {
      const Extension& x = level.extensions[k];
      (x.sameSet ? i_ : s_).child[x.item] = k;
      level.sizes.emplace_back(x.support,
                               x.sameSet || !allPositions ? x.occurrences : 0);
    }
    bool anyS = !level.sFrequent.empty();
    if (!allPositions) {
      for (auto& size : level.sizes) size.second = size.first;
    } else if (anyS) {
      forEachSequenceChild(
          proj, [&level](u32 child, u32, const u32* from, const u32* to) {
            level.sizes[child].second += static_cast<u32>(to - from);
          });
    }
    level.store.layout(level.sizes);
    if (anyS && allPositions) {
      forEachSequenceChild(
          proj, [&level](u32 child, u32 c, const u32* from, const u32* to) {
            for (; from < to; ++from) level.store.append(child, c, *from);
          });
    } else if (anyS) {
      forEachSequenceChild(
          proj, [&level](u32 child, u32 c, const u32* from, const u32*) {
            level.store.append(child, c, *from);
          });
    }
    if (!level.iFrequent.empty()) {
      const u32* items = db_.items.data();
      const u32* ts = db_.transactionStart.data();
      for (u32 e = 0; e < proj.n; ++e) {
        for (u32 q = proj.start[e]; q < proj.start[e + 1]; ++q) {
          u32 t = proj.pos[q];
          const u32* b = items + ts[t + 1];
          for (const u32* a = itemsAbove(items + ts[t], b, last); a < b; ++a) {
            u32 child = i_.child[*a];
            if (child != UINT32_MAX) level.store.append(child, proj.cust[e], t);
          }
        }
      }
    }
    level.store.finish();
    for (const Extension& x : level.extensions) {
      (x.sameSet ? i_ : s_).child[x.item] = UINT32_MAX;
    }
  }

  // Sets up the lanes of the subtree below the pattern whose projection is
  // proj (one join per candidate) and searches it.
  void expandNarrow(const Projection& proj, const u32* sCand, std::size_t nS) {
    narrow_.item.assign(sCand, sCand + nS);
    narrow_.cust.assign(proj.cust, proj.cust + proj.n);
    narrow_.from.assign(nS * kLanes, nullptr);
    narrow_.to.assign(nS * kLanes, nullptr);
    narrow_.last.assign(nS * kLanes, 0);
    for (std::size_t i = 0; i < nS; ++i) {
      const Projection rx = roots_->view(sCand[i]);
      forEachSharedCustomer(proj, rx, [&](u32 a, u32 b) {
        std::size_t at = i * kLanes + a;
        narrow_.from[at] = rx.pos + rx.start[b];
        narrow_.to[at] = rx.pos + rx.start[b + 1];
        narrow_.last[at] = narrow_.to[at][-1];
        return true;
      });
    }
    u32 ends[kLanes] = {};
    for (u32 a = 0; a < proj.n; ++a) ends[a] = proj.pos[proj.start[a]];
    std::uint64_t lanes =
        proj.n == kLanes ? ~std::uint64_t{0} : (std::uint64_t{1} << proj.n) - 1;
    std::vector<u32>& all = levels_[pattern_.size()].iFrequent;
    all.resize(nS);
    for (u32 i = 0; i < nS; ++i) all[i] = i;
    expandLanes(lanes, ends, all.data(), nS);
  }

  // The narrow form of expand: the pattern's customers are the lanes set in
  // `lanes`, each ending at ends[lane]; cand are candidate indexes,
  // ascending.
  void expandLanes(std::uint64_t lanes, const u32* ends, const u32* cand,
                   std::size_t nCand) {
    std::size_t depth = pattern_.size();
    if (static_cast<int>(depth) >= maxItems_ || nCand == 0) return;
    Level& level = levels_[depth];
    level.sFrequent.clear();
    level.masks.clear();
    for (std::size_t k = 0; k < nCand; ++k) {
      const u32* last = narrow_.last.data() + cand[k] * kLanes;
      std::uint64_t hit = 0;
      for (u32 a = 0; a < kLanes; ++a) {
        hit |= static_cast<std::uint64_t>(last[a] > ends[a]) << a;
      }
      hit &= lanes;
      if (static_cast<u32>(__builtin_popcountll(hit)) < minCount_) continue;
      level.sFrequent.push_back(cand[k]);
      level.masks.push_back(hit);
    }
    for (std::size_t k = 0; k < level.sFrequent.size(); ++k) {
      push(narrow_.item[level.sFrequent[k]], false);
      emit(static_cast<u32>(__builtin_popcountll(level.masks[k])),
           narrow_.cust[__builtin_ctzll(level.masks[k])]);
      pop();
    }
    if (level.sFrequent.empty() || static_cast<int>(depth) + 1 >= maxItems_) {
      return;
    }
    level.ends.resize(level.sFrequent.size() * kLanes);
    for (std::size_t k = 0; k < level.sFrequent.size(); ++k) {
      std::size_t base = level.sFrequent[k] * kLanes;
      u32* childEnds = level.ends.data() + k * kLanes;
      for (std::uint64_t m = level.masks[k]; m != 0; m &= m - 1) {
        u32 a = static_cast<u32>(__builtin_ctzll(m));
        childEnds[a] =
            *firstAbove(narrow_.from[base + a], narrow_.to[base + a], ends[a]);
      }
    }
    for (std::size_t k = 0; k < level.sFrequent.size(); ++k) {
      push(narrow_.item[level.sFrequent[k]], false);
      expandLanes(level.masks[k], level.ends.data() + k * kLanes,
                  level.sFrequent.data(), level.sFrequent.size());
      pop();
    }
  }

  // Whether counting and building by joins (below) is cheaper at this node
  // than reading the customers' last-occurrence lists: so when few
  // candidates meet long lists, as deep in a sparse database, where a
  // handful of customers with hundreds of distinct items would otherwise
  // be read in full at every node. The lists' whole lengths stand for what
  // the count reads of them.
  bool preferJoins(const Projection& proj, std::size_t candidates) const {
    if (roots_ == nullptr || candidates * kJoinCost >= longestList_) {
      return false;
    }
    const std::size_t limit = candidates * kJoinCost * proj.n;
    return listedUpTo(proj, limit) >= limit;
  }

  // Calls visit(a, t) for each transaction t of the projection's entry a
  // where the pattern extended by x (joining the last set when sameSet) can
  // end, reading x's one-item projection: the vertical form of the count
  // and build below. Before each customer holding x, give_up(left) with
  // left the customers both may still share says whether to stop.
  template <class GiveUp, class Visit>
  void forEachChildPosition(const Projection& proj, u32 x, bool sameSet,
                            const GiveUp& give_up, const Visit& visit) const {
    const Projection rx = roots_->view(x);
    const bool allPositions = db_.multiItemSets;
    forEachSharedCustomer(proj, rx, [&](u32 a, u32 b) {
      if (give_up(std::min(proj.n - a, rx.n - b))) return false;
      const u32* p = proj.pos + proj.start[a];
      const u32* q = rx.pos + rx.start[b];
      const u32* qEnd = rx.pos + rx.start[b + 1];
      if (sameSet) {
        const u32* pEnd = proj.pos + proj.start[a + 1];
        while (p < pEnd && q < qEnd) {
          if (*p < *q) {
            ++p;
          } else if (*q < *p) {
            ++q;
          } else {
            visit(a, *p);
            ++p;
            ++q;
          }
        }
      } else if (qEnd[-1] > *p) {
        q = firstAbove(q, qEnd, *p);
        if (!allPositions) qEnd = q + 1;
        for (; q < qEnd; ++q) visit(a, *q);
      }
      return true;
    });
  }

  // Counts each candidate with one join, dropping it as soon as the
  // customers left cannot make it frequent, and takes the frequent ones
  // into the level.
  void countByJoins(const Projection& proj, const u32* cand, std::size_t n,
                    bool sameSet, std::vector<u32>& frequent, Level& level) {
    for (std::size_t k = 0; k < n; ++k) {
      Extension x{cand[k], sameSet, 0, 0, 0};
      u32 lastEntry = UINT32_MAX;
      forEachChildPosition(
          proj, x.item, sameSet,
          [&](u32 left) { return x.support + left < minCount_; },
          [&](u32 a, u32) {
            ++x.occurrences;
            if (a == lastEntry) return;
            lastEntry = a;
            if (x.support++ == 0) x.firstCustomer = proj.cust[a];
          });
      if (x.support < minCount_) continue;
      frequent.push_back(x.item);
      level.extensions.push_back(x);
    }
  }

  // Lays out and fills the projections of the node's frequent extensions,
  // each with one join.
  void buildByJoins(const Projection& proj, Level& level) {
    level.sizes.clear();
    for (const Extension& x : level.extensions) {
      level.sizes.emplace_back(x.support, x.occurrences);
    }
    level.store.layout(level.sizes);
    for (u32 k = 0; k < level.extensions.size(); ++k) {
      const Extension& x = level.extensions[k];
      forEachChildPosition(
          proj, x.item, x.sameSet, [](u32) { return false; },
          [&](u32 a, u32 t) { level.store.append(k, proj.cust[a], t); });
    }
    level.store.finish();
  }

  // Calls visit(child, customer, from, to) for each customer of the
  // projection and each sequence child item occurring after the customer's
  // first transaction, with [from, to) the transactions holding it there,
  // ascending. They come from the customer's occurrence lists, so the
  // customer's transactions without a child item cost nothing.
  template <class Visit>
  void forEachSequenceChild(const Projection& proj, const Visit& visit) const {
    const u32* ls = db_.lastStart.data();
    const u32* lt = db_.lastTransaction.data();
    const u32* li = db_.lastItem.data();
    const u32* os = db_.occurrenceStart.data();
    const u32* occurrences = db_.occurrences.data();
    const u32* children = s_.child.data();
    for (u32 e = 0; e < proj.n; ++e) {
      prefetchCustomer(proj, e, true);
      u32 c = proj.cust[e];
      u32 f = proj.pos[proj.start[e]];
      for (u32 k = ls[c], end = ls[c + 1]; k < end && lt[k] > f; ++k) {
        u32 child = children[li[k]];
        if (child == UINT32_MAX) continue;
        const u32* to = occurrences + os[k + 1];
        visit(child, c, firstAbove(occurrences + os[k], to, f), to);
      }
    }
  }

  // A join costs about this many list entries read per candidate and
  // customer.
  static constexpr std::size_t kJoinCost = 4;

  const internal::WorkDatabase& db_;
  const ProjectionStore* roots_ = nullptr;
  std::size_t longestList_ = 0;  // most last-occurrence entries of a customer
  Narrow narrow_;
  u32 minCount_;
  int maxItems_;
  std::chrono::steady_clock::time_point deadline_;
  u32 emitted_ = 0;
  Counters s_, i_;
  std::uint64_t now_ = 0;
  std::vector<Level> levels_;
  std::vector<u32> pattern_;
  std::vector<char> newSet_;
  std::vector<int>* out_ = nullptr;
  std::function<void()> full_;
  // The projection of the two-item pattern a task starts at.
  OwnedProjection path_;
};

// Rough upper bound of the search's own memory: the renumbered database
// (items, last occurrences and occurrence lists, about three words per
// occurrence as a customer repeats items), the one-item projections
// (a position per occurrence and two words per customer), and per worker up
// to two such sets for the open search path.
std::size_t estimateSearchBytes(const SequenceDatabase& db,
                                std::size_t workers) {
  std::size_t n = db.itemOccurrenceCount();
  std::size_t t = db.transactionCount();
  std::size_t c = db.customerCount();
  std::size_t perItem = sizeof(u32);
  std::size_t database = 3 * n * perItem + (t + 3 * c) * perItem;
  std::size_t roots = 3 * n * perItem;
  return 2 * database + roots + workers * 2 * roots;
}

// The tasks of the search below the two-item patterns, in the order of its
// output. A task is a pair's whole subtree, a node's whole subtree, or, when
// a node is split, its own extensions (found while planning), followed by
// the tasks of its children: the largest subtrees are split, so that no
// single task is left running on one core while the others have run out of
// work.
struct SearchPlan {
  enum Kind : u32 { kPair, kNode, kSplit };
  struct Task {
    Kind kind;
    u32 index;  // in pairs (kPair) or in nodes
  };
  std::vector<Pair> pairs;
  std::vector<SearchNode> nodes;
  std::vector<std::vector<int>> records;  // per split node, its extensions
  std::vector<Task> tasks;
};

// Plans the tasks below `pairs` (in their order). The split nodes'
// children keep their projections for their tasks; splitting stops once
// those hold more than budgetWords.
SearchPlan planSearch(std::vector<Pair> pairs, const RootCandidates& candidates,
                      std::size_t customers, std::size_t budgetWords,
                      int maxItems, std::vector<Worker>& workers) {
  SearchPlan plan;
  plan.pairs = std::move(pairs);
  // A subtree of more than a worker's share of the customers may hold more
  // work than the others together; the smaller ones are spread well enough
  // by the task order, the largest first.
  const std::size_t splitSupport =
      workers.size() > 1 ? customers / workers.size() : SIZE_MAX;
  auto splits = [&](std::size_t support, std::size_t items) {
    return support >= splitSupport && static_cast<int>(items) + 1 < maxItems;
  };
  // The pairs to split, as nodes, then the split nodes' children, found a
  // level at a time, the nodes of a level spread over the workers.
  std::vector<u32> nodeOfPair(plan.pairs.size(), UINT32_MAX);
  std::vector<std::size_t> level;
  for (std::size_t p = 0; p < plan.pairs.size(); ++p) {
    if (!splits(plan.pairs[p].support, 2)) continue;
    nodeOfPair[p] = static_cast<u32>(plan.nodes.size());
    level.push_back(plan.nodes.size());
    plan.nodes.push_back(pairNode(plan.pairs[p], candidates));
  }
  plan.records.resize(plan.nodes.size());
  std::vector<std::vector<std::size_t>> children(plan.nodes.size());
  std::vector<char> split(plan.nodes.size(), 0);
  std::size_t held = 0;
  while (!level.empty() && held <= budgetWords) {
    std::vector<std::vector<SearchNode>> found(level.size());
    internal::runOrderedTasks(
        level.size(), workers,
        [&](Worker& w, std::size_t k) {
          found[k] = w.splitNode(plan.nodes[level[k]], &plan.records[level[k]]);
        },
        [](std::vector<int>&) {});
    std::vector<std::size_t> next;
    for (std::size_t k = 0; k < level.size(); ++k) {
      const std::size_t n = level[k];
      split[n] = 1;
      for (SearchNode& child : found[k]) {
        const std::size_t c = plan.nodes.size();
        held += child.projection.words();
        if (splits(child.support, child.items.size())) next.push_back(c);
        plan.nodes.push_back(std::move(child));
        plan.records.emplace_back();
        children[n].push_back(c);
        children.emplace_back();
        split.push_back(0);
      }
    }
    level = std::move(next);
  }
  std::function<void(std::size_t)> add = [&](std::size_t n) {
    plan.tasks.push_back(
        SearchPlan::Task{split[n] != 0 ? SearchPlan::kSplit : SearchPlan::kNode,
                         static_cast<u32>(n)});
    if (split[n] != 0) {
      for (std::size_t c : children[n]) add(c);
    }
  };
  plan.tasks.reserve(plan.pairs.size());
  for (std::size_t p = 0; p < plan.pairs.size(); ++p) {
    if (nodeOfPair[p] == UINT32_MAX) {
      plan.tasks.push_back(
          SearchPlan::Task{SearchPlan::kPair, static_cast<u32>(p)});
    } else {
      add(nodeOfPair[p]);
    }
  }
  return plan;
}

}  // namespace

SequenceMiner::SequenceMiner(const MinerOptions& options) : options_(options) {
  if (options.maxItems < 1) {
    throw MiningError("maximum pattern size " +
                      std::to_string(options.maxItems) + " is less than 1");
  }
  if (options.threads < 0) {
    throw MiningError("thread count " + std::to_string(options.threads) +
                      " is negative");
  }
  internal::checkTimeConstraints(options.time);
}

MiningSummary SequenceMiner::mine(const SequenceDatabase& db,
                                  PatternSink& sink) const {
  return mine(db, sink, nullptr);
}

MiningSummary SequenceMiner::mine(const SequenceDatabase& db, PatternSink& sink,
                                  GapSink* gaps) const {
  MiningSummary summary;
  try {
    search(db, sink, options_.gapStatistics ? gaps : nullptr, summary);
  } catch (const internal::SearchStopped&) {
    summary.complete = false;
  }
  return summary;
}

void SequenceMiner::search(const SequenceDatabase& db, PatternSink& sink,
                           GapSink* gaps, MiningSummary& summary) const {
  summary.customers = static_cast<long>(db.customerCount());
  summary.minCount = options_.minSupport.countFor(db.customerCount());
  summary.patternsPerSize.assign(1, 0);
  std::size_t threads = options_.threads > 0
                            ? static_cast<std::size_t>(options_.threads)
                            : std::max(1u, std::thread::hardware_concurrency());
  std::size_t need = estimateSearchBytes(db, threads);
  if (options_.memoryBudget != 0 && need > options_.memoryBudget) {
    throw MiningError("mining this database needs about " +
                      formatMegabytes(need) + ", more than the budget of " +
                      formatMegabytes(options_.memoryBudget));
  }
  long minCount = std::min<long>(summary.minCount, summary.customers + 1);
  // The calling thread, which feeds the sink and may lag behind the
  // workers, looks at the deadline too, after each batch.
  std::function<bool(long)> report;
  if (options_.progress ||
      options_.deadline != std::chrono::steady_clock::time_point::max()) {
    report = [this](long patterns) {
      return (!options_.progress || options_.progress(patterns)) &&
             std::chrono::steady_clock::now() < options_.deadline;
    };
  }
  if (options_.time.any() || gaps != nullptr) {
    internal::timedSearch(db, options_, minCount, threads, report, sink, gaps,
                          summary);
    return;
  }
  internal::WorkDatabase work = internal::buildWorkDatabase(db, minCount);
  u32 f = static_cast<u32>(work.itemCount());
  internal::PatternEmitter emitter(sink, summary, report);
  auto emit = [&emitter](std::vector<int>& chunk) { emitter.emit(chunk); };
  std::vector<Worker> workers;
  for (std::size_t k = 0; k < threads; ++k) {
    workers.emplace_back(work, minCount, options_.maxItems, options_.deadline);
  }
  std::vector<int> singles;
  workers[0].setOutput(&singles);
  for (u32 x = 0; x < f; ++x) {
    workers[0].startPattern(x);
    workers[0].emit(work.support[x], work.firstCustomer[x]);
  }
  emitter.emit(singles);
  if (options_.maxItems < 2 || f == 0) return;

  ProjectionStore roots;
  buildRoots(work, roots);
  for (Worker& w : workers) w.useRoots(&roots);
  std::vector<u32> all(f);
  for (u32 x = 0; x < f; ++x) all[x] = x;
  // Frequent extensions of each item, split into sequence and item set ones.
  RootCandidates candidates;
  for (u32 x = 0; x < f; ++x) {
    candidates.s.push_back(std::make_shared<std::vector<u32>>());
    candidates.i.push_back(std::make_shared<std::vector<u32>>());
  }
  std::vector<std::vector<Extension>> rootExtensions(f);
  internal::runOrderedTasks(
      f, workers,
      [&](Worker& w, std::size_t k) {
        u32 r = static_cast<u32>(k);
        w.startPattern(r);
        rootExtensions[r] =
            w.expand(roots.view(r), r, all.data(), f, all.data() + r + 1,
                     f - r - 1, Worker::kNo);
        for (const Extension& x : rootExtensions[r]) {
          (x.sameSet ? candidates.i : candidates.s)[r]->push_back(x.item);
        }
      },
      emit);
  if (options_.maxItems < 3) return;

  // One task per frequent two-item pattern, the most frequent first.
  std::vector<Pair> pairs;
  for (u32 r = 0; r < f; ++r) {
    for (const Extension& x : rootExtensions[r]) {
      pairs.push_back(Pair{r, x.item, x.support, x.sameSet});
    }
    rootExtensions[r] = std::vector<Extension>();
  }
  std::stable_sort(
      pairs.begin(), pairs.end(),
      [](const Pair& a, const Pair& b) { return a.support > b.support; });
  // The split nodes' projections may take about what the roots do (a
  // position and two words per customer entry, at most three words per
  // item occurrence).
  SearchPlan plan =
      planSearch(std::move(pairs), candidates, work.customerId.size(),
                 3 * work.items.size(), options_.maxItems, workers);
  internal::runOrderedTasks(
      plan.tasks.size(), workers,
      [&](Worker& w, std::size_t k) {
        const SearchPlan::Task& t = plan.tasks[k];
        switch (t.kind) {
          case SearchPlan::kPair:
            w.expandPair(plan.pairs[t.index], candidates);
            break;
          case SearchPlan::kNode:
            w.expandNode(plan.nodes[t.index]);
            break;
          case SearchPlan::kSplit:
            w.emitRecords(plan.records[t.index]);
            break;
        }
      },
      emit);
}

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
