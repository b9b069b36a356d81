// Per-call timing helpers shared by the benchmarks that time single
// requests: the thread's CPU clock and the median / 99th percentile
// counters.
#ifndef SEQLATTICE_BENCH_BENCH_TIMING_H_
#define SEQLATTICE_BENCH_BENCH_TIMING_H_

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

namespace bench_timing {

inline double threadCpuMicros() {
  timespec now;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return now.tv_sec * 1e6 + now.tv_nsec / 1e3;
}

// The median and the 99th percentile of the samples.
inline void report(benchmark::State& state, const char* name,
                   std::vector<double>& samples) {
  if (samples.empty()) return;
  std::sort(samples.begin(), samples.end());
  state.counters[std::string(name) + "_median_us"] =
      samples[samples.size() / 2];
  state.counters[std::string(name) + "_p99_us"] =
      samples[samples.size() * 99 / 100];
}

}  // namespace bench_timing

#endif  // SEQLATTICE_BENCH_BENCH_TIMING_H_
