#include "seqlattice/store/hashpairseq.h"

#include <gtest/gtest.h>

#include <climits>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/store/statsbucket.h"
#include "seqlattice/store/store_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Counts destroyed counters: each test counter carries a bucket that reports
// its own destruction.
int destroyedCounters = 0;

struct ReportingBucket : StatsBucket {
  ~ReportingBucket() override { ++destroyedCounters; }
};

SequenceCounter* counter(int count) {
  return new SequenceCounter(0, count, new ReportingBucket());
}

class HashtableSQPairTest : public testing::Test {
 protected:
  void SetUp() override { destroyedCounters = 0; }
};

// Items of the stored keys in iteration order, for one-item keys (whose hash
// code is their item).
std::vector<int> itemsInOrder(const HashtableSQPair& table) {
  std::vector<int> items;
  for (const NTSequence* key : test::keysInOrder(table)) {
    items.push_back(key->getHashCode());
  }
  return items;
}

// Puts one-item keys without counters, in the order given.
void putItems(HashtableSQPair& table, std::initializer_list<int> items) {
  for (int item : items) table.put(test::makeItem(item), nullptr);
}

// Removes the one-item key equal to item, through a probe of its own.
void removeItem(HashtableSQPair& table, int item) {
  std::unique_ptr<NTSequence> probe(test::makeItem(item));
  table.remove(probe.get());
}

TEST_F(HashtableSQPairTest, ConstructionAndThresholdRule) {
  struct Case {
    int capacity;
    int threshold;
  };
  // float product, widened, + 0.5, truncated
  const Case cases[] = {{100, 75}, {201, 151}, {11, 8}, {4, 3},
                        {9, 7},    {1, 1},     {3, 2},  {2, 2}};
  for (const Case& c : cases) {
    HashtableSQPair table(c.capacity);
    EXPECT_EQ(table.getCapacity(), c.capacity);
    EXPECT_EQ(table.getThreshold(), c.threshold) << c.capacity;
    EXPECT_EQ(table.getCount(), 0);
    EXPECT_EQ(table.getNRehashes(), 0);
  }
}

TEST_F(HashtableSQPairTest, NonPositiveCapacityIsRefused) {
  EXPECT_THROW(HashtableSQPair(0), std::invalid_argument);
  EXPECT_THROW(HashtableSQPair(-7), std::invalid_argument);
}

TEST_F(HashtableSQPairTest, FourthInsertionIntoFourBucketsGrowsFirst) {
  HashtableSQPair table(4);
  for (int item = 1; item <= 3; ++item) {
    EXPECT_TRUE(table.put(test::makeItem(item), counter(item)));
  }
  EXPECT_EQ(table.getCapacity(), 4);
  EXPECT_EQ(table.getThreshold(), 3);
  EXPECT_EQ(table.getNRehashes(), 0);

  EXPECT_TRUE(table.put(test::makeItem(4), counter(4)));
  EXPECT_EQ(table.getCapacity(), 9);
  EXPECT_EQ(table.getThreshold(), 7);
  EXPECT_EQ(table.getNRehashes(), 1);
  EXPECT_EQ(table.getCount(), 4);
  // 9 buckets: items 1..4 sit in buckets 1..4.
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{1, 2, 3, 4}));
}

TEST_F(HashtableSQPairTest, CapacitiesGrowToTwiceAndOne) {
  HashtableSQPair table(100);
  for (int item = 0; item < 76; ++item)
    table.put(test::makeItem(item), nullptr);
  EXPECT_EQ(table.getCapacity(), 201);
  EXPECT_EQ(table.getThreshold(), 151);
  for (int item = 76; item < 152; ++item)
    table.put(test::makeItem(item), nullptr);
  EXPECT_EQ(table.getCapacity(), 403);
  EXPECT_EQ(table.getThreshold(), 302);
  EXPECT_EQ(table.getNRehashes(), 2);
  EXPECT_EQ(table.getCount(), 152);
}

