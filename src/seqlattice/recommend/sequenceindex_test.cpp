#include "seqlattice/recommend/sequenceindex.h"

#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "seqlattice/mining/mining_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

using Followers = std::vector<std::pair<int, double>>;

void expectFollowers(const Followers& got, const Followers& expected) {
  ASSERT_EQ(got.size(), expected.size());
  for (std::size_t i = 0; i < got.size(); ++i) {
    EXPECT_EQ(got[i].first, expected[i].first);
    EXPECT_NEAR(got[i].second, expected[i].second, 1e-12);
  }
}

// The round that gave the items, its sub-contexts and customers, and the
// items.
void expectCounts(const recommend::FollowerCounts& got, int dropped,
                  int contexts, long customers, const Followers& followers) {
  EXPECT_EQ(got.dropped, dropped);
  EXPECT_EQ(got.contexts, contexts);
  EXPECT_EQ(got.contextCustomers, customers);
  expectFollowers(got.followers, followers);
}

// 2 x (2)(1)(4), 18 x (1)(5), 2 x (3).
mining::SequenceDatabase smallDatabase() {
  std::vector<test::Customer> customers;
  for (int i = 0; i < 2; ++i) customers.push_back({{2}, {1}, {4}});
  for (int i = 0; i < 18; ++i) customers.push_back({{1}, {5}});
  for (int i = 0; i < 2; ++i) customers.push_back({{3}});
  return test::makeDatabase(customers);
}

TEST(SequenceIndex, FollowersOfAContextHeldByEveryCustomer) {
  recommend::SequenceIndex index(smallDatabase());
  recommend::FollowerCounts f = index.followersOf({1}, 1, 0, 0.0, 0.0);
  EXPECT_EQ(f.contexts, 1);
  EXPECT_EQ(f.contextCustomers, 20);
  EXPECT_EQ(f.dropped, 0);
  expectFollowers(f.followers, {{4, 0.1}, {5, 0.9}});
}

TEST(SequenceIndex, ItemCodesSpreadOverTheWholeIntRangeGiveTheSameFigures) {
  // smallDatabase() with its items renumbered in the same order, too far
  // apart for a table over their range.
  auto spread = [](int item) {
    return static_cast<int>(item * 700000000LL - 1500000000LL);
  };
  std::vector<test::Customer> customers;
  for (int i = 0; i < 2; ++i) {
    customers.push_back({{spread(2)}, {spread(1)}, {spread(4)}});
  }
  for (int i = 0; i < 18; ++i) customers.push_back({{spread(1)}, {spread(5)}});
  for (int i = 0; i < 2; ++i) customers.push_back({{spread(3)}});
  recommend::SequenceIndex index(test::makeDatabase(customers));
  recommend::FollowerCounts f = index.followersOf({spread(1)}, 1, 0, 0.0, 0.0);
  EXPECT_EQ(f.contextCustomers, 20);
  expectFollowers(f.followers, {{1300000000, 0.1}, {2000000000, 0.9}});
  f = index.followersOf({spread(2)}, 1, 0, 1.0, 0.0);
  expectFollowers(f.followers, {{-800000000, 1.0}, {1300000000, 0.5}});
}

TEST(SequenceIndex, DecayWeighsLaterItemsLess) {
  // After (2): 1 at distance 0, 4 at distance 1, weight 1 / (1 + 1).
  recommend::SequenceIndex index(smallDatabase());
  recommend::FollowerCounts f = index.followersOf({2}, 1, 0, 1.0, 0.0);
  expectFollowers(f.followers, {{1, 1.0}, {4, 0.5}});
}

TEST(SequenceIndex, ItemsAreLeftOutWhenTooFewCustomersHoldTheContext) {
  // Nobody holds {2, 5}; {2} (2 customers) and {5} (18, nothing after it)
  // each give their shares, averaged over the two sub-contexts.
  recommend::SequenceIndex index(smallDatabase());
  recommend::FollowerCounts f = index.followersOf({5, 2}, 1, 1, 0.0, 0.0);
  EXPECT_EQ(f.context, (std::vector<int>{2, 5}));
  EXPECT_EQ(f.dropped, 1);
  EXPECT_EQ(f.contexts, 2);
  EXPECT_EQ(f.contextCustomers, 20);
  expectFollowers(f.followers, {{1, 0.5}, {4, 0.5}});
  // Without leaving items out there is nothing.
  EXPECT_TRUE(index.followersOf({5, 2}, 1, 0, 0.0, 0.0).followers.empty());
  // Unknown items are ignored.
  EXPECT_EQ(index.followersOf({99, 1}, 1, 0, 0.0, 0.0).context,
            (std::vector<int>{1}));
}

