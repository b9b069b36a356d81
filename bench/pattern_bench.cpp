// Costs of the pattern key operations that counting and lattice building run
// in their inner loops: building an extension, removing an item into the
// scratch buffer (which must not allocate), hashing and ordering.
#include <benchmark/benchmark.h>

#include <vector>

#include "seqlattice/pattern/ntsequence.h"

namespace {

using SEQUENCE_NAMESPACE_800::NTSequence;

// (1 4)(2)(7 8 9)(3): six items in four sets, a typical mined pattern.
NTSequence SixItems() {
  int set0[] = {2, 1, 4};
  int set1[] = {1, 2};
  int set2[] = {3, 7, 8, 9};
  int set3[] = {1, 3};
  int* sets[] = {set0, set1, set2, set3};
  return NTSequence(sets, 4);
}

void BM_Extension(benchmark::State& state) {
  const NTSequence src = SixItems();
  int position = 0;
  for (auto _ : state) {
    NTSequence extended(src, 5, position);
    benchmark::DoNotOptimize(extended.getHashCode());
    position = (position + 1) % (2 * src.getNSets());  // codes 0 to 7
  }
}
BENCHMARK(BM_Extension);

void BM_RemoveItemIntoScratch(benchmark::State& state) {
  NTSequence src = SixItems();
  NTSequence scratch;
  int k = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(scratch.removeItem(k, &src));
    k = (k + 1) % src.size();
  }
}
BENCHMARK(BM_RemoveItemIntoScratch);

void BM_ComputeHash(benchmark::State& state) {
  const NTSequence p = SixItems();
  for (auto _ : state) benchmark::DoNotOptimize(p.computeHash());
}
BENCHMARK(BM_ComputeHash);

void BM_Less(benchmark::State& state) {
  const NTSequence a = SixItems();
  const NTSequence b(a, 9, 7);  // equal up to the last set
  for (auto _ : state) benchmark::DoNotOptimize(a < b);
}
BENCHMARK(BM_Less);

}  // namespace

BENCHMARK_MAIN();
