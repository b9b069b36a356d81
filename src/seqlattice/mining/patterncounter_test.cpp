#include "seqlattice/mining/patterncounter.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <vector>

#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/mining_test_util.h"
#include "seqlattice/mining/miningerror.h"
#include "seqlattice/mining/patternrecords.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace {

// A database of `customers` customers drawn from seed: up to 8 transactions
// each, of 1 to 3 items out of 7.
SequenceDatabase drawDatabase(unsigned seed, int customers) {
  std::mt19937 random(seed);
  auto draw = [&random](int lo, int hi) {
    return std::uniform_int_distribution<int>(lo, hi)(random);
  };
  std::vector<test::Customer> drawn(static_cast<std::size_t>(customers));
  for (test::Customer& customer : drawn) {
    for (int t = draw(0, 8); t > 0; --t) {
      std::set<int> set;
      for (int k = draw(1, 3); k > 0; --k) set.insert(draw(1, 7));
      customer.emplace_back(set.begin(), set.end());
    }
  }
  return test::makeDatabase(drawn);
}

std::vector<int> minedRecords(const SequenceDatabase& db, long minCount,
                              int maxItems) {
  MinerOptions options;
  options.minSupport = MinSupport::count(minCount);
  options.maxItems = maxItems;
  options.threads = 2;
  PatternRecords records;
  SequenceMiner(options).mine(db, records);
  return records.records();
}

TEST(PatternCounterTest, CountsSmallCaseByHand) {
  // Customers: <(1 2), 3>, <1, 3>, <2>, <(1 2), 3, 1>.
  SequenceDatabase db = test::makeDatabase(
      {{{1, 2}, {3}}, {{1}, {3}}, {{2}}, {{1, 2}, {3}, {1}}});
  // <(1 2), 3>, <3, 1>, <2>, <4>, <1, 1>, <(1 2)> (counts ignored).
  std::vector<int> candidates{9, 9, 2, 2, 1, 2, 1, 3,  //
                              0, 0, 2, 1, 3, 1, 1,     //
                              0, 0, 1, 1, 2,           //
                              0, 0, 1, 1, 4,           //
                              0, 0, 2, 1, 1, 1, 1,     //
                              0, 0, 1, 2, 1, 2};
  PatternCounter counter(candidates);
  EXPECT_EQ(counter.candidateCount(), 6u);
  for (int threads : {1, 2, 3}) {
    PatternCounts counts = counter.count(db, threads);
    EXPECT_EQ(counts.counts, (std::vector<long>{2, 1, 3, 0, 1, 2}));
    EXPECT_EQ(counts.firstCustomers, (std::vector<long>{0, 3, 0, -1, 3, 0}));
  }
}

// Every pattern the miner finds at count 1 is recounted to the miner's
// count and first customer, on 60 drawn databases, with 1 and 2 threads.
TEST(PatternCounterTest, AgreesWithTheMinerOnDrawnDatabases) {
  long compared = 0;
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SequenceDatabase db = drawDatabase(seed, 30);
    std::vector<int> records = minedRecords(db, 1, 4);
    PatternCounter counter(records);
    for (int threads : {1, 2}) {
      PatternCounts counts = counter.count(db, threads);
      std::vector<std::size_t> starts = recordStarts(records);
      ASSERT_EQ(counts.counts.size(), starts.size());
      for (std::size_t k = 0; k < starts.size(); ++k) {
        ASSERT_EQ(counts.counts[k], records[starts[k]]) << "seed " << seed;
        ASSERT_EQ(counts.firstCustomers[k], records[starts[k] + 1])
            << "seed " << seed;
        ++compared;
      }
    }
  }
  EXPECT_GT(compared, 10000);
}

// Patterns frequent in one part but not in another count 0 there.
TEST(PatternCounterTest, CountsPatternsAPartLacks) {
  SequenceDatabase left = test::makeDatabase({{{5}, {6}}, {{5}, {6}}});
  SequenceDatabase right = test::makeDatabase({{{7}}, {{5}}});
  std::vector<int> records = minedRecords(left, 2, 2);
  PatternCounts counts = PatternCounter(records).count(right, 2);
  // <5>, <6>, <5, 6>
  EXPECT_EQ(counts.counts, (std::vector<long>{1, 0, 0}));
  EXPECT_EQ(counts.firstCustomers, (std::vector<long>{1, -1, -1}));
}

TEST(PatternCounterTest, RefusesBrokenRecords) {
  EXPECT_THROW(PatternCounter({1, 0, 2, 1, 4}), MiningError);
  EXPECT_THROW(PatternCounter({1, 0, 1, 2, 3, 3}), MiningError);
  EXPECT_THROW(PatternCounter({1, 0, 1, 0}), MiningError);
}

}  // namespace
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