TEST_F(HashtableSQPairTest, PutOfEqualKeyChangesNothing) {
  HashtableSQPair table(11);
  NTSequence* key = test::makePattern({{1, 2}, {3}});
  SequenceCounter* value = counter(5);
  ASSERT_TRUE(table.put(key, value));

  NTSequence* equalKey = test::makePattern({{1, 2}, {3}});
  SequenceCounter* otherValue = counter(9);
  EXPECT_FALSE(table.put(equalKey, otherValue));
  EXPECT_EQ(table.getCount(), 1);
  EXPECT_EQ(destroyedCounters, 0);
  ISQCPair* stored = table.get(equalKey);
  ASSERT_NE(stored, nullptr);
  EXPECT_EQ(stored->key, key);
  EXPECT_EQ(stored->value, value);
  // The refused objects are still the caller's.
  delete equalKey;
  delete otherValue;
  EXPECT_EQ(destroyedCounters, 1);
}

TEST_F(HashtableSQPairTest, PutOverwriteReplacesAndDeletesTheOldPair) {
  HashtableSQPair table(11);
  NTSequence* key = test::makePattern({{4}, {5}});
  table.put(key, counter(1));
  NTSequence* newKey = test::makePattern({{4}, {5}});
  SequenceCounter* newValue = counter(2);
  table.putOverwrite(newKey, newValue);
  EXPECT_EQ(table.getCount(), 1);
  EXPECT_EQ(table.getNRehashes(), 0);
  EXPECT_EQ(destroyedCounters, 1);  // the old counter; ASan checks the key
  ISQCPair* stored = table.get(newKey);
  ASSERT_NE(stored, nullptr);
  EXPECT_EQ(stored->key, newKey);
  EXPECT_EQ(stored->value, newValue);
}

TEST_F(HashtableSQPairTest, PutOverwriteWithTheStoredObjectsDeletesNothing) {
  HashtableSQPair table(11);
  NTSequence* key = test::makePattern({{4, 6}});
  SequenceCounter* value = counter(1);
  table.put(key, value);

  table.putOverwrite(key, value);
  EXPECT_EQ(destroyedCounters, 0);
  EXPECT_EQ(table.get(key)->key, key);
  EXPECT_EQ(table.get(key)->value, value);

  // Same key, new counter: only the old counter goes.
  SequenceCounter* second = counter(2);
  table.putOverwrite(key, second);
  EXPECT_EQ(destroyedCounters, 1);
  EXPECT_EQ(table.get(key)->key, key);
  EXPECT_EQ(table.get(key)->value, second);

  // New equal key, same counter: only the old key goes.
  NTSequence* equalKey = test::makePattern({{4, 6}});
  table.putOverwrite(equalKey, second);
  EXPECT_EQ(destroyedCounters, 1);
  EXPECT_EQ(table.get(equalKey)->key, equalKey);
  EXPECT_EQ(table.get(equalKey)->value, second);
  EXPECT_EQ(table.getCount(), 1);
}

TEST_F(HashtableSQPairTest, PutOverwriteOfNewKeyInsertsAndGrows) {
  HashtableSQPair table(4);
  for (int item = 1; item <= 4; ++item) {
    table.putOverwrite(test::makeItem(item), counter(item));
  }
  EXPECT_EQ(table.getCount(), 4);
  EXPECT_EQ(table.getCapacity(), 9);
  EXPECT_EQ(table.getNRehashes(), 1);
  EXPECT_EQ(destroyedCounters, 0);
}

TEST_F(HashtableSQPairTest, LookupsUseEqualityNotIdentity) {
  HashtableSQPair table(11);
  table.put(test::makePattern({{1}, {2}}), counter(12));
  table.put(test::makePattern({{1, 2}}), counter(21));

  NTSequence* separate = test::makePattern({{1}, {2}});
  NTSequence* together = test::makePattern({{1, 2}});
  NTSequence* absent = test::makePattern({{2}, {1}});
  EXPECT_TRUE(table.containsKey(separate));
  EXPECT_TRUE(table.containsKey(together));
  EXPECT_FALSE(table.containsKey(absent));
  EXPECT_EQ(table.get(separate)->value->getCount(), 12);
  EXPECT_EQ(table.get(together)->value->getCount(), 21);
  EXPECT_EQ(table.get(absent), nullptr);
  delete separate;
  delete together;
  delete absent;
}

