// The recommender's scoring rules on a hand-made database (items: a = 1,
// b = 2, c = 3, x = 4, y = 5; N = 22):
//   2 customers  (b)(a)(x)
//  18 customers  (a)(y)
//   2 customers  (c)
// so count(a) = 20, count(y) = 18, count(b) = count(c) = count(x) = 2,
// count((a)(y)) = 18, count((a)(x)) = count((b)(a)) = count((b)(a)(x)) = 2.
#include "seqlattice/recommend/recommender.h"

#include <memory>
#include <vector>

#include "gtest/gtest.h"
#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/mining_test_util.h"
#include "seqlattice/rules/seqconsequentdescript.h"
#include "seqlattice/sequence/timeditemset.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {
constexpr int kA = 1, kB = 2, kC = 3, kX = 4, kY = 5;
}  // namespace

namespace test {

inline mining::SequenceDatabase recommenderDatabase() {
  std::vector<Customer> customers;
  for (int i = 0; i < 2; ++i) customers.push_back({{kB}, {kA}, {kX}});
  for (int i = 0; i < 18; ++i) customers.push_back({{kA}, {kY}});
  for (int i = 0; i < 2; ++i) customers.push_back({{kC}});
  return makeDatabase(customers);
}

inline Sequence historyOf(const std::vector<int>& items) {
  Sequence history;
  double time = 0;
  for (int item : items) {
    TimedItemSet set(1, time++);
    set.AddItem(item);
    history.AddTimedItemSet(&set);
  }
  return history;
}

// Mines every pattern of up to maxItems items of db into *dict.
inline void mineAll(const mining::SequenceDatabase& db, int maxItems,
                    SequenceDictionary* dict) {
  mining::MinerOptions options;
  options.maxItems = maxItems;
  options.threads = 1;
  mining::mineIntoDictionary(db, options, *dict);
}

inline std::vector<int> itemsOf(
    const std::vector<recommend::Recommendation>& list) {
  std::vector<int> items;
  for (const auto& r : list) items.push_back(r.item);
  return items;
}

}  // namespace test

namespace {

class RecommenderTest : public testing::Test {
 protected:
  RecommenderTest() : db(test::recommenderDatabase()), index(db) {
    test::mineAll(db, 3, &dict);
    latticeOnly.sequenceWeight = 0;
    latticeOnly.earlierSetWeight = 0.5;
    latticeOnly.popularFallback = false;
  }

  mining::SequenceDatabase db;
  SequenceDictionary dict{4};
  recommend::SequenceIndex index;
  recommend::RecommendOptions latticeOnly;
};

TEST_F(RecommenderTest, SmoothingPutsTheWellSupportedRuleFirst) {
  // History (b)(a). The library ranks x first: (b)(a)(x) has confidence
  // 2/2, (a)(y) 18/20. Smoothed with 2 customers of popularity:
  // x (2 + 2 * 2/22) / (2 + 2) = 0.54545..., y (18 + 2 * 18/22) / 22 =
  // 0.89256...
  recommend::Recommender recommender(dict, nullptr);
  const Sequence history = test::historyOf({kB, kA});
  auto got = recommender.recommend(history, latticeOnly);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{kY, kX}));
  EXPECT_NEAR(got[0].score, (18 + 2 * 18.0 / 22) / 22, 1e-12);
  EXPECT_NEAR(got[1].score, (2 + 2 * 2.0 / 22) / 4, 1e-12);
  EXPECT_EQ(got[1].pattern, (std::vector<std::vector<int>>{{kB}, {kA}}));
  EXPECT_EQ(got[1].count, 2);
  EXPECT_EQ(got[1].patternCount, 2);
  EXPECT_EQ(got[1].skippedSets, 0);
  EXPECT_EQ(got[0].source, recommend::Source::kLattice);

  std::vector<SeqConsequentDescriptor> library;
  ASSERT_TRUE(dict.GetFutureItems(library, &history, 5, false).IsOK());
  ASSERT_EQ(library.size(), 2u);
  EXPECT_EQ(library[0].GetItem(), kX);
}

TEST_F(RecommenderTest, WithoutSmoothingTheRawConfidenceDecides) {
  recommend::Recommender recommender(dict, nullptr);
  latticeOnly.priorStrength = 0;
  auto got = recommender.recommend(test::historyOf({kB, kA}), latticeOnly);
  EXPECT_EQ(test::itemsOf(got), (std::vector<int>{kX, kY}));
  EXPECT_DOUBLE_EQ(got[0].score, 1.0);
  EXPECT_DOUBLE_EQ(got[1].score, 0.9);
}

