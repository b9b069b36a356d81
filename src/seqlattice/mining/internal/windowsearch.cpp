#include "seqlattice/mining/internal/windowsearch.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "seqlattice/mining/internal/orderedtasks.h"
#include "seqlattice/mining/internal/patternpath.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

namespace {

using u32 = std::uint32_t;
using u64 = std::uint64_t;
constexpr u32 kNoSet = UINT32_MAX;
constexpr u32 kMaxPositions = 64;

u32 lowest(u64 m) { return static_cast<u32>(__builtin_ctzll(m)); }
u64 bit(u32 p) { return u64{1} << p; }
// Positions lo .. hi.
u64 between(u32 lo, u32 hi) { return (u64{2} << hi) - bit(lo); }
// Positions after p.
u64 after(u32 p) { return p + 1 >= kMaxPositions ? 0 : ~u64{0} << (p + 1); }

// Per customer (positions are its transactions, from 0) its distinct
// items in start[c] .. start[c + 1], by last position, latest first (lastAt):
// the items held from position p on are the prefix with lastAt >= p. Each
// comes with the positions holding it (holds) and the positions s whose
// window, the transactions from s up to the window past s, holds it
// (reaches).
struct Bitmaps {
  std::vector<u32> start{0}, item, lastAt;
  std::vector<u64> holds, reaches;

  u32 find(u32 c, u32 x) const {
    u32 k = start[c];
    while (item[k] != x) ++k;
    return k;
  }
};

Bitmaps buildBitmaps(const TimedDatabase& db, double window) {
  Bitmaps bits;
  std::vector<u32> entry(db.itemCount(), kNoSet), earliest;
  for (u32 c = 0; c < db.customerCount(); ++c) {
    const u32 base = db.customerStart[c];
    const u32 n = db.customerStart[c + 1] - base;
    const u32 first = static_cast<u32>(bits.item.size());
    for (u32 p = n; p-- > 0;) {
      for (u32 k = db.transactionStart[base + p];
           k < db.transactionStart[base + p + 1]; ++k) {
        const u32 x = db.items[k];
        if (entry[x] != kNoSet && entry[x] >= first) continue;
        entry[x] = static_cast<u32>(bits.item.size());
        bits.item.push_back(x);
        bits.lastAt.push_back(p);
      }
    }
    bits.holds.resize(bits.item.size(), 0);
    bits.reaches.resize(bits.item.size(), 0);
    // earliest[p]: the first position whose window reaches p.
    earliest.resize(n);
    for (u32 p = 0, q = 0; p < n; ++p) {
      while (db.time[base + p] - db.time[base + q] > window) ++q;
      earliest[p] = q;
    }
    for (u32 p = 0; p < n; ++p) {
      for (u32 k = db.transactionStart[base + p];
           k < db.transactionStart[base + p + 1]; ++k) {
        const u32 e = entry[db.items[k]];
        bits.holds[e] |= bit(p);
        bits.reaches[e] |= between(earliest[p], p);
      }
    }
    bits.start.push_back(static_cast<u32>(bits.item.size()));
  }
  return bits;
}

// A pattern's occurrences in one customer (c): the positions where its
// last set may start, and for the gap statistics, of the sets before the
// last: the ends of their earliest occurrences from each start (prevEnds)
// and, pairwise in order, the latest start ending there (prevStarts).
struct Entry {
  u32 c;
  u64 starts, prevEnds, prevStarts;
};

// The occurrences of a pattern: an entry per customer holding it,
// ascending, and per entry the positions of each of the last set's items
// (last, `width` words an entry).
struct Node {
  std::vector<Entry> entries;
  std::vector<u64> last;
  u32 width = 0;

