#include "seqlattice/mining/miner.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "seqlattice/input/spmfreader.h"
#include "seqlattice/mining/mining_test_util.h"
#include "seqlattice/mining/miningerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace {

using Pattern = std::vector<std::vector<int>>;

struct Found {
  long count;
  long first;
  bool operator==(const Found& o) const {
    return count == o.count && first == o.first;
  }
};
using Result = std::map<Pattern, Found>;

class CollectingSink : public PatternSink {
 public:
  void addPattern(int** sets, int nSets, long count,
                  long firstCustomer) override {
    Pattern p;
    for (int k = 0; k < nSets; ++k) {
      p.emplace_back(sets[k] + 1, sets[k] + 1 + sets[k][0]);
    }
    EXPECT_TRUE(result.emplace(p, Found{count, firstCustomer}).second)
        << "pattern reported twice";
  }
  Result result;
};

// Earliest-match containment: each pattern set in the first later
// transaction that holds it. Taking the earliest never loses a match.
bool contains(const test::Customer& c, const Pattern& p) {
  std::size_t t = 0;
  for (const std::vector<int>& set : p) {
    while (t < c.size() &&
           !std::includes(c[t].begin(), c[t].end(), set.begin(), set.end())) {
      ++t;
    }
    if (t == c.size()) return false;
    ++t;
  }
  return true;
}

// Every pattern of up to maxItems items occurring in some customer, chosen as
// a subset of each transaction of a chosen list of transactions.
void subPatterns(const test::Customer& c, std::size_t from, Pattern& current,
                 int items, int maxItems, std::set<Pattern>& out) {
  if (!current.empty()) out.insert(current);
  for (std::size_t t = from; t < c.size(); ++t) {
    const std::vector<int>& set = c[t];
    for (unsigned mask = 1; mask < (1u << set.size()); ++mask) {
      std::vector<int> chosen;
      for (std::size_t k = 0; k < set.size(); ++k) {
        if (mask & (1u << k)) chosen.push_back(set[k]);
      }
      int size = items + static_cast<int>(chosen.size());
      if (size > maxItems) continue;
      current.push_back(chosen);
      subPatterns(c, t + 1, current, size, maxItems, out);
      current.pop_back();
    }
  }
}

Result bruteForce(const std::vector<test::Customer>& customers, long minCount,
                  int maxItems) {
  std::set<Pattern> candidates;
  for (const test::Customer& c : customers) {
    Pattern current;
    subPatterns(c, 0, current, 0, maxItems, candidates);
  }
  Result result;
  for (const Pattern& p : candidates) {
    long count = 0;
    long first = -1;
    for (std::size_t c = 0; c < customers.size(); ++c) {
      if (!contains(customers[c], p)) continue;
      if (count++ == 0) first = static_cast<long>(c);
    }
    if (count >= minCount) result.emplace(p, Found{count, first});
  }
  return result;
}

// The size of the random databases below.
struct Shape {
  int maxSetSize;
  int minCustomers = 1, maxCustomers = 12;
  int maxTransactions = 6;
  int maxAlphabet = 6;
  long minCount = 1, maxCount = 4;
  unsigned seeds = 400;
};

// Customers as the database holds them: sets ascending, duplicate-free.
std::vector<test::Customer> randomCustomers(std::mt19937& random,
                                            const Shape& shape) {
  auto pick = [&random](int lo, int hi) {
    return std::uniform_int_distribution<int>(lo, hi)(random);
  };
  int alphabet = pick(2, shape.maxAlphabet);
  int offset = pick(0, 1) == 0 ? 0 : -3;
  std::vector<test::Customer> customers(
      static_cast<std::size_t>(pick(shape.minCustomers, shape.maxCustomers)));
  for (test::Customer& c : customers) {
    int transactions = pick(0, shape.maxTransactions);
    for (int t = 0; t < transactions; ++t) {
      std::set<int> set;
      int size = pick(1, shape.maxSetSize);
      for (int k = 0; k < size; ++k) set.insert(pick(0, alphabet - 1) + offset);
      c.emplace_back(set.begin(), set.end());
    }
  }
  return customers;
}

Result mine(const std::vector<test::Customer>& customers,
            const MinerOptions& options, MiningSummary* summary = nullptr) {
  SequenceDatabase db = test::makeDatabase(customers);
  CollectingSink sink;
  MiningSummary s = SequenceMiner(options).mine(db, sink);
  if (summary) *summary = s;
  return sink.result;
}

