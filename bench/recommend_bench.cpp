// One recommendation on a loaded model: Recommender::recommend with the
// default options (ten items), per call, median and 99th percentile in
// microseconds by wall clock and by thread CPU time, over the windows of a
// next-item test file.
//
// Run (a model mined by `seqlattice mine`, and the fold's test rows):
//   export SEQLATTICE_BENCH_MODEL=bms0.model
//   export SEQLATTICE_BENCH_WINDOWS=fold0.test.tsv
//   build/release/bench/recommend_bench
// Without the two variables the benchmark reports that it was skipped.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "bench_timing.h"
#include "seqlattice/recommend/recommender.h"
#include "seqlattice/sequence/timeditemset.h"
#include "support/modelfile.h"

namespace {

namespace recommend = SEQUENCE_NAMESPACE_800::recommend;
using SEQUENCE_NAMESPACE_800::Sequence;

// The `window` column (second) of each row after the header, one item per
// item set.
std::vector<Sequence> readWindows(const std::string& path) {
  std::vector<Sequence> windows;
  std::ifstream in(path);
  std::string line;
  std::getline(in, line);
  while (std::getline(in, line)) {
    std::istringstream row(line);
    std::string index, window;
    std::getline(row, index, '\t');
    std::getline(row, window, '\t');
    std::istringstream items(window);
    Sequence history;
    double time = 0;
    for (int item; items >> item;) {
      SEQUENCE_NAMESPACE_800::TimedItemSet set(1, time++);
      set.AddItem(item);
      history.AddTimedItemSet(&set);
    }
    windows.push_back(history);
  }
  return windows;
}

void BM_Recommend(benchmark::State& state) {
  const char* modelPath = std::getenv("SEQLATTICE_BENCH_MODEL");
  const char* windowsPath = std::getenv("SEQLATTICE_BENCH_WINDOWS");
  if (modelPath == nullptr || windowsPath == nullptr) {
    state.SkipWithError(
        "set SEQLATTICE_BENCH_MODEL and SEQLATTICE_BENCH_WINDOWS");
    return;
  }
  seqlattice_cli::Model model = seqlattice_cli::loadModel(modelPath);
  const std::vector<Sequence> windows = readWindows(windowsPath);
  recommend::Recommender recommender(*model.dictionary, &model.sequences);
  recommend::RecommendOptions options;
  options.top = 10;
  std::vector<double> wall;
  std::vector<double> cpu;
  for (auto _ : state) {
    for (const Sequence& history : windows) {
      const auto start = std::chrono::steady_clock::now();
      const double cpuStart = bench_timing::threadCpuMicros();
      auto list = recommender.recommend(history, options);
      benchmark::DoNotOptimize(list.data());
      cpu.push_back(bench_timing::threadCpuMicros() - cpuStart);
      wall.push_back(std::chrono::duration<double, std::micro>(
                         std::chrono::steady_clock::now() - start)
                         .count());
    }
  }
  bench_timing::report(state, "wall", wall);
  bench_timing::report(state, "cpu", cpu);
  state.counters["patterns"] = model.dictionary->NumberOfSequences();
  state.SetItemsProcessed(static_cast<int64_t>(wall.size()));
}
BENCHMARK(BM_Recommend)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