// A pattern whose cached hash equals another's but whose content differs is
// told apart by the full comparison.
TEST_F(HashtableSQPairTest, EqualHashDifferentContentAreTwoKeys) {
  HashtableSQPair table(5);
  NTSequence* one = test::makeItem(3);
  NTSequence* other = test::makePattern({{1}, {2}});
  const int otherHash = other->getHashCode();
  NTSequence* sameHash = test::makeItem(otherHash);
  EXPECT_TRUE(table.put(sameHash, counter(1)));
  EXPECT_TRUE(table.put(other, counter(2)));
  EXPECT_TRUE(table.put(one, counter(3)));
  EXPECT_EQ(table.getCount(), 3);
  EXPECT_EQ(table.get(other)->key, other);
  EXPECT_EQ(table.get(sameHash)->key, sameHash);
}

TEST_F(HashtableSQPairTest, RemoveDeletesTheStoredPair) {
  HashtableSQPair table(11);
  table.put(test::makePattern({{7}, {8, 9}}), counter(1));
  table.put(test::makeItem(7), counter(2));
  NTSequence* probe = test::makePattern({{7}, {8, 9}});
  table.remove(probe);
  EXPECT_EQ(table.getCount(), 1);
  EXPECT_EQ(destroyedCounters, 1);
  EXPECT_FALSE(table.containsKey(probe));
  // Absent: nothing happens, the probe stays the caller's.
  table.remove(probe);
  EXPECT_EQ(table.getCount(), 1);
  EXPECT_EQ(destroyedCounters, 1);
  delete probe;
}

TEST_F(HashtableSQPairTest, RemoveWithTheStoredKeyItself) {
  HashtableSQPair table(11);
  NTSequence* key = test::makeItem(5);
  table.put(key, counter(1));
  table.remove(key);  // key is deleted with its pair
  EXPECT_EQ(table.getCount(), 0);
  EXPECT_EQ(destroyedCounters, 1);
  EXPECT_TRUE(table.begin() == table.end());
}

// Items k, k + 4, k + 8, ... share bucket k of a 4-bucket table.
TEST_F(HashtableSQPairTest, NewPairsGoToTheHeadOfTheirChain) {
  HashtableSQPair table(4);
  putItems(table, {1, 5, 9});  // X, Y, Z
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{9, 5, 1}));
}

TEST_F(HashtableSQPairTest, RemovingTheTailMovesTheHeadIntoItsPlace) {
  HashtableSQPair table(4);
  putItems(table, {1, 5, 9});  // chain Z(9), Y(5), X(1)
  removeItem(table, 1);
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{5, 9}));  // Y, Z
}

TEST_F(HashtableSQPairTest, RemovingTheMiddleMovesTheHeadIntoItsPlace) {
  HashtableSQPair table(4);
  putItems(table, {1, 5, 9});  // chain 9, 5, 1
  removeItem(table, 5);
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{9, 1}));
}

TEST_F(HashtableSQPairTest, RemovingTheHeadKeepsTheRestInOrder) {
  HashtableSQPair table(4);
  putItems(table, {1, 5, 9});  // chain 9, 5, 1
  removeItem(table, 9);
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{5, 1}));
  putItems(table, {13});
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{13, 5, 1}));
}

// Keys congruent modulo 4 and modulo 9 share a chain before and after the
// growth from 4 to 9 buckets, so the growth shows the reversal.
TEST_F(HashtableSQPairTest, GrowthReversesPairsThatStayTogether) {
  HashtableSQPair table(4);
  putItems(table, {1, 37, 73});
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{73, 37, 1}));
  putItems(table, {2});  // grows to 9 buckets first
  ASSERT_EQ(table.getCapacity(), 9);
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{1, 37, 73, 2}));
}