  void clear(u32 w) {
    entries.clear();
    last.clear();
    width = w;
  }
  u32 size() const { return static_cast<u32>(entries.size()); }
  const u64* lastOf(u32 e) const { return last.data() + e * width; }
};

// Where the earliest occurrence of a set whose items lie at the positions
// m[0 .. width) ends when it starts at s (every item has a position from s).
u32 endFrom(u32 s, const u64* m, u32 width) {
  u32 end = s;
  for (u32 j = 0; j < width; ++j) end = std::max(end, s + lowest(m[j] >> s));
  return end;
}

// The latest start of an occurrence ending before p, read off the pairs of
// ends and starts (there is one).
u32 latestStartBefore(u64 ends, u64 starts, u32 p) {
  for (u32 k = static_cast<u32>(__builtin_popcountll(ends & (bit(p) - 1)));
       k > 1; --k) {
    starts &= starts - 1;
  }
  return lowest(starts);
}

class Worker {
 public:
  Worker(const TimedDatabase& db, const Bitmaps& bits,
         const MinerOptions& options, long minCount, bool gaps)
      : db_(db),
        bits_(bits),
        minCount_(static_cast<u32>(minCount)),
        maxItems_(options.maxItems),
        gaps_(gaps),
        path_(db.itemValue, options.deadline) {
    const u32 f = db.itemCount();
    sFlag_.assign(f, 0);
    iFlag_.assign(f, 0);
    sCount_.assign(f, 0);
    iCount_.assign(f, 0);
    sSlot_.assign(f, kNoSet);
    iSlot_.assign(f, kNoSet);
    levels_.resize(static_cast<std::size_t>(maxItems_) + 2);
    all_.resize(f);
    for (u32 x = 0; x < f; ++x) all_[x] = x;
  }

  void setOutput(std::vector<int>* out, std::function<void()> full = {}) {
    path_.setOutput(out, std::move(full));
  }

  // Emits x and every frequent pattern that begins with it.
  void mineRoot(u32 x) {
    path_.start(x);
    root_.clear(1);
    for (u32 c : db_.holders[x]) {
      const u32 k = bits_.find(c, x);
      root_.entries.push_back(Entry{c, bits_.reaches[k], 0, 0});
      root_.last.push_back(bits_.holds[k]);
    }
    emit(root_, 1);
    // Every item may start a new set; those above x join it.
    expand(root_, 1, all_.data(), all_.size(), all_.data() + x + 1,
           all_.size() - x - 1);
  }

 private:
  // What the expansion of a node at one depth keeps: per entry of the node
  // the positions after its earliest end, the node's frequent sequence and
  // item set extensions, ascending, and the node of each.
  struct Level {
    std::vector<u64> later;
    std::vector<u32> sFrequent, iFrequent;
    std::vector<Node> sChildren, iChildren;
  };

  // Expands the node of the current pattern (`sets` sets): counts, then
  // builds, emits and expands each frequent extension in turn, in the
  // general search's order. The candidates joining the last set (iCand)
  // are above its last item.
  void expand(const Node& node, int sets, const u32* sCand, std::size_t nS,
              const u32* iCand, std::size_t nI) {
    const std::size_t depth = path_.size();
    if (static_cast<int>(depth) >= maxItems_) return;
    Level& level = levels_[depth];
    count(node, sCand, nS, iCand, nI, level);
    buildChildren(node, level);
    for (std::size_t k = 0; k < level.iFrequent.size(); ++k) {
      path_.push(level.iFrequent[k], false);
      const Node& child = level.iChildren[k];
      emit(child, sets);
      expand(child, sets, level.sFrequent.data(), level.sFrequent.size(),
             level.iFrequent.data() + k + 1, level.iFrequent.size() - k - 1);
      path_.pop();
    }
    for (std::size_t k = 0; k < level.sFrequent.size(); ++k) {
      path_.push(level.sFrequent[k], true);
      const Node& child = level.sChildren[k];
      emit(child, sets + 1);
      expand(child, sets + 1, level.sFrequent.data(), level.sFrequent.size(),
             level.sFrequent.data() + k + 1, level.sFrequent.size() - k - 1);
      path_.pop();
    }
  }

