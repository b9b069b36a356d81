// How the dictionary uses memory: lookups from int** arrays refill the
// dictionary's scratch key instead of allocating, a rebuilt lattice releases
// the sets it replaces, and running out of memory is reported the way each
// operation promises (single-pattern operations throw DictionaryFailure, bulk
// ones return KvStatus(kStatusFailure, false), the Find walks let
// std::bad_alloc pass). The allocation functions are replaced by the test
// program (allocation_hook.h).
#include <gtest/gtest.h>

#include <new>
#include <ostream>
#include <set>
#include <vector>

#include "allocation_hook.h"
#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/support/kvstatus.h"
#include "seqlattice/support/seqexceptions.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// How an attempt under a limited allocation budget ended.
enum class Outcome { kDone, kFailedStatus, kDictionaryFailure, kBadAlloc };

std::ostream& operator<<(std::ostream& os, Outcome outcome) {
  switch (outcome) {
    case Outcome::kDone:
      return os << "done";
    case Outcome::kFailedStatus:
      return os << "KvStatus(kStatusFailure, false)";
    case Outcome::kDictionaryFailure:
      return os << "DictionaryFailure";
    case Outcome::kBadAlloc:
      return os << "std::bad_alloc";
  }
  return os;
}

// Runs `work` (which returns a KvStatus) with 0, 1, 2, ... allocations
// allowed until it gets through; the outcomes of the attempts that did not,
// in order. Any other ending of an attempt fails the test.
template <class Work>
std::vector<Outcome> failuresBeforeSuccess(Work work) {
  std::vector<Outcome> failures;
  failures.reserve(1000);
  for (long budget = 0; budget < 1000; ++budget) {
    Outcome outcome = Outcome::kDone;
    bool unexpected = false;
    {
      test::FailingAllocations failing(budget);
      try {
        const KvCommon_850::KvStatus status = work();
        if (!status.IsOK()) {
          outcome = Outcome::kFailedStatus;
          unexpected = status.GetCode() != KvCommon_850::kStatusFailure ||
                       status.GetFlag();
        }
      } catch (const SeqExceptions::DictionaryFailure&) {
        outcome = Outcome::kDictionaryFailure;
      } catch (const std::bad_alloc&) {
        outcome = Outcome::kBadAlloc;
      } catch (...) {
        unexpected = true;
      }
    }
    EXPECT_FALSE(unexpected) << "budget " << budget;
    if (outcome == Outcome::kDone && !unexpected) return failures;
    failures.push_back(outcome);
  }
  ADD_FAILURE() << "never got through";
  return failures;
}

// Whether every failure is `expected` (and there was at least one).
::testing::AssertionResult allAre(const std::vector<Outcome>& failures,
                                  Outcome expected) {
  if (failures.empty()) return ::testing::AssertionFailure() << "no failure";
  for (std::size_t i = 0; i < failures.size(); ++i) {
    if (failures[i] != expected) {
      return ::testing::AssertionFailure()
             << "attempt " << i << " ended with " << failures[i];
    }
  }
  return ::testing::AssertionSuccess();
}

TEST(ProbeAllocationTest, TheCounterSeesAllocations) {
  // Built in another file, so the allocation cannot be optimised away.
  EXPECT_GT(test::allocationsOf([] { delete new NTSequence(); }), 0);
}

TEST(ProbeAllocationTest, RepeatedLookupsAllocateNothing) {
  SequenceDictionary d(5);
  test::addPattern(d, {{1, 2}, {3}}, 0);
  test::PatternArrays present(test::Sets{{1, 2}, {3}});
  test::PatternArrays absent(test::Sets{{1}, {2, 4}});
  test::PatternArrays tooLong(test::Sets{{1, 2}, {3, 4, 5}});
  ASSERT_NE(d.incrementCount(present.sets(), present.nSets()), nullptr);
  SequenceCounter* found = nullptr;
  bool missing = true;
  const long made = test::allocationsOf([&] {
    for (int i = 0; i < 100; ++i) {
      d.incrementCount(present.sets(), present.nSets());
      found = d.getDescriptor(present.sets(), present.nSets());
      missing = d.hasSequence(absent.sets(), absent.nSets());
      d.incrementCount(absent.sets(), absent.nSets());
    }
  });
  EXPECT_EQ(made, 0);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->getCount(), 101);
  EXPECT_FALSE(missing);
  // Only a lookup of another size refills the probe's array.
  d.hasSequence(tooLong.sets(), tooLong.nSets());
  EXPECT_EQ(test::allocationsOf([&] {
              d.hasSequence(tooLong.sets(), tooLong.nSets());
              d.getDescriptor(tooLong.sets(), tooLong.nSets());
            }),
            0);
}