// 4 buckets: bucket 0 holds 8, 4, 0 and bucket 1 holds 5. Growing to 9:
// 8 -> 8, 4 -> 4, 0 -> 0, 5 -> 5 and 13 (inserted) -> 4, ahead of 4.
TEST_F(HashtableSQPairTest, GrowthWalksOldBucketsFromZeroUpward) {
  HashtableSQPair table(4);
  putItems(table, {0, 4, 8});
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{8, 4, 0}));
  putItems(table, {13});
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{0, 13, 4, 8}));
  // Chains of the grown table: bucket 0 = {0}, bucket 4 = {13, 4},
  // bucket 8 = {8}. A second growth, at the eighth pair, to 19 buckets.
  putItems(table, {22, 31, 40});  // all at the head of bucket 4 in turn
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{0, 40, 31, 22, 13, 4, 8}));
  putItems(table, {1});
  ASSERT_EQ(table.getCapacity(), 19);
  EXPECT_EQ(table.getNRehashes(), 2);
  // Moves in old order 0 | 40, 31, 22, 13, 4 | 8 to buckets
  // 0 | 2, 12, 3, 13, 4 | 8, then 1 goes to bucket 1.
  EXPECT_EQ(itemsInOrder(table),
            (std::vector<int>{0, 1, 40, 22, 4, 8, 31, 13}));
}

// Keys 2, 23, 44, 65 are congruent modulo 3 and modulo 7.
TEST_F(HashtableSQPairTest, ChainOrderAcrossGrowthAndRemovals) {
  HashtableSQPair table(3);  // threshold 2
  putItems(table, {2, 23});
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{23, 2}));
  putItems(table, {44});  // grows to 7 first: 23, 2 become 2, 23
  ASSERT_EQ(table.getCapacity(), 7);
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{44, 2, 23}));
  putItems(table, {65});
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{65, 44, 2, 23}));
  removeItem(table, 2);  // the head 65 takes its place
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{44, 65, 23}));
  removeItem(table, 23);  // the tail: the head 44 moves there
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{65, 44}));
  EXPECT_EQ(table.getCount(), 2);
}

TEST_F(HashtableSQPairTest, NegativeHashCodesStayInsideTheBuckets) {
  HashtableSQPair table(4);
  // 2 in bucket 2; -3 % 4 = -3, taken as bucket 1; -4 in bucket 0.
  putItems(table, {2, -3, -4});
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{-4, -3, 2}));
  putItems(table, {INT_MIN});  // grows to 9 buckets first
  ASSERT_EQ(table.getCapacity(), 9);
  // 2 -> 2, -4 -> 5, -3 -> 6, and INT_MIN % 9 = -2 -> 7.
  EXPECT_EQ(itemsInOrder(table), (std::vector<int>{2, -4, -3, INT_MIN}));
  NTSequence* probe = test::makeItem(-3);
  EXPECT_TRUE(table.containsKey(probe));
  table.remove(probe);
  EXPECT_FALSE(table.containsKey(probe));
  delete probe;
}

TEST_F(HashtableSQPairTest, EmptyTableBeginIsEnd) {
  HashtableSQPair table(5);
  EXPECT_TRUE(table.begin() == table.end());
  EXPECT_FALSE(table.begin() != table.end());
  EXPECT_TRUE(table.begin() == HashtableSQPair::iterator(&table, nullptr, 5));
  const HashtableSQPair& constTable = table;
  EXPECT_TRUE(constTable.begin() == constTable.end());
}

TEST_F(HashtableSQPairTest, BeginIsEndAgainOnceEverythingIsRemoved) {
  HashtableSQPair table(5);
  putItems(table, {3});
  removeItem(table, 3);
  EXPECT_TRUE(table.begin() == table.end());
}