// Mines random databases of the shape and compares every pattern, count and
// first customer with the brute force. Returns the number of patterns
// compared.
long compareWithBruteForce(const Shape& shape) {
  long patterns = 0;
  for (unsigned seed = 1; seed <= shape.seeds; ++seed) {
    std::mt19937 random(seed);
    std::vector<test::Customer> customers = randomCustomers(random, shape);
    MinerOptions options;
    long minCount = std::uniform_int_distribution<long>(shape.minCount,
                                                        shape.maxCount)(random);
    options.minSupport = MinSupport::count(minCount);
    options.maxItems = std::uniform_int_distribution<int>(1, 7)(random);
    options.threads = std::uniform_int_distribution<int>(1, 3)(random);
    MiningSummary summary;
    Result got = mine(customers, options, &summary);
    Result want = bruteForce(customers, minCount, options.maxItems);
    EXPECT_EQ(got, want) << "seed " << seed;
    EXPECT_EQ(summary.patterns, static_cast<long>(want.size()));
    EXPECT_EQ(summary.customers, static_cast<long>(customers.size()));
    patterns += static_cast<long>(want.size());
  }
  return patterns;
}

TEST(SequenceMinerTest, MatchesBruteForceWithMultiItemTransactions) {
  EXPECT_GT(compareWithBruteForce(Shape{3}), 10000);
}

TEST(SequenceMinerTest, MatchesBruteForceWithSingleItemTransactions) {
  EXPECT_GT(compareWithBruteForce(Shape{1}), 1000);
}

// More customers than the lanes of a narrow subtree (64), so that the
// search reads the customers' lists near the root and switches to lanes
// or joins further down; long customers over a wide alphabet, so that few
// candidates meet long lists.
TEST(SequenceMinerTest, MatchesBruteForceOnWiderDatabases) {
  Shape single{1, 65, 130, 8, 12, 2, 8, 150};
  EXPECT_GT(compareWithBruteForce(single), 10000);
  Shape sets{3, 65, 100, 4, 10, 2, 8, 150};
  EXPECT_GT(compareWithBruteForce(sets), 10000);
}

TEST(SequenceMinerTest, CountsEachCustomerOnceAndReportsFirstCustomer) {
  // Customer 0 lacks 2; customers 1 and 2 hold <1, 2>, <(1 2)>, <2, 2> and
  // <(1 2), 2>; only customer 2 holds <(1 2), 1>. Customer 2 holds 1 four
  // times and counts once.
  std::vector<test::Customer> customers = {
      {{1}, {1}},
      {{1, 2}, {2}},
      {{1, 2}, {1, 2}},
  };
  MinerOptions options;
  options.minSupport = MinSupport::count(2);
  Result got = mine(customers, options);
  Result want = {
      {{{1}}, {3, 0}},         {{{2}}, {2, 1}},      {{{1, 2}}, {2, 1}},
      {{{1}, {2}}, {2, 1}},    {{{1}, {1}}, {2, 0}}, {{{2}, {2}}, {2, 1}},
      {{{1, 2}, {2}}, {2, 1}},
  };
  EXPECT_EQ(got, want);
}

TEST(SequenceMinerTest, MaxItemsLimitsPatternSize) {
  std::vector<test::Customer> customers = {{{1, 2}, {3}}, {{1, 2}, {3}}};
  MinerOptions options;
  options.maxItems = 2;
  MiningSummary summary;
  Result got = mine(customers, options, &summary);
  EXPECT_EQ(got.size(), 6u);  // 3 singles, (1 2), <1,3>, <2,3>
  EXPECT_EQ(summary.longestPattern, 2);
  EXPECT_EQ(summary.patternsPerSize, (std::vector<long>{0, 3, 3}));
  options.maxItems = 1;
  EXPECT_EQ(mine(customers, options).size(), 3u);
  options.maxItems = 3;
  Result all = mine(customers, options, &summary);
  EXPECT_EQ(all.size(), 7u);
  EXPECT_EQ(all.count({{1, 2}, {3}}), 1u);
  EXPECT_EQ(summary.longestPattern, 3);
}

