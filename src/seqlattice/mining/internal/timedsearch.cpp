#include "seqlattice/mining/internal/timedsearch.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "seqlattice/mining/internal/orderedtasks.h"
#include "seqlattice/mining/internal/patternemitter.h"
#include "seqlattice/mining/internal/patternpath.h"
#include "seqlattice/mining/internal/timeddatabase.h"
#include "seqlattice/mining/internal/windowsearch.h"
#include "seqlattice/mining/miningerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

namespace {

using u32 = std::uint32_t;
constexpr u32 kNoSet = UINT32_MAX;
// Items read in a scan that cost about as much as one customer's lookup in
// a join (measured on public databases).
constexpr std::size_t kJoinCost = 3;

// An occurrence as the constraints see it (transaction indexes): the first
// set starts at `first`, the next-to-last set spans [lPrev, uPrev] (kNoSet
// in a one-set pattern), the last set spans [l, u].
struct State {
  u32 first, lPrev, uPrev, l, u;
};

// The occurrences of a pattern: entry e is customer cust[e] with the states
// states[start[e] .. start[e + 1]), ordered by (l, u).
struct Node {
  std::vector<u32> cust, start{0};
  std::vector<State> states;
  void clear() {
    cust.clear();
    start.assign(1, 0);
    states.clear();
  }
  u32 size() const { return static_cast<u32>(cust.size()); }
};

// The first of the ascending [a, b) at least x, galloping from a: the
// customers sought come in ascending order, mostly a few steps apart.
const u32* firstAtLeast(const u32* a, const u32* b, u32 x) {
  std::size_t step = 1;
  while (step < static_cast<std::size_t>(b - a) && a[step - 1] < x) {
    a += step;
    step *= 2;
  }
  return std::lower_bound(a, std::min(a + step, b), x);
}

// The first item above x in the ascending items [a, b): transactions are
// mostly short, where a plain walk beats a binary search.
const u32* firstAbove(const u32* a, const u32* b, u32 x) {
  if (b - a > 16) return std::upper_bound(a, b, x);
  while (a < b && *a <= x) ++a;
  return a;
}

// Sorts [begin, end) by less; the lists sorted here mostly come in order
// already (the states are kept in order of their last set), where one
// reading is all it takes.
template <class It, class Less>
void sortIfNeeded(It begin, It end, const Less& less) {
  if (!std::is_sorted(begin, end, less)) std::sort(begin, end, less);
}

// A range of transaction indexes [begin, end).
struct Range {
  u32 begin, end;
};

// The least and the greatest of ascending candidate items: a transaction's
// items, ascending too, are read only between them (none when low > high).
struct Candidates {
  u32 low, high;
};

class Worker {
 public:
  Worker(const TimedDatabase& db, const MinerOptions& options, long minCount,
         bool gaps, const std::vector<std::vector<u32>>* followers)
      : db_(db),
        time_(options.time),
        minCount_(static_cast<u32>(minCount)),
        maxItems_(options.maxItems),
        path_(db.itemValue, options.deadline),
        gaps_(gaps),
        followers_(followers),
        openEnded_(options.time.maxGap == TimeConstraints::kNone &&
                   options.time.maxSpan == TimeConstraints::kNone),
        readsFirst_(options.time.maxSpan != TimeConstraints::kNone),
        readsPrevStart_(gaps || options.time.maxGap != TimeConstraints::kNone) {
    const u32 f = db.itemCount();
    for (Counters* c : {&s_, &i_}) {
      c->flag.assign(f, 0);
      c->count.assign(f, 0);
      c->stamp.assign(f, 0);
    }
    levels_.resize(static_cast<std::size_t>(maxItems_) + 2);
    slot_.assign(f, kNoSet);
    fresh_.resize(f);
    all_.resize(f);
    for (u32 x = 0; x < f; ++x) all_[x] = x;
  }

  void setOutput(std::vector<int>* out, std::function<void()> full = {}) {
    path_.setOutput(out, std::move(full));
  }

  // The frequent sequence extensions of the one-item pattern x, ascending.
  std::vector<u32> followersOf(u32 x) {
    buildRoot(x, root_);
    path_.start(x);
    Level& level = levels_[1];
    level.sFrequent.clear();
    count(root_, 1, all_.data(), db_.itemCount(), nullptr, 0, level);
    return level.sFrequent;
  }

