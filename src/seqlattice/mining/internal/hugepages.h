// reserveOnHugePages gives a vector room for n elements on huge pages where
// the system leaves that choice to the program. The search reads its large
// arrays (the work database, the one-item projections) customer by
// customer, far apart once they outgrow the cache; with small pages each of
// those reads also misses the address translation cache, which costs about
// as much as the cache miss itself. Asking before the buffer is first
// written lets the kernel fault it in as huge pages; elsewhere (small
// buffers, other systems) it is a plain reserve.
#ifndef SEQLATTICE_MINING_INTERNAL_HUGEPAGES_H_
#define SEQLATTICE_MINING_INTERNAL_HUGEPAGES_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

// Buffers below this size are left to the ordinary pages.
constexpr std::size_t kHugePageMinBytes = std::size_t{8} << 20;

template <class T>
void reserveOnHugePages(std::vector<T>& v, std::size_t n) {
  if (n <= v.capacity()) return;
  v.reserve(n);
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  constexpr std::uintptr_t kHugePage = std::uintptr_t{2} << 20;
  const std::size_t bytes = n * sizeof(T);
  if (bytes < kHugePageMinBytes) return;
  auto begin = reinterpret_cast<std::uintptr_t>(v.data());
  std::uintptr_t from = (begin + kHugePage - 1) & ~(kHugePage - 1);
  std::uintptr_t to = (begin + bytes) & ~(kHugePage - 1);
  // Advice only: a kernel without huge pages refuses it, and nothing changes.
  if (to > from) {
    madvise(reinterpret_cast<void*>(from), to - from, MADV_HUGEPAGE);
  }
#endif
}

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_INTERNAL_HUGEPAGES_H_
