#include "seqlattice/dictionary/sequencedictionary.h"

#include <gtest/gtest.h>

#include <vector>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/support/seqexceptions.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

std::vector<int> capacities(const SequenceDictionary& d) {
  std::vector<int> out;
  for (int k = 0; k < d.getNLevels(); ++k) {
    out.push_back(d.getLevel(k)->getCapacity());
  }
  return out;
}

std::vector<int> tableSizes(const SequenceDictionary& d) {
  std::vector<int> out;
  for (int k = 0; k <= d.getNLevels(); ++k) out.push_back(d.getTableSize(k));
  return out;
}

TEST(SequenceDictionaryTest, DefaultSettingsMakeTenTables) {
  SequenceDictionary d{SeqDictionarySettings()};
  EXPECT_EQ(d.getNLevels(), 10);
  EXPECT_EQ(capacities(d), (std::vector<int>{2, 11519, 23039, 23039, 23039,
                                             23039, 11519, 11519, 89, 89}));
  EXPECT_EQ(tableSizes(d), (std::vector<int>{2, 11519, 23039, 23039, 23039,
                                             23039, 11519, 11519, 89, 89, 89}));
  EXPECT_EQ(d.getLevel(10), nullptr);
  EXPECT_EQ(d.NumberOfSequences(), 1);
  EXPECT_EQ(d.LargestSequence(), 0);
  EXPECT_EQ(d.CountSequencesOfSize(0), 1);
  EXPECT_FALSE(d.isLatticeBuilt());
}

TEST(SequenceDictionaryTest, ThreeLevelsWriteFourTableSizes) {
  SequenceDictionary d(3);
  EXPECT_EQ(d.getSettings().nLevels, 3);
  EXPECT_EQ(tableSizes(d), (std::vector<int>{2, 11519, 23039, 23039}));
  EXPECT_EQ(capacities(d), (std::vector<int>{2, 11519, 23039}));
  EXPECT_EQ(d.getLevel(3), nullptr);
  EXPECT_EQ(d.getTableSize(4), 0);
}

TEST(SequenceDictionaryTest, LevelsFromEightUseHigherLevelSize) {
  SeqDictionarySettings s;
  s.nLevels = 12;
  s.higherLevelSize = 57;
  s.level7Size = 31;
  SequenceDictionary d(s);
  EXPECT_EQ(tableSizes(d),
            (std::vector<int>{2, 11519, 23039, 23039, 23039, 23039, 11519, 31,
                              57, 57, 57, 57, 57}));
  EXPECT_EQ(d.getLevel(11)->getCapacity(), 57);
}

TEST(SequenceDictionaryTest, LevelZeroHoldsTheEmptyPatternWithZeroCounter) {
  SequenceDictionary d(4);
  SequenceCounter* total = d.getLevel0Descriptor();
  ASSERT_NE(total, nullptr);
  EXPECT_EQ(total->getCount(), 0);
  EXPECT_EQ(total->getOrdinalOfEntry(), 0);
  EXPECT_EQ(total->getMaxMissed(), 0);
  EXPECT_EQ(test::counterOf(d, {}), total);
}

TEST(SequenceDictionaryTest, LargestSequenceStopsAtTheFirstEmptyLevel) {
  SequenceDictionary d(6);
  test::addPattern(d, {{1}}, 5);
  test::addPattern(d, {{2}}, 5);
  test::addPattern(d, {{1}, {2}}, 4);
  test::addPattern(d, {{1, 2, 3, 4}}, 3);
  EXPECT_EQ(d.LargestSequence(), 2);
  EXPECT_EQ(d.CountSequencesBiggerThan(1), 3);
  EXPECT_EQ(d.CountSequencesBiggerThan(2), 1);
  EXPECT_EQ(d.CountSequencesBiggerThan(3), 0);
  EXPECT_EQ(d.NumberOfSequences(), 5);
}

TEST(SequenceDictionaryTest, LargestSequenceIsCappedBelowNLevels) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}}, 1);
  test::addPattern(d, {{1}, {2}}, 1);
  test::addPattern(d, {{1}, {2}, {3}}, 1);
  EXPECT_EQ(d.LargestSequence(), 3);
  EXPECT_EQ(d.CountSequencesBiggerThan(1), 3);
  EXPECT_EQ(SequenceDictionary(1).LargestSequence(), 0);
}

