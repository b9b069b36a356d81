// LatticeIndex against the library's own walk: for every history and every
// number of trailing item sets left out, the same stored patterns in the
// same order, with the same counts and the same followers, on a hand-made
// model and on random ones (item sets of one and of several items, items the
// model does not know).
#include "seqlattice/recommend/latticeindex.h"

#include <memory>
#include <random>
#include <vector>

#include "gtest/gtest.h"
#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/mining_test_util.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// One stored pattern of a match as plain values.
struct Evidence {
  std::vector<std::vector<int>> pattern;
  long count;
  std::vector<std::pair<int, long>> followers;  // (item, count)
  bool operator==(const Evidence& o) const {
    return pattern == o.pattern && count == o.count && followers == o.followers;
  }
};

inline std::vector<std::vector<int>> setsOf(const NTSequence& p) {
  std::vector<std::vector<int>> sets(static_cast<std::size_t>(p.getNSets()));
  for (int s = 0; s < p.getNSets(); ++s) {
    for (int i = 0; i < p.getSizeOfSet(s); ++i) {
      sets[static_cast<std::size_t>(s)].push_back(p.getItemInSet(i, s));
    }
  }
  return sets;
}

// The library's matching, then a descriptor lookup per pattern and one per
// extension in a new last item set.
inline std::vector<Evidence> walked(SequenceDictionary& dict,
                                    const Sequence& history, int skipLast) {
  std::vector<NTSequence*> found;
  dict.getSubsequencesInSequence(found, &history, skipLast);
  std::vector<std::unique_ptr<NTSequence>> owned(found.begin(), found.end());
  std::vector<Evidence> out;
  for (const auto& p : owned) {
    const SequenceCounter* counter = dict.getDescriptor(p.get());
    if (counter == nullptr) continue;
    Evidence e{setsOf(*p), counter->getCount(), {}};
    const int after = 2 * p->getNSets() + 1;
    if (counter->getAdjacentItems() != nullptr) {
      for (const auto& [item, position] : *counter->getAdjacentItems()) {
        if (position != after) continue;
        const NTSequence extended(*p, item, after);
        const SequenceCounter* c = dict.getDescriptor(&extended);
        if (c != nullptr) e.followers.emplace_back(item, c->getCount());
      }
    }
    out.push_back(e);
  }
  return out;
}

inline std::vector<Evidence> indexed(recommend::LatticeIndex& index,
                                     const Sequence& history, int skipLast) {
  std::vector<recommend::LatticeIndex::Match> matches;
  index.match(history, skipLast, &matches);
  std::vector<Evidence> out;
  for (const auto& m : matches) {
    Evidence e{setsOf(*m.pattern), m.count, {}};
    for (const auto& f : *m.followers)
      e.followers.emplace_back(f.item, f.count);
    out.push_back(e);
  }
  return out;
}

inline Sequence sequenceOf(const Customer& sets) {
  Sequence history;
  double time = 0;
  for (const std::vector<int>& items : sets) {
    TimedItemSet set(static_cast<int>(items.size()), time++);
    for (int item : items) set.AddItem(item);
    history.AddTimedItemSet(&set);
  }
  return history;
}

inline Customer randomCustomer(std::mt19937& random, int items, int maxSets,
                               int maxSetSize) {
  std::uniform_int_distribution<int> length(1, maxSets);
  std::uniform_int_distribution<int> size(1, maxSetSize);
  std::uniform_int_distribution<int> item(1, items);
  Customer customer(static_cast<std::size_t>(length(random)));
  for (std::vector<int>& set : customer) {
    const int n = size(random);
    for (int k = 0; k < n; ++k) set.push_back(item(random));
    std::sort(set.begin(), set.end());
    set.erase(std::unique(set.begin(), set.end()), set.end());
  }
  return customer;
}

}  // namespace test

