// Rule extraction on the shop database (counts and adjacency worked out in
// shopdatabase_test_util.h; N = 10). A pattern of k >= 2 item sets with count
// m gives the rule (sets 0 .. k-2) => (set k-1) with support m / 10,
// confidence m / count(antecedent) and cause m / count(consequent).
//
// Rules are found level by level, each level in its table's order: bucket =
// hash code mod 23039 (the bucket count of levels 2 and 3), ascending. Two-
// item hash: h = a*9829 + b*9817, h += (h << pattern) + 1 with pattern 3 for
// two sets and 1 for one set; e.g. (1)(5): 58914 * 9 + 1 = 530227, bucket 330.
//   level 2: (1)(5) 330, (2)(4) 438, (1)(4) 4133, (2)(3) 4241, (1)(3) 7936,
//            (2 3) 9094, (1)(2) 11739, (4 5) 11775, (3)(5) 15979,
//            (1 2) 19273, (2)(5) 19674, (3)(4) 19782
//   level 3: (3)(4 5) 3909, (2)(3)(4) 6698, (1)(3)(4) 10878,
//            (1)(2)(4) 14667, (2 3)(4) 20842
// The one-set patterns (2 3), (4 5), (1 2) give no rule, so the fourteen
// rules in order of discovery are:
//    0 (1)=>(5)        3/10  3/8  3/4        7 (2)=>(5)        3/10 3/8 3/4
//    1 (2)=>(4)        6/10  6/8  6/8        8 (3)=>(4)        6/10 6/7 6/8
//    2 (1)=>(4)        5/10  5/8  5/8        9 (3)=>(4 5)      2/10 2/7 2/2
//    3 (2)=>(3)        3/10  3/8  3/7       10 (2)(3)=>(4)     3/10 3/3 3/8
//    4 (1)=>(3)        4/10  4/8  4/7       11 (1)(3)=>(4)     4/10 4/4 4/8
//    5 (1)=>(2)        4/10  4/8  4/8       12 (1)(2)=>(4)     3/10 3/4 3/8
//    6 (3)=>(5)        3/10  3/7  3/4       13 (2 3)=>(4)      2/10 2/2 2/8
// (support, confidence, cause). Sorting keeps this order among equal keys.
#include <memory>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "seqlattice/rules/seqassociationrule.h"
#include "seqlattice/rules/shopdatabase_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

struct ExpectedRule {
  std::string text;  // "(1)(3)=>(4)"
  double support;
  double confidence;
  double cause;
};

const ExpectedRule kRule[14] = {
    {"(1)=>(5)", 0.3, 0.375, 0.75},    {"(2)=>(4)", 0.6, 0.75, 0.75},
    {"(1)=>(4)", 0.5, 0.625, 0.625},   {"(2)=>(3)", 0.3, 0.375, 3.0 / 7},
    {"(1)=>(3)", 0.4, 0.5, 4.0 / 7},   {"(1)=>(2)", 0.4, 0.5, 0.5},
    {"(3)=>(5)", 0.3, 3.0 / 7, 0.75},  {"(2)=>(5)", 0.3, 0.375, 0.75},
    {"(3)=>(4)", 0.6, 6.0 / 7, 0.75},  {"(3)=>(4 5)", 0.2, 2.0 / 7, 1.0},
    {"(2)(3)=>(4)", 0.3, 1.0, 0.375},  {"(1)(3)=>(4)", 0.4, 1.0, 0.5},
    {"(1)(2)=>(4)", 0.3, 0.75, 0.375}, {"(2 3)=>(4)", 0.2, 1.0, 0.25},
};

// The rules kRule[i] for the given indexes, in that order.
std::vector<ExpectedRule> rulesAt(const std::vector<int>& indexes) {
  std::vector<ExpectedRule> result;
  for (int i : indexes) result.push_back(kRule[i]);
  return result;
}

void expectRules(const std::vector<SeqAssociationRule>& got,
                 const std::vector<ExpectedRule>& expected) {
  ASSERT_EQ(got.size(), expected.size());
  for (size_t i = 0; i < got.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "rule " << i);
    EXPECT_EQ(test::show(got[i].GetAntecedent()) + "=>" +
                  test::show(got[i].GetConsequent()),
              expected[i].text);
    EXPECT_NEAR(got[i].GetSupport(), expected[i].support, 1e-12);
    EXPECT_NEAR(got[i].GetConfidence(), expected[i].confidence, 1e-12);
    EXPECT_NEAR(got[i].GetCause(), expected[i].cause, 1e-12);
    EXPECT_EQ(got[i].GetJoinType(), 1);
  }
}

