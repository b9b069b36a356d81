// A small customer database counted, pruned, linked and queried the way a
// host miner drives the dictionary. Every expected value below was worked
// out by hand from the five customers.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

using Texts = std::set<std::string>;

const std::vector<test::Sets> kCustomers = {
    {{1, 2}, {3}, {4}},     //
    {{1, 2}, {3}, {4, 5}},  //
    {{1}, {3}, {4}},        //
    {{1, 2}, {4}, {6}},     //
    {{2}, {3}, {6}},        //
};

constexpr int kMaxItems = 4;

// Every non-empty subset of a transaction, items in ascending order.
std::vector<std::vector<int>> subsets(const std::vector<int>& items) {
  std::vector<std::vector<int>> out;
  for (unsigned mask = 1; mask < (1u << items.size()); ++mask) {
    std::vector<int> subset;
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (mask & (1u << i)) subset.push_back(items[i]);
    }
    out.push_back(subset);
  }
  return out;
}

// All patterns of at most kMaxItems items that the customer contains.
void collect(const test::Sets& customer, std::size_t from, test::Sets& pattern,
             int items, std::set<test::Sets>& out) {
  if (!pattern.empty()) out.insert(pattern);
  for (std::size_t t = from; t < customer.size(); ++t) {
    for (const std::vector<int>& subset : subsets(customer[t])) {
      const int grown = items + static_cast<int>(subset.size());
      if (grown > kMaxItems) continue;
      pattern.push_back(subset);
      collect(customer, t + 1, pattern, grown, out);
      pattern.pop_back();
    }
  }
}

std::set<test::Sets> patternsOf(const test::Sets& customer) {
  std::set<test::Sets> out;
  test::Sets pattern;
  collect(customer, 0, pattern, 0, out);
  return out;
}

std::map<test::Sets, int> bruteForceCounts() {
  std::map<test::Sets, int> counts;
  for (const test::Sets& customer : kCustomers) {
    for (const test::Sets& pattern : patternsOf(customer)) ++counts[pattern];
  }
  return counts;
}

class DictionaryEndToEndTest : public testing::Test {
 protected:
  // Stores the patterns occurring at least twice with a zero count, then
  // counts them and N customer by customer through incrementCount.
  DictionaryEndToEndTest() : d(kMaxItems + 1) {
    counts = bruteForceCounts();
    for (const auto& entry : counts) {
      if (entry.second >= 2) test::addPattern(d, entry.first, 0);
    }
    test::PatternArrays empty(test::Sets{});
    for (const test::Sets& customer : kCustomers) {
      d.incrementCount(empty.sets(), 0);
      for (const test::Sets& pattern : patternsOf(customer)) {
        test::PatternArrays arrays(pattern);
        d.incrementCount(arrays.sets(), arrays.nSets());
      }
    }
  }

  Texts find(decltype(&SequenceDictionary::FindSequences) operation,
             const test::Sets& seq, int minCount, int maxCount) {
    std::unique_ptr<Sequence> start = test::newSequence(seq);
    std::set<Sequence*> out;
    EXPECT_TRUE((d.*operation)(start.get(), out, minCount, maxCount).IsOK());
    return test::takeTexts(out);
  }

  SequenceDictionary d;
  std::map<test::Sets, int> counts;
};

TEST_F(DictionaryEndToEndTest, CountsMatchTheBruteForceCounts) {
  EXPECT_EQ(d.getLevel0Descriptor()->getCount(), 5);
  // (1) (2) (3) (4) (6); (1)(3) (1)(4) (1 2) (2)(3) (2)(4) (2)(6) (3)(4);
  // (1)(3)(4) (1 2)(3) (1 2)(4) (2)(3)(4); (1 2)(3)(4).
  EXPECT_EQ(d.CountSequencesOfSize(1), 5);
  EXPECT_EQ(d.CountSequencesOfSize(2), 7);
  EXPECT_EQ(d.CountSequencesOfSize(3), 4);
  EXPECT_EQ(d.CountSequencesOfSize(4), 1);
  for (const auto& entry : counts) {
    SequenceCounter* counter = test::counterOf(d, entry.first);
    if (entry.second < 2) {
      EXPECT_EQ(counter, nullptr);
    } else {
      ASSERT_NE(counter, nullptr);
      EXPECT_EQ(counter->getCount(), entry.second);
    }
  }
  EXPECT_EQ(test::counterOf(d, {{1}, {4}})->getCount(), 4);
  EXPECT_EQ(test::counterOf(d, {{1, 2}, {3}, {4}})->getCount(), 2);
  EXPECT_FALSE(test::stored(d, {{5}}));
}

TEST_F(DictionaryEndToEndTest, PruningAtThreeKeepsTwelvePatterns) {
  // Gone: (6), (2)(6), (1 2)(3), (2)(3)(4), (1 2)(3)(4).
  EXPECT_EQ(d.reduceAll(3.0), 5);
  EXPECT_DOUBLE_EQ(d.getMinSupport(), 0.6);
  EXPECT_EQ(d.NumberOfSequences(), 13);
  EXPECT_EQ(d.LargestSequence(), 3);
  EXPECT_EQ(d.CountSequencesBiggerThan(2), 8);
  EXPECT_FALSE(test::stored(d, {{1, 2}, {3}}));
  EXPECT_TRUE(test::stored(d, {{1, 2}, {4}}));
}

class PrunedLatticeTest : public DictionaryEndToEndTest {
 protected:
  PrunedLatticeTest() {
    d.reduceAll(3.0);
    EXPECT_TRUE(d.buildLattice().IsOK());
  }
};

