// How the store reports running out of memory and what it releases, with the
// allocation functions replaced by the test program (allocation_hook.h).
#include <gtest/gtest.h>

#include <new>
#include <vector>

#include "allocation_hook.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/store/store_test_util.h"
#include "seqlattice/support/seqexceptions.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

TEST(AllocationFailureTest, CreatingTheAdjacencySetThrowsDictionaryFailure) {
  SequenceCounter counter(0, 0, nullptr);
  {
    test::FailingAllocations failing(0);
    EXPECT_THROW(counter.addAdjacentItem(1, 1),
                 SeqExceptions::DictionaryFailure);
  }
  EXPECT_EQ(counter.getAdjacentItems(), nullptr);
  EXPECT_EQ(counter.getNAdjacent(), 0);
}

TEST(AllocationFailureTest, InsertingIntoTheSetThrowsDictionaryFailure) {
  SequenceCounter counter(0, 0, nullptr);
  counter.addAdjacentItem(1, 1);
  {
    test::FailingAllocations failing(0);
    EXPECT_THROW(counter.addAdjacentItem(2, 1),
                 SeqExceptions::DictionaryFailure);
    // A pair already present needs no allocation.
    EXPECT_NO_THROW(counter.addAdjacentItem(1, 1));
  }
  EXPECT_EQ(counter.getNAdjacent(), 1);
  counter.addAdjacentItem(2, 1);
  EXPECT_EQ(counter.getNAdjacent(), 2);
}

// The replaced adjacency set goes with all its pairs: one block for the set
// and one per pair.
TEST(AllocationFailureTest, ReplacedAdjacencySetIsReleased) {
  SequenceCounter counter(0, 0, nullptr);
  for (int item = 1; item <= 3; ++item) counter.addAdjacentItem(item, 1);
  SequenceCounter::AdjacencySet* fresh = new SequenceCounter::AdjacencySet();
  // The counts are read right after each call, before any assertion runs.
  const long before = test::liveBlocks();
  counter.setAdjacentItems(fresh);
  const long afterReplacing = test::liveBlocks();
  counter.setAdjacentItems(fresh);  // the held set again: nothing freed
  const long afterSameSet = test::liveBlocks();
  counter.addAdjacentItem(5, 2);
  const long withOnePair = test::liveBlocks();
  counter.setAdjacentItems(nullptr);
  const long afterNull = test::liveBlocks();

  EXPECT_EQ(afterReplacing, before - 4);
  EXPECT_EQ(afterSameSet, afterReplacing);
  EXPECT_EQ(withOnePair, afterSameSet + 1);
  EXPECT_EQ(afterNull, withOnePair - 2);
  EXPECT_EQ(counter.getAdjacentItems(), nullptr);
}

// A failed insertion leaves the table as it was and the objects with the
// caller. A new table's first insertion takes the first block of nodes.
TEST(AllocationFailureTest, FailedNodeAllocationStoresNothing) {
  HashtableSQPair table(11);
  NTSequence* key = test::makeItem(2);
  SequenceCounter* value = new SequenceCounter(0, 1, nullptr);
  {
    test::FailingAllocations failing(0);
    EXPECT_THROW(table.put(key, value), std::bad_alloc);
    EXPECT_THROW(table.putOverwrite(key, value), std::bad_alloc);
  }
  EXPECT_EQ(table.getCount(), 0);
  EXPECT_FALSE(table.containsKey(key));
  EXPECT_TRUE(table.put(key, value));
  EXPECT_EQ(table.getCount(), 1);
  // Later insertions take their nodes from that block.
  NTSequence* next = test::makeItem(3);
  {
    test::FailingAllocations failing(0);
    EXPECT_TRUE(table.put(next, nullptr));
  }
  EXPECT_EQ(table.getCount(), 2);
}

TEST(AllocationFailureTest, FailedGrowthKeepsTheOldBuckets) {
  HashtableSQPair table(4);
  for (int item = 1; item <= 3; ++item)
    table.put(test::makeItem(item), nullptr);
  const std::vector<const NTSequence*> before = test::keysInOrder(table);
  NTSequence* key = test::makeItem(4);
  {
    test::FailingAllocations failing(0);
    EXPECT_THROW(table.put(key, nullptr), std::bad_alloc);
  }
  EXPECT_EQ(table.getCapacity(), 4);
  EXPECT_EQ(table.getThreshold(), 3);
  EXPECT_EQ(table.getNRehashes(), 0);
  EXPECT_EQ(table.getCount(), 3);
  EXPECT_EQ(test::keysInOrder(table), before);
  EXPECT_FALSE(table.containsKey(key));

  // The growth's bucket array is the one allocation the insertion needs.
  {
    test::FailingAllocations failing(1);
    EXPECT_TRUE(table.put(key, nullptr));
  }
  EXPECT_EQ(table.getCapacity(), 9);
  EXPECT_EQ(table.getCount(), 4);
  EXPECT_TRUE(table.containsKey(key));
}

// Nodes come in blocks, not one allocation each, and removed pairs' nodes
// are reused.
TEST(AllocationFailureTest, NodesComeFromBlocksAndAreReused) {
  HashtableSQPair table(1000);
  table.put(test::makeItem(0), nullptr);
  const long before = test::liveBlocks();
  for (int item = 1; item <= 20; ++item)
    table.put(test::makeItem(item), nullptr);
  // One block for each key (object and item array), none for the nodes.
  EXPECT_EQ(test::liveBlocks() - before, 40);
  NTSequence* probe = test::makeItem(5);
  table.remove(probe);
  // The removed key went, its node stays for the next insertion.
  EXPECT_EQ(test::liveBlocks() - before, 40);
  {
    test::FailingAllocations failing(0);
    EXPECT_TRUE(table.put(probe, nullptr));
  }
  EXPECT_EQ(table.getCount(), 21);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
