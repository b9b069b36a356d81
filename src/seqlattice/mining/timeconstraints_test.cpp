// The miner under time constraints against a brute-force reading of their
// definitions (every occurrence of every candidate pattern), and at the
// boundaries of each constraint.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <vector>

#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/mining_test_util.h"
#include "seqlattice/mining/miningerror.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

using Pattern = std::vector<std::vector<int>>;

struct GapStats {
  long n = 0;
  double sum = 0, min = 0, max = 0;
  bool operator==(const GapStats& o) const {
    return n == o.n && sum == o.sum && min == o.min && max == o.max;
  }
};

struct Found {
  long count = 0;
  long first = -1;
  GapStats gaps;
  bool operator==(const Found& o) const {
    return count == o.count && first == o.first && gaps == o.gaps;
  }
};
using Result = std::map<Pattern, Found>;

std::ostream& operator<<(std::ostream& os, const Found& f) {
  return os << "count " << f.count << " first " << f.first << " gaps "
            << f.gaps.n << "/" << f.gaps.sum << "/" << f.gaps.min << "/"
            << f.gaps.max;
}

class CollectingSink : public mining::PatternSink, public mining::GapSink {
 public:
  void addGaps(long n, double sum, double min, double max) override {
    pending_ = GapStats{n, sum, min, max};
  }
  void addPattern(int** sets, int nSets, long count,
                  long firstCustomer) override {
    Pattern p;
    for (int k = 0; k < nSets; ++k) {
      p.emplace_back(sets[k] + 1, sets[k] + 1 + sets[k][0]);
    }
    Found f{count, firstCustomer, pending_};
    pending_ = GapStats();
    EXPECT_TRUE(result.emplace(p, f).second) << "pattern reported twice";
  }
  Result result;

 private:
  GapStats pending_;
};

// The best occurrence of one customer found so far: the earliest end of the
// last set, and at that end the shortest gap.
struct Earliest {
  bool found = false;
  double end = 0, gap = 0;
};

// Tries every choice of a transaction for every item of sets s.. of p,
// given the intervals chosen for the sets before (l, u), and checks each
// complete choice against the definitions.
void occurrences(const TimedCustomer& c, const Pattern& p,
                 const mining::TimeConstraints& tc, std::size_t s,
                 std::vector<double>& l, std::vector<double>& u,
                 Earliest& best) {
  if (s == p.size()) {
    if (u.back() - l.front() > tc.maxSpan) return;
    const double gap = p.size() >= 2 ? l[s - 1] - l[s - 2] : 0;
    if (!best.found || u.back() < best.end ||
        (u.back() == best.end && gap < best.gap)) {
      best = Earliest{true, u.back(), gap};
    }
    return;
  }
  // Suppliers of the items of set s, one transaction each.
  const std::vector<int>& set = p[s];
  std::vector<std::size_t> choice(set.size(), 0);
  std::vector<std::vector<std::size_t>> holders(set.size());
  for (std::size_t i = 0; i < set.size(); ++i) {
    for (std::size_t t = 0; t < c.size(); ++t) {
      if (std::binary_search(c[t].items.begin(), c[t].items.end(), set[i])) {
        holders[i].push_back(t);
      }
    }
    if (holders[i].empty()) return;
  }
  for (;;) {
    double lo = c[holders[0][choice[0]]].time, hi = lo;
    for (std::size_t i = 0; i < set.size(); ++i) {
      lo = std::min(lo, c[holders[i][choice[i]]].time);
      hi = std::max(hi, c[holders[i][choice[i]]].time);
    }
    bool ok = hi - lo <= tc.window;
    if (ok && s > 0) {
      ok = u[s - 1] < lo && lo - u[s - 1] >= tc.minGap &&
           hi - l[s - 1] <= tc.maxGap;
    }
    if (ok) {
      l.push_back(lo);
      u.push_back(hi);
      occurrences(c, p, tc, s + 1, l, u, best);
      l.pop_back();
      u.pop_back();
    }
    std::size_t i = 0;
    while (i < set.size() && ++choice[i] == holders[i].size()) choice[i++] = 0;
    if (i == set.size()) break;
  }
}

// Every pattern over items 1 .. alphabet of up to maxItems items.
void allPatterns(int alphabet, int maxItems, Pattern& p, int items,
                 std::vector<Pattern>& out) {
  if (items > 0) out.push_back(p);
  for (int mask = 1; mask < (1 << alphabet); ++mask) {
    std::vector<int> set;
    for (int x = 0; x < alphabet; ++x) {
      if (mask & (1 << x)) set.push_back(x + 1);
    }
    if (items + static_cast<int>(set.size()) > maxItems) continue;
    p.push_back(set);
    allPatterns(alphabet, maxItems, p, items + static_cast<int>(set.size()),
                out);
    p.pop_back();
  }
}

