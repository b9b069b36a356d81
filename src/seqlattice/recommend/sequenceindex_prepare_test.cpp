// The postings of a SequenceIndex are built by its first query: these tests
// check that the first query gives the figures an index built ahead gives,
// also when several threads make it at once (run under the sanitizers too).
#include <atomic>
#include <cstddef>
#include <thread>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "seqlattice/mining/mining_test_util.h"
#include "seqlattice/recommend/sequenceindex.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// 2 x (2)(1)(4), 18 x (1)(5), 2 x (3).
inline mining::SequenceDatabase preparedIndexDatabase() {
  std::vector<Customer> customers;
  for (int i = 0; i < 2; ++i) customers.push_back({{2}, {1}, {4}});
  for (int i = 0; i < 18; ++i) customers.push_back({{1}, {5}});
  for (int i = 0; i < 2; ++i) customers.push_back({{3}});
  return makeDatabase(customers);
}

// The round that gave the items, its sub-contexts and customers, and the
// items with their figures.
inline void expectCounts(const recommend::FollowerCounts& got, int dropped,
                         int contexts, long customers,
                         const std::vector<std::pair<int, double>>& followers) {
  EXPECT_EQ(got.dropped, dropped);
  EXPECT_EQ(got.contexts, contexts);
  EXPECT_EQ(got.contextCustomers, customers);
  ASSERT_EQ(got.followers.size(), followers.size());
  for (std::size_t i = 0; i < followers.size(); ++i) {
    EXPECT_EQ(got.followers[i].first, followers[i].first);
    EXPECT_DOUBLE_EQ(got.followers[i].second, followers[i].second);
  }
}

// What the customers holding item 1 bought after it, as followersOf gives
// it with no decay and no smoothing: 2 of 20 bought 4, 18 of 20 bought 5.
inline void expectFollowersOfOne(const recommend::FollowerCounts& f) {
  expectCounts(f, 0, 1, 20, {{4, 0.1}, {5, 0.9}});
}

// Starts `threads` threads together on query(thread number) and waits for
// them.
template <typename Query>
void runTogether(int threads, Query query) {
  std::atomic<int> waiting{threads};
  std::vector<std::thread> running;
  for (int t = 0; t < threads; ++t) {
    running.emplace_back([&waiting, &query, t] {
      waiting.fetch_sub(1);
      while (waiting.load() > 0) std::this_thread::yield();
      query(t);
    });
  }
  for (std::thread& thread : running) thread.join();
}

}  // namespace test

TEST(SequenceIndexPrepare, FirstQueriesFromSeveralThreadsAtOnceAgree) {
  const recommend::SequenceIndex index(test::preparedIndexDatabase());
  std::vector<recommend::FollowerCounts> got(4);
  test::runTogether(4, [&](int t) {
    got[static_cast<std::size_t>(t)] = index.followersOf({1}, 1, 0, 0.0, 0.0);
  });
  for (const recommend::FollowerCounts& f : got) test::expectFollowersOfOne(f);
}

TEST(SequenceIndexPrepare, FollowersAndSimilarCountsRacingToBuild) {
  recommend::SequenceIndex flat;
  const recommend::SequenceIndex built(test::preparedIndexDatabase());
  ASSERT_TRUE(recommend::SequenceIndex::fromFlat(
      built.items(), built.setStarts(), built.customerStarts(), &flat));
  std::vector<recommend::FollowerCounts> followers(2);
  std::vector<recommend::FollowerCounts> similar(2);
  test::runTogether(4, [&](int t) {
    const std::size_t k = static_cast<std::size_t>(t / 2);
    if (t % 2 == 0) {
      followers[k] = flat.followersOf({1}, 1, 0, 0.0, 0.0);
    } else {
      similar[k] = flat.similarCounts({2, 1}, 0);
    }
  });
  for (const recommend::FollowerCounts& f : followers) {
    test::expectFollowersOfOne(f);
  }
  // Only the 2 customers of (2)(1)(4) hold the whole context; each of their
  // later items counts 1 / 2.
  for (const recommend::FollowerCounts& s : similar) {
    test::expectCounts(s, 0, 1, 2, {{4, 1.0}});
  }
}

TEST(SequenceIndexPrepare, PreparedAheadGivesTheSameFigures) {
  const recommend::SequenceIndex index(test::preparedIndexDatabase());
  test::runTogether(3, [&](int) { index.prepare(); });
  index.prepare();
  test::expectFollowersOfOne(index.followersOf({1}, 1, 0, 0.0, 0.0));
  EXPECT_EQ(index.customerCount(), 22u);
}

TEST(SequenceIndexPrepare, RefilledIndexBuildsFromItsNewSequences) {
  recommend::SequenceIndex index(test::preparedIndexDatabase());
  index.prepare();
  // One customer, (7)(8).
  ASSERT_TRUE(
      recommend::SequenceIndex::fromFlat({7, 8}, {0, 1, 2}, {0, 2}, &index));
  test::expectCounts(index.followersOf({7}, 1, 0, 0.0, 0.0), 0, 1, 1,
                     {{8, 1.0}});
  EXPECT_TRUE(index.followersOf({1}, 1, 0, 0.0, 0.0).followers.empty());
}

}  // namespace SEQUENCE_NAMESPACE_800
