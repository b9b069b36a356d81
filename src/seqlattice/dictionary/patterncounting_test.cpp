#include <gtest/gtest.h>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/support/seqexceptions.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

TEST(PatternCountingTest, AddingAStoredPatternReplacesItsCounter) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1, 2}}, 3, 1, 0);
  SequenceCounter* first = test::counterOf(d, {{1, 2}});
  ASSERT_NE(first, nullptr);
  test::addPattern(d, {{1, 2}}, 8, 4, 2);
  SequenceCounter* second = test::counterOf(d, {{1, 2}});
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(second->getCount(), 8);
  EXPECT_EQ(second->getOrdinalOfEntry(), 4);
  EXPECT_EQ(second->getMaxMissed(), 2);
  EXPECT_EQ(d.CountSequencesOfSize(2), 1);
}

TEST(PatternCountingTest, NullCounterStoresThePatternOnly) {
  SequenceDictionary d(4);
  test::PatternArrays p(test::Sets{{3}, {4}});
  d.addSequence(p.sets(), p.nSets(), nullptr);
  EXPECT_TRUE(d.hasSequence(p.sets(), p.nSets()));
  EXPECT_EQ(d.getDescriptor(p.sets(), p.nSets()), nullptr);
  EXPECT_EQ(d.incrementCount(p.sets(), p.nSets()), nullptr);
  EXPECT_EQ(d.CountSequencesOfSize(2), 1);
}

TEST(PatternCountingTest, IncrementOfATooLongPatternFindsNothing) {
  SequenceDictionary d(3);
  test::PatternArrays p(test::Sets{{1, 2}, {3}});
  EXPECT_EQ(d.incrementCount(p.sets(), p.nSets()), nullptr);
  EXPECT_FALSE(d.hasSequence(p.sets(), p.nSets()));
  EXPECT_EQ(d.NumberOfSequences(), 1);
}

TEST(PatternCountingTest, IncrementOfAnAbsentPatternDoesNotAddIt) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}}, 1);
  test::PatternArrays p(test::Sets{{2}});
  EXPECT_EQ(d.incrementCount(p.sets(), p.nSets()), nullptr);
  EXPECT_FALSE(d.hasSequence(p.sets(), p.nSets()));
  EXPECT_EQ(d.NumberOfSequences(), 2);
}

TEST(PatternCountingTest, IncrementOfTheEmptyPatternCountsLevelZero) {
  SequenceDictionary d(4);
  test::PatternArrays empty(test::Sets{});
  for (int i = 1; i <= 3; ++i) {
    SequenceCounter* total = d.incrementCount(empty.sets(), 0);
    ASSERT_NE(total, nullptr);
    EXPECT_EQ(total->getCount(), i);
  }
  EXPECT_EQ(d.getLevel0Descriptor()->getCount(), 3);
}

TEST(PatternCountingTest, IncrementReturnsTheStoredCounter) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}, {2}}, 5, 2, 1);
  test::PatternArrays p(test::Sets{{1}, {2}});
  SequenceCounter* counter = d.incrementCount(p.sets(), p.nSets());
  ASSERT_NE(counter, nullptr);
  EXPECT_EQ(counter, test::counterOf(d, {{1}, {2}}));
  EXPECT_EQ(counter->getCount(), 6);
  EXPECT_EQ(counter->getOrdinalOfEntry(), 2);
  EXPECT_EQ(counter->getMaxMissed(), 1);
}

TEST(PatternCountingTest, StoredCounterIsACopyOfTheCallersCounter) {
  SequenceDictionary d(4);
  test::PatternArrays p(test::Sets{{5, 6}});
  SequenceCounter mine(7, 3, nullptr);
  mine.setMaxMissed(2);
  mine.addAdjacentItem(9, 1);
  d.addSequence(p.sets(), p.nSets(), &mine);
  SequenceCounter* kept = d.getDescriptor(p.sets(), p.nSets());
  ASSERT_NE(kept, nullptr);
  EXPECT_NE(kept, &mine);
  EXPECT_EQ(kept->getCount(), 3);
  EXPECT_EQ(kept->getOrdinalOfEntry(), 7);
  EXPECT_EQ(kept->getMaxMissed(), 2);
  EXPECT_EQ(kept->getNAdjacent(), 0);
  EXPECT_EQ(kept->getStatsBucket(), nullptr);
}

TEST(PatternCountingTest, AddingATooLongPatternIsRefused) {
  SequenceDictionary d(3);
  test::PatternArrays p(test::Sets{{1}, {2}, {3}});
  SequenceCounter counter(0, 1, nullptr);
  EXPECT_THROW(d.addSequence(p.sets(), p.nSets(), &counter),
               SeqExceptions::DictionaryFailure);
  EXPECT_EQ(d.NumberOfSequences(), 1);
}

