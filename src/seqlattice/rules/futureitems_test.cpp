// Future-item prediction on the shop database (counts and adjacency worked
// out in shopdatabase_test_util.h; N = 10). A candidate x of a matched
// pattern p comes from an adjacency pair (x, 2s + 1), s being p's number of
// item sets; confidence = count(p x) / count(p), support = count(p x) / 10,
// cause = count(p x) / count(x).
#include <cmath>
#include <memory>
#include <vector>

#include "gtest/gtest.h"
#include "seqlattice/rules/prediction_test_util.h"
#include "seqlattice/rules/shopdatabase_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

class FutureItems : public testing::Test {
 protected:
  std::vector<SeqConsequentDescriptor> predict(const test::History& history,
                                               int maxItems, bool lastSetOnly) {
    std::vector<SeqConsequentDescriptor> out;
    const Sequence customer = test::toSequence(history);
    EXPECT_TRUE(
        dict->GetFutureItems(out, &customer, maxItems, lastSetOnly).IsOK());
    return out;
  }

  std::unique_ptr<SequenceDictionary> dict =
      test::buildDictionary(test::shopDatabase(), test::kShopMinCount);
};

// (1)(2) matches (2) and (1)(2).
// (2): (3,3) -> (2)(3) 3/8; (4,3) -> (2)(4) 6/8; (5,3) -> (2)(5) 3/8.
// (1)(2): (4,5) -> (1)(2)(4) 3/4, equal to 6/8 but with the smaller support
// 0.3, so item 4 keeps support 0.6 and cause 6/8.
// Items 5 and 3 tie at 3/8: the larger item comes first.
TEST_F(FutureItems, LastSetOnlyUsesPatternsEndingInTheLastSet) {
  test::expectPredictions(
      predict({{1}, {2}}, 10, true),
      {{4, 0.75, 0.6, 0.75}, {5, 0.375, 0.3, 0.75}, {3, 0.375, 0.3, 3.0 / 7}});
}

// Pass 1 drops (2) and excludes item 2: it matches (1), whose pairs give
// (1)(3) 4/8 (better than 3/8, so item 3 takes support 0.4 and cause 4/7),
// (1)(4) 5/8 (worse than 0.75) and (1)(5) 3/8 (equal confidence and support:
// kept). (1)(2) 4/8 would predict item 2, which the customer has acquired
// since.
TEST_F(FutureItems, LaterPassesExcludeItemsOfTheSetsLeftOut) {
  test::expectPredictions(
      predict({{1}, {2}}, 10, false),
      {{4, 0.75, 0.6, 0.75}, {3, 0.5, 0.4, 4.0 / 7}, {5, 0.375, 0.3, 0.75}});
}

TEST_F(FutureItems, MaxItemsCutsAfterSorting) {
  test::expectPredictions(predict({{1}, {2}}, 2, true),
                          {{4, 0.75, 0.6, 0.75}, {5, 0.375, 0.3, 0.75}});
  test::expectPredictions(predict({{1}, {2}}, 1, false),
                          {{4, 0.75, 0.6, 0.75}});
}

TEST_F(FutureItems, ZeroOrNegativeMaxItemsAppendsNothing) {
  EXPECT_TRUE(predict({{1}, {2}}, 0, true).empty());
  EXPECT_TRUE(predict({{1}, {2}}, -3, false).empty());
}

// (2)(3) matches (3) and (2)(3). (3): (4,3) -> (3)(4) 6/7, (5,3) -> (3)(5)
// 3/7. (2)(3): (4,5) -> (2)(3)(4) 3/3 = 1.0 beats 6/7 although its support
// 0.3 is lower; its cause is 3/8.
TEST_F(FutureItems, GreaterConfidenceWinsOverGreaterSupport) {
  const std::vector<test::ExpectedPrediction> expected = {
      {4, 1.0, 0.3, 0.375}, {5, 3.0 / 7, 0.3, 0.75}};
  test::expectPredictions(predict({{2}, {3}}, 10, true), expected);
  // Pass 1 matches (2) with item 3 excluded: (2)(4) 6/8 and (2)(5) 3/8 are
  // worse than what pass 0 found.
  test::expectPredictions(predict({{2}, {3}}, 10, false), expected);
}

// (1)(2 3) matches (2), (3), (1)(2), (2 3), (1)(3), in that order.
// Item 4: (2)(4) 6/8, then (3)(4) 6/7, (1)(2)(4) 3/4 (worse), (2 3)(4) 2/2 =
// 1.0 with support 0.2 and cause 2/8, then (1)(3)(4) 4/4 = 1.0 again with
// the greater support 0.4, which replaces support and cause (4/8).
// Item 5: (2)(5) 3/8, then (3)(5) 3/7. Item 3: (2)(3) 3/8; that the last set
// holds 3 does not keep it out of pass 0.
TEST_F(FutureItems, EqualConfidenceTakesTheGreaterSupportAndItsCause) {
  test::expectPredictions(
      predict({{1}, {2, 3}}, 10, true),
      {{4, 1.0, 0.4, 0.5}, {5, 3.0 / 7, 0.3, 0.75}, {3, 0.375, 0.3, 3.0 / 7}});
}