TEST_F(RecommenderTest, ThePopularityPowerWeighsTheEvidenceByPopularity) {
  // Raw confidences x 1.0, y 0.9 (above), times p^1: x 2/22, y 0.9 * 18/22,
  // so y moves first; each item names the customers behind its factor.
  recommend::Recommender recommender(dict, nullptr);
  latticeOnly.priorStrength = 0;
  latticeOnly.popularityPower = 1;
  auto got = recommender.recommend(test::historyOf({kB, kA}), latticeOnly);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{kY, kX}));
  EXPECT_NEAR(got[0].score, 0.9 * 18 / 22, 1e-12);
  EXPECT_NEAR(got[1].score, 2.0 / 22, 1e-12);
  EXPECT_EQ(got[0].itemCount, 18);
  EXPECT_EQ(got[1].itemCount, 2);
  // Power 0 leaves the scores as they were.
  latticeOnly.popularityPower = 0;
  got = recommender.recommend(test::historyOf({kB, kA}), latticeOnly);
  EXPECT_EQ(test::itemsOf(got), (std::vector<int>{kX, kY}));
  EXPECT_DOUBLE_EQ(got[0].score, 1.0);
}

TEST_F(RecommenderTest, LiftDividesByPopularity) {
  // x 0.54545 / (2/22) = 6.0; y 0.89256 / (18/22) = 1.0909...
  recommend::Recommender recommender(dict, nullptr);
  latticeOnly.ranking = recommend::Ranking::kLift;
  auto got = recommender.recommend(test::historyOf({kB, kA}), latticeOnly);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{kX, kY}));
  EXPECT_NEAR(got[0].score, 6.0, 1e-12);
  EXPECT_NEAR(got[1].score, (18 + 2 * 18.0 / 22) / 18, 1e-12);
}

TEST_F(RecommenderTest, EarlierItemSetsCountLessAndNeverRepeatTheLastOnes) {
  // History (b)(c): nothing follows c; the match (b), one set earlier,
  // proposes a (2/2) and x (2/2) at half weight: (2 + 2 * p) / 4 / 2.
  recommend::Recommender recommender(dict, nullptr);
  auto got = recommender.recommend(test::historyOf({kB, kC}), latticeOnly);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{kA, kX}));
  EXPECT_NEAR(got[0].score, (2 + 2 * 20.0 / 22) / 4 / 2, 1e-12);
  EXPECT_NEAR(got[1].score, (2 + 2 * 2.0 / 22) / 4 / 2, 1e-12);
  EXPECT_EQ(got[0].skippedSets, 1);
  latticeOnly.lastSetOnly = true;
  EXPECT_TRUE(
      recommender.recommend(test::historyOf({kB, kC}), latticeOnly).empty());
}

TEST_F(RecommenderTest, NewOnlyAndRepeatOnlyFilterTheHistorysItems) {
  // History (y)(a): (a) proposes y (0.89256) and x ((2 + 0.18182) / 22).
  recommend::Recommender recommender(dict, nullptr);
  const Sequence history = test::historyOf({kY, kA});
  latticeOnly.historyItems = recommend::HistoryItems::kAll;
  EXPECT_EQ(test::itemsOf(recommender.recommend(history, latticeOnly)),
            (std::vector<int>{kY, kX}));
  latticeOnly.historyItems = recommend::HistoryItems::kNewOnly;
  EXPECT_EQ(test::itemsOf(recommender.recommend(history, latticeOnly)),
            (std::vector<int>{kX}));
  latticeOnly.historyItems = recommend::HistoryItems::kRepeatOnly;
  EXPECT_EQ(test::itemsOf(recommender.recommend(history, latticeOnly)),
            (std::vector<int>{kY}));
}

TEST_F(RecommenderTest, PopularItemsFillTheListAndAreMarked) {
  // Nothing follows c: the most popular items, equal counts by decreasing
  // item code.
  recommend::Recommender recommender(dict, nullptr);
  latticeOnly.popularFallback = true;
  auto got = recommender.recommend(test::historyOf({kC}), latticeOnly);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{kA, kY, kX, kC, kB}));
  for (const auto& r : got) EXPECT_EQ(r.source, recommend::Source::kPopular);
  EXPECT_DOUBLE_EQ(got[0].support, 20.0 / 22);
  // After the evidence, never before it.
  got = recommender.recommend(test::historyOf({kB, kA}), latticeOnly);
  EXPECT_EQ(test::itemsOf(got), (std::vector<int>{kY, kX, kA, kC, kB}));
  EXPECT_EQ(got[1].source, recommend::Source::kLattice);
  EXPECT_EQ(got[2].source, recommend::Source::kPopular);
}