  // Finds the frequent candidates extending the node's pattern as a new
  // set (sCand) and into its last set (iCand), both ascending, into
  // level's sFrequent and iFrequent; leaves level.later filled. One pass
  // over each customer's items, without branches.
  void count(const Node& node, const u32* sCand, std::size_t nS,
             const u32* iCand, std::size_t nI, Level& level) {
    for (std::size_t k = 0; k < nS; ++k) sFlag_[sCand[k]] = 1;
    for (std::size_t k = 0; k < nI; ++k) iFlag_[iCand[k]] = 1;
    level.later.resize(node.size());
    const u32* item = bits_.item.data();
    const u32* lastAt = bits_.lastAt.data();
    const u64* holds = bits_.holds.data();
    const u64* reaches = bits_.reaches.data();
    u32* sCount = sCount_.data();
    u32* iCount = iCount_.data();
    const u32* sFlag = sFlag_.data();
    const u32* iFlag = iFlag_.data();
    for (u32 e = 0; e < node.size(); ++e) {
      const u32 c = node.entries[e].c;
      const u64 s = node.entries[e].starts;
      const u64 later = after(endFrom(lowest(s), node.lastOf(e), node.width));
      level.later[e] = later;
      // Both kinds of extension read only items from the first start on.
      const u32 from = lowest(s);
      for (u32 k = bits_.start[c], end = bits_.start[c + 1];
           k < end && lastAt[k] >= from; ++k) {
        const u32 x = item[k];
        sCount[x] += sFlag[x] & static_cast<u32>((holds[k] & later) != 0);
        iCount[x] += iFlag[x] & static_cast<u32>((reaches[k] & s) != 0);
      }
    }
    collect(sFlag_, sCount_, sCand, nS, level.sFrequent);
    collect(iFlag_, iCount_, iCand, nI, level.iFrequent);
  }

  // The frequent candidates, ascending; resets their flags and counts.
  void collect(std::vector<u32>& flag, std::vector<u32>& count, const u32* cand,
               std::size_t n, std::vector<u32>& frequent) {
    frequent.clear();
    for (std::size_t k = 0; k < n; ++k) {
      if (count[cand[k]] >= minCount_) frequent.push_back(cand[k]);
      count[cand[k]] = 0;
      flag[cand[k]] = 0;
    }
  }

  // Clears children[k] (each customer with `width` words) for frequent[k],
  // and points slot at it.
  static void startChildren(const std::vector<u32>& frequent, u32 width,
                            std::vector<Node>& children,
                            std::vector<u32>& slot) {
    if (children.size() < frequent.size()) children.resize(frequent.size());
    for (std::size_t k = 0; k < frequent.size(); ++k) {
      children[k].clear(width);
      slot[frequent[k]] = static_cast<u32>(k);
    }
  }
  static void endChildren(const std::vector<u32>& frequent,
                          std::vector<u32>& slot) {
    for (u32 x : frequent) slot[x] = kNoSet;
  }

  // Fills the children of both kinds in one pass over each customer's
  // items.
  void buildChildren(const Node& node, Level& level) {
    if (level.sFrequent.empty() && level.iFrequent.empty()) return;
    const u32 width = node.width;
    startChildren(level.iFrequent, width + 1, level.iChildren, iSlot_);
    startChildren(level.sFrequent, 1, level.sChildren, sSlot_);
    for (u32 e = 0; e < node.size(); ++e) {
      const Entry& entry = node.entries[e];
      const u32 c = entry.c;
      const u64 s = entry.starts;
      const u64 later = level.later[e];
      const u64* m = node.lastOf(e);
      bool paired = false;
      u64 ends = 0, endStarts = 0;
      const u32 from = lowest(s);
      for (u32 k = bits_.start[c], end = bits_.start[c + 1];
           k < end && bits_.lastAt[k] >= from; ++k) {
        const u32 x = bits_.item[k];
        if (iSlot_[x] != kNoSet) {
          const u64 joined = s & bits_.reaches[k];
          if (joined != 0) {
            Node& child = level.iChildren[iSlot_[x]];
            child.entries.push_back(
                Entry{c, joined, entry.prevEnds, entry.prevStarts});
            child.last.insert(child.last.end(), m, m + width);
            child.last.push_back(bits_.holds[k]);
          }
        }
        if (sSlot_[x] != kNoSet) {
          const u64 started = later & bits_.reaches[k];
          if (started != 0) {
            if (gaps_ && !paired) {
              pairEnds(s, m, width, ends, endStarts);
              paired = true;
            }
            Node& child = level.sChildren[sSlot_[x]];
            child.entries.push_back(Entry{c, started, ends, endStarts});
            child.last.push_back(bits_.holds[k]);
          }
        }
      }
    }
    endChildren(level.iFrequent, iSlot_);
    endChildren(level.sFrequent, sSlot_);
  }