  // Emits x and every frequent pattern that begins with it.
  void mineRoot(u32 x) {
    buildRoot(x, root_);
    path_.start(x);
    emit(root_, 1);
    const u32 f = db_.itemCount();
    expand(root_, 1, all_.data(), f, all_.data() + x + 1, f - x - 1);
  }

 private:
  // Per item whether it is a candidate and how many customers gave it; the
  // counts are read back through the candidates, so counting stores
  // nothing else.
  struct Counters {
    std::vector<u32> flag, count;
    std::vector<std::uint64_t> stamp;
    void hit(u32 x, std::uint64_t now) {
      if (stamp[x] == now) return;
      stamp[x] = now;
      ++count[x];
    }
  };
  struct Level {
    // The frequent extensions of the node expanded at this depth and their
    // nodes: children[k] is frequent[k]'s.
    std::vector<u32> sFrequent, iFrequent;
    std::vector<Node> sChildren, iChildren;
    // Per state of the node expanded at this depth, where a new set and
    // another item of the last set may come from: worked out once for the
    // counting and every child. ready lists the states by where their new
    // set may begin, per customer in the node's order (open-ended search).
    std::vector<Range> sRange, iRange;
    std::vector<u32> ready;
    // Per entry e of the node, joining[joiningStart[e] ..
    // joiningStart[e + 1]): where another item of its last set may come
    // from, merged.
    std::vector<Range> joining;
    std::vector<u32> joiningStart;
  };

  double t(u32 transaction) const { return db_.time[transaction]; }

  void buildRoot(u32 x, Node& root) const {
    root.clear();
    for (u32 tr : db_.occurrences[x]) {
      const u32 c = db_.customerOf[tr];
      if (root.cust.empty() || root.cust.back() != c) {
        if (!root.cust.empty()) {
          root.start.push_back(static_cast<u32>(root.states.size()));
        }
        root.cust.push_back(c);
      }
      root.states.push_back(State{tr, kNoSet, kNoSet, tr, tr});
    }
    if (!root.cust.empty()) {
      root.start.push_back(static_cast<u32>(root.states.size()));
    }
  }

  // Where a new item set may be matched after state s: transactions after
  // its last set by at least the minimum gap, within the maximum gap of its
  // start and the maximum span of the pattern's start.
  Range sequenceRange(u32 c, const State& s) const {
    const u32 end = db_.customerStart[c + 1];
    u32 lo = s.u + 1;
    if (time_.minGap > 0)
      lo = partition(lo, end,
                     [&](u32 k) { return t(k) - t(s.u) < time_.minGap; });
    u32 hi = end;
    if (time_.maxGap != TimeConstraints::kNone ||
        time_.maxSpan != TimeConstraints::kNone) {
      hi = partition(lo, end, [&](u32 k) {
        return t(k) - t(s.l) <= time_.maxGap &&
               t(k) - t(s.first) <= time_.maxSpan;
      });
    }
    return Range{lo, hi};
  }

  // Where another item of the last set may come from (window > 0): within
  // the window of the set's transactions, after the previous set by the
  // minimum gap, within the maximum gap of its start and the span.
  Range itemRange(u32 c, const State& s, int sets) const {
    const u32 begin = db_.customerStart[c];
    const u32 end = db_.customerStart[c + 1];
    const double w =
        sets == 1 ? std::min(time_.window, time_.maxSpan) : time_.window;
    // Walked outwards from the set: the range's transactions are all read
    // afterwards, so these steps cost no more than that reading.
    u32 lo = s.l;
    while (lo > begin) {
      const u32 k = lo - 1;
      if ((s.uPrev != kNoSet &&
           (k <= s.uPrev || t(k) - t(s.uPrev) < time_.minGap)) ||
          t(s.u) - t(k) > w) {
        break;
      }
      lo = k;
    }
    u32 hi = s.u + 1;
    while (hi < end && t(hi) - t(s.l) <= w &&
           (sets == 1 || (t(hi) - t(s.lPrev) <= time_.maxGap &&
                          t(hi) - t(s.first) <= time_.maxSpan))) {
      ++hi;
    }
    return Range{lo, hi};
  }

