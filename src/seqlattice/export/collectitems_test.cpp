#include "seqlattice/export/collectitems.h"

#include <gtest/gtest.h>

#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/export/export_test_util.h"
#include "seqlattice/rules/coutstate_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

TimedItemSet MakeSet(const std::vector<int>& items, double time = 0.0) {
  TimedItemSet set(static_cast<int>(items.size()), time);
  for (int item : items) set.AddItem(item);
  return set;
}

std::vector<std::pair<int, int>> ItemNumbers(const CollectItems& c) {
  return {c.GetUniqItems().begin(), c.GetUniqItems().end()};
}

// Item sets in key order as (items, number).
std::vector<std::pair<std::vector<int>, int>> ItemsetNumbers(
    const CollectItems& c) {
  std::vector<std::pair<std::vector<int>, int>> out;
  for (const auto& [set, number] : c.GetUniqItemsets()) {
    out.emplace_back(std::vector<int>(set.Begin(), set.End()), number);
  }
  return out;
}

// The five rules of the sample model, in the order of confidence.
std::vector<SeqAssociationRule> SampleRules() {
  std::vector<SeqAssociationRule> rules;
  rules.push_back(test::MakeRule({{10}}, {{20}}));
  rules.push_back(test::MakeRule({{10, 20}}, {{30}}));
  rules.push_back(test::MakeRule({{20}}, {{30}}));
  rules.push_back(test::MakeRule({{10}, {20}}, {{30}}));
  rules.push_back(test::MakeRule({{10}}, {{30}}));
  return rules;
}

TEST(CollectItemsTest, DefaultIsEmpty) {
  const CollectItems c;
  EXPECT_EQ(c.GetNUniqItems(), 0);
  EXPECT_EQ(c.GetNUniqItemsets(), 0);
  EXPECT_EQ(c.GetNSequences(), 0);
  EXPECT_TRUE(c.GetUniqSequences().empty());
}

TEST(CollectItemsTest, EmptyRuleVectorGivesEmptyMapsAndNoSequences) {
  std::vector<SeqAssociationRule> rules;
  const CollectItems c(rules);
  EXPECT_TRUE(c.GetUniqItems().empty());
  EXPECT_TRUE(c.GetUniqItemsets().empty());
  EXPECT_TRUE(c.GetUniqSequences().empty());
  EXPECT_EQ(c.GetNSequences(), 0);
}

TEST(CollectItemsTest, ItemsAreNumberedInCodeOrderNotDiscoveryOrder) {
  std::vector<SeqAssociationRule> rules;
  rules.push_back(test::MakeRule({{7}}, {{3}}));
  rules.push_back(test::MakeRule({{5}}, {{7}}));
  const CollectItems c(rules);
  EXPECT_EQ(ItemNumbers(c),
            (std::vector<std::pair<int, int>>{{3, 1}, {5, 2}, {7, 3}}));
  EXPECT_EQ(c.IndexOfUniqItem(3), 1);
  EXPECT_EQ(c.IndexOfUniqItem(5), 2);
  EXPECT_EQ(c.IndexOfUniqItem(7), 3);
}

TEST(CollectItemsTest, ItemsetLookupIgnoresTheTime) {
  std::vector<SeqAssociationRule> rules;
  rules.push_back(test::MakeRule({{1, 2}}, {{4}}));
  const CollectItems c(rules);
  const int number = c.IndexOfUniqItemset(MakeSet({1, 2}));
  EXPECT_EQ(number, 1);
  EXPECT_EQ(c.IndexOfUniqItemset(MakeSet({1, 2}, 4.5)), number);
  for (const auto& entry : c.GetUniqItemsets()) {
    EXPECT_EQ(entry.first.GetTime(), 0.0);
  }
}

TEST(CollectItemsTest, UnknownItemSetOrSequenceGivesMinusOne) {
  std::vector<SeqAssociationRule> rules = SampleRules();
  const CollectItems c(rules);
  EXPECT_EQ(c.IndexOfUniqItem(99), -1);
  EXPECT_EQ(c.IndexOfUniqItemset(MakeSet({10, 30})), -1);
  EXPECT_EQ(c.IndexOfUniqSequence(test::MakeSequence({{30}, {10}})), -1);
  const CollectItems empty;
  EXPECT_EQ(empty.IndexOfUniqItem(10), -1);
  EXPECT_EQ(empty.IndexOfUniqItemset(MakeSet({10})), -1);
  EXPECT_EQ(empty.IndexOfUniqSequence(test::MakeSequence({{10}})), -1);
}