  // The ends of the earliest occurrences of the last set from each of the
  // starts s, and pairwise with them the latest start ending there.
  static void pairEnds(u64 s, const u64* m, u32 width, u64& ends,
                       u64& endStarts) {
    u32 lastEnd = kNoSet, lastStart = 0;
    for (; s != 0; s &= s - 1) {
      const u32 p = lowest(s);
      const u32 end = endFrom(p, m, width);
      if (end == lastEnd) {
        endStarts &= ~bit(lastStart);
      } else {
        ends |= bit(end);
      }
      endStarts |= bit(p);
      lastEnd = end;
      lastStart = p;
    }
  }

  void emit(const Node& node, int sets) {
    path_.beginRecord(node.size(), db_.customerId[node.entries[0].c], sets);
    if (gaps_ && sets >= 2) appendGapStatistics(node);
    path_.endRecord();
  }

  // Per customer the shortest gap of the occurrences ending first: those
  // whose last set starts at one of its items' positions and ends where the
  // first start's does, each after the latest previous set ending before
  // it.
  void appendGapStatistics(const Node& node) {
    GapTally tally;
    for (u32 e = 0; e < node.size(); ++e) {
      const Entry& entry = node.entries[e];
      const u32 base = db_.customerStart[entry.c];
      const u64* m = node.lastOf(e);
      u64 held = 0;
      for (u32 j = 0; j < node.width; ++j) held |= m[j];
      const u32 first = endFrom(lowest(entry.starts), m, node.width);
      double gap = 0;
      bool found = false;
      for (u64 s = entry.starts & held; s != 0; s &= s - 1) {
        const u32 p = lowest(s);
        if (endFrom(p, m, node.width) != first) break;
        const u32 prev = latestStartBefore(entry.prevEnds, entry.prevStarts, p);
        const double g = db_.time[base + p] - db_.time[base + prev];
        if (!found || g < gap) gap = g;
        found = true;
      }
      tally.add(gap);
    }
    tally.appendTo(path_.out());
  }

  const TimedDatabase& db_;
  const Bitmaps& bits_;
  u32 minCount_;
  int maxItems_;
  bool gaps_;
  PatternPath path_;
  std::vector<u32> sFlag_, iFlag_, sCount_, iCount_, sSlot_, iSlot_, all_;
  Node root_;
  std::vector<Level> levels_;
};

}  // namespace

bool windowSearchApplies(const TimedDatabase& db, const TimeConstraints& time) {
  if (!(time.window > 0) || time.minGap != 0 ||
      time.maxGap != TimeConstraints::kNone ||
      time.maxSpan != TimeConstraints::kNone) {
    return false;
  }
  for (u32 c = 0; c < db.customerCount(); ++c) {
    if (db.customerStart[c + 1] - db.customerStart[c] > kMaxPositions) {
      return false;
    }
  }
  return true;
}

void windowSearch(const TimedDatabase& db, const MinerOptions& options,
                  long minCount, std::size_t threads, PatternEmitter& emitter,
                  bool gaps) {
  const Bitmaps bits = buildBitmaps(db, options.time.window);
  std::vector<Worker> workers;
  for (std::size_t k = 0; k < threads; ++k) {
    workers.emplace_back(db, bits, options, minCount, gaps);
  }
  runOrderedTasks(
      db.itemCount(), workers,
      [](Worker& w, std::size_t x) { w.mineRoot(static_cast<u32>(x)); },
      [&emitter](std::vector<int>& chunk) { emitter.emit(chunk); });
}

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