// Item 9 is not stored, so pass 0 matches nothing; pass 1 matches (3):
// (3)(4) 6/7 and (3)(5) 3/7.
TEST_F(FutureItems, UnknownLastSetPredictsOnlyFromLaterPasses) {
  EXPECT_TRUE(predict({{3}, {9}}, 10, true).empty());
  test::expectPredictions(predict({{3}, {9}}, 10, false),
                          {{4, 6.0 / 7, 0.6, 0.75}, {5, 3.0 / 7, 0.3, 0.75}});
}

// (1)(3)(4): pass 0 matches (4), (1)(4), (3)(4), (1)(3)(4), none of which has
// a pair at code 3 (one set) or 5 (two sets), so nothing follows. Pass 1 (item
// 4 excluded) matches (3) and (1)(3): (3)(5) 3/7. Pass 2 (items 3 and 4
// excluded) matches (1): (1)(2) 4/8 and (1)(5) 3/8 (worse than 3/7). Three
// passes run for three sets.
TEST_F(FutureItems, EveryPassUpToTheFirstSetContributes) {
  EXPECT_TRUE(predict({{1}, {3}, {4}}, 10, true).empty());
  test::expectPredictions(predict({{1}, {3}, {4}}, 10, false),
                          {{2, 0.5, 0.4, 0.5}, {5, 3.0 / 7, 0.3, 0.75}});
}

// (1)(5): (5) and (1)(5) have no pair at codes 3 and 5. Pass 1 matches (1):
// (1)(2) 4/8, (1)(3) 4/8, (1)(4) 5/8; item 5 is excluded. Items 3 and 2 tie
// at 0.5: the larger item first.
TEST_F(FutureItems, EqualConfidencePutsTheLargerItemFirst) {
  test::expectPredictions(
      predict({{1}, {5}}, 10, false),
      {{4, 0.625, 0.5, 0.625}, {3, 0.5, 0.4, 4.0 / 7}, {2, 0.5, 0.4, 0.5}});
  test::expectPredictions(predict({{1}, {5}}, 2, false),
                          {{4, 0.625, 0.5, 0.625}, {3, 0.5, 0.4, 4.0 / 7}});
}

// The one-item counts over N = 10: 4, 2, 1 at 0.8 (larger items first), 3 at
// 0.7, 5 at 0.4.
TEST_F(FutureItems, EmptyHistoryReturnsTheMostFrequentItems) {
  const std::vector<test::ExpectedPrediction> expected = {{4, 0.8, 0.8, 1.0},
                                                          {2, 0.8, 0.8, 1.0},
                                                          {1, 0.8, 0.8, 1.0},
                                                          {3, 0.7, 0.7, 1.0}};
  std::vector<SeqConsequentDescriptor> out;
  ASSERT_TRUE(dict->GetFutureItems(out, nullptr, 4, true).IsOK());
  test::expectPredictions(out, expected);
  out.clear();
  const Sequence empty;
  ASSERT_TRUE(dict->GetFutureItems(out, &empty, 4, false).IsOK());
  test::expectPredictions(out, expected);
  out.clear();
  ASSERT_TRUE(dict->GetFutureItems(out, nullptr, 0, false).IsOK());
  EXPECT_TRUE(out.empty());
}

TEST_F(FutureItems, AppendsAfterWhatThePredictionsHeld) {
  std::vector<SeqConsequentDescriptor> out;
  const Sequence customer = test::toSequence({{1}, {2}});
  ASSERT_TRUE(dict->GetFutureItems(out, &customer, 1, true).IsOK());
  ASSERT_TRUE(dict->GetFutureItems(out, &customer, 2, true).IsOK());
  test::expectPredictions(
      out, {{4, 0.75, 0.6, 0.75}, {4, 0.75, 0.6, 0.75}, {5, 0.375, 0.3, 0.75}});
}

TEST_F(FutureItems, CancelBeforeTheCallAppendsNothing) {
  std::vector<SeqConsequentDescriptor> out(1, {7, 0.1, 0.2, 0.3});
  dict->setCancel();
  const Sequence customer = test::toSequence({{1}, {2}});
  const KvCommon_850::KvStatus status =
      dict->GetFutureItems(out, &customer, 10, false);
  EXPECT_FALSE(status.IsOK());
  EXPECT_EQ(status.GetCode(), KvCommon_850::kStatusCancelled);
  EXPECT_FALSE(status.GetFlag());
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(out[0].GetItem(), 7);
  // A customer without history is answered whatever the flag says.
  ASSERT_TRUE(dict->GetFutureItems(out, nullptr, 1, false).IsOK());
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[1].GetItem(), 4);
}