// Worked by hand: the sequences are the antecedents, consequents and joined
// patterns of the five rules; in Sequence order (set by set, a proper prefix
// first, (10) < (10 20) < (20) < (30)) they are numbered 1 to 9.
TEST(CollectItemsTest, SampleRulesNumberedAsWorkedByHand) {
  std::vector<SeqAssociationRule> rules = SampleRules();
  const CollectItems c(rules);
  EXPECT_EQ(ItemNumbers(c),
            (std::vector<std::pair<int, int>>{{10, 1}, {20, 2}, {30, 3}}));
  EXPECT_EQ(ItemsetNumbers(c),
            (std::vector<std::pair<std::vector<int>, int>>{
                {{10}, 1}, {{10, 20}, 2}, {{20}, 3}, {{30}, 4}}));
  const std::vector<std::pair<test::Sets, int>> expected = {
      {{{10}}, 1},       {{{10}, {20}}, 2}, {{{10}, {20}, {30}}, 3},
      {{{10}, {30}}, 4}, {{{10, 20}}, 5},   {{{10, 20}, {30}}, 6},
      {{{20}}, 7},       {{{20}, {30}}, 8}, {{{30}}, 9}};
  ASSERT_EQ(c.GetNSequences(), 9);
  ASSERT_EQ(c.GetUniqSequences().size(), 9u);
  for (const auto& [sets, number] : expected) {
    EXPECT_EQ(c.IndexOfUniqSequence(test::MakeSequence(sets)), number)
        << "sequence numbered " << number;
  }
  int walked = 0;
  for (const auto& entry : c.GetUniqSequences()) {
    EXPECT_EQ(entry.second, ++walked);
  }
}

TEST(CollectItemsTest, AnEntryMetAgainKeepsItsPlace) {
  std::vector<SeqAssociationRule> rules;
  rules.push_back(test::MakeRule({{1}}, {{2}}));
  rules.push_back(test::MakeRule({{1}}, {{2}}));
  const CollectItems c(rules);
  EXPECT_EQ(c.GetNSequences(), 3);
  EXPECT_EQ(c.GetNUniqItems(), 2);
  EXPECT_EQ(c.GetNUniqItemsets(), 2);
}

TEST(CollectItemsTest, CurrentJoinAlsoDeclaresTheSidesOwnSets) {
  std::vector<SeqAssociationRule> rules;
  rules.push_back(test::MakeRule({{1}, {2}}, {{3}, {4}}, 0));
  const CollectItems c(rules);
  // Joined: (1)(2 3)(4). Its items and sets, then (1), (2) and (3) from the
  // antecedent and the consequent's first set.
  EXPECT_EQ(ItemNumbers(c),
            (std::vector<std::pair<int, int>>{{1, 1}, {2, 2}, {3, 3}, {4, 4}}));
  EXPECT_EQ(ItemsetNumbers(c),
            (std::vector<std::pair<std::vector<int>, int>>{
                {{1}, 1}, {{2}, 2}, {{2, 3}, 3}, {{3}, 4}, {{4}, 5}}));
  EXPECT_EQ(c.IndexOfUniqSequence(test::MakeSequence({{1}, {2, 3}, {4}})), 2);
  EXPECT_EQ(c.GetNSequences(), 3);
}

TEST(CollectItemsTest, CurrentJoinDoesNotEnterTheSidesItemsAgain) {
  std::vector<SeqAssociationRule> rules;
  rules.push_back(test::MakeRule({{1}}, {{2}}, 0));
  const CollectItems c(rules);
  EXPECT_EQ(ItemsetNumbers(c), (std::vector<std::pair<std::vector<int>, int>>{
                                   {{1}, 1}, {{1, 2}, 2}, {{2}, 3}}));
  EXPECT_EQ(c.GetNUniqItems(), 2);
}

TEST(CollectItemsTest, UnknownJoinTypeCollectsTheAntecedentAlone) {
  std::vector<SeqAssociationRule> rules;
  rules.push_back(test::MakeRule({{1}}, {{2}}, 2));
  const CollectItems c(rules);
  EXPECT_EQ(ItemNumbers(c), (std::vector<std::pair<int, int>>{{1, 1}}));
  EXPECT_EQ(c.GetNUniqItemsets(), 1);
  // The antecedent and the joined sequence are the same entry.
  EXPECT_EQ(c.GetNSequences(), 2);
  EXPECT_EQ(c.IndexOfUniqSequence(test::MakeSequence({{2}})), 2);
}

// Same item sets in the same order, whatever the times.
bool SameSets(const Sequence& a, const test::Sets& b) {
  const Sequence other = test::MakeSequence(b);
  return a.Length() == other.Length() && !(a < other) && !(other < a);
}