TEST(PatternCountingTest, TheThreeLookupFormsAgree) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1, 3}, {2}}, 4);
  test::PatternArrays p(test::Sets{{1, 3}, {2}});
  NTSequence key(p.sets(), p.nSets());
  std::unique_ptr<Sequence> timed = test::newSequence({{1, 3}, {2}});
  SequenceCounter* counter = d.getDescriptor(&key);
  ASSERT_NE(counter, nullptr);
  EXPECT_EQ(d.getDescriptor(p.sets(), p.nSets()), counter);
  EXPECT_EQ(d.getDescriptor(timed.get()), counter);
  // (1 3 2) and (1)(3)(2) are other patterns.
  EXPECT_EQ(test::counterOf(d, {{1, 2, 3}}), nullptr);
  EXPECT_EQ(test::counterOf(d, {{1}, {3}, {2}}), nullptr);
}

TEST(PatternCountingTest, GetSequenceReturnsTheStoredKey) {
  SequenceDictionary d(4);
  test::addPattern(d, {{2}, {7}}, 1);
  test::PatternArrays p(test::Sets{{2}, {7}});
  NTSequence* key = d.getSequence(p.sets(), p.nSets());
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(key->size(), 2);
  EXPECT_EQ(key->getNSets(), 2);
  EXPECT_EQ(key->getItemInSet(0, 1), 7);
  EXPECT_EQ(d.getSequence(p.sets(), p.nSets()), key);
  test::PatternArrays absent(test::Sets{{7}, {2}});
  EXPECT_EQ(d.getSequence(absent.sets(), absent.nSets()), nullptr);
}

TEST(PatternCountingTest, DescriptorOfATooLongKeyIsNull) {
  SequenceDictionary d(2);
  test::PatternArrays p(test::Sets{{1}, {2}});
  NTSequence key(p.sets(), p.nSets());
  EXPECT_EQ(d.getDescriptor(&key), nullptr);
  EXPECT_EQ(d.getDescriptor(static_cast<NTSequence const*>(nullptr)), nullptr);
}

TEST(PatternCountingTest, RemoveOfNullDoesNothing) {
  SequenceDictionary d(3);
  test::addPattern(d, {{1}}, 1);
  d.remove(static_cast<Sequence const*>(nullptr));
  d.remove(static_cast<NTSequence*>(nullptr));
  EXPECT_EQ(d.NumberOfSequences(), 2);
}

TEST(PatternCountingTest, EachRemoveFormTakesThePatternOut) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}}, 1);
  test::addPattern(d, {{1}, {2}}, 1);
  test::addPattern(d, {{1, 2, 3}}, 1);
  test::PatternArrays single(test::Sets{{1}});
  d.remove(single.sets(), single.nSets());
  EXPECT_FALSE(test::stored(d, {{1}}));
  std::unique_ptr<Sequence> two = test::newSequence({{1}, {2}});
  d.remove(two.get());
  EXPECT_FALSE(test::stored(d, {{1}, {2}}));
  test::PatternArrays three(test::Sets{{1, 2, 3}});
  NTSequence key(three.sets(), three.nSets());
  d.remove(&key);
  EXPECT_FALSE(test::stored(d, {{1, 2, 3}}));
  EXPECT_EQ(key.size(), 3);  // the caller's key is left alone
  EXPECT_EQ(d.NumberOfSequences(), 1);
}

TEST(PatternCountingTest, RemovingAbsentOrTooLongPatternsDoesNothing) {
  SequenceDictionary d(3);
  test::addPattern(d, {{1}, {2}}, 1);
  test::PatternArrays absent(test::Sets{{2}, {1}});
  d.remove(absent.sets(), absent.nSets());
  test::PatternArrays tooLong(test::Sets{{1}, {2}, {3}});
  d.remove(tooLong.sets(), tooLong.nSets());
  NTSequence key(tooLong.sets(), tooLong.nSets());
  d.remove(&key);
  std::unique_ptr<Sequence> timed = test::newSequence({{1}, {2}, {3}});
  d.remove(timed.get());
  EXPECT_TRUE(test::stored(d, {{1}, {2}}));
  EXPECT_EQ(d.NumberOfSequences(), 2);
}

TEST(PatternCountingTest, RemovingTheStoredKeyItselfIsAllowed) {
  SequenceDictionary d(3);
  test::addPattern(d, {{4}}, 1);
  test::PatternArrays p(test::Sets{{4}});
  d.remove(d.getSequence(p.sets(), p.nSets()));
  EXPECT_FALSE(test::stored(d, {{4}}));
}

TEST(PatternCountingTest, ReturnedCountersMayBeChangedInPlace) {
  SequenceDictionary d(3);
  test::addPattern(d, {{4}}, 1);
  test::counterOf(d, {{4}})->setMaxMissed(6);
  EXPECT_EQ(test::counterOf(d, {{4}})->getMaxMissed(), 6);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