TEST(SequenceMinerTest, FractionRoundsUpToACount) {
  EXPECT_EQ(MinSupport::fraction(0.1).countFor(730), 73);
  EXPECT_EQ(MinSupport::fraction(0.15).countFor(730), 110);
  EXPECT_EQ(MinSupport::fraction(0.0006).countFor(59601), 36);
  EXPECT_EQ(MinSupport::fraction(0.07).countFor(100), 7);
  EXPECT_EQ(MinSupport::fraction(0.5).countFor(3), 2);
  EXPECT_EQ(MinSupport::fraction(0.001).countFor(10), 1);
  EXPECT_EQ(MinSupport::fraction(1.0).countFor(0), 1);
  EXPECT_EQ(MinSupport::count(5).countFor(3), 5);
  EXPECT_TRUE(MinSupport::fraction(0.5).isFraction());
  EXPECT_FALSE(MinSupport::count(5).isFraction());
}

TEST(SequenceMinerTest, FractionSelectsThePatternsOfItsCount) {
  std::vector<test::Customer> customers = {{{1}}, {{1}}, {{2}}, {{2}}, {{2}}};
  MinerOptions options;
  options.minSupport = MinSupport::fraction(0.5);  // ceil(2.5) = 3
  MiningSummary summary;
  Result got = mine(customers, options, &summary);
  EXPECT_EQ(summary.minCount, 3);
  EXPECT_EQ(got, (Result{{{{2}}, {3, 2}}}));
  options.minSupport = MinSupport::fraction(0.4);  // exactly 2
  EXPECT_EQ(mine(customers, options).size(), 2u);
}

TEST(SequenceMinerTest, RejectsBadParameters) {
  EXPECT_THROW(MinSupport::fraction(0.0), MiningError);
  EXPECT_THROW(MinSupport::fraction(1.5), MiningError);
  EXPECT_THROW(MinSupport::count(0), MiningError);
  MinerOptions options;
  options.maxItems = 0;
  try {
    SequenceMiner miner(options);
    FAIL() << "maxItems 0 accepted";
  } catch (const MiningError& e) {
    EXPECT_EQ(std::string(e.what()), "maximum pattern size 0 is less than 1");
  }
}

TEST(SequenceMinerTest, RefusesASearchBeyondTheMemoryBudget) {
  std::vector<test::Customer> customers(100, test::Customer{{1, 2, 3}, {4, 5}});
  MinerOptions options;
  options.memoryBudget = 1000;
  options.threads = 2;
  try {
    mine(customers, options);
    FAIL() << "search beyond the budget accepted";
  } catch (const MiningError& e) {
    EXPECT_EQ(std::string(e.what()),
              "mining this database needs about 1 MB, more than the budget "
              "of 1 MB");
  }
}

TEST(SequenceMinerTest, EmptyDatabaseHasNoPatterns) {
  MiningSummary summary;
  EXPECT_TRUE(mine({}, MinerOptions(), &summary).empty());
  EXPECT_EQ(summary.customers, 0);
  EXPECT_EQ(summary.minCount, 1);
  EXPECT_TRUE(mine({{}, {}}, MinerOptions()).empty());
}

TEST(SequenceMinerTest, FixtureAtHalfSupport) {
  SequenceDatabase db;
  input::readSpmfFile(SEQLATTICE_SOURCE_DIR "/tests/data/mining/small.txt", db);
  std::vector<test::Customer> customers;
  for (std::size_t c = 0; c < db.customerCount(); ++c) {
    test::Customer customer;
    for (std::size_t t = db.firstTransaction(c); t < db.endTransaction(c);
         ++t) {
      customer.emplace_back(db.itemsBegin(t), db.itemsEnd(t));
    }
    customers.push_back(customer);
  }
  MinerOptions options;
  options.minSupport = MinSupport::fraction(0.5);
  options.maxItems = 31;
  CollectingSink sink;
  MiningSummary summary = SequenceMiner(options).mine(db, sink);
  EXPECT_EQ(sink.result, bruteForce(customers, 2, 31));
  EXPECT_EQ(summary.patterns, 53);
  EXPECT_EQ(summary.longestPattern, 4);
  EXPECT_EQ(sink.result.at({{1, 2}, {6}}).count, 2);
  EXPECT_EQ(sink.result.at({{1}, {2, 3}, {1}}).count, 2);
  EXPECT_EQ(sink.result.at({{5}, {2}, {3}}).first, 2);
}

class ThrowingSink : public PatternSink {
 public:
  void addPattern(int**, int, long, long) override {
    if (++calls == 5) throw std::runtime_error("sink full");
  }
  int calls = 0;
};