// Without the one-item pattern (5) (the lattice built before it was removed),
// matching drops 5 from the customer's sets, yet the pass that leaves a set
// out still excludes its 5. (3)(5): pass 0 keeps nothing of the last set;
// pass 1 matches (3), whose pairs give (3)(4) 6/7 and (3)(5), item 5 being
// excluded. (3)(9): pass 1 predicts 5 too, (3)(5) 3/7 with support 0.3, and
// its cause is 0.0 for want of a count of (5).
TEST_F(FutureItems, ExcludedItemsNeedNotBeKnownAndUnknownItemsHaveNoCause) {
  const Sequence five = test::toSequence({{5}});
  dict->remove(&five);
  test::expectPredictions(predict({{3}, {5}}, 10, false),
                          {{4, 6.0 / 7, 0.6, 0.75}});
  test::expectPredictions(predict({{3}, {9}}, 10, false),
                          {{4, 6.0 / 7, 0.6, 0.75}, {5, 3.0 / 7, 0.3, 0.0}});
}

// The shop dictionary, raising its own cancel flag while a chosen pass of a
// prediction runs. Matching asks for the largest level once in every pass
// whose last kept item set holds a known item, so the asks count the passes.
class CancellingDictionary : public SequenceDictionary {
 public:
  CancellingDictionary() : SequenceDictionary(10) {
    test::fillDictionary(*this, test::shopDatabase(), test::kShopMinCount);
    asks_ = 0;  // the lattice build asked too
  }

  // Raises the flag during the matching of pass `pass` (0 for the first).
  void cancelDuringPass(int pass) { cancelAt_ = pass + 1; }
  int passesRun() const { return asks_; }

  int LargestSequence() const override {
    if (++asks_ == cancelAt_) self_->setCancel();
    return SequenceDictionary::LargestSequence();
  }

 private:
  SequenceDictionary* const self_ = this;
  mutable int asks_ = 0;
  int cancelAt_ = 0;
};

struct Outcome {
  long code;  // 0 for OK
  std::vector<SeqConsequentDescriptor> appended;
  int passes;
};

// Predicts for `history` into a vector that already holds one descriptor
// (item 7), which must stay first.
Outcome predictCancelling(const test::History& history, bool lastSetOnly,
                          int cancelledPass) {
  CancellingDictionary dict;
  dict.cancelDuringPass(cancelledPass);
  std::vector<SeqConsequentDescriptor> out(1, {7, 0.1, 0.2, 0.3});
  const Sequence customer = test::toSequence(history);
  const KvCommon_850::KvStatus status =
      dict.GetFutureItems(out, &customer, 10, lastSetOnly);
  EXPECT_FALSE(status.GetFlag());
  EXPECT_EQ(out[0].GetItem(), 7);
  return {status.GetCode(),
          std::vector<SeqConsequentDescriptor>(out.begin() + 1, out.end()),
          dict.passesRun()};
}

// (1)(3)(4) as in EveryPassUpToTheFirstSetContributes.
const std::vector<test::ExpectedPrediction> kThreeSetPrediction = {
    {2, 0.5, 0.4, 0.5}, {5, 3.0 / 7, 0.3, 0.75}};

TEST(FutureItemsPasses, ThreeItemSetsRunThreePassesOrOne) {
  Outcome all = predictCancelling({{1}, {3}, {4}}, false, -1);
  EXPECT_EQ(all.code, 0);
  EXPECT_EQ(all.passes, 3);
  test::expectPredictions(all.appended, kThreeSetPrediction);
  Outcome last = predictCancelling({{1}, {3}, {4}}, true, -1);
  EXPECT_EQ(last.code, 0);
  EXPECT_EQ(last.passes, 1);
  EXPECT_TRUE(last.appended.empty());
}

// The flag is read after each pass that another could follow: raised in pass
// 0 or 1 of three, it stops the passes with code 1 and what the passes found
// is dropped.
TEST(FutureItemsPasses, CancelBetweenPassesStopsAndAppendsNothing) {
  for (int pass : {0, 1}) {
    SCOPED_TRACE(pass);
    Outcome outcome = predictCancelling({{1}, {3}, {4}}, false, pass);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.passes, pass + 1);
    EXPECT_TRUE(outcome.appended.empty());
  }
}

// Pass 0 of (1)(2) finds item 4 and others; the flag raised in it is read
// before lastSetOnly ends the passes.
TEST(FutureItemsPasses, CancelIsReadBeforeLastSetOnlyEndsThePasses) {
  Outcome outcome = predictCancelling({{1}, {2}}, true, 0);
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.passes, 1);
  EXPECT_TRUE(outcome.appended.empty());
}

