#include <gtest/gtest.h>

#include <sstream>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

using Texts = std::set<std::string>;

// The patterns found from seq by one of the Find operations.
template <class Find>
Texts found(SequenceDictionary& d, Find find, const test::Sets& seq,
            int minCount, int maxCount) {
  std::unique_ptr<Sequence> start = test::newSequence(seq);
  std::set<Sequence*> out;
  EXPECT_TRUE((d.*find)(start.get(), out, minCount, maxCount).IsOK());
  return test::takeTexts(out);
}

constexpr auto kAll = &SequenceDictionary::FindSequences;
constexpr auto kBeginning = &SequenceDictionary::FindSequencesBeginning;
constexpr auto kEnding = &SequenceDictionary::FindSequencesEnding;

TEST(LatticeQueriesTest, AStoredPatternWithoutExtensionsFindsItself) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1, 2}}, 5);
  ASSERT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(found(d, kAll, {{1, 2}}, 3, 10), Texts{"(1 2)"});
  EXPECT_EQ(found(d, kBeginning, {{1, 2}}, 3, 10), Texts{"(1 2)"});
  EXPECT_EQ(found(d, kEnding, {{1, 2}}, 3, 10), Texts{"(1 2)"});
}

TEST(LatticeQueriesTest, APatternAboveMaxCountIsWalkedButNotReported) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}}, 5);
  test::addPattern(d, {{1}, {2}}, 4);
  test::addPattern(d, {{1, 3}}, 3);
  test::addPattern(d, {{1, 4}}, 1);
  ASSERT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(found(d, kAll, {{1}}, 2, 4), (Texts{"(1 3)", "(1)(2)"}));
}

// Stored (a), (a)(b), (b)(a) and (a b) with a = 1, b = 2.
class ThreeDirectionsTest : public testing::Test {
 protected:
  ThreeDirectionsTest() : d(4) {
    test::addPattern(d, {{1}}, 9);
    test::addPattern(d, {{2}}, 9);
    test::addPattern(d, {{1}, {2}}, 5);
    test::addPattern(d, {{2}, {1}}, 5);
    test::addPattern(d, {{1, 2}}, 5);
    EXPECT_TRUE(d.buildLattice().IsOK());
  }
  SequenceDictionary d;
};

TEST_F(ThreeDirectionsTest, FindSequencesReportsEveryContainingPattern) {
  EXPECT_EQ(found(d, kAll, {{1}}, 1, 100),
            (Texts{"(1)", "(1)(2)", "(2)(1)", "(1 2)"}));
}

TEST_F(ThreeDirectionsTest, BeginningAddsSetsAtTheEndOnly) {
  EXPECT_EQ(found(d, kBeginning, {{1}}, 1, 100),
            (Texts{"(1)", "(1)(2)", "(1 2)"}));
}

TEST_F(ThreeDirectionsTest, EndingAddsSetsAtTheFrontOnly) {
  EXPECT_EQ(found(d, kEnding, {{1}}, 1, 100),
            (Texts{"(1)", "(2)(1)", "(1 2)"}));
}

TEST_F(ThreeDirectionsTest, AnAbsentOrRareStartFindsNothing) {
  EXPECT_EQ(found(d, kAll, {{3}}, 1, 100), Texts{});
  EXPECT_EQ(found(d, kAll, {{1}}, 10, 100), Texts{});
  EXPECT_EQ(found(d, kAll, {{1}, {2}, {1}, {2}}, 1, 100), Texts{});
}

TEST_F(ThreeDirectionsTest, FoundSequencesAreAddedToWhatOutHeld) {
  std::set<Sequence*> out;
  std::unique_ptr<Sequence> start = test::newSequence({{2}, {1}});
  Sequence* mine = test::newSequence({{7}}).release();
  out.insert(mine);
  EXPECT_TRUE(d.FindSequences(start.get(), out, 1, 100).IsOK());
  EXPECT_EQ(test::takeTexts(out), (Texts{"(7)", "(2)(1)"}));
}

TEST_F(ThreeDirectionsTest, FoundSequencesCarryTimesFromOne) {
  std::set<Sequence*> out;
  std::unique_ptr<Sequence> start = test::newSequence({{2}, {1}});
  EXPECT_TRUE(d.FindSequences(start.get(), out, 1, 100).IsOK());
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(test::text(**out.begin(), true), "(2)[1](1)[2]");
  test::takeTexts(out);
}

TEST_F(ThreeDirectionsTest, ANullStartFindsNothing) {
  std::set<Sequence*> out;
  EXPECT_TRUE(d.FindSequences(nullptr, out, 1, 100).IsOK());
  EXPECT_TRUE(out.empty());
}

TEST(LatticeQueriesTest, ARareExtensionIsNotWalkedThrough) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}}, 5);
  test::addPattern(d, {{1}, {2}}, 1);
  test::addPattern(d, {{1}, {2}, {3}}, 5);
  ASSERT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(found(d, kAll, {{1}}, 2, 10), Texts{"(1)"});
  EXPECT_EQ(found(d, kAll, {{1}}, 1, 10),
            (Texts{"(1)", "(1)(2)", "(1)(2)(3)"}));
}