  // The first k of [from, to) where holds(k) is false; holds is true on a
  // prefix of the range.
  template <class Holds>
  static u32 partition(u32 from, u32 to, const Holds& holds) {
    while (from < to) {
      u32 mid = from + (to - from) / 2;
      if (holds(mid)) {
        from = mid + 1;
      } else {
        to = mid;
      }
    }
    return from;
  }

  // The ranges of all states of entry e, merged.
  void mergedRanges(const Node& node, u32 e, const std::vector<Range>& of) {
    ranges_.clear();
    for (u32 k = node.start[e]; k < node.start[e + 1]; ++k) {
      if (of[k].begin < of[k].end) ranges_.push_back(of[k]);
    }
    sortIfNeeded(
        ranges_.begin(), ranges_.end(),
        [](const Range& a, const Range& b) { return a.begin < b.begin; });
    std::size_t n = 0;
    for (const Range& r : ranges_) {
      if (n > 0 && r.begin <= ranges_[n - 1].end) {
        ranges_[n - 1].end = std::max(ranges_[n - 1].end, r.end);
      } else {
        ranges_[n++] = r;
      }
    }
    ranges_.resize(n);
  }

  // Fills level's ranges for node's states (`sets` item sets): where a new
  // set may come from when `sequence`, where another item of the last set
  // may come from when `item`.
  void prepareRanges(const Node& node, int sets, bool sequence, bool item,
                     Level& level) {
    const std::size_t n = node.states.size();
    level.sRange.resize(sequence ? n : 0);
    level.iRange.resize(item ? n : 0);
    level.ready.resize(sequence && openEnded_ ? n : 0);
    for (u32 e = 0; e < node.size(); ++e) {
      const u32 c = node.cust[e];
      for (u32 k = node.start[e]; k < node.start[e + 1]; ++k) {
        const State& s = node.states[k];
        if (sequence) level.sRange[k] = sequenceRange(c, s);
        if (item) level.iRange[k] = itemRange(c, s, sets);
        if (sequence && openEnded_) level.ready[k] = k;
      }
      if (sequence && openEnded_ && node.start[e + 1] - node.start[e] > 1) {
        const std::vector<Range>& r = level.sRange;
        sortIfNeeded(level.ready.begin() + node.start[e],
                     level.ready.begin() + node.start[e + 1],
                     [&r](u32 a, u32 b) { return r[a].begin < r[b].begin; });
      }
    }
  }

  // Finds, counting per customer once, the frequent candidates that extend
  // the node's pattern (`sets` item sets) as a new set (sCand) and into its
  // last set (iCand), both ascending, into level's sFrequent and iFrequent;
  // leaves the ranges in level.
  void count(const Node& node, int sets, const u32* sCand, std::size_t nS,
             const u32* iCand, std::size_t nI, Level& level) {
    prepareRanges(node, sets, nS > 0, nI > 0 && time_.window > 0, level);
    // Few candidates against many items to read: each candidate is looked
    // up in the customers holding it instead.
    if (nS > 0 && openEnded_ &&
        itemsListed(node) > kJoinCost * nS * node.size()) {
      for (std::size_t k = 0; k < nS; ++k) {
        const bool frequent = holdsFrequently(
            node, sCand[k], [&](u32 e, const u32*, const u32* tEnd) {
              return tEnd[-1] >= level.sRange[level.ready[node.start[e]]].begin;
            });
        if (frequent) level.sFrequent.push_back(sCand[k]);
      }
      nS = 0;
    }
    if (nI > 0 &&
        mergeJoiningRanges(node, level) > kJoinCost * nI * node.size()) {
      for (std::size_t k = 0; k < nI; ++k) {
        const bool frequent = holdsFrequently(
            node, iCand[k], [&](u32 e, const u32* t, const u32* tEnd) {
              return intersects(
                  t, tEnd, level.joining.data() + level.joiningStart[e],
                  level.joining.data() + level.joiningStart[e + 1]);
            });
        if (frequent) level.iFrequent.push_back(iCand[k]);
      }
      nI = 0;
    }
    for (std::size_t k = 0; k < nS; ++k) s_.flag[sCand[k]] = 1;
    for (std::size_t k = 0; k < nI; ++k) i_.flag[iCand[k]] = 1;
    const u32* items = db_.items.data();
    const u32* ts = db_.transactionStart.data();
    const u32* lt = db_.lastTransaction.data();
    const u32* li = db_.lastItem.data();
    // Locals, so that the stores into the counts need no reloads.
    u32* counts = s_.count.data();
    const u32* flags = s_.flag.data();
    const Candidates joining =
        nI > 0 ? Candidates{iCand[0], iCand[nI - 1]} : Candidates{1, 0};
    for (u32 e = 0; e < node.size(); ++e) {
      const u32 c = node.cust[e];
      ++now_;
      if (nS > 0 && openEnded_) {
        // Every range runs to the customer's end: the items from the
        // earliest start on are a prefix of the last-occurrence list, which
        // holds each of the customer's items once.
        const u32 from = level.sRange[level.ready[node.start[e]]].begin;
        for (u32 k = db_.lastStart[c], end = db_.lastStart[c + 1];
             k < end && lt[k] >= from; ++k) {
          counts[li[k]] += flags[li[k]];
        }
      } else if (nS > 0) {
        mergedRanges(node, e, level.sRange);
        for (const Range& r : ranges_) {
          for (u32 k = ts[r.begin]; k < ts[r.end]; ++k) {
            if (flags[items[k]]) s_.hit(items[k], now_);
          }
        }
      }
      if (nI == 0) continue;
      for (u32 k = level.joiningStart[e]; k < level.joiningStart[e + 1]; ++k) {
        scanJoining(level.joining[k].begin, level.joining[k].end, joining);
      }
    }
    for (std::size_t k = 0; k < nS; ++k) s_.flag[sCand[k]] = 0;
    for (std::size_t k = 0; k < nI; ++k) i_.flag[iCand[k]] = 0;
    collect(s_, sCand, nS, level.sFrequent);
    collect(i_, iCand, nI, level.iFrequent);
  }

