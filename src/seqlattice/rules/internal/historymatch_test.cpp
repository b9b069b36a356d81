// The prepared history of matching: shortening it from the end gives exactly
// what a fresh index of the shorter history gives, and matching on it finds
// exactly what getSubsequencesInSequence finds with that many item sets left
// out, so that future-item prediction, which shortens one index pass by
// pass, keeps the results of matching each prefix afresh.
#include "seqlattice/rules/internal/historymatch.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/rules/internal/itemprediction.h"
#include "seqlattice/rules/shopdatabase_test_util.h"
#include "seqlattice/sequence/sequence.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

// The patterns as text, in order, deleting them.
std::vector<std::string> shown(std::vector<NTSequence*>& patterns) {
  std::vector<std::string> texts;
  for (NTSequence* p : patterns) {
    texts.push_back(test::show(*p));
    delete p;
  }
  patterns.clear();
  return texts;
}

// A long history over the shop's items (and the unknown 7), in a pattern
// that repeats with a period the item sets do not share.
test::History longHistory(int sets) {
  const std::vector<std::vector<int>> cycle = {{1},    {2, 3}, {7}, {4},   {3},
                                               {1, 2}, {5},    {2}, {4, 5}};
  test::History history;
  for (int k = 0; k < sets; ++k) {
    history.push_back(cycle[static_cast<std::size_t>(k * 4 % 9)]);
  }
  return history;
}

}  // namespace

TEST(HistoryMatchTest, AShortenedIndexMatchesLikeEachPrefixAfresh) {
  auto dict = test::buildDictionary(test::shopDatabase(), test::kShopMinCount);
  const Sequence customer = test::toSequence(longHistory(40));
  const int length = customer.Length();
  historymatch::KnownItems shortened(*dict, customer, length);
  for (int skip = 0; skip < length; ++skip) {
    shortened.keepFirst(length - skip);
    historymatch::KnownItems fresh(*dict, customer, length - skip);
    EXPECT_EQ(shortened.nSets(), fresh.nSets()) << skip;
    EXPECT_EQ(shortened.totalItems(), fresh.totalItems()) << skip;
    EXPECT_EQ(shortened.lastSetKept(), fresh.lastSetKept()) << skip;
    std::vector<NTSequence*> expected;
    dict->getSubsequencesInSequence(expected, &customer, skip);
    std::vector<NTSequence*> found;
    historymatch::matchAnchored(*dict, shortened, found);
    EXPECT_EQ(shown(found), shown(expected)) << skip;
  }
}

TEST(HistoryMatchTest, FutureItemsOfALongHistoryAreThoseOfPassByPassMatching) {
  auto dict = test::buildDictionary(test::shopDatabase(), test::kShopMinCount);
  const Sequence customer = test::toSequence(longHistory(60));
  std::vector<SeqConsequentDescriptor> predictions;
  ASSERT_TRUE(dict->GetFutureItems(predictions, &customer, 9, false).IsOK());

  // The passes written out: match with k item sets left out, exclude the
  // items of the last k sets.
  const int length = customer.Length();
  itemprediction::ItemCandidates candidates(*dict, 10.0);
  std::unordered_set<int> excluded;
  for (int k = 0; k < length; ++k) {
    if (k > 0) itemprediction::addItemsOfSet(customer, length - k, excluded);
    itemprediction::OwnedPatterns found;
    dict->getSubsequencesInSequence(found.get(), &customer, k);
    candidates.addExtensions(
        found.get(), itemprediction::Placement::kNewSetAfterLast, excluded);
  }
  std::vector<SeqConsequentDescriptor> expected;
  candidates.appendBest(expected, 9);

  ASSERT_EQ(predictions.size(), expected.size());
  ASSERT_FALSE(predictions.empty());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(predictions[i].GetItem(), expected[i].GetItem());
    EXPECT_EQ(predictions[i].GetConfidence(), expected[i].GetConfidence());
    EXPECT_EQ(predictions[i].GetSupport(), expected[i].GetSupport());
    EXPECT_EQ(predictions[i].GetCause(), expected[i].GetCause());
  }
}

}  // namespace SEQUENCE_NAMESPACE_800
