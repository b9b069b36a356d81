#include "seqlattice/rules/seqassociationrule.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <iostream>
#include <vector>

#include "seqlattice/rules/coutstate_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

// A sequence of item sets, each given by its items, at times 1, 2, ...
Sequence MakeSequence(std::initializer_list<std::vector<int>> sets) {
  std::vector<double> times;
  for (std::size_t k = 1; k <= sets.size(); ++k) times.push_back(k);
  return test::MakeSequence(sets, times);
}

std::string DisplayText(const SeqAssociationRule& rule) {
  testing::internal::CaptureStdout();
  rule.Display();
  return testing::internal::GetCapturedStdout();
}

using SeqAssociationRuleTest = test::FreshCoutTest;

TEST_F(SeqAssociationRuleTest, StoresCopiesAndTheFourNumbers) {
  const Sequence antecedent = MakeSequence({{1, 5}, {2}});
  const Sequence consequent = MakeSequence({{7}});
  const SeqAssociationRule rule(antecedent, consequent, 0.25, 0.5, 0.75, 1);
  EXPECT_TRUE(rule.GetAntecedent() == antecedent);
  EXPECT_TRUE(rule.GetConsequent() == consequent);
  EXPECT_NE(&rule.GetAntecedent(), &antecedent);
  EXPECT_NE(&rule.GetConsequent(), &consequent);
  EXPECT_EQ(&rule.GetAntecedent(), &rule.GetAntecedent());  // no copy
  EXPECT_EQ(rule.GetSupport(), 0.25);
  EXPECT_EQ(rule.GetConfidence(), 0.5);
  EXPECT_EQ(rule.GetCause(), 0.75);
  EXPECT_EQ(rule.GetJoinType(), 1);
}

TEST_F(SeqAssociationRuleTest, LaterChangesToTheCallersSequencesDoNotReach) {
  Sequence antecedent = MakeSequence({{1}});
  Sequence consequent = MakeSequence({{2}});
  const SeqAssociationRule rule(antecedent, consequent, 0.1, 0.2, 0.3, 0);
  antecedent.Clear();
  const Sequence more = MakeSequence({{3}});
  consequent.JoinTemporal(&more);
  EXPECT_EQ(rule.GetAntecedent().Length(), 1);
  EXPECT_EQ(rule.GetConsequent().Length(), 1);
  EXPECT_EQ(rule.GetJoinType(), 0);
}

TEST_F(SeqAssociationRuleTest, CopyIsDeepAndOutlivesTheOriginal) {
  auto* original = new SeqAssociationRule(
      MakeSequence({{1, 2}}), MakeSequence({{3}, {4}}), 0.1, 0.2, 0.3, 1);
  const SeqAssociationRule copy(*original);
  EXPECT_NE(&copy.GetAntecedent(), &original->GetAntecedent());
  delete original;
  EXPECT_TRUE(copy.GetAntecedent() == MakeSequence({{1, 2}}));
  EXPECT_TRUE(copy.GetConsequent() == MakeSequence({{3}, {4}}));
  EXPECT_EQ(copy.GetSupport(), 0.1);
  EXPECT_EQ(copy.GetConfidence(), 0.2);
  EXPECT_EQ(copy.GetCause(), 0.3);
  EXPECT_EQ(copy.GetJoinType(), 1);
}

TEST_F(SeqAssociationRuleTest, RulesLiveInAGrowingVector) {
  std::vector<SeqAssociationRule> rules;
  for (int i = 0; i < 20; ++i) {
    rules.emplace_back(MakeSequence({{i}}), MakeSequence({{i + 1}}), i, i, i,
                       1);
  }
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(*rules[i].GetAntecedent()[0]->Begin(), i);
    EXPECT_EQ(*rules[i].GetConsequent()[0]->Begin(), i + 1);
    EXPECT_EQ(rules[i].GetSupport(), i);
  }
}

TEST_F(SeqAssociationRuleTest, SelfAssignmentLeavesTheRuleUnchanged) {
  SeqAssociationRule rule(MakeSequence({{1}, {2}}), MakeSequence({{3}}), 0.1,
                          0.2, 0.3, 1);
  const SeqAssociationRule& self = rule;
  rule = self;
  EXPECT_EQ(rule.GetAntecedent().Length(), 2);
  EXPECT_EQ(rule.GetConsequent().Length(), 1);
  EXPECT_TRUE(rule.GetAntecedent() == MakeSequence({{1}, {2}}));
  EXPECT_TRUE(rule.GetConsequent() == MakeSequence({{3}}));
  EXPECT_EQ(rule.GetSupport(), 0.1);
  EXPECT_EQ(rule.GetConfidence(), 0.2);
  EXPECT_EQ(rule.GetCause(), 0.3);
  EXPECT_EQ(rule.GetJoinType(), 1);
}

TEST_F(SeqAssociationRuleTest, AssignmentAppendsTheSequencesAndCopiesNumbers) {
  SeqAssociationRule target(MakeSequence({{1}}), MakeSequence({{2}}), 0.1, 0.2,
                            0.3, 1);
  const SeqAssociationRule source(MakeSequence({{4}, {5}}), MakeSequence({{6}}),
                                  0.4, 0.5, 0.6, 0);
  SeqAssociationRule& result = (target = source);
  EXPECT_EQ(&result, &target);
  EXPECT_EQ(target.GetAntecedent().Length(), 3);
  EXPECT_EQ(target.GetConsequent().Length(), 2);
  testing::internal::CaptureStdout();
  target.GetAntecedent().Display(false);
  target.GetConsequent().Display(false);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "<(1)(4)(5)>\n<(2)(6)>\n");
  EXPECT_EQ(target.GetSupport(), 0.4);
  EXPECT_EQ(target.GetConfidence(), 0.5);
  EXPECT_EQ(target.GetCause(), 0.6);
  EXPECT_EQ(target.GetJoinType(), 0);
}

TEST_F(SeqAssociationRuleTest, DisplayOfATemporalRule) {
  const SeqAssociationRule rule(MakeSequence({{1, 5}, {2}}),
                                MakeSequence({{7}}), 0.123456, 2.0 / 3, 1.0 / 3,
                                1);
  EXPECT_EQ(DisplayText(rule),
            "<(1 5)(2)>\n"
            "=>\n"
            "<(7)>\n"
            "Support 0.1235 Confidence 0.6667 Cause 0.3333\n");
}

TEST_F(SeqAssociationRuleTest, OnlyJoinTypeOnePrintsAnArrow) {
  for (int joinType : {0, 2, -1, 1 << 30}) {
    const SeqAssociationRule rule(MakeSequence({{1}}), MakeSequence({{2}}), 1,
                                  0.5, 0.25, joinType);
    EXPECT_EQ(DisplayText(rule),
              "<(1)>\n&\n<(2)>\nSupport 1 Confidence 0.5 Cause 0.25\n")
        << joinType;
  }
}

TEST_F(SeqAssociationRuleTest, DisplayLeavesPrecisionFour) {
  const SeqAssociationRule rule(MakeSequence({{1}}), MakeSequence({{2}}), 0.1,
                                0.2, 0.3, 1);
  DisplayText(rule);
  EXPECT_EQ(std::cout.precision(), 4);
  testing::internal::CaptureStdout();
  std::cout << 3.14159265;  // the host's next number
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "3.142");
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