  // Fills level.joining with, per entry of node, the ranges where another
  // item of the last set may come from, merged and ascending (the set's own
  // transactions with window 0); returns how many items they hold.
  std::size_t mergeJoiningRanges(const Node& node, Level& level) {
    const u32* ts = db_.transactionStart.data();
    level.joining.clear();
    level.joiningStart.assign(1, 0);
    std::size_t items = 0;
    for (u32 e = 0; e < node.size(); ++e) {
      if (time_.window == 0) {
        // The states come in order of their transaction.
        for (u32 k = node.start[e]; k < node.start[e + 1]; ++k) {
          const u32 l = node.states[k].l;
          if (level.joining.size() == level.joiningStart.back() ||
              level.joining.back().begin != l) {
            level.joining.push_back(Range{l, l + 1});
          }
        }
      } else {
        mergedRanges(node, e, level.iRange);
        level.joining.insert(level.joining.end(), ranges_.begin(),
                             ranges_.end());
      }
      for (u32 k = level.joiningStart.back(); k < level.joining.size(); ++k) {
        items += ts[level.joining[k].end] - ts[level.joining[k].begin];
      }
      level.joiningStart.push_back(static_cast<u32>(level.joining.size()));
    }
    return items;
  }

  // How many distinct items the lists of node's customers hold.
  std::size_t itemsListed(const Node& node) const {
    std::size_t listed = 0;
    for (u32 e = 0; e < node.size(); ++e) {
      listed += db_.lastStart[node.cust[e] + 1] - db_.lastStart[node.cust[e]];
    }
    return listed;
  }

  // Whether some of the ascending transactions [t, tEnd) lie in one of the
  // ascending ranges [r, rEnd).
  static bool intersects(const u32* t, const u32* tEnd, const Range* r,
                         const Range* rEnd) {
    while (t < tEnd && r < rEnd) {
      if (*t < r->begin) {
        ++t;
      } else if (*t >= r->end) {
        ++r;
      } else {
        return true;
      }
    }
    return false;
  }

  // Whether at least minCount entries e of node hold item x where
  // extends(e, t, tEnd) says so, [t, tEnd) being the customer's
  // transactions holding x; walks along the customers holding x and stops
  // as soon as the answer is known.
  template <class Extends>
  bool holdsFrequently(const Node& node, u32 x, const Extends& extends) const {
    const u32* holder = db_.holders[x].data();
    const u32* holderEnd = holder + db_.holders[x].size();
    const u32* start = db_.holderStart[x].data();
    const u32* occurrences = db_.occurrences[x].data();
    u32 support = 0;
    for (u32 e = 0; e < node.size() && support < minCount_; ++e) {
      const std::size_t left =
          std::min<std::size_t>(node.size() - e, holderEnd - holder);
      if (support + left < minCount_) return false;
      holder = firstAtLeast(holder, holderEnd, node.cust[e]);
      if (holder == holderEnd || *holder != node.cust[e]) continue;
      const u32 h = static_cast<u32>(holder - db_.holders[x].data());
      if (extends(e, occurrences + start[h], occurrences + start[h + 1])) {
        ++support;
      }
      ++holder;
    }
    return support >= minCount_;
  }