TEST_F(RecommenderTest, ConfidenceRankingIsGetFutureItemsExactly) {
  recommend::Recommender recommender(dict, &index);
  recommend::RecommendOptions options;
  options.ranking = recommend::Ranking::kConfidence;
  for (const auto& items :
       std::vector<std::vector<int>>{{kB, kA}, {kY, kA}, {kB, kC}, {kC}, {}}) {
    const Sequence history = test::historyOf(items);
    std::vector<SeqConsequentDescriptor> library;
    ASSERT_TRUE(dict.GetFutureItems(library, &history, 5, false).IsOK());
    auto got = recommender.recommend(history, options);
    ASSERT_EQ(got.size(), library.size());
    for (std::size_t i = 0; i < got.size(); ++i) {
      EXPECT_EQ(got[i].item, library[i].GetItem());
      EXPECT_EQ(got[i].confidence, library[i].GetConfidence());
      EXPECT_EQ(got[i].support, library[i].GetSupport());
      EXPECT_EQ(got[i].cause, library[i].GetCause());
    }
  }
}

TEST_F(RecommenderTest, TheSequenceIndexAddsWhatFollowedTheContext) {
  // Only the index (weight 1): context {a} is held by all 20 a-customers;
  // y follows in 18 of them, x in 2, shares smoothed by 2: 18/22, 2/22.
  recommend::Recommender recommender(dict, &index);
  recommend::RecommendOptions options;
  options.sequenceWeight = 1;
  options.nextWeight = 0;
  options.minContextCustomers = 1;
  options.popularFallback = false;
  options.historyItems = recommend::HistoryItems::kAll;
  auto got = recommender.recommend(test::historyOf({kA}), options);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{kY, kX}));
  EXPECT_NEAR(got[0].score, 18.0 / 22, 1e-12);
  EXPECT_NEAR(got[1].score, 2.0 / 22, 1e-12);
  EXPECT_EQ(got[0].source, recommend::Source::kSequences);
  EXPECT_EQ(got[0].contextCustomers, 20);
}

TEST_F(RecommenderTest, TheNextItemEstimateNamesTheRunBehindIt) {
  // Only the next-item estimate (weight 1). History (b)(a): the run (b)(a),
  // 2 times, is followed by x twice; its suffix (a), 20 times, by y 18
  // times and x twice. Smoothed by kRunSmoothing = 20: x 2/22 + (20/22)
  // * 2/40 = 3/22, y (20/22) * 18/40 = 9/22; nothing comes two item sets
  // later, so the chance of "in the next two" is the same.
  recommend::Recommender recommender(dict, &index);
  recommend::RecommendOptions options;
  options.top = 2;
  options.nextWeight = 1;
  options.popularFallback = false;
  options.historyItems = recommend::HistoryItems::kAll;
  auto got = recommender.recommend(test::historyOf({kB, kA}), options);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{kY, kX}));
  EXPECT_NEAR(got[0].score, 9.0 / 22, 1e-12);
  EXPECT_NEAR(got[1].score, 3.0 / 22, 1e-12);
  EXPECT_EQ(got[0].source, recommend::Source::kNext);
  EXPECT_EQ(got[0].nextRun, (std::vector<std::vector<int>>{{kA}}));
  EXPECT_EQ(got[0].nextRunCount, 20);
  EXPECT_EQ(got[0].nextCount, 18);
  EXPECT_EQ(got[1].nextRun, (std::vector<std::vector<int>>{{kB}, {kA}}));
  EXPECT_EQ(got[1].nextRunCount, 2);
  EXPECT_EQ(got[1].nextCount, 2);
  EXPECT_NEAR(got[1].nextChance, 3.0 / 22, 1e-12);
  // The popularity power weighs the other evidence only.
  options.popularityPower = 1;
  got = recommender.recommend(test::historyOf({kB, kA}), options);
  EXPECT_NEAR(got[0].score, 9.0 / 22, 1e-12);
  EXPECT_NEAR(got[1].score, 3.0 / 22, 1e-12);
  // Turned off: the lattice and the index alone, no run named.
  options.nextWeight = 0;
  got = recommender.recommend(test::historyOf({kB, kA}), options);
  for (const auto& r : got) EXPECT_TRUE(r.nextRun.empty());
  EXPECT_NE(got[0].source, recommend::Source::kNext);
}