class Rules : public testing::Test {
 protected:
  std::vector<SeqAssociationRule> rules(char sortBy, bool maximalOnly = false,
                                        double minSupport = 0.0,
                                        double maxSupport = 1.0,
                                        double minConfidence = 0.0,
                                        double maxConfidence = 1.0,
                                        double minCause = 0.0,
                                        double maxCause = 1.0) {
    std::vector<SeqAssociationRule> out;
    EXPECT_TRUE(dict->GetRules(out, minSupport, maxSupport, minConfidence,
                               maxConfidence, minCause, maxCause, sortBy,
                               maximalOnly)
                    .IsOK());
    return out;
  }

  // Extraction with open bounds fails with the bulk failure status and
  // appends nothing.
  void expectFailure() {
    std::vector<SeqAssociationRule> out;
    const KvCommon_850::KvStatus status =
        dict->GetRules(out, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 'S', false);
    EXPECT_EQ(status.GetCode(), KvCommon_850::kStatusFailure);
    EXPECT_FALSE(status.GetFlag());
    EXPECT_TRUE(out.empty());
  }

  std::unique_ptr<SequenceDictionary> dict =
      test::buildDictionary(test::shopDatabase(), test::kShopMinCount);
};

TEST_F(Rules, SortedBySupportWithTiesInOrderOfDiscovery) {
  expectRules(rules('S'),
              rulesAt({1, 8, 2, 4, 5, 11, 0, 3, 6, 7, 10, 12, 9, 13}));
}

TEST_F(Rules, SortedByConfidence) {
  expectRules(rules('C'),
              rulesAt({10, 11, 13, 8, 1, 12, 2, 4, 5, 6, 0, 3, 7, 9}));
}

TEST_F(Rules, SortedByCause) {
  expectRules(rules('A'),
              rulesAt({9, 0, 1, 6, 7, 8, 2, 4, 5, 11, 3, 10, 12, 13}));
}

TEST_F(Rules, UnknownSortLetterAppendsNothing) {
  std::vector<SeqAssociationRule> out = rules('S');
  for (char letter : {'X', 's', 'c', '\0'}) {
    EXPECT_TRUE(dict->GetRules(out, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0, letter, false)
                    .IsOK());
    EXPECT_EQ(out.size(), 14u) << letter;
  }
}

// N = 10: minSupport 0.25 gives minCount 2 (2.5 truncated), maxSupport 0.25
// gives maxCount 3 (2.5 + 0.5): the rules of count 2 and 3.
TEST_F(Rules, SupportBoundsTruncateBelowAndRoundAbove) {
  expectRules(rules('S', false, 0.25, 0.25),
              rulesAt({0, 3, 6, 7, 10, 12, 9, 13}));
  // 0.5 gives minCount 5 and maxCount 5 (5.5 truncated): count 5 only.
  expectRules(rules('S', false, 0.5, 0.5), rulesAt({2}));
  // minCount 5, maxCount 8 (7.5 + 0.5).
  expectRules(rules('S', false, 0.5, 0.75), rulesAt({1, 8, 2}));
}

TEST_F(Rules, ConfidenceEqualToABoundIsKept) {
  expectRules(rules('S', false, 0.0, 1.0, 0.75, 0.75), rulesAt({1, 12}));
  expectRules(rules('C', false, 0.0, 1.0, 0.5, 0.625), rulesAt({2, 4, 5}));
}

TEST_F(Rules, ConsequentHoldsTheWholeLastSet) {
  std::vector<SeqAssociationRule> out =
      rules('S', false, 0.0, 1.0, 0.0, 1.0, 1.0, 1.0);
  expectRules(out, rulesAt({9}));
  const Sequence& consequent = out[0].GetConsequent();
  ASSERT_EQ(consequent.Length(), 1);
  ASSERT_EQ(consequent[0]->Size(), 2);
  EXPECT_EQ(consequent[0]->Begin()[0], 4);
  EXPECT_EQ(consequent[0]->Begin()[1], 5);
}