TEST(SequenceMinerTest, SinkExceptionStopsTheWorkers) {
  std::vector<test::Customer> customers(
      20, test::Customer{{1, 2, 3}, {4, 5}, {1, 6}});
  SequenceDatabase db = test::makeDatabase(customers);
  ThrowingSink sink;
  MinerOptions options;
  options.threads = 2;
  EXPECT_THROW(SequenceMiner(options).mine(db, sink), std::runtime_error);
  EXPECT_EQ(sink.calls, 5);
}

// Folds every call, in order, into one FNV-1a hash.
class OrderHashSink : public PatternSink {
 public:
  void addPattern(int** sets, int nSets, long count,
                  long firstCustomer) override {
    mix(count);
    mix(firstCustomer);
    for (int k = 0; k < nSets; ++k) {
      for (int i = 0; i <= sets[k][0]; ++i) mix(sets[k][i]);
    }
    ++calls;
  }
  void mix(long value) {
    hash = (hash ^ static_cast<unsigned long>(value)) * 1099511628211ul;
  }
  unsigned long hash = 14695981039346656037ul;
  long calls = 0;
};

// Mines db on one thread and then on each count of `threads`, expecting
// the sink to see the same patterns in the same order every time; returns
// the one-thread summary.
MiningSummary expectTheOrderOfOneThread(const SequenceDatabase& db,
                                        MinerOptions options,
                                        std::initializer_list<int> threads) {
  options.threads = 1;
  OrderHashSink one;
  MiningSummary summary = SequenceMiner(options).mine(db, one);
  EXPECT_EQ(one.calls, summary.patterns);
  for (int n : threads) {
    options.threads = n;
    OrderHashSink many;
    SequenceMiner(options).mine(db, many);
    EXPECT_EQ(many.calls, one.calls) << n << " threads";
    EXPECT_EQ(many.hash, one.hash) << n << " threads";
  }
  return summary;
}

// Many frequent items over short customers: below the two-item patterns a
// node's customers hold far fewer items than it has candidates, so the
// search counts the items met instead of every candidate.
TEST(SequenceMinerTest, MatchesBruteForceWhereFewOfManyCandidatesOccur) {
  Shape single{1, 60, 120, 5, 60, 2, 3, 150};
  EXPECT_GT(compareWithBruteForce(single), 5000);
  Shape sets{3, 60, 120, 3, 60, 2, 3, 150};
  EXPECT_GT(compareWithBruteForce(sets), 5000);
}

// Every customer holds items 1..18 in one order, so every one of the 2^18 - 1
// subsequences is frequent; the subtree of <1, 2> alone writes more than a
// chunk of output, which must stream to the sink in the same order as with
// one thread.
TEST(SequenceMinerTest, LargeOutputsStreamInTheSameOrderOnAnyThreadCount) {
  test::Customer customer;
  for (int item = 1; item <= 18; ++item) customer.push_back({item});
  SequenceDatabase db =
      test::makeDatabase(std::vector<test::Customer>(3, customer));
  MinerOptions options;
  options.minSupport = MinSupport::count(3);
  options.maxItems = 18;
  MiningSummary summary = expectTheOrderOfOneThread(db, options, {2});
  EXPECT_EQ(summary.patterns, (1L << 18) - 1);
  EXPECT_EQ(summary.longestPattern, 18);
}

// Most customers share long patterns of item sets, so that the subtrees
// held by more than a worker's share of the customers are split into tasks
// of their own: the sink must see the same patterns in the same order as
// with one thread.
TEST(SequenceMinerTest, SplitSubtreesKeepTheOrderOfOneThread) {
  std::mt19937 random(18);
  std::vector<test::Customer> customers;
  for (int c = 0; c < 40; ++c) {
    test::Customer customer{{1, 2}, {3}, {1, 2, 4}, {3, 5}, {2, 4}, {1, 5}};
    customer.insert(customer.begin() + random() % 6,
                    {static_cast<int>(random() % 6) + 1});
    customers.push_back(customer);
  }
  SequenceDatabase db = test::makeDatabase(customers);
  MinerOptions options;
  options.minSupport = MinSupport::count(10);
  options.maxItems = 8;
  MiningSummary summary = expectTheOrderOfOneThread(db, options, {2, 3});
  EXPECT_GT(summary.patterns, 1000);
}

}  // namespace
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