TEST(AutomaticNextWeight, FallsAsTheNextItemSetIsMoreOftenWhatComesSoon) {
  EXPECT_EQ(recommend::automaticNextWeight(0.53), 0.72);
  EXPECT_EQ(recommend::automaticNextWeight(0.7499), 0.72);
  EXPECT_EQ(recommend::automaticNextWeight(0.75), 0.26);
  EXPECT_EQ(recommend::automaticNextWeight(0.78), 0.26);
  EXPECT_EQ(recommend::automaticNextWeight(0.8499), 0.26);
  EXPECT_EQ(recommend::automaticNextWeight(0.85), 0.0);
  EXPECT_EQ(recommend::automaticNextWeight(0.91), 0.0);
  EXPECT_EQ(recommend::automaticNextWeight(1.0), 0.0);
}

TEST_F(RecommenderTest, ShortSequencesWeighEarlierItemSetsLessByDefault) {
  // The customers hold 2.5 item sets on average: earlier weight 0.3, no
  // decay. History (b)(c): a and x from (b), one item set earlier.
  recommend::Recommender recommender(dict, &index);
  recommend::RecommendOptions options;
  options.sequenceWeight = 0;
  options.nextWeight = 0;
  options.popularFallback = false;
  options.historyItems = recommend::HistoryItems::kAll;
  auto got = recommender.recommend(test::historyOf({kB, kC}), options);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{kA, kX}));
  EXPECT_NEAR(got[0].score, (2 + 2 * 20.0 / 22) / 4 * 0.3, 1e-12);
}

TEST(VeryLongSequences, TheSimilarCustomersAloneGiveTheScore) {
  // Two customers of 50 item sets: (1)(2) or (1)(3), then 10, 11, ..., 57.
  // History (1): both hold it, each adding 1 / 2 for every later item, so
  // 10..57 score 1 and 2, 3 score 0.5; ties go to the higher item code. The
  // lattice is not asked (no rule behind any item).
  std::vector<test::Customer> customers(2);
  for (int c = 0; c < 2; ++c) {
    customers[static_cast<std::size_t>(c)] = {{1}, {2 + c}};
    for (int item = 10; item < 58; ++item) {
      customers[static_cast<std::size_t>(c)].push_back({item});
    }
  }
  const mining::SequenceDatabase db = test::makeDatabase(customers);
  recommend::SequenceIndex index(db);
  SequenceDictionary dict{2};
  test::mineAll(db, 1, &dict);
  recommend::Recommender recommender(dict, &index);
  recommend::RecommendOptions options;
  options.top = 3;
  options.nextWeight = 0;
  options.popularFallback = false;
  auto got = recommender.recommend(test::historyOf({1}), options);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{57, 56, 55}));
  for (const auto& r : got) {
    EXPECT_DOUBLE_EQ(r.score, 1.0);
    EXPECT_EQ(r.source, recommend::Source::kSequences);
    EXPECT_TRUE(r.pattern.empty());
    EXPECT_EQ(r.contextCustomers, 2);
  }
  // The followers' evidence instead (customers holding {1}, smoothed by 2,
  // blended half and half with the lattice, which has no pairs here).
  options.sequenceEvidence = recommend::SequenceEvidence::kFollowers;
  options.sequenceWeight = 0.5;
  options.decay = 0;
  got = recommender.recommend(test::historyOf({1}), options);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{57, 56, 55}));
  EXPECT_DOUBLE_EQ(got[0].score, 0.5 * 2 / 4);
}

TEST_F(RecommenderTest, AnyOfTheRulesCombinesEveryRuleOfAnItem) {
  // History (b)(a). x has three rules: (b)(a) 2/2 -> (2 + 2 * 2/22) / 4,
  // (a) 2/20 -> (2 + 2 * 2/22) / 22 and, one item set earlier at half
  // weight, (b) 2/2 -> (2 + 2 * 2/22) / 4 / 2; y one: (a) 18/20. The best
  // rule keeps y first, any of the rules gives 1 - the product of the
  // misses and still does here.
  recommend::Recommender recommender(dict, nullptr);
  latticeOnly.priorStrength = 2;
  latticeOnly.ruleCombination = recommend::RuleCombination::kAnyOf;
  auto got = recommender.recommend(test::historyOf({kB, kA}), latticeOnly);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{kY, kX}));
  const double x = 2 + 2 * 2.0 / 22;
  EXPECT_NEAR(got[0].score, (18 + 2 * 18.0 / 22) / 22, 1e-12);
  EXPECT_NEAR(got[1].score, 1 - (1 - x / 4) * (1 - x / 22) * (1 - x / 4 / 2),
              1e-12);
  // The explanation is still the best rule's.
  EXPECT_EQ(got[1].pattern, (std::vector<std::vector<int>>{{kB}, {kA}}));
}

