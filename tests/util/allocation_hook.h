// A test program linked with allocation_hook.cpp has the global allocation
// functions replaced, every variant on malloc/free so that allocations and
// releases always pair up (also under AddressSanitizer, whose own versions
// are displaced). The replacements count what is allocated and released and
// fail on demand, so that a test can see what an operation allocates, what it
// frees, and how it reports running out of memory.
//
// The counts are process-wide: read them around the work being measured, on
// the thread that does it, before any assertion (which allocates) runs.
#ifndef SEQLATTICE_TESTS_UTIL_ALLOCATION_HOOK_H_
#define SEQLATTICE_TESTS_UTIL_ALLOCATION_HOOK_H_

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// Allocations and releases since the program started.
long allocations();
long releases();

// Blocks allocated and not yet released.
inline long liveBlocks() { return allocations() - releases(); }

// Allocations made by `work`.
template <class Work>
long allocationsOf(Work work) {
  const long before = allocations();
  work();
  return allocations() - before;
}

// Allocations minus releases over `work`.
template <class Work>
long netAllocationsOf(Work work) {
  const long before = liveBlocks();
  work();
  return liveBlocks() - before;
}

// While it lives, the first `succeeding` allocations succeed and every later
// one throws std::bad_alloc.
class FailingAllocations {
 public:
  explicit FailingAllocations(long succeeding);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
};

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_TESTS_UTIL_ALLOCATION_HOOK_H_
