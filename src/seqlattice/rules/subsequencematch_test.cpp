// Matching a customer's history against the lattice, on the shop database
// (counts and adjacency in shopdatabase_test_util.h) and on small databases
// made for single cases.
#include <memory>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "seqlattice/rules/shopdatabase_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

// The patterns matching appends after what `found` held, shown as text; all
// of them are deleted.
std::vector<std::string> matched(SequenceDictionary& dict,
                                 const Sequence& customer, int skipLast,
                                 std::vector<NTSequence*> found = {}) {
  const size_t before = found.size();
  EXPECT_TRUE(
      dict.getSubsequencesInSequence(found, &customer, skipLast).IsOK());
  std::vector<std::string> shown;
  for (size_t i = before; i < found.size(); ++i) {
    shown.push_back(test::show(*found[i]));
  }
  for (NTSequence* p : found) delete p;
  return shown;
}

std::vector<std::string> matched(SequenceDictionary& dict,
                                 const test::History& customer,
                                 int skipLast = 0) {
  return matched(dict, test::toSequence(customer), skipLast);
}

class ShopMatching : public testing::Test {
 protected:
  std::unique_ptr<SequenceDictionary> dict =
      test::buildDictionary(test::shopDatabase(), test::kShopMinCount);
};

// (1)(2 3): (2) and (3) from the last set; (2) grows by (1,1) to (1)(2) and by
// (3,0) to (2 3); (3) then grows by (1,1) to (1)(3); (2,0) gives (2 3) again,
// and (2,1) finds no 2 before the last set. Patterns of three items are
// stored, but none is contained in this history.
TEST_F(ShopMatching, ReturnsLastSetItemsThenExtensionsInOrderFormed) {
  EXPECT_THAT(matched(*dict, {{1}, {2, 3}}),
              testing::ElementsAre("(2)", "(3)", "(1)(2)", "(2 3)", "(1)(3)"));
}

TEST_F(ShopMatching, FindsThreeSetPatternsEndingInTheLastSet) {
  EXPECT_THAT(matched(*dict, {{1}, {3}, {4}}),
              testing::ElementsAre("(4)", "(1)(4)", "(3)(4)", "(1)(3)(4)"));
  EXPECT_THAT(matched(*dict, {{1}, {2, 3}, {4}}),
              testing::ElementsAre("(4)", "(1)(4)", "(2)(4)", "(3)(4)",
                                   "(1)(2)(4)", "(2 3)(4)", "(1)(3)(4)"));
}

TEST_F(ShopMatching, SkipLastLeavesOutTrailingItemSets) {
  EXPECT_THAT(matched(*dict, {{1}, {3}, {4}}, 1),
              testing::ElementsAre("(3)", "(1)(3)"));
  EXPECT_THAT(matched(*dict, {{1}, {3}, {4}}, 2), testing::ElementsAre("(1)"));
}

TEST_F(ShopMatching, SkipLastAtOrBeyondTheLengthYieldsNothing) {
  EXPECT_THAT(matched(*dict, {{1}, {3}, {4}}, 3), testing::IsEmpty());
  EXPECT_THAT(matched(*dict, {{1}, {3}, {4}}, 7), testing::IsEmpty());
}

TEST_F(ShopMatching, LastSetOfUnknownItemsYieldsNothingWhateverCameBefore) {
  // (1)(3)(4) alone matches four patterns; item 9 is not stored.
  EXPECT_THAT(matched(*dict, {{1}, {3}, {4}, {9}}), testing::IsEmpty());
  EXPECT_THAT(matched(*dict, {{9}}), testing::IsEmpty());
}

TEST_F(ShopMatching, UnknownItemsAreDroppedAndTheirSetsWithThem) {
  // The (9) in between vanishes, (4 9) keeps 4.
  EXPECT_THAT(matched(*dict, {{1}, {9}, {3}, {4, 9}}),
              testing::ElementsAre("(4)", "(1)(4)", "(3)(4)", "(1)(3)(4)"));
}

TEST_F(ShopMatching, DuplicateItemsInTheLastSetGiveOnePattern) {
  Sequence customer = test::toSequence({{1}});
  TimedItemSet last;
  const int items[] = {3, 2, 3, 3};
  last.AddAllItems(items, 4, 2.0);
  customer.AddTimedItemSet(&last);
  EXPECT_THAT(matched(*dict, customer, 0),
              testing::ElementsAre("(2)", "(3)", "(1)(2)", "(2 3)", "(1)(3)"));
}

TEST_F(ShopMatching, TimesNeverChangeTheResult) {
  const test::History history = {{1}, {2, 3}};
  const std::vector<std::string> reference = matched(*dict, history);
  EXPECT_EQ(matched(*dict, test::toSequence(history, 500.0, -7.5), 0),
            reference);
  EXPECT_EQ(matched(*dict, test::toSequence(history, 0.0, 0.0), 0), reference);
}