TEST(CollectItemsTest, JoinedSequenceFollowsTheJoinType) {
  EXPECT_TRUE(
      SameSets(JoinedSequence(test::MakeRule({{1}, {2}}, {{3}, {4}}, 1)),
               {{1}, {2}, {3}, {4}}));
  EXPECT_TRUE(
      SameSets(JoinedSequence(test::MakeRule({{1}, {2}}, {{3}, {4}}, 0)),
               {{1}, {2, 3}, {4}}));
  EXPECT_TRUE(
      SameSets(JoinedSequence(test::MakeRule({{1}}, {{3}}, -1)), {{1}}));
  EXPECT_TRUE(SameSets(JoinedSequence(test::MakeRule({{1}}, {{3}}, 2)), {{1}}));
}

TEST(CollectItemsTest, FromDictionaryTakesOneItemAndOneSetPatternsOnly) {
  const auto dictionary = test::SampleDictionary();
  const CollectItems c(dictionary.get());
  EXPECT_EQ(ItemNumbers(c),
            (std::vector<std::pair<int, int>>{{10, 1}, {20, 2}, {30, 3}}));
  EXPECT_EQ(ItemsetNumbers(c),
            (std::vector<std::pair<std::vector<int>, int>>{
                {{10}, 1}, {{10, 20}, 2}, {{20}, 3}, {{30}, 4}}));
  // Every stored pattern counts, the empty one included: 1 + 3 + 4 + 2.
  EXPECT_EQ(c.GetNSequences(), 10);
  EXPECT_TRUE(c.GetUniqSequences().empty());
}

TEST(CollectItemsTest, FromDictionarySkipsItemsOnlyInLongerPatterns) {
  SequenceDictionary dictionary(4);
  test::SetTotal(dictionary, 3);
  test::addPattern(dictionary, {{1}}, 3);
  test::addPattern(dictionary, {{1}, {2}}, 2);  // (2) was pruned
  const CollectItems c(&dictionary);
  EXPECT_EQ(ItemNumbers(c), (std::vector<std::pair<int, int>>{{1, 1}}));
  EXPECT_EQ(ItemsetNumbers(c),
            (std::vector<std::pair<std::vector<int>, int>>{{{1}, 1}}));
  EXPECT_EQ(c.GetNSequences(), 3);
}

TEST(CollectItemsTest, FromDictionaryHoldingOnlyTheEmptyPattern) {
  SequenceDictionary dictionary(3);
  const CollectItems c(&dictionary);
  EXPECT_EQ(c.GetNUniqItems(), 0);
  EXPECT_EQ(c.GetNUniqItemsets(), 0);
  EXPECT_EQ(c.GetNSequences(), 1);
}

TEST(CollectItemsTest, NullDictionaryIsRejected) {
  EXPECT_THROW(CollectItems(static_cast<SequenceDictionary const*>(nullptr)),
               std::invalid_argument);
}

// Listings on std::cout start from a fresh stream state and leave it as
// they found it.
class CollectItemsDisplayTest : public test::FreshCoutTest {
 protected:
  static std::string Listing(const CollectItems& c) {
    testing::internal::CaptureStdout();
    c.Display(std::cout);
    return testing::internal::GetCapturedStdout();
  }
};

TEST_F(CollectItemsDisplayTest, ListsTheThreeMaps) {
  std::vector<SeqAssociationRule> rules;
  rules.push_back(test::MakeRule({{3}}, {{1, 2}}));
  EXPECT_EQ(Listing(CollectItems(rules)),
            "N of items = 3\n"
            "(item,id) pairs: ((1,1),(2,2),(3,3))\n"
            "N of item sets = 2\n"
            "(itemset,id) pairs: (((1 2[0]),1),((3[0]),2))\n"
            "N of sequences = 3\n"
            "(sequence,id) pairs: ((<(1 2[1])>\n,1),(<(3[1])>\n,2),"
            "(<(3[1])(1 2[1])>\n,3))\n");
}

TEST_F(CollectItemsDisplayTest, EmptyCollection) {
  EXPECT_EQ(Listing(CollectItems()),
            "N of items = 0\n(item,id) pairs: ()\n"
            "N of item sets = 0\n(itemset,id) pairs: ()\n"
            "N of sequences = 0\n(sequence,id) pairs: ()\n");
}

// From a dictionary the sequence block stays empty although sequences were
// counted: it lists the map, not the count.
TEST_F(CollectItemsDisplayTest, FromDictionaryShowsNoSequences) {
  SequenceDictionary dictionary(3);
  test::SetTotal(dictionary, 2);
  test::addPattern(dictionary, {{4}}, 2);
  EXPECT_EQ(Listing(CollectItems(&dictionary)),
            "N of items = 1\n(item,id) pairs: ((4,1))\n"
            "N of item sets = 1\n(itemset,id) pairs: (((4[0]),1))\n"
            "N of sequences = 0\n(sequence,id) pairs: ()\n");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