TEST_F(HashtableSQPairTest, IterationVisitsCountPairs) {
  HashtableSQPair table(7);
  for (int item = 0; item < 40; item += 3)
    table.put(test::makeItem(item), nullptr);
  int visited = 0;
  for (HashtableSQPair::iterator it = table.begin(); it != table.end(); ++it) {
    EXPECT_NE(it->key, nullptr);
    ++visited;
  }
  EXPECT_EQ(visited, table.getCount());
  EXPECT_EQ(visited, 14);
}

TEST_F(HashtableSQPairTest, IteratorStatesAndPostfixStep) {
  HashtableSQPair table(5);
  NTSequence* a = test::makeItem(1);
  NTSequence* b = test::makeItem(6);  // same bucket, now head
  NTSequence* c = test::makeItem(3);
  table.put(a, nullptr);
  table.put(b, nullptr);
  table.put(c, nullptr);
  HashtableSQPair::iterator it = table.begin();
  EXPECT_EQ((*it).key, b);
  HashtableSQPair::iterator before = it++;
  EXPECT_EQ(before->key, b);
  EXPECT_EQ(it->key, a);
  ++it;
  EXPECT_EQ(it->key, c);
  HashtableSQPair::iterator last = it++;
  EXPECT_EQ(last->key, c);
  EXPECT_TRUE(it == table.end());

  HashtableSQPair::iterator blank;
  EXPECT_TRUE(blank == HashtableSQPair::iterator(nullptr, nullptr, 0));
  EXPECT_FALSE(blank == table.end());
}

TEST_F(HashtableSQPairTest, ConstIterationMatchesAndConverts) {
  HashtableSQPair table(5);
  for (int item = 0; item < 12; ++item)
    table.put(test::makeItem(item), nullptr);
  const HashtableSQPair& constTable = table;
  std::vector<const NTSequence*> mutableOrder;
  for (ISQCPair& pair : table) mutableOrder.push_back(pair.key);
  std::vector<const NTSequence*> constOrder;
  for (KvSequence::const_iterator it = constTable.begin();
       it != constTable.end(); ++it) {
    constOrder.push_back(it->key);
  }
  EXPECT_EQ(mutableOrder, constOrder);
  KvSequence::const_iterator converted = table.begin();
  EXPECT_TRUE(converted == constTable.begin());
}

TEST_F(HashtableSQPairTest, CounterFoundByLookupIsChangedInPlace) {
  HashtableSQPair table(5);
  table.put(test::makePattern({{2, 4}}), counter(1));
  NTSequence* probe = test::makePattern({{2, 4}});
  table.get(probe)->value->setCount(8);
  EXPECT_EQ(table.get(probe)->value->getCount(), 8);
  delete probe;
}

TEST_F(HashtableSQPairTest, ClearKeepsCapacityThresholdAndGrowthCount) {
  HashtableSQPair table(4);
  for (int item = 0; item < 5; ++item)
    table.put(test::makeItem(item), counter(0));
  ASSERT_EQ(table.getNRehashes(), 1);
  table.clear();
  EXPECT_EQ(destroyedCounters, 5);
  EXPECT_EQ(table.getCount(), 0);
  EXPECT_EQ(table.getCapacity(), 9);
  EXPECT_EQ(table.getThreshold(), 7);
  EXPECT_EQ(table.getNRehashes(), 1);
  EXPECT_TRUE(table.begin() == table.end());
  EXPECT_TRUE(table.put(test::makeItem(1), counter(1)));
  EXPECT_EQ(table.getCount(), 1);
}

TEST_F(HashtableSQPairTest, DestructorDeletesEverything) {
  {
    HashtableSQPair table(3);
    for (int item = 0; item < 10; ++item)
      table.put(test::makeItem(item), counter(0));
  }
  EXPECT_EQ(destroyedCounters, 10);
}

TEST_F(HashtableSQPairTest, DisplayListsEveryBucket) {
  HashtableSQPair table(3);
  table.put(test::makeItem(1), nullptr);
  testing::internal::CaptureStdout();
  table.display();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Bucket 0 : \n"
            "Bucket 1 : \n"
            "Bucket 2 : \n"
            "End of Hashtable.\n");
}