TEST(SequenceDictionaryTest, NumberOfSequencesCountsTheEmptyPattern) {
  SequenceDictionary d(3);
  EXPECT_EQ(d.NumberOfSequences(), 1);
  test::addPattern(d, {{7}}, 1);
  EXPECT_EQ(d.NumberOfSequences(), 2);
}

TEST(SequenceDictionaryTest, CountsOutsideTheLevelsAreZero) {
  SequenceDictionary d(3);
  EXPECT_EQ(d.CountSequencesOfSize(-1), 0);
  EXPECT_EQ(d.CountSequencesOfSize(3), 0);
  EXPECT_EQ(d.getLevel(-1), nullptr);
}

TEST(SequenceDictionaryTest, ResetKeepsSettingsAndLatticeFlag) {
  SeqDictionarySettings s;
  s.nLevels = 4;
  s.level1Size = 17;
  SequenceDictionary d(s);
  test::addPattern(d, {{1}}, 3);
  test::addPattern(d, {{1}, {2}}, 2);
  ASSERT_TRUE(d.buildLattice().IsOK());
  d.setMinGap(2.0);
  d.reset();
  EXPECT_TRUE(d.isLatticeBuilt());
  EXPECT_EQ(d.getSettings().level1Size, 17);
  EXPECT_EQ(d.getNLevels(), 4);
  EXPECT_EQ(d.getMinGap(), 2.0);
  EXPECT_EQ(d.NumberOfSequences(), 1);
  EXPECT_EQ(d.CountSequencesOfSize(0), 1);
  ASSERT_NE(d.getLevel0Descriptor(), nullptr);
  EXPECT_EQ(d.getLevel0Descriptor()->getCount(), 0);
  EXPECT_FALSE(test::stored(d, {{1}}));
}

TEST(SequenceDictionaryTest, ValuesStartAtZeroAndSettersStoreThem) {
  SequenceDictionary d(2);
  EXPECT_EQ(d.getMinSupport(), 0.0);
  EXPECT_EQ(d.getSlidingWindow(), 0.0);
  EXPECT_EQ(d.getMinGap(), 0.0);
  EXPECT_EQ(d.getMaxGap(), 0.0);
  d.setSlidingWindow(7.5);
  d.setMinGap(1.25);
  d.setMaxGap(3.0);
  EXPECT_EQ(d.getSlidingWindow(), 7.5);
  EXPECT_EQ(d.getMinGap(), 1.25);
  EXPECT_EQ(d.getMaxGap(), 3.0);
}

TEST(SequenceDictionaryTest, DefaultConstructedIsEmptyAndSafe) {
  SequenceDictionary d;
  EXPECT_EQ(d.getNLevels(), 0);
  EXPECT_EQ(d.getSettings().nLevels, 10);
  EXPECT_EQ(d.NumberOfSequences(), 0);
  EXPECT_EQ(d.LargestSequence(), 0);
  EXPECT_EQ(d.getLevel(0), nullptr);
  EXPECT_EQ(d.getLevel0Descriptor(), nullptr);
  EXPECT_EQ(test::counterOf(d, {{1}}), nullptr);
  EXPECT_FALSE(d.buildLattice().IsOK());
  EXPECT_THROW(d.defineLevel0(), SeqExceptions::DictionaryFailure);
}

TEST(SequenceDictionaryTest, CreateDictionaryBuildsFromSettings) {
  SequenceDictionary d;
  d.setCancel();
  SeqDictionarySettings s;
  s.nLevels = 5;
  d.createDictionary(s);
  EXPECT_EQ(d.getNLevels(), 5);
  EXPECT_EQ(d.NumberOfSequences(), 1);
  EXPECT_EQ(d.getTableSize(5), 23039);
  EXPECT_FALSE(d.isLatticeBuilt());
  // Called again, the old tables give way to new ones.
  test::addPattern(d, {{1}}, 1);
  s.nLevels = 3;
  d.createDictionary(s);
  EXPECT_EQ(d.getNLevels(), 3);
  EXPECT_EQ(d.NumberOfSequences(), 1);
}