// Patterns without adjacent items: (1)(5), (2)(5) and the five of level 3
// ((1 2) too, but one set gives no rule).
TEST_F(Rules, MaximalOnlyKeepsPatternsThatNothingExtends) {
  expectRules(rules('S', true), rulesAt({11, 0, 7, 10, 12, 9, 13}));
}

TEST_F(Rules, MaximalOnlyExcludesNothingBeforeTheLatticeIsBuilt) {
  dict = test::buildDictionary(test::shopDatabase(), test::kShopMinCount, 10,
                               false);
  expectRules(rules('S', true),
              rulesAt({1, 8, 2, 4, 5, 11, 0, 3, 6, 7, 10, 12, 9, 13}));
}

TEST_F(Rules, SecondCallAppendsAfterTheFirst) {
  std::vector<SeqAssociationRule> out;
  ASSERT_TRUE(
      dict->GetRules(out, 0.5, 0.5, 0.0, 1.0, 0.0, 1.0, 'S', false).IsOK());
  ASSERT_TRUE(
      dict->GetRules(out, 0.0, 1.0, 0.0, 1.0, 0.75, 0.75, 'A', false).IsOK());
  expectRules(out, rulesAt({2, 0, 1, 6, 7, 8}));
}

TEST_F(Rules, CancelBeforeTheCallAppendsNothing) {
  std::vector<SeqAssociationRule> out = rules('S', false, 0.5, 0.5);
  dict->setCancel();
  const KvCommon_850::KvStatus status =
      dict->GetRules(out, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 'S', false);
  EXPECT_FALSE(status.IsOK());
  EXPECT_EQ(status.GetCode(), KvCommon_850::kStatusCancelled);
  EXPECT_FALSE(status.GetFlag());
  expectRules(out, rulesAt({2}));
}

TEST_F(Rules, PatternWithoutCounterFailsTheWholeExtraction) {
  int first[2] = {1, 1};
  int second[2] = {1, 5};
  int* sets[2] = {first, second};
  dict->addSequence(sets, 2, nullptr);  // (1)(5) kept, its counter dropped
  expectFailure();
}

// Without (3), the rules whose antecedent or consequent is (3) are skipped
// rather than computed from a missing count; (2)(3)=>(4) stays.
TEST_F(Rules, RuleWithAMissingPartIsSkipped) {
  const Sequence three = test::toSequence({{3}});
  dict->remove(&three);
  expectRules(rules('S'), rulesAt({1, 2, 5, 11, 0, 7, 10, 12, 13}));
}

TEST_F(Rules, MissingCountOfSequencesFails) {
  NTSequence empty;
  dict->remove(&empty);
  expectFailure();
}

TEST(RulesOfSmallDictionaries, NoLevelTwoMeansNoRules) {
  std::vector<SeqAssociationRule> out;
  SequenceDictionary empty(10);
  EXPECT_TRUE(
      empty.GetRules(out, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 'S', false).IsOK());
  std::unique_ptr<SequenceDictionary> singles =
      test::buildDictionary({{{1}}, {{1}}, {{2}, {1}}}, 2);
  ASSERT_EQ(singles->LargestSequence(), 1);
  EXPECT_TRUE(
      singles->GetRules(out, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 'S', false).IsOK());
  EXPECT_TRUE(out.empty());
}

// The flag is looked at before each level from 2 on, so with no such level
// a raised flag goes unread.
TEST(RulesOfSmallDictionaries, CancelIsNotReadWithoutALevelTwo) {
  std::unique_ptr<SequenceDictionary> singles =
      test::buildDictionary({{{1}}, {{1}}, {{2}, {1}}}, 2);
  singles->setCancel();
  std::vector<SeqAssociationRule> out;
  EXPECT_TRUE(
      singles->GetRules(out, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 'S', false).IsOK());
  EXPECT_TRUE(out.empty());
}

TEST(RulesOfSmallDictionaries, OneSetPatternsGiveNoRules) {
  // (1 2) is stored at level 2 (count 2) but has one item set.
  std::unique_ptr<SequenceDictionary> dict =
      test::buildDictionary({{{1, 2}}, {{1, 2}}}, 2);
  ASSERT_EQ(dict->LargestSequence(), 2);
  std::vector<SeqAssociationRule> out;
  EXPECT_TRUE(
      dict->GetRules(out, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 'S', false).IsOK());
  EXPECT_TRUE(out.empty());
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
