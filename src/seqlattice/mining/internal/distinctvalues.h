// The distinct values of a large integer array and each element's rank among
// them, in time linear in the array when the values span a range not much
// wider than the array (item codes do): a bitmap over the range takes the
// place of sorting a copy of the array, which on a database of tens of
// millions of item occurrences costs about a second. Wider ranges fall back
// to sorting.
//
// Plain functions of their arguments; safe to call from several threads.
#ifndef SEQLATTICE_MINING_INTERNAL_DISTINCTVALUES_H_
#define SEQLATTICE_MINING_INTERNAL_DISTINCTVALUES_H_

#include <cstdint>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

// The distinct values of v, ascending.
std::vector<int> distinctValues(const std::vector<int>& v);

// Per element of v the index of its value in `values`, which must be
// distinctValues(v).
std::vector<std::uint32_t> valueRanks(const std::vector<int>& v,
                                      const std::vector<int>& values);

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_INTERNAL_DISTINCTVALUES_H_