namespace {

void mine(const std::vector<test::Customer>& customers, int minCount,
          int maxItems, SequenceDictionary& dict) {
  mining::MinerOptions options;
  options.minSupport = mining::MinSupport::count(minCount);
  options.maxItems = maxItems;
  options.threads = 1;
  mining::mineIntoDictionary(test::makeDatabase(customers), options, dict);
}

TEST(LatticeIndexTest, HandMadeModelGivesTheWalksPatternsInItsOrder) {
  // 3 x (1)(2 3)(4), 2 x (2)(1)(4), 1 x (3)(1 2): every pattern in 2
  // customers or more, up to 3 items.
  std::vector<test::Customer> customers;
  for (int i = 0; i < 3; ++i) customers.push_back({{1}, {2, 3}, {4}});
  for (int i = 0; i < 2; ++i) customers.push_back({{2}, {1}, {4}});
  customers.push_back({{3}, {1, 2}});
  SequenceDictionary dict(4);
  mine(customers, 2, 3, dict);
  recommend::LatticeIndex index(dict);

  const Sequence history = test::sequenceOf({{1}, {2, 3}});
  const std::vector<test::Evidence> last = test::indexed(index, history, 0);
  // Anchored on (2 3): the one-item patterns, then, at the last item set,
  // (2 3) before (3) in the patterns' order, each extended backwards in
  // turn. (1)(2 3)(4) would have four items, so (1)(2 3) has no follower.
  const std::vector<test::Evidence> expected = {
      {{{2}}, 6, {{1, 2}, {4, 5}}}, {{{3}}, 4, {{4, 3}}},
      {{{1}, {2}}, 3, {{4, 3}}},    {{{2, 3}}, 3, {{4, 3}}},
      {{{1}, {2, 3}}, 3, {}},       {{{1}, {3}}, 3, {{4, 3}}},
  };
  EXPECT_EQ(last, expected);
  EXPECT_EQ(last, test::walked(dict, history, 0));

  const std::vector<test::Evidence> earlier = test::indexed(index, history, 1);
  ASSERT_EQ(earlier.size(), 1u);
  EXPECT_EQ(earlier[0].pattern, (std::vector<std::vector<int>>{{1}}));
  EXPECT_EQ(earlier[0].count, 6);
  EXPECT_EQ(earlier, test::walked(dict, history, 1));
  // One node per pattern met: the one-item patterns of the history's items
  // and of their follower (1, 2, 3, 4) and the four longer ones matched;
  // asked again, those nodes give the same.
  EXPECT_EQ(index.nodeCount(), 8u);
  EXPECT_EQ(test::indexed(index, history, 0), last);
  EXPECT_EQ(index.nodeCount(), 8u);
}

TEST(LatticeIndexTest, FollowersOfAStoredPatternAndOfAMissingOne) {
  // (1) is followed by 2 in 3 customers and by 4 in all 5; (1)(2) by 3 in 2.
  std::vector<test::Customer> customers;
  for (int i = 0; i < 2; ++i) customers.push_back({{1}, {2}, {3}, {4}});
  customers.push_back({{1}, {2}, {4}});
  for (int i = 0; i < 2; ++i) customers.push_back({{1}, {4}});
  SequenceDictionary dict(4);
  mine(customers, 2, 3, dict);
  recommend::LatticeIndex index(dict);

  int one[2] = {1, 1};
  const std::vector<recommend::LatticeIndex::Follower>& ofOne =
      index.followersOf(NTSequence(one));
  ASSERT_EQ(ofOne.size(), 3u);
  EXPECT_EQ(ofOne[0].item, 2);
  EXPECT_EQ(ofOne[0].count, 3);
  EXPECT_DOUBLE_EQ(ofOne[0].popularity, 3.0 / 5);
  EXPECT_EQ(ofOne[1].item, 3);
  EXPECT_EQ(ofOne[1].count, 2);
  EXPECT_EQ(ofOne[2].item, 4);
  EXPECT_EQ(ofOne[2].count, 5);
  EXPECT_DOUBLE_EQ(ofOne[2].popularity, 1.0);

  int nine[2] = {1, 9};
  EXPECT_TRUE(index.followersOf(NTSequence(nine)).empty());
  // Asked twice, the node is made once.
  const std::size_t nodes = index.nodeCount();
  EXPECT_EQ(&index.followersOf(NTSequence(one)), &ofOne);
  EXPECT_EQ(index.nodeCount(), nodes);
}

TEST(LatticeIndexTest, UnknownItemsAndEmptyPassesMatchNothing) {
  SequenceDictionary dict(4);
  mine({{{1}, {2}, {3}}, {{1}, {2}, {3}}}, 2, 3, dict);
  recommend::LatticeIndex index(dict);
  EXPECT_TRUE(test::indexed(index, test::sequenceOf({{1}, {9}}), 0).empty());
  EXPECT_TRUE(test::indexed(index, test::sequenceOf({{1}}), 1).empty());
  EXPECT_TRUE(test::indexed(index, test::sequenceOf({{1}}), 5).empty());
  const std::vector<test::Evidence> skipped =
      test::indexed(index, test::sequenceOf({{1}, {9}, {2, 9}}), 0);
  ASSERT_EQ(skipped.size(), 2u);
  EXPECT_EQ(skipped[1].pattern, (std::vector<std::vector<int>>{{1}, {2}}));
  EXPECT_EQ(skipped[1].count, 2);
}

TEST(LatticeIndexTest, RandomModelsGiveTheWalksEvidence) {
  std::mt19937 random(20261124);
  int compared = 0;
  int nonEmpty = 0;
  for (int model = 0; model < 12; ++model) {
    const int items = 4 + model % 5;
    const int maxSetSize = model % 3 == 0 ? 1 : 3;
    std::vector<test::Customer> customers;
    for (int c = 0; c < 40; ++c) {
      customers.push_back(test::randomCustomer(random, items, 6, maxSetSize));
    }
    SequenceDictionary dict(6);
    mine(customers, 2 + model % 3, 2 + model % 4, dict);
    recommend::LatticeIndex index(dict);
    for (int h = 0; h < 30; ++h) {
      // One item more than the model knows, sometimes.
      const Sequence history =
          test::sequenceOf(test::randomCustomer(random, items + 1, 7, 3));
      for (int skip = 0; skip < history.Length(); ++skip) {
        const std::vector<test::Evidence> expected =
            test::walked(dict, history, skip);
        ASSERT_EQ(test::indexed(index, history, skip), expected)
            << "model " << model << " history " << h << " skip " << skip;
        ++compared;
        if (!expected.empty()) ++nonEmpty;
      }
    }
  }
  EXPECT_EQ(compared, 1508);
  EXPECT_GT(nonEmpty, compared / 2);
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