TEST(SequenceIndex, ContextsMixingRareAndPopularItems) {
  // 2 x (7)(8)(1)(7)(9)(7), 18 x (1)(5): 7 and 8 are rare, 1 popular. The
  // two holders have seen the whole context after set 2; from there 7 comes
  // at distance 0 (its later entry not counted again) and 9 at distance 1.
  std::vector<test::Customer> customers;
  for (int i = 0; i < 2; ++i) {
    customers.push_back({{7}, {8}, {1}, {7}, {9}, {7}});
  }
  for (int i = 0; i < 18; ++i) customers.push_back({{1}, {5}});
  recommend::SequenceIndex index(test::makeDatabase(customers));
  expectCounts(index.followersOf({1, 8, 7}, 1, 0, 1.0, 0.0), 0, 1, 2,
               {{7, 1.0}, {9, 0.5}});
  expectCounts(index.followersOf({7, 1}, 1, 0, 1.0, 0.0), 0, 1, 2,
               {{7, 1.0}, {9, 0.5}});
  // Nobody holds {8, 5}: {8} gives 1, 7 and 9 at distances 0, 1 and 2 to
  // its 2 holders, {5} nothing to its 18; the mean of the two shares.
  expectCounts(index.followersOf({8, 5}, 1, 1, 1.0, 0.0), 1, 2, 20,
               {{1, 0.5}, {7, 0.25}, {9, 1.0 / 6}});
}

TEST(SequenceIndex, SimilarCountsOfAContextHeldByEveryCustomer) {
  // {1}: 20 customers, each counting 1 / 20 for every item after (1).
  recommend::SequenceIndex index(smallDatabase());
  expectCounts(index.similarCounts({1}, 0), 0, 1, 20, {{4, 0.1}, {5, 0.9}});
}

TEST(SequenceIndex, SimilarCountsCountEveryLaterOccurrence) {
  // Two customers hold {1}: the first has 2 twice and 3 once after it.
  recommend::SequenceIndex index(
      test::makeDatabase({{{1}, {2}, {2}, {3}}, {{1}, {3}}}));
  expectFollowers(index.similarCounts({1}, 0).followers, {{2, 1.0}, {3, 1.0}});
}

TEST(SequenceIndex, SimilarCountsLeaveItemsOutRoundByRound) {
  // Nobody holds {2, 5}. Round 1 keeps one item: {2} is held by 2
  // customers, each adding (1 / 2) / 2 for 1 and for 4; {5} by 18 with
  // nothing after it.
  recommend::SequenceIndex index(smallDatabase());
  expectCounts(index.similarCounts({5, 2}, 0), 1, 2, 2, {{1, 0.5}, {4, 0.5}});
}

TEST(SequenceIndex, SimilarCountsTakeEachCustomerOnceAtItsLargestContext) {
  // Round 1 from the start: {1, 2} is held by the first customer alone
  // (weight 1 for 9); {1} by both, (1 / 2) / 2 each, but only the second
  // one still counts (8); {2} only by the first.
  recommend::SequenceIndex index(
      test::makeDatabase({{{1}, {2}, {9}}, {{1}, {8}}}));
  expectCounts(index.similarCounts({2, 1}, 1), 1, 3, 2, {{8, 0.25}, {9, 1.0}});
  // A first round past the context's size starts at its last one.
  EXPECT_EQ(index.similarCounts({1}, 2).dropped, 0);
}

TEST(SequenceIndex, AMemoGivesTheFiguresOfAFreshWalk) {
  // Random sequences over a few items, so that sub-contexts recur and are
  // held by enough customers for their walks to be kept (many entries read
  // per item found); every answer, taken from the memo or not, equals the
  // one without a memo to the last bit.
  std::mt19937 random(11);
  std::uniform_int_distribution<int> item(1, 6);
  std::uniform_int_distribution<int> length(1, 7);
  std::vector<test::Customer> customers(400);
  for (test::Customer& customer : customers) {
    for (int s = length(random); s > 0; --s) customer.push_back({item(random)});
  }
  recommend::SequenceIndex index(test::makeDatabase(customers));
  recommend::FollowerMemo memo;
  for (int call = 0; call < 60; ++call) {
    std::vector<int> context;
    for (int k = length(random) % 4 + 1; k > 0; --k) {
      context.push_back(item(random));
    }
    const double decay = call < 40 ? 0.3 : 0.0;  // then another decay
    const recommend::FollowerCounts fresh =
        index.followersOf(context, 5, 2, decay, 2.0);
    const recommend::FollowerCounts memoised =
        index.followersOf(context, 5, 2, decay, 2.0, &memo);
    EXPECT_EQ(memoised.contexts, fresh.contexts);
    EXPECT_EQ(memoised.contextCustomers, fresh.contextCustomers);
    EXPECT_EQ(memoised.dropped, fresh.dropped);
    EXPECT_EQ(memoised.context, fresh.context);
    EXPECT_EQ(memoised.followers, fresh.followers);
  }
  EXPECT_GT(memo.entries(), 0u);
}

