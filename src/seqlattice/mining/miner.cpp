#include "seqlattice/mining/miner.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <exception>
#include <functional>
#include <iterator>
#include <mutex>
#include <thread>
#include <utility>

#include "seqlattice/mining/internal/outputqueue.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miningerror.h"

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

// Task outputs pass to the sink in chunks of about this many ints (1 MB) ...
constexpr std::size_t kChunkInts = std::size_t{1} << 18;
// ... and workers running ahead of the sink hold at most about this many.
constexpr std::size_t kBufferedInts = std::size_t{4} << 20;

// The database restricted to frequent items, renumbered 0 .. F-1 in
// ascending order of their values (so ascending codes are ascending items),
// without empty transactions and without customers left empty.
struct WorkDatabase {
  std::vector<u32> items;
  std::vector<u32> transactionStart{0};
  std::vector<u32> customerStart{0};
  std::vector<u32> customerId;  // original customer index
  std::vector<int> itemValue;   // code -> item
  std::vector<u32> support;     // per code
  std::vector<u32> firstCustomer;
  std::size_t longestCustomer = 0;  // most items of one customer
  bool multiItemSets = false;       // some transaction has two items
  // Per customer its distinct items by last occurrence, latest first: the
  // items after transaction f are the prefix with lastTransaction > f.
  std::vector<u32> lastStart{0};
  std::vector<u32> lastTransaction, lastItem;

  std::size_t itemCount() const { return itemValue.size(); }
};

void buildLastOccurrences(WorkDatabase& work) {
  std::vector<u32> seen(work.itemCount(), UINT32_MAX);
  for (u32 c = 0; c + 1 < work.customerStart.size(); ++c) {
    for (u32 t = work.customerStart[c + 1]; t-- > work.customerStart[c];) {
      u32 begin = work.transactionStart[t], end = work.transactionStart[t + 1];
      if (end - begin > 1) work.multiItemSets = true;
      for (u32 k = begin; k < end; ++k) {
        u32 x = work.items[k];
        if (seen[x] == c) continue;
        seen[x] = c;
        work.lastTransaction.push_back(t);
        work.lastItem.push_back(x);
      }
    }
    work.lastStart.push_back(static_cast<u32>(work.lastItem.size()));
  }
}

WorkDatabase buildWorkDatabase(const SequenceDatabase& db, long minCount) {
  const std::vector<int>& raw = db.items();
  std::vector<int> values(raw);
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  std::vector<u32> code(raw.size());
  for (std::size_t k = 0; k < raw.size(); ++k) {
    code[k] = static_cast<u32>(
        std::lower_bound(values.begin(), values.end(), raw[k]) -
        values.begin());
  }
  std::vector<u32> support(values.size(), 0);
  std::vector<u32> first(values.size(), 0);
  std::vector<u32> seen(values.size(), UINT32_MAX);
  for (std::size_t c = 0; c < db.customerCount(); ++c) {
    std::size_t from = db.itemStarts()[db.firstTransaction(c)];
    std::size_t to = db.itemStarts()[db.endTransaction(c)];
    for (std::size_t k = from; k < to; ++k) {
      u32 v = code[k];
      if (seen[v] == c) continue;
      seen[v] = static_cast<u32>(c);
      if (support[v]++ == 0) first[v] = static_cast<u32>(c);
    }
  }
  WorkDatabase work;
  std::vector<u32> dense(values.size(), UINT32_MAX);
  for (std::size_t v = 0; v < values.size(); ++v) {
    if (support[v] < static_cast<u32>(minCount)) continue;
    dense[v] = static_cast<u32>(work.itemValue.size());
    work.itemValue.push_back(values[v]);
    work.support.push_back(support[v]);
    work.firstCustomer.push_back(first[v]);
  }
  for (std::size_t c = 0; c < db.customerCount(); ++c) {
    std::size_t customerBegin = work.items.size();
    for (u32 t = db.firstTransaction(c); t < db.endTransaction(c); ++t) {
      std::size_t before = work.items.size();
      for (u32 k = db.itemStarts()[t]; k < db.itemStarts()[t + 1]; ++k) {
        if (dense[code[k]] != UINT32_MAX) work.items.push_back(dense[code[k]]);
      }
      if (work.items.size() > before) {
        work.transactionStart.push_back(static_cast<u32>(work.items.size()));
      }
    }
    if (work.items.size() == customerBegin) continue;
    work.longestCustomer =
        std::max(work.longestCustomer, work.items.size() - customerBegin);
    work.customerStart.push_back(
        static_cast<u32>(work.transactionStart.size() - 1));
    work.customerId.push_back(static_cast<u32>(c));
  }
  for (u32& f : work.firstCustomer) {
    f = static_cast<u32>(
        std::lower_bound(work.customerId.begin(), work.customerId.end(), f) -
        work.customerId.begin());
  }
  buildLastOccurrences(work);
  return work;
}

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
    cust_.resize(entries);
    start_.resize(entries + sizes.size());
    pos_.resize(positions);
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
  struct Slot {
    std::size_t entryOffset = 0, startOffset = 0, posOffset = 0;
    u32 filled = 0, positions = 0, lastCustomer = UINT32_MAX;
  };
  std::vector<Slot> slots_;
  std::vector<u32> cust_, start_, pos_;
};

