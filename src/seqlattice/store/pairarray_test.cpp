// A counter read from a file holds its pairs as an array until the set is
// asked for: what walks the array, when the set is made, what each mutator
// does to the array, running out of memory while making the set, and several
// threads making it at once. Allocation counts (allocation_hook.h) show
// whether a set was made.
#include <gtest/gtest.h>

#include <atomic>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "allocation_hook.h"
#include "seqlattice/io/io_test_util.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/support/seqexceptions.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

typedef SequenceCounter::AdjacentPair Pair;
typedef std::vector<Pair> Pairs;

const Pairs kSaved = {{2, 1}, {5, 0}, {5, 3}, {9, 1}};

// Reads into `counter` the record of a counter with count 7, ordinal 3 and
// the given pairs.
void load(SequenceCounter& counter, const Pairs& pairs) {
  SequenceCounter saved(3, 7, nullptr);
  for (const Pair& pair : pairs) saved.addAdjacentItem(pair.first, pair.second);
  test::readBinary(test::writeBinary(saved).bytes, counter);
}

Pairs walk(const SequenceCounter& counter) {
  Pairs pairs;
  for (const Pair& pair : counter.adjacentPairs()) pairs.push_back(pair);
  return pairs;
}

// Where the walk's first pair lives: in the array before the set is made, in
// the set's first node after.
const Pair* firstWalked(const SequenceCounter& counter) {
  return &*counter.adjacentPairs().begin();
}

TEST(PairArrayTest, LoadedCounterAnswersFromTheArrayWithoutMakingTheSet) {
  SequenceCounter counter(0, 0, nullptr);
  load(counter, kSaved);
  const Pair* array = firstWalked(counter);
  Pairs walked;
  walked.reserve(8);
  int n = 0;
  Pair found;
  const long allocated = test::allocationsOf([&] {
    n = counter.getNAdjacent();
    for (const Pair& pair : counter.adjacentPairs()) walked.push_back(pair);
    found = *counter.adjacentPairs().lower_bound({5, 1});
  });
  EXPECT_EQ(allocated, 0);
  EXPECT_EQ(n, 4);
  EXPECT_EQ(walked, kSaved);
  EXPECT_EQ(found, Pair(5, 3));
  EXPECT_EQ(counter.adjacentPairs().lower_bound({9, 2}),
            counter.adjacentPairs().end());
  EXPECT_EQ(array + 3, &*counter.adjacentPairs().lower_bound({9, 1}));

  // Listing and saving read the array as well.
  std::ostringstream listed;
  counter.display(listed, true);
  EXPECT_EQ(listed.str(),
            " count 7 ordinalOfEntry 3 max missed 0\n"
            "Adjacent list {(item 2 position 1)\n(item 5 position 0)\n"
            "(item 5 position 3)\n(item 9 position 1)\n}End Adjacent list \n");
  const test::Written written = test::writeBinary(counter);
  EXPECT_EQ(written.count, 19 + 32 + 4);
  EXPECT_EQ(firstWalked(counter), array);
}

TEST(PairArrayTest, FirstAskForTheSetMakesItOnceFromTheArray) {
  SequenceCounter counter(0, 0, nullptr);
  load(counter, kSaved);
  const Pair* array = firstWalked(counter);
  SequenceCounter::AdjacencySet* set = nullptr;
  // The set object and one node per pair.
  const long made =
      test::allocationsOf([&] { set = counter.getAdjacentItems(); });
  EXPECT_EQ(made, 5);
  ASSERT_NE(set, nullptr);
  EXPECT_EQ(Pairs(set->begin(), set->end()), kSaved);
  SequenceCounter::AdjacencySet* again = nullptr;
  EXPECT_EQ(test::allocationsOf([&] { again = counter.getAdjacentItems(); }),
            0);
  EXPECT_EQ(again, set);

  // From now on the set is what the counter holds, changes through the
  // pointer included.
  EXPECT_NE(firstWalked(counter), array);
  EXPECT_EQ(firstWalked(counter), &*set->begin());
  set->erase({5, 0});
  EXPECT_EQ(counter.getNAdjacent(), 3);
  EXPECT_EQ(walk(counter), Pairs({{2, 1}, {5, 3}, {9, 1}}));
  EXPECT_EQ(*counter.adjacentPairs().lower_bound({5, 0}), Pair(5, 3));
}