Result bruteForce(const std::vector<TimedCustomer>& db, int alphabet,
                  int maxItems, long minCount,
                  const mining::TimeConstraints& tc) {
  std::vector<Pattern> candidates;
  Pattern scratch;
  allPatterns(alphabet, maxItems, scratch, 0, candidates);
  Result result;
  for (const Pattern& p : candidates) {
    Found f;
    for (std::size_t c = 0; c < db.size(); ++c) {
      Earliest best;
      std::vector<double> l, u;
      occurrences(db[c], p, tc, 0, l, u, best);
      if (!best.found) continue;
      if (f.count++ == 0) f.first = static_cast<long>(c);
      if (p.size() < 2) continue;
      GapStats& g = f.gaps;
      g.min = g.n == 0 ? best.gap : std::min(g.min, best.gap);
      g.max = g.n == 0 ? best.gap : std::max(g.max, best.gap);
      g.sum += best.gap;
      ++g.n;
    }
    if (f.count >= minCount) result.emplace(p, f);
  }
  return result;
}

Result mineWith(const std::vector<TimedCustomer>& customers,
                const mining::MinerOptions& options) {
  mining::SequenceDatabase db = makeTimedDatabase(customers);
  CollectingSink sink;
  mining::SequenceMiner(options).mine(db, sink, &sink);
  return sink.result;
}

TEST(TimeConstraintsTest, AgreesWithBruteForceOnRandomDatabases) {
  std::mt19937 random(20261124);
  const int kAlphabet = 4, kMaxItems = 4;
  int checked = 0;
  for (int d = 0; d < 320; ++d) {
    std::vector<TimedCustomer> customers(2 + random() % 6);
    for (TimedCustomer& c : customers) {
      double time = static_cast<double>(random() % 3);
      for (std::size_t n = random() % 6; n > 0; --n) {
        Timed t{time, {}};
        for (int x = 1; x <= kAlphabet; ++x) {
          if (random() % 3 == 0) t.items.push_back(x);
        }
        if (t.items.empty()) t.items.push_back(1 + random() % kAlphabet);
        c.push_back(t);
        // Half steps, so that gaps land on the limits exactly and often.
        time += 0.5 * static_cast<double>(1 + random() % 6);
      }
    }
    const int mask = d % 16;
    mining::MinerOptions options;
    options.maxItems = 1 + static_cast<int>(random() % kMaxItems);
    options.threads = 1 + d % 2;
    // Every combination of limits is tried with and without the gap
    // statistics, which make the search keep more of each occurrence.
    options.gapStatistics = (d / 16) % 2 == 0;
    const long minCount = 1 + static_cast<long>(random() % 3);
    options.minSupport = mining::MinSupport::count(minCount);
    mining::TimeConstraints& tc = options.time;
    if (mask & 1) tc.minGap = 0.5 * static_cast<double>(random() % 6);
    if (mask & 2) tc.maxGap = 0.5 * static_cast<double>(1 + random() % 8);
    if (mask & 4) tc.maxSpan = 0.5 * static_cast<double>(1 + random() % 14);
    if (mask & 8) tc.window = 0.5 * static_cast<double>(random() % 5);
    Result expected =
        bruteForce(customers, kAlphabet, options.maxItems, minCount, tc);
    if (!options.gapStatistics) {
      for (auto& entry : expected) entry.second.gaps = GapStats();
    }
    Result found = mineWith(customers, options);
    ASSERT_EQ(found, expected)
        << "database " << d << " minGap " << tc.minGap << " maxGap "
        << tc.maxGap << " maxSpan " << tc.maxSpan << " window " << tc.window
        << " maxItems " << options.maxItems << " minCount " << minCount
        << " gap statistics " << options.gapStatistics;
    checked += static_cast<int>(expected.size());
  }
  EXPECT_GT(checked, 3000);
}

// One customer per list of (time, items); support counts at minimum 1.
Result mineOne(const std::vector<TimedCustomer>& customers,
               const mining::TimeConstraints& tc, int maxItems = 3) {
  mining::MinerOptions options;
  options.maxItems = maxItems;
  options.threads = 1;
  options.time = tc;
  options.gapStatistics = true;
  return mineWith(customers, options);
}

bool has(const Result& r, const Pattern& p) { return r.count(p) > 0; }

