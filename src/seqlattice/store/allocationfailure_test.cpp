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

namespace {

using allocation_hook::FailingAllocations;
using allocation_hook::liveBlocks;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::storetest::keysInOrder;
using SEQUENCE_NAMESPACE_800::storetest::makeItem;
namespace SeqExceptions = SEQUENCE_NAMESPACE_800::SeqExceptions;

TEST(AllocationFailureTest, CreatingTheAdjacencySetThrowsDictionaryFailure) {
  SequenceCounter counter(0, 0, nullptr);
  {
    FailingAllocations failing(0);
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
    FailingAllocations failing(0);
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
  const long before = liveBlocks();
  counter.setAdjacentItems(fresh);
  const long afterReplacing = liveBlocks();
  counter.setAdjacentItems(fresh);  // the held set again: nothing freed
  const long afterSameSet = liveBlocks();
  counter.addAdjacentItem(5, 2);
  const long withOnePair = liveBlocks();
  counter.setAdjacentItems(nullptr);
  const long afterNull = liveBlocks();

  EXPECT_EQ(afterReplacing, before - 4);
  EXPECT_EQ(afterSameSet, afterReplacing);
  EXPECT_EQ(withOnePair, afterSameSet + 1);
  EXPECT_EQ(afterNull, withOnePair - 2);
  EXPECT_EQ(counter.getAdjacentItems(), nullptr);
}

// A failed insertion leaves the table as it was and the objects with the
// caller.
TEST(AllocationFailureTest, FailedNodeAllocationStoresNothing) {
  HashtableSQPair table(11);
  table.put(makeItem(1), nullptr);
  NTSequence* key = makeItem(2);
  SequenceCounter* value = new SequenceCounter(0, 1, nullptr);
  {
    FailingAllocations failing(0);
    EXPECT_THROW(table.put(key, value), std::bad_alloc);
    EXPECT_THROW(table.putOverwrite(key, value), std::bad_alloc);
  }
  EXPECT_EQ(table.getCount(), 1);
  EXPECT_FALSE(table.containsKey(key));
  EXPECT_TRUE(table.put(key, value));
  EXPECT_EQ(table.getCount(), 2);
}

TEST(AllocationFailureTest, FailedGrowthKeepsTheOldBuckets) {
  HashtableSQPair table(4);
  for (int item = 1; item <= 3; ++item) table.put(makeItem(item), nullptr);
  const std::vector<const NTSequence*> before = keysInOrder(table);
  NTSequence* key = makeItem(4);
  {
    FailingAllocations failing(0);
    EXPECT_THROW(table.put(key, nullptr), std::bad_alloc);
  }
  EXPECT_EQ(table.getCapacity(), 4);
  EXPECT_EQ(table.getThreshold(), 3);
  EXPECT_EQ(table.getNRehashes(), 0);
  EXPECT_EQ(table.getCount(), 3);
  EXPECT_EQ(keysInOrder(table), before);

  // Growth succeeds, the node does not: the table has grown, holds the same
  // pairs, and the key is still the caller's.
  {
    FailingAllocations failing(1);
    EXPECT_THROW(table.put(key, nullptr), std::bad_alloc);
  }
  EXPECT_EQ(table.getCapacity(), 9);
  EXPECT_EQ(table.getCount(), 3);
  EXPECT_FALSE(table.containsKey(key));
  delete key;
}

}  // namespace
