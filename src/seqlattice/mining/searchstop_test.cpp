// A search stopped early, by its deadline or by its progress callback, ends
// normally with an incomplete summary, and the dictionary it filled keeps
// only the part closed under sub-patterns.
#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/mining_test_util.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// Forty customers over eight items, each buying all of them in a rotating
// order: every pattern of up to four items is frequent at a count of one,
// tens of thousands of them.
mining::SequenceDatabase rotatingDatabase() {
  std::vector<std::vector<std::vector<int>>> customers;
  for (int c = 0; c < 40; ++c) {
    std::vector<std::vector<int>> sets;
    for (int k = 0; k < 8; ++k) sets.push_back({(c * 3 + k * (c % 5 + 1)) % 8});
    customers.push_back(sets);
  }
  return makeDatabase(customers);
}

// True when every stored pattern's sub-patterns of one item less are stored.
bool closedUnderSubPatterns(SequenceDictionary& dictionary) {
  NTSequence sub;
  for (int k = 2; k < dictionary.getNLevels(); ++k) {
    for (const ISQCPair& entry : *dictionary.getLevel(k)) {
      for (int i = 0; i < entry.key->size(); ++i) {
        sub.removeItem(i, entry.key);
        if (dictionary.getDescriptor(&sub) == nullptr) return false;
      }
    }
  }
  return true;
}

long storedPatterns(const SequenceDictionary& dictionary) {
  long total = 0;
  for (int k = 1; k < dictionary.getNLevels(); ++k) {
    total += dictionary.CountSequencesOfSize(k);
  }
  return total;
}

}  // namespace test

TEST(SearchStopTest, APassedDeadlineStopsTheSearchAndKeepsAClosedPart) {
  mining::SequenceDatabase db = test::rotatingDatabase();
  mining::MinerOptions options;
  options.maxItems = 4;
  SequenceDictionary complete(5);
  mining::MiningSummary all = mining::mineIntoDictionary(db, options, complete);
  EXPECT_TRUE(all.complete);
  EXPECT_EQ(all.patternsDropped, 0);

  options.deadline = std::chrono::steady_clock::now();
  SequenceDictionary found(5);
  mining::MiningSummary stopped =
      mining::mineIntoDictionary(db, options, found);
  EXPECT_FALSE(stopped.complete);
  EXPECT_LT(stopped.patterns, all.patterns);
  EXPECT_EQ(stopped.patterns, test::storedPatterns(found));
  EXPECT_FALSE(found.isLatticeBuilt());
  const long reported = stopped.patterns;

  SequenceDictionary kept(found.getSettings());
  mining::keepClosedPart(found, kept, stopped);
  EXPECT_EQ(stopped.patterns, test::storedPatterns(kept));
  EXPECT_EQ(stopped.patterns + stopped.patternsDropped, reported);
  EXPECT_EQ(kept.getLevel0Descriptor()->getCount(), 40);
  EXPECT_TRUE(kept.isLatticeBuilt());
  EXPECT_TRUE(test::closedUnderSubPatterns(kept));
  // The eight single items come before any worker looks at the clock.
  EXPECT_EQ(stopped.patternsPerSize[1], 8);
}

TEST(SearchStopTest, TheProgressCallbackSeesTheCountAndCanStop) {
  mining::SequenceDatabase db = test::rotatingDatabase();
  mining::MinerOptions options;
  options.maxItems = 4;
  options.threads = 1;
  std::vector<long> seen;
  options.progress = [&seen](long patterns) {
    seen.push_back(patterns);
    return false;
  };
  SequenceDictionary dictionary(5);
  mining::MiningSummary summary =
      mining::mineIntoDictionary(db, options, dictionary);
  // The single items are the first batch; the callback stops after it.
  EXPECT_EQ(seen, std::vector<long>{8});
  EXPECT_FALSE(summary.complete);
  EXPECT_EQ(summary.patterns, 8);
  EXPECT_EQ(test::storedPatterns(dictionary), 8);
}

TEST(SearchStopTest, KeepClosedPartDropsPatternsMissingASubPattern) {
  SequenceDictionary found(4);
  found.getLevel0Descriptor()->setCount(3);
  int a[] = {1, 1}, b[] = {1, 2}, c[] = {1, 3};
  CarmaSequenceDescriptor counter(0, 0, 1);
  for (int* set : {a, b}) {
    int* sets[] = {set};
    found.addSequence(sets, 1, &counter);
  }
  int* ab[] = {a, b};
  int* ac[] = {a, c};
  int* abc[] = {a, b, c};
  found.addSequence(ab, 2, &counter);
  found.addSequence(ac, 2, &counter);  // (3) is not stored
  found.addSequence(abc, 3, &counter);
  mining::MiningSummary summary;
  summary.patternsPerSize = {0, 2, 2, 1};
  SequenceDictionary kept(4);
  mining::keepClosedPart(found, kept, summary);
  EXPECT_EQ(summary.patternsDropped, 2);
  EXPECT_EQ(summary.patterns, 3);
  EXPECT_EQ(summary.patternsPerSize, (std::vector<long>{0, 2, 1, 0}));
  EXPECT_EQ(summary.longestPattern, 2);
  EXPECT_EQ(kept.getLevel0Descriptor()->getCount(), 3);
  EXPECT_NE(kept.getDescriptor(ab, 2), nullptr);
  EXPECT_EQ(kept.getDescriptor(ac, 2), nullptr);
  EXPECT_EQ(kept.getDescriptor(abc, 3), nullptr);
  EXPECT_TRUE(kept.isLatticeBuilt());
}

}  // namespace SEQUENCE_NAMESPACE_800