// Whether <(1) (2)> is found with 1 at time 0 and 2 at time 10.
bool pairTenApart(const mining::TimeConstraints& tc) {
  std::vector<TimedCustomer> db = {{{0, {1}}, {10, {2}}}};
  return has(mineOne(db, tc), Pattern{{1}, {2}});
}

TEST(TimeConstraintsTest, GapBoundaries) {
  const struct {
    double minGap, maxGap;
    bool found;
  } cases[] = {{0, 10, true},   {0, 11, true},  {0, 9, false},
               {10, 100, true}, {9, 100, true}, {11, 100, false}};
  for (const auto& c : cases) {
    mining::TimeConstraints tc;
    tc.minGap = c.minGap;
    tc.maxGap = c.maxGap;
    EXPECT_EQ(pairTenApart(tc), c.found)
        << "min gap " << c.minGap << ", max gap " << c.maxGap;
  }
}

TEST(TimeConstraintsTest, SpanBoundaries) {
  std::vector<TimedCustomer> db = {{{0, {1}}, {4, {2}}, {10, {3}}}};
  mining::TimeConstraints tc;
  tc.maxSpan = 10;
  EXPECT_TRUE(has(mineOne(db, tc), Pattern({{1}, {2}, {3}})));
  tc.maxSpan = 9;
  Result r = mineOne(db, tc);
  EXPECT_FALSE(has(r, Pattern({{1}, {2}, {3}})));
  EXPECT_FALSE(has(r, Pattern({{1}, {3}})));
  EXPECT_TRUE(has(r, Pattern({{2}, {3}})));
}

TEST(TimeConstraintsTest, WindowJoinsTwoTransactions) {
  // a at 0 and b at 2 form the set (a b) within a window of 2, not of 1.
  std::vector<TimedCustomer> db = {{{0, {1}}, {2, {2}}, {5, {3}}}};
  mining::TimeConstraints tc;
  tc.window = 2;
  Result r = mineOne(db, tc);
  EXPECT_TRUE(has(r, Pattern{{1, 2}}));
  ASSERT_TRUE(has(r, Pattern({{1, 2}, {3}})));
  // From the set's start at 0 to c at 5.
  EXPECT_EQ(r.at(Pattern({{1, 2}, {3}})).gaps, (GapStats{1, 5, 5, 5}));
  tc.window = 1;
  EXPECT_FALSE(has(mineOne(db, tc), Pattern{{1, 2}}));
  // Without a window the two items never share a set.
  EXPECT_FALSE(has(mineOne(db, mining::TimeConstraints()), Pattern{{1, 2}}));
}

TEST(TimeConstraintsTest, PreviousSetEndLimitsTheWindowUpToExactlyIt) {
  // a at 0, (a c) at `at`, b at 4, window 2: two occurrences of <(a) (b)>,
  // the later one with the shorter gap.
  mining::TimeConstraints tc;
  tc.window = 2;
  auto mineWithAC = [&tc](double at) {
    return mineOne({{{0, {1}}, {at, {1, 3}}, {4, {2}}}}, tc);
  };
  // At 2, exactly the window before b: c cannot join b's set after the
  // later a, but can after the earlier one.
  Result r = mineWithAC(2);
  ASSERT_TRUE(has(r, Pattern({{1}, {2}})));
  EXPECT_EQ(r.at(Pattern({{1}, {2}})).gaps, (GapStats{1, 2, 2, 2}));
  ASSERT_TRUE(has(r, Pattern({{1}, {2, 3}})));
  EXPECT_EQ(r.at(Pattern({{1}, {2, 3}})).gaps, (GapStats{1, 2, 2, 2}));
  // At 1, beyond the window: both occurrences may widen b's set alike, the
  // later one's gap is the one kept, and c is too far from b.
  r = mineWithAC(1);
  ASSERT_TRUE(has(r, Pattern({{1}, {2}})));
  EXPECT_EQ(r.at(Pattern({{1}, {2}})).gaps, (GapStats{1, 3, 3, 3}));
  EXPECT_FALSE(has(r, Pattern({{1}, {2, 3}})));
  ASSERT_TRUE(has(r, Pattern({{1, 3}, {2}})));
  EXPECT_EQ(r.at(Pattern({{1, 3}, {2}})).gaps, (GapStats{1, 3, 3, 3}));
}