TEST(SequenceIndex, RepeatRate) {
  // Sets after the first: 2 (not in {1}), 1 (not in {2}), 1 (in {1}).
  recommend::SequenceIndex index(test::makeDatabase({{{1}, {2}, {1}, {1}}}));
  EXPECT_DOUBLE_EQ(index.repeatRate(1), 1.0 / 3);
}

TEST(SequenceIndex, FlatFormRoundTripsAndIsChecked) {
  recommend::SequenceIndex index(smallDatabase());
  recommend::SequenceIndex copy;
  ASSERT_TRUE(recommend::SequenceIndex::fromFlat(
      index.items(), index.setStarts(), index.customerStarts(), &copy));
  EXPECT_EQ(copy.customerCount(), 22u);
  expectFollowers(copy.followersOf({1}, 1, 0, 0.0, 0.0).followers,
                  {{4, 0.1}, {5, 0.9}});
  EXPECT_FALSE(
      recommend::SequenceIndex::fromFlat({1, 2}, {0, 1}, {0, 1}, &copy));
  EXPECT_TRUE(copy.empty());
}

TEST(SequenceIndex, AnEmptyItemSetStillCountsAsADistance) {
  // One customer: (1)()(2 3)(4), as a model file may hold it; the tail after
  // (1) has as many entries as item sets without one item per set.
  recommend::SequenceIndex index;
  ASSERT_TRUE(recommend::SequenceIndex::fromFlat({1, 2, 3, 4}, {0, 1, 1, 3, 4},
                                                 {0, 4}, &index));
  recommend::FollowerCounts f = index.followersOf({1}, 1, 0, 1.0, 0.0);
  expectCounts(f, 0, 1, 1, {{2, 0.5}, {3, 0.5}, {4, 1.0 / 3}});
}

TEST(SequenceIndex, AnItemMetAgainInTheTailCountsAtItsFirstEntry) {
  // (1)(2)(2)(3)(2) and (2)(1)(3)(1)(3): decay 1, so distance d weighs
  // 1 / (1 + d); an item counts once per customer, at its first entry
  // after the context point, whatever came before that point.
  recommend::SequenceIndex index;
  ASSERT_TRUE(recommend::SequenceIndex::fromFlat(
      {1, 2, 2, 3, 2, 2, 1, 3, 1, 3}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10},
      {0, 5, 10}, &index));
  recommend::FollowerCounts f = index.followersOf({1}, 1, 0, 1.0, 0.0);
  expectCounts(f, 0, 1, 2, {{1, 0.25}, {2, 0.5}, {3, (1.0 / 3 + 1.0) / 2}});
}

TEST(SequenceIndex, FollowersWhoseWeightUnderflowsAreLeftOut) {
  // Six customers (1)(2)(3)(4): with a decay of 1e308 the weight at
  // distance 1 is tiny but not zero and the one at distance 2 is zero, so
  // (4) is met by every customer and never counted.
  recommend::SequenceIndex index;
  std::vector<int> items;
  std::vector<std::uint32_t> sets{0};
  std::vector<std::uint32_t> customers{0};
  for (int c = 0; c < 6; ++c) {
    for (int item = 1; item <= 4; ++item) {
      items.push_back(item);
      sets.push_back(static_cast<std::uint32_t>(items.size()));
    }
    customers.push_back(static_cast<std::uint32_t>(sets.size() - 1));
  }
  ASSERT_TRUE(
      recommend::SequenceIndex::fromFlat(items, sets, customers, &index));
  recommend::FollowerCounts f = index.followersOf({1}, 1, 0, 1e308, 0.0);
  const double tiny = 1.0 / (1.0 + 1e308);
  expectCounts(f, 0, 1, 6, {{2, 1.0}, {3, tiny}});
  EXPECT_GT(f.followers[1].second, 0.0);
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