// The one-item patterns' projections: every occurrence of every item.
void buildRoots(const WorkDatabase& db, ProjectionStore& roots) {
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

// A frequent extension found at a node.
struct Extension {
  u32 item;
  bool sameSet;  // item set extension (joins the last set)
  u32 support;
  u32 occurrences;    // transactions of its projection
  u32 firstCustomer;  // work index
};

// One worker's scratch state: per-item counters (indexed by code), one store
// per pattern size for the children of the node being expanded, and the
// pattern on the current search path.
class Worker {
 public:
  Worker(const WorkDatabase& db, long minCount, int maxItems)
      : db_(db), minCount_(static_cast<u32>(minCount)), maxItems_(maxItems) {
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
  }

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
  void push(u32 item, bool sameSet) {
    pattern_.push_back(item);
    newSet_.push_back(!sameSet);
  }
  void pop() {
    pattern_.pop_back();
    newSet_.pop_back();
  }

  // Counts the extensions of the current pattern (whose projection is proj
  // and whose last item is last) among the candidates, reports the frequent
  // ones and, when `descend`, expands them in turn. Returns the frequent
  // extensions (valid until the next call at this depth).
  const std::vector<Extension>& expand(const Projection& proj, u32 last,
                                       const u32* sCand, std::size_t nS,
                                       const u32* iCand, std::size_t nI,
                                       bool descend) {
    if (!db_.multiItemSets) nI = 0;
    std::size_t depth = pattern_.size();
    Level& level = levels_[depth];
    level.extensions.clear();
    level.sFrequent.clear();
    level.iFrequent.clear();
    if (static_cast<int>(depth) >= maxItems_ || (nS == 0 && nI == 0)) {
      return level.extensions;
    }
    count(proj, last, sCand, nS, iCand, nI);
    collect(sCand, nS, s_, false, level.sFrequent, level);
    findFirstCustomers(proj, level);
    collect(iCand, nI, i_, true, level.iFrequent, level);
    for (const Extension& x : level.extensions) {
      push(x.item, x.sameSet);
      emit(x.support, x.firstCustomer);
      pop();
    }
    if (level.extensions.empty() || !descend ||
        static_cast<int>(depth) + 1 >= maxItems_) {
      return level.extensions;
    }
    build(proj, last, level);
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
             iSource.data() + after, iSource.size() - after, true);
      pop();
    }
    return level.extensions;
  }

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
    if (full_ && out.size() >= kChunkInts) full_();
  }

  // Scratch for a task's own projection, built by joining two roots.
  std::vector<u32> taskCust, taskStart, taskPos;

 private:
  struct Counters {
    std::vector<u32> flag;  // 0 or 1, added without a branch
    std::vector<u32> count, first, occurrences, child;
    std::vector<std::uint64_t> stamp;
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
  };

  // Sequence extensions: each distinct item after the first transaction
  // counts once per customer, read from the last-occurrence list. Item set
  // extensions: items above `last` in the transactions of the projection.
  void count(const Projection& proj, u32 last, const u32* sCand, std::size_t nS,
             const u32* iCand, std::size_t nI) {
    for (std::size_t k = 0; k < nS; ++k) s_.flag[sCand[k]] = 1;
    for (std::size_t k = 0; k < nI; ++k) i_.flag[iCand[k]] = 1;
    const u32* items = db_.items.data();
    const u32* ts = db_.transactionStart.data();
    const u32* ls = db_.lastStart.data();
    const u32* lt = db_.lastTransaction.data();
    const u32* li = db_.lastItem.data();
    for (u32 e = 0; e < proj.n; ++e) {
      u32 c = proj.cust[e];
      const u32* p = proj.pos + proj.start[e];
      const u32* pEnd = proj.pos + proj.start[e + 1];
      if (nS != 0) {
        // Locals, so that the stores into the counts need no reloads.
        u32* counts = s_.count.data();
        const u32* flags = s_.flag.data();
        const u32 f = *p;
        for (u32 k = ls[c], end = ls[c + 1]; k < end && lt[k] > f; ++k) {
          counts[li[k]] += flags[li[k]];
        }
      }
      if (nI != 0) {
        ++now_;
        for (; p < pEnd; ++p) {
          const u32* b = items + ts[*p + 1];
          for (const u32* a = itemsAbove(items + ts[*p], b, last); a < b; ++a) {
            if (i_.flag[*a]) i_.hit(*a, c, now_);
          }
        }
      }
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
          proj, [&level](u32 child, u32, u32) { ++level.sizes[child].second; });
    }
    level.store.layout(level.sizes);
    if (anyS && allPositions) {
      forEachSequenceChild(proj, [&level](u32 child, u32 c, u32 t) {
        level.store.append(child, c, t);
      });
    } else if (anyS) {
      appendFirstOccurrences(proj, level);
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

  // One item per transaction: each customer's first occurrence of each child
  // item after its first transaction, stopping when all children are found.
  void appendFirstOccurrences(const Projection& proj, Level& level) {
    const u32* items = db_.items.data();
    const u32* ts = db_.transactionStart.data();
    const u32* cs = db_.customerStart.data();
    std::size_t children = level.sFrequent.size();
    for (u32 e = 0; e < proj.n; ++e) {
      u32 c = proj.cust[e];
      std::size_t found = 0;
      for (u32 t = proj.pos[proj.start[e]] + 1, end = cs[c + 1]; t < end; ++t) {
        u32 child = s_.child[items[ts[t]]];
        if (child == UINT32_MAX || level.store.lastCustomer(child) == c) {
          continue;
        }
        level.store.append(child, c, t);
        if (++found == children) break;
      }
    }
  }

  // Calls visit(child, customer, transaction) for every occurrence, after
  // each customer's first transaction, of an item that is a sequence child.
  template <class Visit>
  void forEachSequenceChild(const Projection& proj, const Visit& visit) const {
    const u32* items = db_.items.data();
    const u32* ts = db_.transactionStart.data();
    const u32* cs = db_.customerStart.data();
    for (u32 e = 0; e < proj.n; ++e) {
      u32 c = proj.cust[e];
      for (u32 t = proj.pos[proj.start[e]] + 1, end = cs[c + 1]; t < end; ++t) {
        for (u32 k = ts[t]; k < ts[t + 1]; ++k) {
          u32 child = s_.child[items[k]];
          if (child != UINT32_MAX) visit(child, c, t);
        }
      }
    }
  }

  const WorkDatabase& db_;
  u32 minCount_;
  int maxItems_;
  Counters s_, i_;
  std::uint64_t now_ = 0;
  std::vector<Level> levels_;
  std::vector<u32> pattern_;
  std::vector<char> newSet_;
  std::vector<int>* out_ = nullptr;
  std::function<void()> full_;
};

