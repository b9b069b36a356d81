#include "allocation_hook.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> allocated{0};
std::atomic<long> released{0};
// Number of allocations still allowed to succeed; negative: no limit.
std::atomic<long> allocationsLeft{-1};

void* allocate(std::size_t size) {
  if (allocationsLeft == 0) throw std::bad_alloc();
  if (allocationsLeft > 0) --allocationsLeft;
  void* p = std::malloc(size != 0 ? size : 1);
  if (p == nullptr) throw std::bad_alloc();
  ++allocated;
  return p;
}

void release(void* p) {
  if (p != nullptr) ++released;
  std::free(p);
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* p) noexcept { release(p); }
void operator delete[](void* p) noexcept { release(p); }
void operator delete(void* p, std::size_t) noexcept { release(p); }
void operator delete[](void* p, std::size_t) noexcept { release(p); }

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

long allocations() { return allocated; }
long releases() { return released; }

FailingAllocations::FailingAllocations(long succeeding) {
  allocationsLeft = succeeding;
}

FailingAllocations::~FailingAllocations() { allocationsLeft = -1; }

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800
