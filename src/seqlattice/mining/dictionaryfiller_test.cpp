#include "seqlattice/mining/dictionaryfiller.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "seqlattice/mining/mining_test_util.h"
#include "seqlattice/mining/miningerror.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace {

// Customers 0..3: <(1 2), 3>, <1, 3>, <2>, <(1 2), 3, 1>.
SequenceDatabase sampleDatabase() {
  return test::makeDatabase(
      {{{1, 2}, {3}}, {{1}, {3}}, {{2}}, {{1, 2}, {3}, {1}}});
}

SequenceCounter* counterOf(SequenceDictionary& dictionary,
                           std::vector<std::vector<int>> sets) {
  std::vector<std::vector<int>> arrays;
  for (const auto& set : sets) {
    std::vector<int> array{static_cast<int>(set.size())};
    array.insert(array.end(), set.begin(), set.end());
    arrays.push_back(array);
  }
  std::vector<int*> pointers;
  for (auto& array : arrays) pointers.push_back(array.data());
  return dictionary.getDescriptor(pointers.data(),
                                  static_cast<int>(pointers.size()));
}

TEST(DictionaryFillerTest, StoresEveryFrequentPatternAndTheTotal) {
  SequenceDatabase db = sampleDatabase();
  SequenceDictionary dictionary(4);
  MinerOptions options;
  options.minSupport = MinSupport::count(2);
  options.maxItems = 3;
  MiningSummary summary = mineIntoDictionary(db, options, dictionary);

  EXPECT_TRUE(dictionary.isLatticeBuilt());
  ASSERT_NE(counterOf(dictionary, {}), nullptr);
  EXPECT_EQ(counterOf(dictionary, {})->getCount(), 4);
  // 1, 2, 3, (1 2), <1, 3>, <2, 3>, <(1 2), 3>
  EXPECT_EQ(summary.patterns, 7);
  EXPECT_EQ(dictionary.CountSequencesOfSize(1), 3);
  EXPECT_EQ(dictionary.CountSequencesOfSize(2), 3);
  EXPECT_EQ(dictionary.CountSequencesOfSize(3), 1);
  SequenceCounter* c = counterOf(dictionary, {{1, 2}, {3}});
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c->getCount(), 2);
  EXPECT_EQ(c->getOrdinalOfEntry(), 0);
  EXPECT_EQ(c->getMaxMissed(), 0);
  SequenceCounter* three = counterOf(dictionary, {{3}});
  ASSERT_NE(three, nullptr);
  EXPECT_EQ(three->getCount(), 3);
  EXPECT_EQ(counterOf(dictionary, {{2}})->getOrdinalOfEntry(), 0);
  EXPECT_EQ(counterOf(dictionary, {{1}, {3}})->getCount(), 3);
  EXPECT_EQ(counterOf(dictionary, {{3}, {1}}), nullptr);
}

TEST(DictionaryFillerTest, MaxItemsMustStayBelowTheLevelCount) {
  SequenceDatabase db = sampleDatabase();
  SequenceDictionary dictionary(4);
  MinerOptions options;
  options.maxItems = 4;
  try {
    mineIntoDictionary(db, options, dictionary);
    FAIL() << "maxItems 4 accepted for 4 levels";
  } catch (const MiningError& e) {
    EXPECT_EQ(std::string(e.what()),
              "maximum pattern size 4 does not fit a dictionary of 4 levels "
              "(at most 31 items, below the level count)");
  }
  EXPECT_EQ(counterOf(dictionary, {})->getCount(), 0);
}

TEST(DictionaryFillerTest, RefusesAModelBeyondTheMemoryBudget) {
  SequenceDatabase db = sampleDatabase();
  SequenceDictionary dictionary(4);
  MinerOptions options;
  options.minSupport = MinSupport::count(2);
  options.maxItems = 3;
  // The three items take 3 * 228 bytes, the first two-item pattern 280 more;
  // the second would pass 1000.
  options.memoryBudget = 1000;
  try {
    mineIntoDictionary(db, options, dictionary);
    FAIL() << "a model beyond the budget accepted";
  } catch (const MiningError& e) {
    EXPECT_EQ(std::string(e.what()),
              "the model outgrows the memory budget of 1 MB after 4 patterns: "
              "raise the minimum support or lower the maximum pattern size");
  }
  EXPECT_EQ(dictionary.NumberOfSequences(), 1 + 4);
  EXPECT_FALSE(dictionary.isLatticeBuilt());
}

TEST(DictionarySinkTest, CountsTheModelBytes) {
  int set0[] = {2, 4, 7};
  int set1[] = {1, 9};
  int* sets[] = {set0, set1};
  SequenceDictionary dictionary(4);
  DictionarySink sink(dictionary);
  EXPECT_EQ(storedPatternBytes(1), 228u);
  EXPECT_EQ(storedPatternBytes(3), 332u);
  sink.addPattern(sets, 2, 5, 11);
  sink.addPattern(sets + 1, 1, 5, 11);
  EXPECT_EQ(sink.modelBytes(), 332u + 228u);
}

TEST(DictionarySinkTest, AddsPatternsWithTheirCounters) {
  int set0[] = {2, 4, 7};
  int set1[] = {1, 9};
  int* sets[] = {set0, set1};
  SequenceDictionary dictionary(4);
  DictionarySink sink(dictionary);
  sink.addPattern(sets, 2, 5, 11);
  SequenceCounter* c = counterOf(dictionary, {{4, 7}, {9}});
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c->getCount(), 5);
  EXPECT_EQ(c->getOrdinalOfEntry(), 11);
  EXPECT_EQ(c->getMaxMissed(), 0);
}

}  // namespace
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