// Joins two one-item projections into the projection of a two-item pattern:
// root's item followed by x in a later set, or both in one set.
void joinRoots(const Projection& root, const Projection& x, bool sameSet,
               std::vector<u32>& cust, std::vector<u32>& start,
               std::vector<u32>& pos) {
  cust.clear();
  start.clear();
  pos.clear();
  u32 a = 0, b = 0;
  while (a < root.n && b < x.n) {
    if (root.cust[a] < x.cust[b]) {
      a = gallop(root.cust, a, root.n, x.cust[b]);
      continue;
    }
    if (root.cust[a] > x.cust[b]) {
      b = gallop(x.cust, b, x.n, root.cust[a]);
      continue;
    }
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
    ++a;
    ++b;
  }
  start.push_back(static_cast<u32>(pos.size()));
}

// Hands buffered patterns to the sink and keeps the summary.
class Emitter {
 public:
  Emitter(PatternSink& sink, MiningSummary& summary)
      : sink_(sink), summary_(summary) {}

  void emit(std::vector<int>& buffer) {
    std::size_t at = 0;
    while (at < buffer.size()) {
      long count = buffer[at];
      long first = buffer[at + 1];
      int nSets = buffer[at + 2];
      at += 3;
      sets_.clear();
      std::size_t items = 0;
      for (int k = 0; k < nSets; ++k) {
        sets_.push_back(&buffer[at]);
        items += static_cast<std::size_t>(buffer[at]);
        at += static_cast<std::size_t>(buffer[at]) + 1;
      }
      if (summary_.patternsPerSize.size() <= items) {
        summary_.patternsPerSize.resize(items + 1, 0);
      }
      ++summary_.patternsPerSize[items];
      ++summary_.patterns;
      summary_.longestPattern =
          std::max(summary_.longestPattern, static_cast<int>(items));
      sink_.addPattern(sets_.data(), nSets, count, first);
    }
  }