TEST(TimeConstraintsTest, MaxGapKeepsAPatternWhoseMiddleDropIsRarer) {
  // <a b c> in both customers within gaps of 2; <a c> (gap 4) in neither.
  std::vector<TimedCustomer> db = {{{0, {1}}, {2, {2}}, {4, {3}}},
                                   {{0, {1}}, {2, {2}}, {4, {3}}}};
  mining::TimeConstraints tc;
  tc.maxGap = 2;
  Result r = mineOne(db, tc);
  ASSERT_TRUE(has(r, Pattern({{1}, {2}, {3}})));
  EXPECT_EQ(r.at(Pattern({{1}, {2}, {3}})).count, 2);
  EXPECT_FALSE(has(r, Pattern({{1}, {3}})));
}

TEST(TimeConstraintsTest, GapStatisticsTakeEachCustomersEarliestOccurrence) {
  // Customer 0: a at 0 and 3, b at 4: earliest end 4, shortest gap 1.
  // Customer 1: a at 0, b at 6 and 7: earliest end 6, gap 6.
  std::vector<TimedCustomer> db = {{{0, {1}}, {3, {1}}, {4, {2}}},
                                   {{0, {1}}, {6, {2}}, {7, {2}}}};
  Result r = mineOne(db, mining::TimeConstraints());
  ASSERT_TRUE(has(r, Pattern({{1}, {2}})));
  EXPECT_EQ(r.at(Pattern({{1}, {2}})).gaps, (GapStats{2, 7, 1, 6}));
  EXPECT_EQ(r.at(Pattern({{1}})).gaps, GapStats());
}

TEST(TimeConstraintsTest, RefusesLimitsOutOfRange) {
  mining::MinerOptions options;
  options.time.maxGap = 0;
  EXPECT_THROW(mining::SequenceMiner{options}, mining::MiningError);
  options.time = mining::TimeConstraints();
  options.time.minGap = -1;
  EXPECT_THROW(mining::SequenceMiner{options}, mining::MiningError);
  options.time = mining::TimeConstraints();
  options.time.window = std::nan("");
  EXPECT_THROW(mining::SequenceMiner{options}, mining::MiningError);
}

TEST(TimeConstraintsTest, GapBucketHoldsTheStatisticsGiven) {
  StatsBucket whole;
  mining::fillGapBucket(whole, 5, 23, 1, 9);
  EXPECT_EQ(whole.GetNOfGaps(), 5.0);
  EXPECT_EQ(whole.GetSumOfGaps(), 23.0);
  EXPECT_EQ(whole.GetMinOfGaps(), 1.0);
  EXPECT_EQ(whole.GetMaxOfGaps(), 9.0);
  StatsBucket one;
  mining::fillGapBucket(one, 1, 4, 4, 4);
  EXPECT_EQ(one.GetNOfGaps(), 1.0);
  EXPECT_EQ(one.GetSumOfGaps(), 4.0);
  StatsBucket fractional;
  mining::fillGapBucket(fractional, 4, 7.5, 0.5, 3);
  EXPECT_EQ(fractional.GetNOfGaps(), 4.0);
  EXPECT_DOUBLE_EQ(fractional.GetSumOfGaps(), 7.5);
  EXPECT_EQ(fractional.GetMinOfGaps(), 0.5);
  EXPECT_EQ(fractional.GetMaxOfGaps(), 3.0);
}

TEST(TimeConstraintsTest, DictionaryGetsBucketsOnPatternsOfTwoSets) {
  std::vector<TimedCustomer> db = {{{0, {1}}, {3, {1}}, {4, {2}}},
                                   {{0, {1}}, {6, {2}}, {7, {2}}}};
  mining::MinerOptions options;
  options.maxItems = 3;
  options.threads = 1;
  options.gapStatistics = true;
  SequenceDictionary dictionary(options.maxItems + 1);
  mining::mineIntoDictionary(makeTimedDatabase(db), options, dictionary);
  int ab[] = {1, 1}, b[] = {1, 2};
  int* abSets[] = {ab, b};
  SequenceCounter* pair = dictionary.getDescriptor(abSets, 2);
  ASSERT_NE(pair, nullptr);
  ASSERT_NE(pair->getStatsBucket(), nullptr);
  EXPECT_EQ(pair->getStatsBucket()->GetNOfGaps(), 2.0);
  EXPECT_EQ(pair->getStatsBucket()->GetSumOfGaps(), 7.0);
  EXPECT_EQ(pair->getStatsBucket()->GetMinOfGaps(), 1.0);
  EXPECT_EQ(pair->getStatsBucket()->GetMaxOfGaps(), 6.0);
  int* aSets[] = {ab};
  ASSERT_NE(dictionary.getDescriptor(aSets, 1), nullptr);
  EXPECT_EQ(dictionary.getDescriptor(aSets, 1)->getStatsBucket(), nullptr);
}

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800