TEST_F(HashtableSQPairTest, FreqTableOfEmptyTable) {
  HashtableSQPair table(4);
  testing::internal::CaptureStdout();
  const double mean = table.freqTable();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "0 : 4\n"
            "END OF TABLE\n");
  EXPECT_EQ(mean, 0.0);
}

TEST_F(HashtableSQPairTest, FreqTableCountsChainLengths) {
  HashtableSQPair table(11);  // threshold 8
  putItems(table, {0, 11, 22, 1, 12, 2, 3});
  testing::internal::CaptureStdout();
  const double mean = table.freqTable();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "0 : 7\n"
            "1 : 2\n"
            "2 : 1\n"
            "3 : 1\n"
            "END OF TABLE\n");
  EXPECT_DOUBLE_EQ(mean, 7.0 / 4.0);
}

TEST_F(HashtableSQPairTest, FreqTableCountsLongChainsAsNinetyNine) {
  HashtableSQPair table(200);  // threshold 150: no growth below
  for (int k = 0; k < 120; ++k) table.put(test::makeItem(200 * k + 5), nullptr);
  table.put(test::makeItem(6), nullptr);
  testing::internal::CaptureStdout();
  const double mean = table.freqTable();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "0 : 198\n"
            "1 : 1\n"
            "99 : 1\n"
            "END OF TABLE\n");
  EXPECT_DOUBLE_EQ(mean, 100.0 / 2.0);
}

TEST_F(HashtableSQPairTest, NullCountersAreAllowed) {
  HashtableSQPair table(3);
  NTSequence* key = test::makePattern({{1}, {1}});
  EXPECT_TRUE(table.put(key, nullptr));
  EXPECT_EQ(table.get(key)->value, nullptr);
  table.putOverwrite(test::makePattern({{1}, {1}}), nullptr);
  EXPECT_EQ(table.getCount(), 1);
  table.clear();
  EXPECT_EQ(table.getCount(), 0);
}

// getAll answers as get does, across its stages of 32 lookups, for stored and
// absent keys, and for keys whose hash code is shared: (0)(0), (0 0),
// (9817 -9829) and (1) all hash to 1, so the first node of bucket 1 with
// that code is not always the match.
TEST(HashtableSQPairGetAllTest, AnswersAsGetDoes) {
  HashtableSQPair table(7);
  table.put(test::makePattern({{0}, {0}}), new SequenceCounter(0, 1, nullptr));
  table.put(test::makePattern({{0, 0}}), new SequenceCounter(0, 2, nullptr));
  table.put(test::makeItem(1), new SequenceCounter(0, 3, nullptr));
  for (int item = 10; item < 50; item += 2) {
    table.put(test::makeItem(item), new SequenceCounter(0, item, nullptr));
  }
  std::vector<std::unique_ptr<NTSequence>> owned;
  owned.emplace_back(test::makePattern({{0, 0}}));
  owned.emplace_back(test::makePattern({{9817, -9829}}));
  owned.emplace_back(test::makeItem(1));
  owned.emplace_back(test::makePattern({{0}, {0}}));
  for (int item = 10; item < 50; ++item)
    owned.emplace_back(test::makeItem(item));
  std::vector<const NTSequence*> keys;
  for (const auto& key : owned) keys.push_back(key.get());
  std::vector<ISQCPair*> found(keys.size(), nullptr);
  table.getAll(keys.data(), static_cast<int>(keys.size()), found.data());
  for (std::size_t i = 0; i < keys.size(); ++i) {
    EXPECT_EQ(found[i], table.get(keys[i])) << "key " << i;
  }
  ASSERT_NE(found[0], nullptr);
  EXPECT_EQ(found[0]->value->getCount(), 2);
  EXPECT_EQ(found[1], nullptr);
  EXPECT_EQ(found[2]->value->getCount(), 3);
  EXPECT_EQ(found[3]->value->getCount(), 1);
  EXPECT_EQ(found[4]->value->getCount(), 10);
  EXPECT_EQ(found[5], nullptr);
  table.getAll(keys.data(), 0, found.data());  // nothing to look up
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