TEST_F(PrunedLatticeTest, AdjacencySets) {
  EXPECT_EQ(test::adjacencyOf(d, {}),
            (test::Adjacency{{1, 1}, {2, 1}, {3, 1}, {4, 1}}));
  EXPECT_EQ(test::adjacencyOf(d, {{1}}),
            (test::Adjacency{{2, 0}, {3, 3}, {4, 3}}));
  EXPECT_EQ(test::adjacencyOf(d, {{3}}),
            (test::Adjacency{{1, 1}, {2, 1}, {4, 3}}));
  EXPECT_EQ(test::adjacencyOf(d, {{4}}),
            (test::Adjacency{{1, 1}, {2, 1}, {3, 1}}));
  EXPECT_EQ(test::adjacencyOf(d, {{1}, {3}}), (test::Adjacency{{4, 5}}));
  EXPECT_EQ(test::adjacencyOf(d, {{1}, {4}}),
            (test::Adjacency{{2, 0}, {3, 3}}));
  EXPECT_EQ(test::adjacencyOf(d, {{1, 2}}), (test::Adjacency{{4, 3}}));
  EXPECT_EQ(test::adjacencyOf(d, {{2}, {3}}), test::Adjacency{});
  EXPECT_EQ(test::adjacencyOf(d, {{1, 2}, {4}}), test::Adjacency{});
}

TEST_F(PrunedLatticeTest, FindSequences) {
  EXPECT_EQ(
      find(&SequenceDictionary::FindSequences, {{1}}, 3, 100),
      (Texts{"(1)", "(1 2)", "(1)(3)", "(1)(4)", "(1)(3)(4)", "(1 2)(4)"}));
  EXPECT_EQ(find(&SequenceDictionary::FindSequences, {{3}}, 3, 100),
            (Texts{"(3)", "(1)(3)", "(2)(3)", "(3)(4)", "(1)(3)(4)"}));
  // At four only (1)(4) extends (1); at most three leaves out the fours.
  EXPECT_EQ(find(&SequenceDictionary::FindSequences, {{1}}, 4, 100),
            (Texts{"(1)", "(1)(4)"}));
  EXPECT_EQ(find(&SequenceDictionary::FindSequences, {{1}}, 3, 3),
            (Texts{"(1 2)", "(1)(3)", "(1)(3)(4)", "(1 2)(4)"}));
}

TEST_F(PrunedLatticeTest, FindSequencesBeginning) {
  EXPECT_EQ(find(&SequenceDictionary::FindSequencesBeginning, {{3}}, 3, 100),
            (Texts{"(3)", "(3)(4)"}));
  EXPECT_EQ(find(&SequenceDictionary::FindSequencesBeginning, {{4}}, 3, 100),
            Texts{"(4)"});
  EXPECT_EQ(
      find(&SequenceDictionary::FindSequencesBeginning, {{1}, {4}}, 3, 100),
      (Texts{"(1)(4)", "(1 2)(4)"}));
}

TEST_F(PrunedLatticeTest, FindSequencesEnding) {
  EXPECT_EQ(find(&SequenceDictionary::FindSequencesEnding, {{3}}, 3, 100),
            (Texts{"(3)", "(1)(3)", "(2)(3)"}));
  EXPECT_EQ(
      find(&SequenceDictionary::FindSequencesEnding, {{4}}, 3, 100),
      (Texts{"(4)", "(1)(4)", "(2)(4)", "(3)(4)", "(1 2)(4)", "(1)(3)(4)"}));
}

TEST_F(PrunedLatticeTest, MaximalPatternsOfEachSize) {
  std::vector<Sequence const*> out;
  EXPECT_TRUE(d.getSequencesOfSize(out, 1, true).IsOK());
  EXPECT_TRUE(out.empty());
  EXPECT_TRUE(d.getSequencesOfSize(out, 2, true).IsOK());
  EXPECT_EQ(test::takeTexts(out), std::vector<std::string>{"(2)[0](3)[1]"});
  EXPECT_TRUE(d.getSequencesOfSize(out, 3, true).IsOK());
  std::vector<std::string> three = test::takeTexts(out);
  EXPECT_EQ(std::set<std::string>(three.begin(), three.end()),
            (Texts{"(1)[0](3)[1](4)[2]", "(1 2)[0](4)[1]"}));
  EXPECT_EQ(three.size(), 2u);
  EXPECT_TRUE(d.getSequencesOfSize(out, 4, true).IsOK());
  EXPECT_TRUE(out.empty());
}

TEST_F(PrunedLatticeTest, RebuildAfterFurtherPruning) {
  // Of level 2 only (1)(4), with four customers, stays.
  EXPECT_EQ(d.reduceDictionaryWithCount(2, 4.0), 5);
  ASSERT_TRUE(d.buildLattice().IsOK());
  EXPECT_EQ(test::adjacencyOf(d, {{1}}), (test::Adjacency{{4, 3}}));
  EXPECT_EQ(test::adjacencyOf(d, {{3}}), test::Adjacency{});
  EXPECT_EQ(test::adjacencyOf(d, {{4}}), (test::Adjacency{{1, 1}}));
  EXPECT_EQ(test::adjacencyOf(d, {{1}, {4}}),
            (test::Adjacency{{2, 0}, {3, 3}}));
  EXPECT_EQ(find(&SequenceDictionary::FindSequences, {{1}}, 3, 100),
            (Texts{"(1)", "(1)(4)", "(1 2)(4)", "(1)(3)(4)"}));
  EXPECT_EQ(find(&SequenceDictionary::FindSequences, {{3}}, 3, 100),
            Texts{"(3)"});
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