TEST(SequenceDictionaryTest, CreateDictionaryKeepsTheLatticeFlag) {
  HashtableSQPair** tables = new HashtableSQPair*[2]();
  tables[0] = new HashtableSQPair(3);
  SequenceDictionary d(tables, 1);
  ASSERT_TRUE(d.isLatticeBuilt());
  d.createDictionary(SeqDictionarySettings());
  EXPECT_TRUE(d.isLatticeBuilt());
  EXPECT_EQ(d.getNLevels(), 10);
}

TEST(SequenceDictionaryTest, FewerThanOneLevelIsRefused) {
  EXPECT_THROW(SequenceDictionary(0), SeqExceptions::DictionaryFailure);
  EXPECT_THROW(SequenceDictionary(-3), SeqExceptions::DictionaryFailure);
  SeqDictionarySettings s;
  s.nLevels = 0;
  EXPECT_THROW(SequenceDictionary{s}, SeqExceptions::DictionaryFailure);
  EXPECT_THROW(SequenceDictionary(nullptr, 0),
               SeqExceptions::DictionaryFailure);
  SequenceDictionary d;
  EXPECT_THROW(d.createDictionary(s), SeqExceptions::DictionaryFailure);
  EXPECT_EQ(d.getNLevels(), 0);
}

TEST(SequenceDictionaryTest, NonPositiveBucketCountIsRefused) {
  SeqDictionarySettings s;
  s.level2Size = 0;
  EXPECT_THROW(SequenceDictionary{s}, SeqExceptions::DictionaryFailure);
  s.nLevels = 2;  // level 2 is not made, so its size does not matter
  EXPECT_EQ(SequenceDictionary(s).getNLevels(), 2);
  s.nLevels = 9;
  s.level2Size = 5;
  s.higherLevelSize = -1;
  EXPECT_THROW(SequenceDictionary{s}, SeqExceptions::DictionaryFailure);
}

TEST(SequenceDictionaryTest, AdoptedTablesAreTakenAsTheyAre) {
  HashtableSQPair** tables = new HashtableSQPair*[4]();
  for (int k = 0; k < 3; ++k) tables[k] = new HashtableSQPair(5);
  SequenceDictionary d(tables, 3);
  EXPECT_TRUE(d.isLatticeBuilt());
  EXPECT_EQ(d.getNLevels(), 3);
  EXPECT_EQ(d.getSettings().nLevels, 3);
  EXPECT_EQ(d.getLevel(1), tables[1]);
  EXPECT_EQ(d.CountSequencesOfSize(0), 0);  // level 0 is not defined
  EXPECT_EQ(d.getTableSize(0), 2);
  EXPECT_EQ(d.getTableSize(3), 23039);
  test::addPattern(d, {{4}}, 2);
  EXPECT_EQ(test::counterOf(d, {{4}})->getCount(), 2);
}

// The counting queries reach each other through the interface's slots.
class TwoFullLevels : public SequenceDictionary {
 public:
  using SequenceDictionary::SequenceDictionary;
  int CountSequencesOfSize(int k) const override { return k <= 2 ? 1 : 0; }
};

TEST(SequenceDictionaryTest, OverriddenCountChangesTheOtherQueries) {
  SequenceDictionary* d = new TwoFullLevels(6);
  test::addPattern(*d, {{1}, {2}, {3}}, 1);
  EXPECT_EQ(d->LargestSequence(), 2);
  EXPECT_EQ(d->CountSequencesBiggerThan(1), 2);
  // reduceAll stops where the overridden count says level 3 is empty.
  EXPECT_EQ(d->reduceAll(2.0), 0);
  EXPECT_TRUE(test::stored(*d, {{1}, {2}, {3}}));
  delete d;
}

TEST(SequenceDictionaryTest, CancelStaysUntilTheTablesAreRebuilt) {
  SequenceDictionary d(2);
  EXPECT_FALSE(d.isCancelled());
  d.setCancel();
  EXPECT_TRUE(d.isCancelled());
  d.reset();
  EXPECT_TRUE(d.isCancelled());
  d.createDictionary(SeqDictionarySettings());
  EXPECT_FALSE(d.isCancelled());
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
