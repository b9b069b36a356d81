// The free chain helpers, on hand-built chains.
#include <gtest/gtest.h>

#include <vector>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/store/store_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

ISQCPair pairOf(int item) {
  return ISQCPair{test::makeItem(item), new SequenceCounter(0, item, nullptr)};
}

// The counts of the chain's counters, head first. Also checks that every
// node's cached hash code is its key's.
std::vector<int> countsOf(const SQCPairNode* head) {
  std::vector<int> counts;
  for (const SQCPairNode* node = head; node != nullptr; node = node->next) {
    EXPECT_EQ(node->hashCode, node->pair.key->getHashCode());
    counts.push_back(node->pair.value->getCount());
  }
  return counts;
}

TEST(ChainHelpersTest, HeadInsertAndInsertAfter) {
  SQCPairNode* head = nullptr;
  EXPECT_EQ(listCount(head), 0);
  listHeadInsert(head, pairOf(1));
  listHeadInsert(head, pairOf(2));
  EXPECT_EQ(countsOf(head), (std::vector<int>{2, 1}));
  listInsert(head, pairOf(3));
  EXPECT_EQ(countsOf(head), (std::vector<int>{2, 3, 1}));
  listInsert(head->next->next, pairOf(4));
  EXPECT_EQ(countsOf(head), (std::vector<int>{2, 3, 1, 4}));
  EXPECT_EQ(listCount(head), 4);
  listClear(head);
  EXPECT_EQ(head, nullptr);
}

TEST(ChainHelpersTest, HeadRemoveFreesOnlyTheNode) {
  SQCPairNode* head = nullptr;
  const ISQCPair first = pairOf(1);
  listHeadInsert(head, first);
  listHeadInsert(head, pairOf(2));
  const ISQCPair second = head->pair;
  listHeadRemove(head);
  EXPECT_EQ(countsOf(head), (std::vector<int>{1}));
  listHeadRemove(head);
  EXPECT_EQ(head, nullptr);
  // The pairs are still the caller's.
  for (const ISQCPair& pair : {first, second}) {
    delete pair.key;
    delete pair.value;
  }
}

TEST(ChainHelpersTest, RemoveOfANonHeadNodeTakesTheHeadPair) {
  SQCPairNode* head = nullptr;
  for (int item = 1; item <= 4; ++item) listHeadInsert(head, pairOf(item));
  // 4, 3, 2, 1: removing 2 puts 4 in its place.
  SQCPairNode* two = head->next->next;
  listRemove(head, two);
  EXPECT_EQ(countsOf(head), (std::vector<int>{3, 4, 1}));
  EXPECT_EQ(head->next, two);  // the node stays, with the moved pair
  listRemove(head, head);
  EXPECT_EQ(countsOf(head), (std::vector<int>{4, 1}));
  listRemove(head, head->next);
  EXPECT_EQ(countsOf(head), (std::vector<int>{4}));
  listRemove(head, head);
  EXPECT_EQ(head, nullptr);
}

TEST(ChainHelpersTest, CopySharesPairsAndClearSimpleFreesNodesOnly) {
  SQCPairNode* head = nullptr;
  for (int item = 1; item <= 3; ++item) listHeadInsert(head, pairOf(item));
  SQCPairNode* copy = listCopy(head);
  EXPECT_EQ(countsOf(copy), (std::vector<int>{3, 2, 1}));
  for (const SQCPairNode *a = head, *b = copy; a != nullptr;
       a = a->next, b = b->next) {
    EXPECT_NE(a, b);
    EXPECT_EQ(a->pair.key, b->pair.key);
    EXPECT_EQ(a->pair.value, b->pair.value);
  }
  listClearSimple(copy);
  EXPECT_EQ(copy, nullptr);
  EXPECT_EQ(countsOf(head), (std::vector<int>{3, 2, 1}));
  listClear(head);
  EXPECT_EQ(listCopy(nullptr), nullptr);
}

TEST(ChainHelpersTest, SearchReturnsTheLastEqualKey) {
  SQCPairNode* head = nullptr;
  listHeadInsert(head, pairOf(5));
  listHeadInsert(head, pairOf(7));
  listHeadInsert(head, pairOf(5));  // an equal key, nearer the head
  ISQCPair probe{test::makeItem(5), nullptr};
  SQCPairNode* found = listSearch(head, probe);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found, head->next->next);
  NTSequence* absent = test::makeItem(6);
  EXPECT_EQ(listSearch(head, ISQCPair{absent, nullptr}), nullptr);
  EXPECT_EQ(listSearch(nullptr, probe), nullptr);
  delete probe.key;
  delete absent;
  listClear(head);
}

TEST(ChainHelpersTest, ShowListPrintsNothing) {
  SQCPairNode* head = nullptr;
  listHeadInsert(head, pairOf(1));
  testing::internal::CaptureStdout();
  showList(head);
  showList(nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  listClear(head);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
