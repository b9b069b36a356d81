// The next-item estimate on a hand-made database:
//   3 customers  (1)(2)(3)
//   1 customer   (1)(2)(4)
//   2 customers  (5)(2)(4 6)
//   2 customers  (4 6)(1)
//   1 customer   (7)(8)
// The runs followed by an item set, with their occurrences: (1) 4, (2) 6,
// (1)(2) 4, (5) 2, (5)(2) 2, (4 6) 2; (7) is seen once and not kept.
#include "seqlattice/recommend/nextitem.h"

#include <vector>

#include "gtest/gtest.h"
#include "seqlattice/mining/mining_test_util.h"
#include "seqlattice/sequence/sequence_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

inline mining::SequenceDatabase nextItemDatabase() {
  std::vector<Customer> customers;
  for (int i = 0; i < 3; ++i) customers.push_back({{1}, {2}, {3}});
  customers.push_back({{1}, {2}, {4}});
  for (int i = 0; i < 2; ++i) customers.push_back({{5}, {2}, {4, 6}});
  for (int i = 0; i < 2; ++i) customers.push_back({{4, 6}, {1}});
  customers.push_back({{7}, {8}});
  return makeDatabase(customers);
}

struct Expected {
  int item;
  double next;
  double soon;
  int runSets;
  long runCount;
  long nextCount;
};

inline void expectItems(const recommend::NextItems& got,
                        const std::vector<Expected>& expected) {
  ASSERT_EQ(got.items.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const recommend::NextItemEstimate& e = got.items[i];
    EXPECT_EQ(e.item, expected[i].item);
    EXPECT_NEAR(e.next, expected[i].next, 1e-12);
    EXPECT_NEAR(e.soon, expected[i].soon, 1e-12);
    EXPECT_EQ(e.runSets, expected[i].runSets);
    EXPECT_EQ(e.runCount, expected[i].runCount);
    EXPECT_EQ(e.nextCount, expected[i].nextCount);
  }
}

}  // namespace test

namespace {

class NextItemTest : public ::testing::Test {
 protected:
  NextItemTest() : sequences_(test::nextItemDatabase()), index_(sequences_) {}
  recommend::SequenceIndex sequences_;
  recommend::NextItemIndex index_;
};

TEST_F(NextItemTest, KeepsTheRunsSeenTwiceOrMore) {
  EXPECT_EQ(index_.runCount(), 6u);
}

TEST_F(NextItemTest, OneSetRunGivesItsShares) {
  // After (1): (2) 4 times of 4; (3) in the set after that 3 times, (4) once.
  const recommend::NextItems got =
      index_.estimate(test::MakeSequence(test::Sets{{1}}));
  test::expectItems(got, {{2, 4.0 / 24, 4.0 / 24, 1, 4, 4},
                          {3, 0, 3.0 / 24, 1, 4, 0},
                          {4, 0, 1.0 / 24, 1, 4, 0}});
  EXPECT_EQ(got.run, (std::vector<std::vector<int>>{{1}}));
}

TEST_F(NextItemTest, LongerRunsArePulledTowardsTheirSuffix) {
  // (1)(2), 4 times: 3 then (3), once (4). Its suffix (2), 6 times: 3 x (3),
  // 3 x (4), 2 x (6). p = c(1)(2) / 24 + (20 / 24) * c(2) / 26.
  const recommend::NextItems got =
      index_.estimate(test::MakeSequence(test::Sets{{9}, {1}, {2}}));
  const double shorter = 20.0 / 24 / 26;
  test::expectItems(
      got, {{3, 3.0 / 24 + 3 * shorter, 3.0 / 24 + 3 * shorter, 2, 4, 3},
            {4, 1.0 / 24 + 3 * shorter, 1.0 / 24 + 3 * shorter, 2, 4, 1},
            {6, 2 * shorter, 2 * shorter, 1, 6, 2}});
  EXPECT_EQ(got.run, (std::vector<std::vector<int>>{{1}, {2}}));
}

TEST_F(NextItemTest, WholeItemSetsMustMatch) {
  const recommend::NextItems got =
      index_.estimate(test::MakeSequence(test::Sets{{4, 6}}));
  test::expectItems(got, {{1, 2.0 / 22, 2.0 / 22, 1, 2, 2}});
  EXPECT_TRUE(
      index_.estimate(test::MakeSequence(test::Sets{{4}})).items.empty());
  EXPECT_TRUE(
      index_.estimate(test::MakeSequence(test::Sets{{6}})).items.empty());
}

TEST_F(NextItemTest, NothingAfterARareOrUnknownLastSet) {
  for (const Sequence& history : {test::MakeSequence(test::Sets{{7}}),
                                  test::MakeSequence(test::Sets{{1}, {9}}),
                                  test::MakeSequence(test::Sets{})}) {
    const recommend::NextItems got = index_.estimate(history);
    EXPECT_TRUE(got.items.empty());
    EXPECT_TRUE(got.run.empty());
  }
}

TEST_F(NextItemTest, FollowersComeRightNextInThisData) {
  EXPECT_DOUBLE_EQ(index_.nextShare(), 1.0);
}

TEST(NextItemIndex, NextShareCountsFollowersThatComeLater) {
  // 3 x (1)(2)(3), 1 x (1)(3)(2). After (1), 2 comes next 3 times and once
  // an item set later; after (2) (3 times), 3 always comes next; (3) is
  // followed once only and not kept: 6 right next of 7 within reach.
  std::vector<test::Customer> customers;
  for (int i = 0; i < 3; ++i) customers.push_back({{1}, {2}, {3}});
  customers.push_back({{1}, {3}, {2}});
  const recommend::SequenceIndex sequences(test::makeDatabase(customers));
  const recommend::NextItemIndex index(sequences);
  EXPECT_DOUBLE_EQ(index.nextShare(), 6.0 / 7);
}

TEST(NextItemIndex, KeepsTheMostFrequentFollowersOfARun) {
  // (1) followed by item 100 five times and by kMaxRunFollowers + 6 other
  // items twice each, the items 200, 201, ...: only the first of those
  // (lowest items) fill the rest of the list.
  std::vector<test::Customer> customers;
  for (int i = 0; i < 5; ++i) customers.push_back({{1}, {100}});
  const int others = recommend::kMaxRunFollowers + 6;
  for (int k = 0; k < others; ++k) {
    for (int i = 0; i < 2; ++i) customers.push_back({{1}, {200 + k}});
  }
  const recommend::SequenceIndex sequences(test::makeDatabase(customers));
  const recommend::NextItemIndex index(sequences);
  const recommend::NextItems got =
      index.estimate(test::MakeSequence(test::Sets{{1}}));
  ASSERT_EQ(got.items.size(),
            static_cast<std::size_t>(recommend::kMaxRunFollowers));
  const double n = 5 + 2 * others;
  EXPECT_EQ(got.items.front().item, 100);
  EXPECT_NEAR(got.items.front().next, 5 / (n + recommend::kRunSmoothing),
              1e-12);
  EXPECT_EQ(got.items[1].item, 200);
  EXPECT_EQ(got.items.back().item, 200 + recommend::kMaxRunFollowers - 2);
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