TEST(ProbeAllocationTest, RepeatedSequenceLookupsAllocateNothing) {
  SequenceDictionary d(5);
  test::addPattern(d, {{1, 2}, {3}}, 4);
  std::unique_ptr<Sequence> timed = test::newSequence({{1, 2}, {3}});
  ASSERT_NE(d.getDescriptor(timed.get()), nullptr);
  SequenceCounter* found = nullptr;
  EXPECT_EQ(test::allocationsOf([&] {
              for (int i = 0; i < 100; ++i)
                found = d.getDescriptor(timed.get());
            }),
            0);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->getCount(), 4);
}

TEST(LatticeMemoryTest, ARebuildReleasesTheSetsItReplaces) {
  SequenceDictionary d(4);
  test::addPairPatterns(d);
  ASSERT_TRUE(d.buildLattice().IsOK());
  bool rebuilt = false;
  EXPECT_EQ(test::netAllocationsOf([&] { rebuilt = d.buildLattice().IsOK(); }),
            0);
  EXPECT_TRUE(rebuilt);
  EXPECT_EQ(test::adjacencyOf(d, {{1}}), (test::Adjacency{{2, 0}, {2, 3}}));
}

TEST(LatticeMemoryTest, APatternAboveMaxCountIsNotMadeIntoASequence) {
  SequenceDictionary d(3);
  test::addPattern(d, {{1}}, 5);
  ASSERT_TRUE(d.buildLattice().IsOK());
  std::unique_ptr<Sequence> start = test::newSequence({{1}});
  std::set<Sequence*> out;
  const long reported =
      test::allocationsOf([&] { d.FindSequences(start.get(), out, 1, 10); });
  ASSERT_EQ(out.size(), 1u);
  delete *out.begin();
  out.clear();
  const long skipped =
      test::allocationsOf([&] { d.FindSequences(start.get(), out, 1, 4); });
  EXPECT_TRUE(out.empty());
  // Reporting costs the set's node and the Sequence, which takes more than
  // one allocation; skipping costs neither.
  EXPECT_GT(reported - skipped, 2);
}

TEST(AllocationFailureTest, AddSequenceThrowsDictionaryFailure) {
  SequenceDictionary d(4);
  test::PatternArrays p(test::Sets{{1, 2}, {3}});
  SequenceCounter counter(5, 3, nullptr);
  EXPECT_TRUE(allAre(failuresBeforeSuccess([&] {
                       d.addSequence(p.sets(), p.nSets(), &counter);
                       return KvCommon_850::KvStatus();
                     }),
                     Outcome::kDictionaryFailure));
  EXPECT_EQ(d.CountSequencesOfSize(3), 1);
  EXPECT_EQ(test::counterOf(d, {{1, 2}, {3}})->getCount(), 3);
}

TEST(AllocationFailureTest, LookupsThatRefillTheProbeThrowDictionaryFailure) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}, {2}}, 1);
  test::addPattern(d, {{1}}, 1);
  test::PatternArrays one(test::Sets{{1}});
  test::PatternArrays two(test::Sets{{1}, {2}});
  std::unique_ptr<Sequence> timed = test::newSequence({{1}, {2}});
  // Each attempt starts with a probe of one item, so that it must grow.
  d.hasSequence(one.sets(), one.nSets());
  EXPECT_TRUE(allAre(failuresBeforeSuccess([&] {
                       d.incrementCount(two.sets(), two.nSets());
                       return KvCommon_850::KvStatus();
                     }),
                     Outcome::kDictionaryFailure));
  EXPECT_EQ(test::counterOf(d, {{1}, {2}})->getCount(), 2);
  d.hasSequence(one.sets(), one.nSets());
  EXPECT_TRUE(allAre(failuresBeforeSuccess([&] {
                       d.getDescriptor(timed.get());
                       return KvCommon_850::KvStatus();
                     }),
                     Outcome::kDictionaryFailure));
  d.hasSequence(one.sets(), one.nSets());
  EXPECT_TRUE(allAre(failuresBeforeSuccess([&] {
                       d.remove(timed.get());
                       return KvCommon_850::KvStatus();
                     }),
                     Outcome::kDictionaryFailure));
  EXPECT_FALSE(test::stored(d, {{1}, {2}}));
}