TEST_F(ShopMatching, KeepsWhatTheOutputHeldBefore) {
  int set[2] = {1, 42};
  std::vector<NTSequence*> found = {new NTSequence(set)};
  std::vector<NTSequence*> copy = found;
  const Sequence customer = test::toSequence({{2}});
  ASSERT_TRUE(dict->getSubsequencesInSequence(found, &customer, 0).IsOK());
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0], copy[0]);
  EXPECT_EQ(test::show(*found[1]), "(2)");
  for (NTSequence* p : found) delete p;
}

TEST_F(ShopMatching, NullOrEmptyCustomerYieldsNothing) {
  std::vector<NTSequence*> found;
  EXPECT_TRUE(dict->getSubsequencesInSequence(found, nullptr, 0).IsOK());
  const Sequence empty;
  EXPECT_TRUE(dict->getSubsequencesInSequence(found, &empty, 0).IsOK());
  EXPECT_THAT(found, testing::IsEmpty());
}

// With three levels (patterns of up to two items) the largest level is 2:
// only the one-item patterns of the last set are returned, although (1)(2),
// (1)(3) and (2 3) are stored and contained.
TEST(Matching, LargestLevelTwoReturnsOnlyOneItemPatterns) {
  std::unique_ptr<SequenceDictionary> dict =
      test::buildDictionary(test::shopDatabase(), test::kShopMinCount, 3);
  ASSERT_EQ(dict->LargestSequence(), 2);
  EXPECT_THAT(matched(*dict, {{1}, {2, 3}}),
              testing::ElementsAre("(2)", "(3)"));
}

TEST(Matching, WithoutLatticeReturnsOnlyOneItemPatterns) {
  std::unique_ptr<SequenceDictionary> dict = test::buildDictionary(
      test::shopDatabase(), test::kShopMinCount, 10, false);
  EXPECT_THAT(matched(*dict, {{1}, {2, 3}}),
              testing::ElementsAre("(2)", "(3)"));
}

// Two customers (2)(1)(3) store (1), (2), (3), (2)(1), (1)(3), (2)(3) and
// (2)(1)(3), each twice. In (1)(2)(1)(3), (1)(3) is matched at the second 1
// (index 2), the latest before (3), so the 2 at index 1 extends it to
// (2)(1)(3). Matched at the first 1, nothing would come before it.
TEST(Matching, RepeatedItemIsMatchedAtItsLatestEarlierOccurrence) {
  std::unique_ptr<SequenceDictionary> dict =
      test::buildDictionary({{{2}, {1}, {3}}, {{2}, {1}, {3}}}, 2);
  EXPECT_THAT(matched(*dict, {{1}, {2}, {1}, {3}}),
              testing::ElementsAre("(3)", "(1)(3)", "(2)(3)", "(2)(1)(3)"));
  EXPECT_THAT(matched(*dict, {{1}, {2}, {3}}),
              testing::ElementsAre("(3)", "(1)(3)", "(2)(3)"));
}

// Two customers (1)(3)(4) and two (1)(2)(5) store the subsequences of each,
// every one twice ((1) four times). In (1)(2 3)(4 5), (4) sends (3)(4) to the
// work set of item set 1 before (5) sends (2)(5) there; the work set takes
// (2)(5) first, being the smaller pattern, so (1)(2)(5) is formed before
// (1)(3)(4).
TEST(Matching, EachWorkSetIsTakenSmallestPatternFirst) {
  std::unique_ptr<SequenceDictionary> dict = test::buildDictionary(
      {{{1}, {3}, {4}}, {{1}, {3}, {4}}, {{1}, {2}, {5}}, {{1}, {2}, {5}}}, 2);
  EXPECT_THAT(matched(*dict, {{1}, {2, 3}, {4, 5}}),
              testing::ElementsAre("(4)", "(5)", "(1)(4)", "(3)(4)", "(1)(5)",
                                   "(2)(5)", "(1)(2)(5)", "(1)(3)(4)"));
}

// An item set may hold more than 100 known items. Items 1 .. 150 are stored,
// and (7)(150) and (3)(7)(150); the last set of (3)(7)(1 .. 150) gives its
// 150 one-item patterns, and its 150th item still grows into both.
TEST(Matching, ItemSetsOfMoreThanAHundredItems) {
  SequenceDictionary dict(10);
  int* none[1] = {nullptr};
  dict.incrementCount(none, 0);
  dict.incrementCount(none, 0);
  test::History customer = {{3}, {7}, {}};
  for (int item = 1; item <= 150; ++item) {
    test::addCarmaPattern(dict, {{item}}, 2);
    customer.back().push_back(item);
  }
  test::addCarmaPattern(dict, {{7}, {150}}, 2);
  test::addCarmaPattern(dict, {{3}, {7}, {150}}, 2);
  ASSERT_TRUE(dict.buildLattice().IsOK());
  const std::vector<std::string> found = matched(dict, customer);
  ASSERT_EQ(found.size(), 152u);
  EXPECT_EQ(found[0], "(1)");
  EXPECT_EQ(found[149], "(150)");
  EXPECT_EQ(found[150], "(7)(150)");
  EXPECT_EQ(found[151], "(3)(7)(150)");
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