 private:
  PatternSink& sink_;
  MiningSummary& summary_;
  std::vector<int*> sets_;
};

// Runs tasks 0 .. n-1 on one thread per worker, handing their outputs to the
// emitter in task order from the calling thread, chunk by chunk as they fill
// (see OutputQueue). The first exception of a task or of the emitter stops
// the remaining tasks and is rethrown.
template <class Task>
void runTasks(std::size_t n, std::vector<Worker>& workers, Emitter& emitter,
              const Task& task) {
  internal::OutputQueue queue(n, kBufferedInts);
  std::atomic<std::size_t> next{0};
  std::mutex mutex;
  std::exception_ptr error;
  // Tasks are claimed in blocks that shrink as the list runs out: the big
  // tasks come first and go one by one, the many small ones at the end
  // share a claim.
  std::size_t share = workers.size() * 8;
  auto work = [&](Worker& worker) {
    std::vector<int> out;
    out.reserve(kChunkInts + 64);
    try {
      for (;;) {
        std::size_t first = next.load();
        std::size_t block = 0;
        do {
          if (first >= n) return;
          block = std::min<std::size_t>(
              std::max<std::size_t>((n - first) / share, 1), 256);
        } while (!next.compare_exchange_weak(first, first + block));
        for (std::size_t k = first; k < first + block; ++k) {
          worker.setOutput(&out,
                           [&queue, &out, k] { queue.put(k, out, false); });
          task(worker, k);
          queue.put(k, out, true);
        }
      }
    } catch (const internal::OutputQueue::Stopped&) {
      // Another thread failed; its error is reported.
    } catch (...) {
      {
        std::lock_guard<std::mutex> lock(mutex);
        if (!error) error = std::current_exception();
      }
      queue.stop();
    }
  };
  std::vector<std::thread> threads;
  for (Worker& worker : workers) threads.emplace_back(work, std::ref(worker));
  auto joinAll = [&]() {
    for (std::thread& t : threads) t.join();
  };
  try {
    queue.drain([&emitter](std::vector<int>& chunk) { emitter.emit(chunk); });
  } catch (...) {
    queue.stop();
    joinAll();
    throw;
  }
  joinAll();
  if (error) std::rethrow_exception(error);
}

