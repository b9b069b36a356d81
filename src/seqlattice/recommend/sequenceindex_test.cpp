#include "seqlattice/recommend/sequenceindex.h"

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

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