  // Counts the candidates joining the last set in transactions [from, to).
  void scanJoining(u32 from, u32 to, Candidates joining) {
    for (u32 tr = from; tr < to; ++tr) {
      forEachJoining(tr, joining, [this](u32 x) {
        if (i_.flag[x]) i_.hit(x, now_);
      });
    }
  }

  // Calls each(x) for the items x of transaction tr within joining.
  template <class Each>
  void forEachJoining(u32 tr, Candidates joining, const Each& each) const {
    const u32* items = db_.items.data();
    const u32* ts = db_.transactionStart.data();
    const u32* b = items + ts[tr + 1];
    for (const u32* a = firstAbove(items + ts[tr], b, joining.low - 1);
         a < b && *a <= joining.high; ++a) {
      each(*a);
    }
  }

  // The frequent candidates, ascending; resets their counts.
  void collect(Counters& counters, const u32* cand, std::size_t n,
               std::vector<u32>& frequent) {
    for (std::size_t k = 0; k < n; ++k) {
      if (counters.count[cand[k]] >= minCount_) frequent.push_back(cand[k]);
      counters.count[cand[k]] = 0;
    }
  }

  // Expands the node of the current pattern (depth items, `sets` sets):
  // counts, then builds, emits and expands each frequent extension in turn.
  // The candidates joining the last set (iCand) are above its last item.
  void expand(const Node& node, int sets, const u32* sCand, std::size_t nS,
              const u32* iCand, std::size_t nI) {
    const std::size_t depth = path_.size();
    if (static_cast<int>(depth) >= maxItems_) return;
    Level& level = levels_[depth];
    level.sFrequent.clear();
    level.iFrequent.clear();
    count(node, sets, sCand, nS, iCand, nI, level);
    buildItemChildren(node, sets, level);
    buildSequenceChildren(node, level);
    for (std::size_t k = 0; k < level.iFrequent.size(); ++k) {
      const u32 x = level.iFrequent[k];
      const Node& child = level.iChildren[k];
      path_.push(x, false);
      emit(child, sets);
      expand(child, sets, level.sFrequent.data(), level.sFrequent.size(),
             level.iFrequent.data() + k + 1, level.iFrequent.size() - k - 1);
      path_.pop();
    }
    for (std::size_t k = 0; k < level.sFrequent.size(); ++k) {
      const u32 x = level.sFrequent[k];
      const Node& child = level.sChildren[k];
      path_.push(x, true);
      emit(child, sets + 1);
      const std::vector<u32>& next =
          followers_ != nullptr ? (*followers_)[x] : level.sFrequent;
      expand(child, sets + 1, next.data(), next.size(),
             level.sFrequent.data() + k + 1, level.sFrequent.size() - k - 1);
      path_.pop();
    }
  }

  // Clears children[k] for frequent[k], and points each item of frequent at
  // its child's index.
  void startChildren(const std::vector<u32>& frequent,
                     std::vector<Node>& children) {
    if (children.size() < frequent.size()) children.resize(frequent.size());
    for (std::size_t k = 0; k < frequent.size(); ++k) {
      children[k].clear();
      slot_[frequent[k]] = static_cast<u32>(k);
    }
  }
  void endChildren(const std::vector<u32>& frequent) {
    for (u32 x : frequent) slot_[x] = kNoSet;
  }

  // Fills children[k] with the occurrences of the node's pattern extended
  // by frequent[k], in one pass over the node's customers: visit(e) offers
  // customer e's new states through offer(item, state); those of items not
  // in frequent are dropped, and of a customer's states of one child only
  // those no other beats are kept.
  template <class Visit>
  void buildChildren(const Node& node, const std::vector<u32>& frequent,
                     std::vector<Node>& children, const Visit& visit) {
    if (frequent.empty()) return;
    startChildren(frequent, children);
    for (u32 e = 0; e < node.size(); ++e) {
      visit(e);
      for (u32 k : touched_) append(node.cust[e], fresh_[k], children[k]);
      touched_.clear();
    }
    endChildren(frequent);
  }