TEST(PairArrayTest, AddingAfterTheSetIsMadeFreesTheArray) {
  SequenceCounter counter(0, 0, nullptr);
  load(counter, kSaved);
  SequenceCounter::AdjacencySet* set = counter.getAdjacentItems();
  // One node more, the array less.
  EXPECT_EQ(test::netAllocationsOf([&] { counter.addAdjacentItem(1, 4); }), 0);
  EXPECT_EQ(counter.getAdjacentItems(), set);
  EXPECT_EQ(counter.getNAdjacent(), 5);
  EXPECT_EQ(walk(counter), Pairs({{1, 4}, {2, 1}, {5, 0}, {5, 3}, {9, 1}}));
}

TEST(PairArrayTest, AddingToALoadedCounterMakesTheSetFirst) {
  SequenceCounter counter(0, 0, nullptr);
  load(counter, kSaved);
  // The set and five nodes, the array less.
  EXPECT_EQ(test::netAllocationsOf([&] { counter.addAdjacentItem(5, 3); }), 4);
  EXPECT_EQ(test::netAllocationsOf([&] { counter.addAdjacentItem(6, 1); }), 1);
  ASSERT_NE(counter.getAdjacentItems(), nullptr);
  EXPECT_EQ(walk(counter), Pairs({{2, 1}, {5, 0}, {5, 3}, {6, 1}, {9, 1}}));
}

TEST(PairArrayTest, ClearingALoadedCounterKeepsAnEmptySet) {
  SequenceCounter counter(0, 0, nullptr);
  load(counter, kSaved);
  // An empty set in, the array out.
  EXPECT_EQ(test::netAllocationsOf([&] { counter.clearAdjacentItems(); }), 0);
  ASSERT_NE(counter.getAdjacentItems(), nullptr);
  EXPECT_TRUE(counter.getAdjacentItems()->empty());
  EXPECT_EQ(counter.getNAdjacent(), 0);
  EXPECT_TRUE(counter.adjacentPairs().present());
  EXPECT_EQ(walk(counter), Pairs());
  std::ostringstream listed;
  counter.display(listed, true);
  EXPECT_EQ(listed.str(),
            " count 7 ordinalOfEntry 3 max missed 0\n"
            "Adjacent list {}End Adjacent list \n");
}

TEST(PairArrayTest, AdoptingASetOrNoneDropsTheArray) {
  SequenceCounter counter(0, 0, nullptr);
  load(counter, kSaved);
  EXPECT_EQ(test::netAllocationsOf([&] { counter.setAdjacentItems(nullptr); }),
            -1);
  EXPECT_EQ(counter.getAdjacentItems(), nullptr);
  EXPECT_EQ(counter.getNAdjacent(), 0);
  EXPECT_FALSE(counter.adjacentPairs().present());

  load(counter, kSaved);
  auto* fresh = new SequenceCounter::AdjacencySet({{4, 4}});
  counter.setAdjacentItems(fresh);
  EXPECT_EQ(counter.getAdjacentItems(), fresh);
  EXPECT_EQ(walk(counter), Pairs({{4, 4}}));
}

TEST(PairArrayTest, ReadingAgainReplacesSetAndArray) {
  SequenceCounter counter(0, 0, nullptr);
  counter.addAdjacentItem(8, 8);
  load(counter, kSaved);
  EXPECT_EQ(walk(counter), kSaved);
  load(counter, {{1, 1}});
  EXPECT_EQ(walk(counter), Pairs({{1, 1}}));
  // A record without pairs leaves no set.
  EXPECT_EQ(test::netAllocationsOf([&] { load(counter, {}); }), -1);
  EXPECT_FALSE(counter.adjacentPairs().present());
  EXPECT_EQ(counter.getAdjacentItems(), nullptr);
}

