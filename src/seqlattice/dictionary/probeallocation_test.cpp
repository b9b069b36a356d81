// Lookups from int** arrays refill the dictionary's scratch key instead of
// allocating. This file replaces the global operator new for the whole test
// program, counting only while `counting` is set.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace {

std::atomic<bool> counting{false};
std::atomic<long> allocations{0};

}  // namespace

void* operator new(std::size_t size) {
  if (counting) ++allocations;
  if (void* p = std::malloc(size != 0 ? size : 1)) return p;
  throw std::bad_alloc();
}

void operator delete(void* p) noexcept { std::free(p); }

void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace {

using dictionary_test::addPattern;
using dictionary_test::PatternArrays;
using dictionary_test::Sets;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;

// Allocations made by `work`, run with counting on.
template <class Work>
long allocationsOf(Work work) {
  allocations = 0;
  counting = true;
  work();
  counting = false;
  return allocations;
}

TEST(ProbeAllocationTest, TheCounterSeesAllocations) {
  // Built in another file, so the allocation cannot be optimised away.
  EXPECT_GT(
      allocationsOf([] { delete new SEQUENCE_NAMESPACE_800::NTSequence(); }),
      0);
}

TEST(ProbeAllocationTest, RepeatedLookupsAllocateNothing) {
  SequenceDictionary d(5);
  addPattern(d, {{1, 2}, {3}}, 0);
  PatternArrays present(Sets{{1, 2}, {3}});
  PatternArrays absent(Sets{{1}, {2, 4}});
  PatternArrays tooLong(Sets{{1, 2}, {3, 4, 5}});
  ASSERT_NE(d.incrementCount(present.sets(), present.nSets()), nullptr);
  SequenceCounter* found = nullptr;
  bool missing = true;
  const long made = allocationsOf([&] {
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
  EXPECT_EQ(allocationsOf([&] {
              d.hasSequence(tooLong.sets(), tooLong.nSets());
              d.getDescriptor(tooLong.sets(), tooLong.nSets());
            }),
            0);
}

}  // namespace