TEST(LatticeQueriesTest, BeforeTheBuildOnlyTheStartIsFound) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}}, 5);
  test::addPattern(d, {{1}, {2}}, 5);
  EXPECT_EQ(found(d, kAll, {{1}}, 1, 10), Texts{"(1)"});
}

TEST(SequencesOfSizeTest, MaximalOnlyLeavesOutExtendedPatterns) {
  SequenceDictionary d(5);
  test::addPattern(d, {{1}}, 5);
  test::addPattern(d, {{2}}, 5);
  test::addPattern(d, {{3}}, 5);
  test::addPattern(d, {{1}, {2}}, 4);
  test::addPattern(d, {{2, 3}}, 4);
  test::addPattern(d, {{1}, {2, 3}}, 3);
  test::addPattern(d, {{3}, {1}}, 3);
  ASSERT_TRUE(d.buildLattice().IsOK());
  std::vector<Sequence const*> out;
  EXPECT_TRUE(d.getSequencesOfSize(out, 2, true).IsOK());
  EXPECT_EQ(test::takeTexts(out), std::vector<std::string>{"(3)[0](1)[1]"});
  EXPECT_TRUE(d.getSequencesOfSize(out, 2, false).IsOK());
  EXPECT_EQ(out.size(), 3u);
  test::takeTexts(out);
  EXPECT_TRUE(d.getSequencesOfSize(out, 3, true).IsOK());
  EXPECT_EQ(test::takeTexts(out), std::vector<std::string>{"(1)[0](2 3)[1]"});
}

TEST(SequencesOfSizeTest, SizesOutsideTheLevelsAddNothing) {
  SequenceDictionary d(3);
  test::addPattern(d, {{1}}, 5);
  std::vector<Sequence const*> out;
  EXPECT_TRUE(d.getSequencesOfSize(out, 3, false).IsOK());
  EXPECT_TRUE(d.getSequencesOfSize(out, 30, false).IsOK());
  EXPECT_TRUE(d.getSequencesOfSize(out, -1, false).IsOK());
  EXPECT_TRUE(out.empty());
}

TEST(SequencesOfSizeTest, ResultsAreAppended) {
  SequenceDictionary d(3);
  test::addPattern(d, {{4}}, 5);
  std::vector<Sequence const*> out;
  out.push_back(test::newSequence({{9}}).release());
  EXPECT_TRUE(d.getSequencesOfSize(out, 1, false).IsOK());
  EXPECT_EQ(test::takeTexts(out),
            (std::vector<std::string>{"(9)[1]", "(4)[0]"}));
  EXPECT_TRUE(d.getSequencesOfSize(out, 0, false).IsOK());
  EXPECT_EQ(test::takeTexts(out), std::vector<std::string>{""});
}

// What displaySize should write for an entry.
std::string listing(const ISQCPair& entry) {
  std::ostringstream os;
  entry.key->display(os);
  if (entry.value != nullptr) entry.value->display(os, false);
  return os.str();
}

TEST(DisplaySizeTest, LimitZeroWritesOneEntry) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}, {2}}, 3, 1, 0);
  test::addPattern(d, {{2}, {3}}, 4, 2, 1);
  test::addPattern(d, {{1, 3}}, 5, 3, 2);
  HashtableSQPair* level = d.getLevel(2);
  HashtableSQPair::iterator it = level->begin();
  const std::string first = listing(*it++);
  const std::string second = listing(*it++);
  const std::string third = listing(*it);
  std::ostringstream os;
  d.displaySize(2, 0, os);
  EXPECT_EQ(os.str(), first);
  std::ostringstream two;
  d.displaySize(2, 1, two);
  EXPECT_EQ(two.str(), first + second);
  std::ostringstream all;
  d.displaySize(2, 10, all);
  EXPECT_EQ(all.str(), first + second + third);
  std::ostringstream negative;
  d.displaySize(2, -5, negative);
  EXPECT_EQ(negative.str(), first);
}

TEST(DisplaySizeTest, EmptyOrMissingLevelsWriteNothing) {
  SequenceDictionary d(3);
  std::ostringstream os;
  d.displaySize(1, 5, os);
  d.displaySize(3, 5, os);
  d.displaySize(-1, 5, os);
  EXPECT_EQ(os.str(), "");
}

TEST(DisplaySizeTest, AnEntryWithoutCounterShowsOnlyThePattern) {
  SequenceDictionary d(3);
  test::PatternArrays p(test::Sets{{6}});
  d.addSequence(p.sets(), p.nSets(), nullptr);
  std::ostringstream os;
  d.displaySize(1, 5, os);
  EXPECT_EQ(os.str(), listing(*d.getLevel(1)->begin()));
  EXPECT_EQ(os.str().find("count"), std::string::npos);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