TEST(PairArrayTest, PairsOutOfOrderInAFileAreSortedAndMerged) {
  const std::string bytes = test::Bytes()
                                .text("SD\0", 3)
                                .i32(1)
                                .i32(0)
                                .i32(0)
                                .i32(4)
                                .i32(6)
                                .i32(1)
                                .i32(2)
                                .i32(3)
                                .i32(6)
                                .i32(1)
                                .i32(2)
                                .i32(0)
                                .i32(0)
                                .str();
  SequenceCounter counter(0, 0, nullptr);
  EXPECT_EQ(test::readBinary(bytes, counter), 19 + 32 + 4);
  EXPECT_EQ(counter.getNAdjacent(), 3);
  EXPECT_EQ(walk(counter), Pairs({{2, 0}, {2, 3}, {6, 1}}));
  EXPECT_EQ(Pairs(counter.getAdjacentItems()->begin(),
                  counter.getAdjacentItems()->end()),
            Pairs({{2, 0}, {2, 3}, {6, 1}}));
}

TEST(PairArrayTest, LongPairListsReadWhole) {
  Pairs many;
  for (int item = 0; item < 20000; ++item) {
    many.emplace_back(item, 1);
    many.emplace_back(item, 4);
  }
  SequenceCounter counter(0, 0, nullptr);
  load(counter, many);
  EXPECT_EQ(counter.getNAdjacent(), 40000);
  EXPECT_EQ(walk(counter), many);
}

TEST(PairArrayTest, XMLReaderKeepsAnArrayToo) {
  SequenceCounter saved(3, 7, nullptr);
  for (const Pair& pair : kSaved)
    saved.addAdjacentItem(pair.first, pair.second);
  std::ostringstream xml;
  saved.writeObjectXML(xml);
  SequenceCounter counter(0, 0, nullptr);
  EXPECT_EQ(test::readXML(xml.str(), counter), 6 + 8 + 1);
  EXPECT_EQ(walk(counter), kSaved);
  EXPECT_EQ(test::allocationsOf([&] { counter.getAdjacentItems(); }), 5);
}

TEST(PairArrayTest, RunningOutOfMemoryWhileMakingTheSetLeavesTheArray) {
  SequenceCounter counter(0, 0, nullptr);
  load(counter, kSaved);
  {
    test::FailingAllocations failing(2);
    EXPECT_THROW(counter.getAdjacentItems(), SeqExceptions::DictionaryFailure);
  }
  EXPECT_EQ(walk(counter), kSaved);
  {
    test::FailingAllocations failing(0);
    EXPECT_THROW(counter.clearAdjacentItems(),
                 SeqExceptions::DictionaryFailure);
    EXPECT_THROW(counter.addAdjacentItem(1, 1),
                 SeqExceptions::DictionaryFailure);
  }
  EXPECT_EQ(walk(counter), kSaved);
  ASSERT_NE(counter.getAdjacentItems(), nullptr);
  EXPECT_EQ(counter.getAdjacentItems()->size(), 4u);
}

// Every thread gets the same set, whichever made it; the others' sets are
// freed (LeakSanitizer checks).
TEST(PairArrayTest, ThreadsAskingAtOnceShareOneSet) {
  Pairs many;
  for (int item = 0; item < 500; ++item) many.emplace_back(item, item % 7);
  constexpr int kThreads = 4;
  for (int round = 0; round < 10; ++round) {
    SequenceCounter counter(0, 0, nullptr);
    load(counter, many);
    std::atomic<int> waiting{kThreads};
    std::vector<const SequenceCounter::AdjacencySet*> got(kThreads);
    std::vector<int> walked(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        --waiting;
        while (waiting.load() > 0) std::this_thread::yield();
        // Half walk the pairs while the others make the set.
        if (t % 2 == 0) walked[t] = static_cast<int>(walk(counter).size());
        got[t] = counter.getAdjacentItems();
        walked[t] += counter.getNAdjacent();
      });
    }
    for (std::thread& thread : threads) thread.join();
    ASSERT_NE(got[0], nullptr);
    for (int t = 0; t < kThreads; ++t) {
      EXPECT_EQ(got[t], got[0]);
      EXPECT_EQ(walked[t], t % 2 == 0 ? 1000 : 500);
    }
    EXPECT_EQ(Pairs(got[0]->begin(), got[0]->end()), many);
  }
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