// Rough upper bound of the search's own memory: the renumbered database, the
// one-item projections (a position per occurrence and two words per
// customer), and per worker up to two such sets for the open search path.
std::size_t estimateSearchBytes(const SequenceDatabase& db,
                                std::size_t workers) {
  std::size_t n = db.itemOccurrenceCount();
  std::size_t t = db.transactionCount();
  std::size_t c = db.customerCount();
  std::size_t perItem = sizeof(u32);
  std::size_t database = 2 * n * perItem + (t + 3 * c) * perItem;
  std::size_t roots = 3 * n * perItem;
  return 2 * database + roots + workers * 2 * roots;
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
}

MiningSummary SequenceMiner::mine(const SequenceDatabase& db,
                                  PatternSink& sink) const {
  MiningSummary summary;
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
  WorkDatabase work = buildWorkDatabase(db, minCount);
  u32 f = static_cast<u32>(work.itemCount());
  Emitter emitter(sink, summary);
  std::vector<Worker> workers;
  for (std::size_t k = 0; k < threads; ++k) {
    workers.emplace_back(work, minCount, options_.maxItems);
  }
  std::vector<int> singles;
  workers[0].setOutput(&singles);
  for (u32 x = 0; x < f; ++x) {
    workers[0].startPattern(x);
    workers[0].emit(work.support[x], work.firstCustomer[x]);
  }
  emitter.emit(singles);
  if (options_.maxItems < 2 || f == 0) return summary;

  ProjectionStore roots;
  buildRoots(work, roots);
  std::vector<u32> all(f);
  for (u32 x = 0; x < f; ++x) all[x] = x;
  // Frequent extensions of each item, split into sequence and item set ones.
  std::vector<std::vector<u32>> rootS(f), rootI(f);
  std::vector<std::vector<Extension>> rootExtensions(f);
  runTasks(f, workers, emitter, [&](Worker& w, std::size_t k) {
    u32 r = static_cast<u32>(k);
    w.startPattern(r);
    rootExtensions[r] = w.expand(roots.view(r), r, all.data(), f,
                                 all.data() + r + 1, f - r - 1, false);
    for (const Extension& x : rootExtensions[r]) {
      (x.sameSet ? rootI[r] : rootS[r]).push_back(x.item);
    }
  });
  if (options_.maxItems < 3) return summary;

  // One task per frequent two-item pattern, the most frequent first.
  struct Task {
    u32 root, item, support;
    bool sameSet;
  };
  std::vector<Task> tasks;
  for (u32 r = 0; r < f; ++r) {
    for (const Extension& x : rootExtensions[r]) {
      tasks.push_back(Task{r, x.item, x.support, x.sameSet});
    }
  }
  std::stable_sort(
      tasks.begin(), tasks.end(),
      [](const Task& a, const Task& b) { return a.support > b.support; });
  runTasks(tasks.size(), workers, emitter, [&](Worker& w, std::size_t k) {
    const Task& t = tasks[k];
    joinRoots(roots.view(t.root), roots.view(t.item), t.sameSet, w.taskCust,
              w.taskStart, w.taskPos);
    Projection proj{w.taskCust.data(), w.taskStart.data(), w.taskPos.data(),
                    static_cast<u32>(w.taskCust.size())};
    const std::vector<u32>& s = rootS[t.root];
    const std::vector<u32>& i = t.sameSet ? rootI[t.root] : s;
    std::size_t after = static_cast<std::size_t>(
        std::upper_bound(i.begin(), i.end(), t.item) - i.begin());
    w.startPattern(t.root);
    w.push(t.item, t.sameSet);
    w.expand(proj, t.item, s.data(), s.size(), i.data() + after,
             i.size() - after, true);
  });
  return summary;
}

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