TEST(AllocationFailureTest, CreateDictionaryThrowsDictionaryFailure) {
  SequenceDictionary d;
  SeqDictionarySettings s;
  s.nLevels = 3;
  s.level1Size = 7;
  s.level2Size = 7;
  EXPECT_TRUE(allAre(failuresBeforeSuccess([&] {
                       d.createDictionary(s);
                       return KvCommon_850::KvStatus();
                     }),
                     Outcome::kDictionaryFailure));
  EXPECT_EQ(d.getNLevels(), 3);
  EXPECT_EQ(d.NumberOfSequences(), 1);
}

TEST(AllocationFailureTest, ConstructorsFailInsideLevelZeroOnlyAsDictionary) {
  const std::vector<Outcome> failures = failuresBeforeSuccess([] {
    SequenceDictionary d(3);
    return KvCommon_850::KvStatus();
  });
  // The tables are allocated first: std::bad_alloc passes. Defining level 0
  // comes last: DictionaryFailure.
  std::size_t firstFailure = 0;
  while (firstFailure < failures.size() &&
         failures[firstFailure] == Outcome::kBadAlloc) {
    ++firstFailure;
  }
  EXPECT_GT(firstFailure, 0u);
  EXPECT_TRUE(allAre(
      std::vector<Outcome>(failures.begin() + firstFailure, failures.end()),
      Outcome::kDictionaryFailure));
}

TEST(AllocationFailureTest, BuildLatticeReturnsAFailedStatus) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}}, 3);
  test::addPattern(d, {{2}}, 3);
  test::addPattern(d, {{1}, {2}}, 2);
  {
    // Enough for the level-0 set only: it stays, the build does not count.
    test::FailingAllocations failing(1);
    const KvCommon_850::KvStatus status = d.buildLattice();
    EXPECT_EQ(status.GetCode(), KvCommon_850::kStatusFailure);
    EXPECT_FALSE(status.GetFlag());
  }
  EXPECT_FALSE(d.isLatticeBuilt());
  ASSERT_NE(d.getLevel0Descriptor()->getAdjacentItems(), nullptr);
  EXPECT_EQ(d.getLevel0Descriptor()->getNAdjacent(), 0);
  // A failed build never marks the lattice built.
  bool builtBeforeSuccess = false;
  EXPECT_TRUE(allAre(failuresBeforeSuccess([&] {
                       builtBeforeSuccess |= d.isLatticeBuilt();
                       return d.buildLattice();
                     }),
                     Outcome::kFailedStatus));
  EXPECT_FALSE(builtBeforeSuccess);
  EXPECT_TRUE(d.isLatticeBuilt());
  EXPECT_EQ(test::adjacencyOf(d, {{1}}), (test::Adjacency{{2, 3}}));
}

TEST(AllocationFailureTest, GetSequencesOfSizeKeepsWhatItAppended) {
  SequenceDictionary d(3);
  for (int item = 1; item <= 3; ++item) test::addPattern(d, {{item}}, 2);
  std::vector<Sequence const*> out;
  out.reserve(10);
  std::size_t mostKept = 0;
  EXPECT_TRUE(allAre(failuresBeforeSuccess([&] {
                       const KvCommon_850::KvStatus status =
                           d.getSequencesOfSize(out, 1, false);
                       if (!status.IsOK() && out.size() > mostKept) {
                         mostKept = out.size();
                       }
                       if (!status.IsOK()) {
                         for (Sequence const* sequence : out) delete sequence;
                         out.clear();
                       }
                       return status;
                     }),
                     Outcome::kFailedStatus));
  EXPECT_EQ(mostKept, 2u);
  EXPECT_EQ(out.size(), 3u);
  for (Sequence const* sequence : out) delete sequence;
}

TEST(AllocationFailureTest, FindLetsBadAllocPassAndKeepsWhatItFound) {
  SequenceDictionary d(4);
  test::addPattern(d, {{1}}, 5);
  test::addPattern(d, {{1}, {2}}, 5);
  test::addPattern(d, {{1}, {2}, {3}}, 5);
  ASSERT_TRUE(d.buildLattice().IsOK());
  std::unique_ptr<Sequence> start = test::newSequence({{1}});
  std::set<Sequence*> out;
  std::size_t mostKept = 0;
  EXPECT_TRUE(allAre(failuresBeforeSuccess([&] {
                       try {
                         return d.FindSequences(start.get(), out, 1, 10);
                       } catch (...) {
                         if (out.size() > mostKept) mostKept = out.size();
                         for (Sequence* sequence : out) delete sequence;
                         out.clear();
                         throw;
                       }
                     }),
                     Outcome::kBadAlloc));
  EXPECT_EQ(mostKept, 2u);
  EXPECT_EQ(test::takeTexts(out),
            (std::set<std::string>{"(1)", "(1)(2)", "(1)(2)(3)"}));
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
