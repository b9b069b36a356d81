// The dictionary built from the shop database holds exactly the counts and
// adjacency pairs worked out by hand in shopdatabase_test_util.h, which the
// rules and prediction tests rely on.
#include <memory>
#include <set>
#include <utility>

#include "gtest/gtest.h"
#include "seqlattice/rules/shopdatabase_test_util.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

struct Expected {
  test::History pattern;
  int count;
  std::set<std::pair<int, int>> adjacent;
};

TEST(ShopDatabase, HoldsTheCountsAndAdjacencyWorkedOutByHand) {
  std::unique_ptr<SequenceDictionary> dict =
      test::buildDictionary(test::shopDatabase(), test::kShopMinCount);
  const Expected table[] = {
      {{}, 10, {{1, 1}, {2, 1}, {3, 1}, {4, 1}, {5, 1}}},
      {{{1}}, 8, {{2, 0}, {2, 3}, {3, 3}, {4, 3}, {5, 3}}},
      {{{2}}, 8, {{1, 0}, {1, 1}, {3, 0}, {3, 3}, {4, 3}, {5, 3}}},
      {{{3}}, 7, {{1, 1}, {2, 0}, {2, 1}, {4, 3}, {5, 3}}},
      {{{4}}, 8, {{1, 1}, {2, 1}, {3, 1}, {5, 0}}},
      {{{5}}, 4, {{1, 1}, {2, 1}, {3, 1}, {4, 0}}},
      {{{1, 2}}, 2, {}},
      {{{2, 3}}, 2, {{4, 3}}},
      {{{4, 5}}, 2, {{3, 1}}},
      {{{1}, {2}}, 4, {{4, 5}}},
      {{{1}, {3}}, 4, {{4, 5}}},
      {{{1}, {4}}, 5, {{2, 3}, {3, 3}}},
      {{{1}, {5}}, 3, {}},
      {{{2}, {3}}, 3, {{4, 5}}},
      {{{2}, {4}}, 6, {{1, 1}, {3, 0}, {3, 3}}},
      {{{2}, {5}}, 3, {}},
      {{{3}, {4}}, 6, {{1, 1}, {2, 0}, {2, 1}, {5, 2}}},
      {{{3}, {5}}, 3, {{4, 2}}},
      {{{2, 3}, {4}}, 2, {}},
      {{{3}, {4, 5}}, 2, {}},
      {{{1}, {2}, {4}}, 3, {}},
      {{{1}, {3}, {4}}, 4, {}},
      {{{2}, {3}, {4}}, 3, {}},
  };
  for (const Expected& expected : table) {
    const Sequence sequence = test::toSequence(expected.pattern);
    const SequenceCounter* counter = dict->getDescriptor(&sequence);
    ASSERT_NE(counter, nullptr) << test::show(sequence);
    EXPECT_EQ(counter->getCount(), expected.count) << test::show(sequence);
    std::set<std::pair<int, int>> adjacent;
    if (counter->getAdjacentItems() != nullptr) {
      adjacent.insert(counter->getAdjacentItems()->begin(),
                      counter->getAdjacentItems()->end());
    }
    EXPECT_EQ(adjacent, expected.adjacent) << test::show(sequence);
  }
  EXPECT_EQ(dict->CountSequencesOfSize(1), 5);
  EXPECT_EQ(dict->CountSequencesOfSize(2), 12);
  EXPECT_EQ(dict->CountSequencesOfSize(3), 5);
  EXPECT_EQ(dict->CountSequencesOfSize(4), 0);
  EXPECT_EQ(dict->LargestSequence(), 3);
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