  // Offers a new state of the child extending by item x (see buildChildren).
  void offer(u32 x, const State& s) {
    const u32 k = slot_[x];
    if (k == kNoSet) return;
    if (fresh_[k].empty()) touched_.push_back(k);
    fresh_[k].push_back(s);
  }

  void buildSequenceChildren(const Node& node, Level& level) {
    if (openEnded_) return buildOpenSequenceChildren(node, level);
    const u32* items = db_.items.data();
    const u32* ts = db_.transactionStart.data();
    buildChildren(node, level.sFrequent, level.sChildren, [&](u32 e) {
      for (u32 k = node.start[e]; k < node.start[e + 1]; ++k) {
        const State& s = node.states[k];
        const Range r = level.sRange[k];
        for (u32 tr = r.begin; tr < r.end; ++tr) {
          for (u32 i = ts[tr]; i < ts[tr + 1]; ++i) {
            offer(items[i], State{s.first, s.l, s.u, tr, tr});
          }
        }
      }
    });
  }

  // The same without a maximum gap or span, where a state's range runs to
  // the customer's end: one sweep over the customer's transactions, keeping
  // the states no other beats among those whose range has begun. Those
  // enter the front, so the new states of one transaction are reduced
  // already and go straight into the children, in order of their last set.
  void buildOpenSequenceChildren(const Node& node, Level& level) {
    if (level.sFrequent.empty()) return;
    const u32* items = db_.items.data();
    const u32* ts = db_.transactionStart.data();
    const std::vector<Range>& range = level.sRange;
    std::vector<Node>& children = level.sChildren;
    startChildren(level.sFrequent, children);
    for (u32 e = 0; e < node.size(); ++e) {
      const u32 c = node.cust[e];
      const u32* ready = level.ready.data() + node.start[e];
      const u32* readyEnd = level.ready.data() + node.start[e + 1];
      front_.clear();
      for (u32 tr = range[*ready].begin, end = db_.customerStart[c + 1];
           tr < end; ++tr) {
        for (; ready < readyEnd && range[*ready].begin <= tr; ++ready) {
          enterFront(node.states[*ready]);
        }
        entering_.clear();
        for (u32 i = ts[tr]; i < ts[tr + 1]; ++i) {
          const u32 k = slot_[items[i]];
          if (k == kNoSet) continue;
          if (entering_.empty()) enteringAt(tr);
          Node& child = children[k];
          if (child.cust.empty() || child.cust.back() != c) {
            child.cust.push_back(c);
            child.start.push_back(child.start.back());
          }
          child.states.insert(child.states.end(), entering_.begin(),
                              entering_.end());
          child.start.back() = static_cast<u32>(child.states.size());
        }
      }
    }
    endChildren(level.sFrequent);
  }

  // Fills entering_ with the states a new set matched to transaction tr
  // starts after the front's, of those no other beats.
  void enteringAt(u32 tr) {
    // Fields no limit reads are cleared, as append does.
    for (const State& p : front_) {
      entering_.push_back(State{readsFirst_ ? p.first : 0,
                                readsPrevStart_ ? p.l : 0, p.u, tr, tr});
    }
    if (entering_.size() < 2) return;
    // The front holds no two states one beats the other on what a new set
    // reads, so of two entering ones neither beats the other unless one's
    // previous end no longer limits it.
    std::size_t n = 0;
    for (std::size_t j = 0; j < entering_.size(); ++j) {
      bool beaten = false;
      for (std::size_t i = 0; i < entering_.size() && !beaten; ++i) {
        beaten = i != j && beatsAtSameEnds(entering_[i], entering_[j]) &&
                 (i < j || !beatsAtSameEnds(entering_[j], entering_[i]));
      }
      if (!beaten) entering_[n++] = entering_[j];
    }
    entering_.resize(n);
  }

  // Whether a state's previous set no longer limits where another item of
  // its last set may come from: the window of the last set's end reaches
  // back no further than the previous set's end. The last set only widens
  // to later ends, so it never will again, and states differing only in the
  // previous set's end then merge. (Under a minimum gap the previous end is
  // always taken to limit.)
  bool prevEndFree(const State& s) const {
    return s.uPrev != kNoSet && time_.window > 0 && time_.minGap == 0 &&
           t(s.u) - t(s.uPrev) > time_.window;
  }