TEST_F(RecommenderTest, TheEstimatedPriorStaysAtTheFloorWhenRulesScatter) {
  // The two-item rules (a)(y) 18/20, (a)(x) 2/20, (b)(a) 2/2, (b)(x) 2/2
  // scatter around popularity far more than counting noise explains:
  // spread / excess - 1 = 0.3025 / 0.7473 - 1 < 0, so the floor.
  recommend::Recommender recommender(dict, nullptr);
  EXPECT_DOUBLE_EQ(recommender.estimatedPrior(), recommend::kMinPrior);
}

TEST(EstimatedPrior, MethodOfMomentsOfTheTwoItemRules) {
  // a is followed by y in 8 of its 12 customers and by x in 4, b the other
  // way round; p(y) = p(x) = 1/2. Each of the four rules has
  // (r - p)^2 - p(1 - p)/n = 1/36 - 1/48 = 1/144 and p(1 - p)(1 - 1/n) =
  // 11/48: the prior is 11/48 * 144 - 1 = 32 customers. The default
  // options use it: the context {a} smoothed by 32, (8 + 32/2) / (12 + 32).
  std::vector<test::Customer> customers;
  for (int i = 0; i < 8; ++i) customers.push_back({{kA}, {kY}});
  for (int i = 0; i < 4; ++i) customers.push_back({{kA}, {kX}});
  for (int i = 0; i < 4; ++i) customers.push_back({{kB}, {kY}});
  for (int i = 0; i < 8; ++i) customers.push_back({{kB}, {kX}});
  const mining::SequenceDatabase db = test::makeDatabase(customers);
  SequenceDictionary dict{4};
  test::mineAll(db, 2, &dict);
  recommend::Recommender recommender(dict, nullptr);
  EXPECT_NEAR(recommender.estimatedPrior(), 32.0, 1e-9);
  recommend::RecommendOptions options;
  options.sequenceWeight = 0;
  options.popularFallback = false;
  auto got = recommender.recommend(test::historyOf({kA}), options);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{kY, kX}));
  EXPECT_NEAR(got[0].score, (8 + 32 * 0.5) / (12 + 32), 1e-12);
}

TEST(LongSequences, AnyOfTheRulesByDefault) {
  // Three customers of 20 item sets: (1)(2)(10)..(27), (1)(2)(30)..(47),
  // (100)..(119). History (1)(2): every later item of the first two has
  // the rules (2) 1/2, (1)(2) 1/2 and, one item set earlier at the long
  // sequences' weight 0.5, (1) 1/2, each (1 + 2 * 1/3) / (2 + 2). Ties go
  // to the higher item code.
  std::vector<test::Customer> customers(3);
  customers[0] = {{1}, {2}};
  customers[1] = {{1}, {2}};
  for (int item = 10; item < 28; ++item) {
    customers[0].push_back({item});
    customers[1].push_back({item + 20});
  }
  for (int item = 100; item < 120; ++item) customers[2].push_back({item});
  recommend::RecommendOptions options;
  options.top = 1;
  options.sequenceWeight = 0;
  options.nextWeight = 0;
  options.priorStrength = 2;
  options.popularFallback = false;
  const mining::SequenceDatabase db = test::makeDatabase(customers);
  SequenceDictionary dict{4};
  test::mineAll(db, 3, &dict);
  const recommend::SequenceIndex index(db);
  recommend::Recommender recommender(dict, &index);
  const double rule = (1 + 2.0 / 3) / 4;
  auto got = recommender.recommend(test::historyOf({1, 2}), options);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{47}));
  EXPECT_NEAR(got[0].score, 1 - (1 - rule) * (1 - rule) * (1 - rule / 2),
              1e-12);
  options.ruleCombination = recommend::RuleCombination::kBest;
  got = recommender.recommend(test::historyOf({1, 2}), options);
  ASSERT_EQ(test::itemsOf(got), (std::vector<int>{47}));
  EXPECT_NEAR(got[0].score, rule, 1e-12);
}

TEST_F(RecommenderTest, ZeroItemsWanted) {
  recommend::Recommender recommender(dict, &index);
  recommend::RecommendOptions options;
  options.top = 0;
  EXPECT_TRUE(recommender.recommend(test::historyOf({kA}), options).empty());
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