// After the pass that leaves out all but the first item set no pass can
// follow, and the flag raised in it is not read.
TEST(FutureItemsPasses, CancelInTheLastPossiblePassIsNotRead) {
  Outcome three = predictCancelling({{1}, {3}, {4}}, false, 2);
  EXPECT_EQ(three.code, 0);
  EXPECT_EQ(three.passes, 3);
  test::expectPredictions(three.appended, kThreeSetPrediction);
  // (2): (2)(4) 6/8, (2)(5) 3/8, (2)(3) 3/8.
  for (bool lastSetOnly : {true, false}) {
    Outcome one = predictCancelling({{2}}, lastSetOnly, 0);
    EXPECT_EQ(one.code, 0);
    EXPECT_EQ(one.passes, 1);
    test::expectPredictions(one.appended, {{4, 0.75, 0.6, 0.75},
                                           {5, 0.375, 0.3, 0.75},
                                           {3, 0.375, 0.3, 3.0 / 7}});
  }
}

// Customers (1)(1), (1)(1), (1)(2): (1) is stored with count 3, (1)(1) with
// count 2. The customer's last set holds 1, and 1 is still predicted in pass
// 0: (1)(1) 2/3, support 2/3, cause 2/3.
TEST(FutureItemsRepeat, ItemOfTheLastSetCanBePredictedInPassZero) {
  std::unique_ptr<SequenceDictionary> dict =
      test::buildDictionary({{{1}, {1}}, {{1}, {1}}, {{1}, {2}}}, 2);
  std::vector<SeqConsequentDescriptor> out;
  const Sequence customer = test::toSequence({{1}});
  ASSERT_TRUE(dict->GetFutureItems(out, &customer, 5, true).IsOK());
  test::expectPredictions(out, {{1, 2.0 / 3, 2.0 / 3, 2.0 / 3}});
}

// Zero counts make confidence 0/0: such candidates are still returned, after
// every defined confidence, the larger item first.
TEST(FutureItemsZeroCounts, UndefinedConfidenceSortsLast) {
  SequenceDictionary dict(10);
  int* none[1] = {nullptr};
  dict.incrementCount(none, 0);  // N = 1
  test::addCarmaPattern(dict, {{1}}, 0);
  test::addCarmaPattern(dict, {{2}}, 1);
  test::addCarmaPattern(dict, {{3}}, 1);
  test::addCarmaPattern(dict, {{4}}, 1);
  test::addCarmaPattern(dict, {{1}, {2}}, 0);
  test::addCarmaPattern(dict, {{1}, {3}}, 0);
  test::addCarmaPattern(dict, {{4}, {1}}, 1);
  ASSERT_TRUE(dict.buildLattice().IsOK());
  std::vector<SeqConsequentDescriptor> out;
  const Sequence first = test::toSequence({{1}});
  ASSERT_TRUE(dict.GetFutureItems(out, &first, 10, true).IsOK());
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[0].GetItem(), 3);
  EXPECT_EQ(out[1].GetItem(), 2);
  EXPECT_TRUE(std::isnan(out[0].GetConfidence()));
  EXPECT_EQ(out[0].GetSupport(), 0.0);
  EXPECT_EQ(out[0].GetCause(), 0.0);
  // From (1 4), (4) adds (4)(1) 1/1 for item 1, ahead of the undefined ones.
  out.clear();
  const Sequence second = test::toSequence({{1, 4}});
  ASSERT_TRUE(dict.GetFutureItems(out, &second, 10, true).IsOK());
  ASSERT_EQ(out.size(), 3u);
  EXPECT_EQ(out[0].GetItem(), 1);
  EXPECT_EQ(out[0].GetConfidence(), 1.0);
  EXPECT_EQ(out[1].GetItem(), 3);
  EXPECT_EQ(out[2].GetItem(), 2);
}

// Without the empty pattern there is no N: the bulk failure status, and
// nothing appended.
TEST_F(FutureItems, MissingCountOfSequencesFails) {
  NTSequence empty;
  dict->remove(&empty);
  std::vector<SeqConsequentDescriptor> out;
  const Sequence customer = test::toSequence({{1}, {2}});
  for (const Sequence* history :
       {&customer, static_cast<const Sequence*>(nullptr)}) {
    const KvCommon_850::KvStatus future =
        dict->GetFutureItems(out, history, 10, false);
    EXPECT_EQ(future.GetCode(), KvCommon_850::kStatusFailure);
    EXPECT_FALSE(future.GetFlag());
    EXPECT_EQ(dict->GetCurrentItems(out, history, 10).GetCode(),
              KvCommon_850::kStatusFailure);
  }
  EXPECT_TRUE(out.empty());
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