  // Whether o, ending its last set where s does, leads to every extension
  // s leads to, as early and with gaps at least as short.
  bool beatsAtSameEnds(const State& o, const State& s) const {
    return o.lPrev >= s.lPrev && o.first >= s.first &&
           (o.uPrev <= s.uPrev || prevEndFree(o));
  }

  // Adds s to the states that may precede a new set unless one of them
  // beats it, dropping those it beats; with window 0 they merge into one.
  void enterFront(const State& s) {
    if (time_.window == 0 && !front_.empty()) {
      State& m = front_.front();
      m.first = std::max(m.first, s.first);
      m.l = m.u = std::max(m.l, s.l);
      return;
    }
    // A state's start becomes its children's previous start.
    auto beats = [this](const State& a, const State& b) {
      return (!readsPrevStart_ || a.l >= b.l) &&
             (!readsFirst_ || a.first >= b.first) && a.u <= b.u;
    };
    for (const State& o : front_) {
      if (beats(o, s)) return;
    }
    std::size_t n = 0;
    for (const State& o : front_) {
      if (!beats(s, o)) front_[n++] = o;
    }
    front_.resize(n);
    front_.push_back(s);
  }

  // The frequent items joining the last set: from the set's own
  // transaction with window 0, else from the transactions of its range.
  void buildItemChildren(const Node& node, int sets, Level& level) {
    if (level.iFrequent.empty()) return;
    const Candidates joining{level.iFrequent.front(), level.iFrequent.back()};
    buildChildren(node, level.iFrequent, level.iChildren, [&](u32 e) {
      for (u32 k = node.start[e]; k < node.start[e + 1]; ++k) {
        const State& s = node.states[k];
        if (time_.window == 0) {
          forEachJoining(s.l, joining, [&](u32 x) { offer(x, s); });
          continue;
        }
        const Range r = level.iRange[k];
        for (u32 tr = r.begin; tr < r.end; ++tr) {
          State n = s;
          n.l = std::min(s.l, tr);
          n.u = std::max(s.u, tr);
          if (sets == 1) n.first = n.l;
          forEachJoining(tr, joining, [&](u32 x) { offer(x, n); });
        }
      }
    });
  }

  // Adds fresh, reduced to the states no other beats, as customer c's;
  // leaves fresh empty.
  void append(u32 c, std::vector<State>& fresh, Node& child) {
    // Fields no limit reads are cleared, so that states differing only
    // there merge.
    for (State& s : fresh) {
      if (!readsFirst_) s.first = 0;
      if (!readsPrevStart_ && s.lPrev != kNoSet) s.lPrev = 0;
    }
    appendUnbeaten(fresh, child.states);
    fresh.clear();
    child.cust.push_back(c);
    child.start.push_back(static_cast<u32>(child.states.size()));
  }

  // Appends to states those of fresh that no other beats, in order of
  // (l, u).
  void appendUnbeaten(std::vector<State>& fresh, std::vector<State>& states) {
    sortIfNeeded(fresh.begin(), fresh.end(),
                 [](const State& a, const State& b) {
                   if (a.l != b.l) return a.l < b.l;
                   if (a.u != b.u) return a.u < b.u;
                   if (a.lPrev != b.lPrev) return a.lPrev > b.lPrev;
                   if (a.first != b.first) return a.first > b.first;
                   return a.uPrev < b.uPrev;
                 });
    std::size_t sameEnds = states.size();
    for (const State& s : fresh) {
      if (sameEnds < states.size() &&
          (states[sameEnds].l != s.l || states[sameEnds].u != s.u)) {
        sameEnds = states.size();
      }
      if (time_.window == 0 && sameEnds < states.size()) {
        // With one transaction per set only the start and the previous
        // set's start matter, and the best of each may come from two
        // occurrences: both limits are met by one of them each.
        State& kept = states[sameEnds];
        kept.first = std::max(kept.first, s.first);
        continue;
      }
      bool beaten = false;
      for (std::size_t k = sameEnds; k < states.size() && !beaten; ++k) {
        beaten = beatsAtSameEnds(states[k], s);
      }
      if (!beaten) states.push_back(s);
    }
  }

