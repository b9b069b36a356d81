// SequenceMiner finds every frequent sequential pattern of a SequenceDatabase,
// exactly. A pattern is a list of item sets; a customer contains it when its
// item sets map, in order, to distinct transactions of the customer, each set
// a subset of its transaction. The support of a pattern is the number of
// customers containing it. The miner reports every pattern with support at
// least the minimum count and at most maxItems items, with its support and
// the index of the first customer containing it.
//
// The search is a depth-first prefix extension over a pseudo-projected
// database that keeps, per customer, every transaction where the pattern's
// last item set can end: sequence extensions continue after the first of
// them, item set extensions stay inside them. Candidate items are pruned by
// the parent's frequent extensions. The subtrees below the two-item patterns
// are tasks shared by `threads` worker threads; each task buffers its
// patterns, and the calling thread hands them to the sink, so the sink is only
// ever called from the calling thread and need not be thread-safe.
//
// Time constraints (MinerOptions::time, docs/time-constraints.md) change what
// "contains" means; a search with any of them goes through its own search
// over occurrence lists with times (internal/timedsearch.h), which can also
// report each pattern's gap statistics to a GapSink.
#ifndef SEQLATTICE_MINING_MINER_H_
#define SEQLATTICE_MINING_MINER_H_

#include <chrono>
#include <cstddef>
#include <functional>
#include <limits>
#include <vector>

#include "seqlattice/mining/sequencedatabase.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

// The minimum support, as a fraction of the customers or an absolute count.
class MinSupport {
 public:
  // 0 < f <= 1; the count is ceil(f * customers), at least 1. A product
  // within 1e-9 (relative) of an integer counts as that integer, so that
  // 0.07 of 100 customers is 7, not 8.
  static MinSupport fraction(double f);
  // n >= 1 customers.
  static MinSupport count(long n);

  long countFor(std::size_t customers) const;
  bool isFraction() const { return isFraction_; }
  double value() const { return value_; }

 private:
  MinSupport(bool isFraction, double value)
      : isFraction_(isFraction), value_(value) {}
  bool isFraction_;
  double value_;
};

// Limits on the times of a pattern's occurrence, in the database's time unit
// (docs/time-constraints.md). An item set of the pattern is matched to the
// transactions of a time interval [l, u] of the customer, whose items
// together hold the set; with window 0 to one transaction (l = u).
// Consecutive sets i-1, i must satisfy u(i-1) < l(i),
// l(i) - u(i-1) >= minGap and u(i) - l(i-1) <= maxGap; the whole pattern
// u(last) - l(first) <= maxSpan; every set u - l <= window.
struct TimeConstraints {
  static constexpr double kNone = std::numeric_limits<double>::infinity();
  double minGap = 0;       // >= 0; 0: only the order
  double maxGap = kNone;   // > 0
  double maxSpan = kNone;  // > 0
  double window = 0;       // >= 0; 0: one transaction per item set

  // True when some constraint differs from "none".
  bool any() const {
    return minGap != 0 || maxGap != kNone || maxSpan != kNone || window != 0;
  }
};

struct MinerOptions {
  MinSupport minSupport = MinSupport::count(1);
  int maxItems = 9;  // patterns of 1 .. maxItems items are reported
  int threads = 0;   // worker threads; 0 = the hardware's concurrency
  // Bytes the mining may use beyond the database (0 = no limit); a search
  // estimated to need more is refused before it starts. mineIntoDictionary
  // also stops, with a MiningError, when the model it fills would outgrow it.
  std::size_t memoryBudget = 0;
  // A search still running at this time stops cleanly (default: never):
  // mine() returns the patterns found so far with MiningSummary::complete
  // false. The workers look at the clock every 1024 patterns they find, the
  // calling thread after each batch of patterns it hands to the sink.
  std::chrono::steady_clock::time_point deadline =
      std::chrono::steady_clock::time_point::max();
  // Called on the calling thread each time a batch of patterns has reached
  // the sink, with the number found so far; returning false stops the
  // search as the deadline does. Empty: not called.
  std::function<bool(long patterns)> progress;
  // Constraints on the occurrences' times; none by default.
  TimeConstraints time;
  // Report gap statistics to the GapSink given to mine() (a search without
  // constraints then runs through the constrained search, without limits).
  bool gapStatistics = false;
};

// Receives the patterns, one call each, from the thread that called mine().
class PatternSink {
 public:
  virtual ~PatternSink() = default;
  // sets[k][0] is the number of items of set k, followed by its items in
  // ascending order; the arrays are valid only during the call (the sink may
  // not keep them, but may modify them). count >= the minimum count;
  // firstCustomer is the index of the first customer containing the pattern.
  virtual void addPattern(int** sets, int nSets, long count,
                          long firstCustomer) = 0;
};

// Receives the gap statistics of the patterns of two or more item sets: the
// time from the next-to-last item set to the last (l(last) - l(last-1)), over
// the customers containing the pattern, each at its earliest occurrence (the
// one whose last set ends first; of those, the shortest gap). Called from the
// calling thread just before the addPattern call of the same pattern.
class GapSink {
 public:
  virtual ~GapSink() = default;
  virtual void addGaps(long n, double sum, double min, double max) = 0;
};

struct MiningSummary {
  long customers = 0;
  long minCount = 0;
  long patterns = 0;
  int longestPattern = 0;  // items of the largest pattern found
  // patternsPerSize[k] = patterns with k items (entry 0 unused, 0).
  std::vector<long> patternsPerSize;
  // False when the deadline or the progress callback stopped the search:
  // the patterns reported are then only part of the frequent ones, and not
  // necessarily closed under sub-patterns.
  bool complete = true;
  // Patterns reported and then taken out again to keep a stopped search's
  // result closed under sub-patterns (mineIntoDictionary).
  long patternsDropped = 0;
};

class SequenceMiner {
 public:
  // Throws MiningError when maxItems < 1, threads < 0 or a time constraint
  // is out of its range.
  explicit SequenceMiner(const MinerOptions& options);

  // Mines db and feeds every frequent pattern to sink. Throws MiningError
  // when the search would exceed the memory budget; an exception thrown by
  // the sink stops the workers and is passed on. A search stopped by the
  // deadline or the progress callback returns normally, summary.complete
  // false.
  MiningSummary mine(const SequenceDatabase& db, PatternSink& sink) const;
  // The same, and with options.gapStatistics the gap statistics to gaps
  // (which may be null: then none are computed).
  MiningSummary mine(const SequenceDatabase& db, PatternSink& sink,
                     GapSink* gaps) const;

 private:
  void search(const SequenceDatabase& db, PatternSink& sink, GapSink* gaps,
              MiningSummary& summary) const;

  MinerOptions options_;
};

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_MINER_H_
