// Makes the global allocation functions fail on demand, to check how the store
// reports running out of memory. Every variant the tests' code may reach is
// replaced, all on malloc/free, so that allocations and releases always pair
// up (also under AddressSanitizer, whose own versions are displaced).
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/support/seqexceptions.h"

namespace {

// Number of allocations still allowed to succeed; negative: no limit.
long allocationsLeft = -1;

void* allocate(std::size_t size) {
  if (allocationsLeft == 0) throw std::bad_alloc();
  if (allocationsLeft > 0) --allocationsLeft;
  void* p = std::malloc(size == 0 ? 1 : size);
  if (p == nullptr) throw std::bad_alloc();
  return p;
}

// Arms the failure for the lifetime of the object.
class FailingAllocations {
 public:
  explicit FailingAllocations(long succeeding) { allocationsLeft = succeeding; }
  ~FailingAllocations() { allocationsLeft = -1; }
};

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace {

using SEQUENCE_NAMESPACE_800::SequenceCounter;
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

}  // namespace