  // Appends the current pattern, whose occurrences are node's, as a
  // PatternEmitter record.
  void emit(const Node& node, int sets) {
    path_.beginRecord(node.size(), db_.customerId[node.cust[0]], sets);
    if (gaps_ && sets >= 2) appendGapStatistics(node);
    path_.endRecord();
  }

  // Per customer the gap of its earliest occurrence: the states ending
  // first, and of them the one whose last set starts soonest after the
  // previous set's start.
  void appendGapStatistics(const Node& node) {
    GapTally tally;
    for (u32 e = 0; e < node.size(); ++e) {
      u32 end = kNoSet;
      double gap = 0;
      for (u32 k = node.start[e]; k < node.start[e + 1]; ++k) {
        const State& s = node.states[k];
        const double g = t(s.l) - t(s.lPrev);
        if (s.u < end || (s.u == end && g < gap)) {
          end = s.u;
          gap = g;
        }
      }
      tally.add(gap);
    }
    tally.appendTo(path_.out());
  }

  const TimedDatabase& db_;
  TimeConstraints time_;
  u32 minCount_;
  int maxItems_;
  PatternPath path_;
  bool gaps_;
  const std::vector<std::vector<u32>>* followers_;
  // No maximum gap or span: a new item set may come anywhere later.
  bool openEnded_;
  // Whether a limit reads a state's start (the maximum span), and its
  // previous set's start (the maximum gap, or the gap statistics).
  bool readsFirst_, readsPrevStart_;
  Counters s_, i_;
  std::uint64_t now_ = 0;
  Node root_;
  std::vector<Level> levels_;
  std::vector<u32> all_;
  std::vector<Range> ranges_;
  std::vector<State> front_, entering_;
  // While children are built: per item its child's index (kNoSet when not
  // built), per child the states of the current customer, and the children
  // having some.
  std::vector<u32> slot_, touched_;
  std::vector<std::vector<State>> fresh_;
};

void checkLimit(const char* name, double value, bool zeroAllowed) {
  if (std::isnan(value) || value < 0 || (!zeroAllowed && value == 0)) {
    throw MiningError(std::string(name) + " " + std::to_string(value) +
                      (zeroAllowed ? " is negative" : " is not positive"));
  }
}

}  // namespace

void checkTimeConstraints(const TimeConstraints& time) {
  checkLimit("minimum gap", time.minGap, true);
  checkLimit("maximum gap", time.maxGap, false);
  checkLimit("maximum span", time.maxSpan, false);
  checkLimit("window", time.window, true);
  if (std::isinf(time.minGap) || std::isinf(time.window)) {
    throw MiningError("the minimum gap and the window must be finite");
  }
}

void timedSearch(const SequenceDatabase& db, const MinerOptions& options,
                 long minCount, std::size_t threads,
                 const std::function<bool(long)>& progress, PatternSink& sink,
                 GapSink* gaps, MiningSummary& summary) {
  const TimedDatabase work = buildTimedDatabase(db, minCount);
  const u32 f = work.itemCount();
  PatternEmitter emitter(sink, summary, progress, gaps);
  if (windowSearchApplies(work, options.time)) {
    windowSearch(work, options, minCount, threads, emitter, gaps != nullptr);
    return;
  }
  auto emit = [&emitter](std::vector<int>& chunk) { emitter.emit(chunk); };
  std::vector<std::vector<u32>> followers;
  // Under a maximum gap the candidates after a set ending in x are the
  // items following x in a frequent two-item pattern (found first).
  const bool gapLimit =
      options.time.maxGap != TimeConstraints::kNone && options.maxItems >= 3;
  std::vector<Worker> workers;
  for (std::size_t k = 0; k < threads; ++k) {
    workers.emplace_back(work, options, minCount, gaps != nullptr,
                         gapLimit ? &followers : nullptr);
  }
  if (gapLimit) {
    followers.resize(f);
    runOrderedTasks(
        f, workers,
        [&](Worker& w, std::size_t x) {
          followers[x] = w.followersOf(static_cast<u32>(x));
        },
        [](std::vector<int>&) {});
  }
  runOrderedTasks(
      f, workers,
      [](Worker& w, std::size_t x) { w.mineRoot(static_cast<u32>(x)); }, emit);
}

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
