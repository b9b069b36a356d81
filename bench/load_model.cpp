// Loads one model file as every command but `mine` does (seqlattice_cli::
// loadModel: trailer, checksum, dictionary record, pattern check) and prints
// what bench/model_loading.sh tabulates, so that the cost of opening a model
// can be read without a command's own work around it:
//   load_model MODEL
// Output, one line: bytes patterns cpu_ms wall_ms cpu_ms_ready wall_ms_ready.
// The first two times are the load as `info`, `rules` and `export` pay it;
// the last two add building the customers' sequence index, which prediction
// needs and which is otherwise built on its first query.
// One load a process, as a command does it: a second load in the same
// process would find the heap warmed by the first. The model is left to the
// exit, as the commands leave theirs.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <fstream>

#include "seqlattice/store/hashpairseq.h"
#include "support/modelfile.h"

namespace {

double processCpuSeconds() {
  timespec now;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + now.tv_nsec / 1e9;
}

long patternsOf(const seqlattice_cli::Model& model) {
  long patterns = 0;
  for (int level = 0; level < model.dictionary->getNLevels(); ++level) {
    const auto* table = model.dictionary->getLevel(level);
    if (table != nullptr) patterns += table->getCount();
  }
  return patterns;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: load_model MODEL\n");
    return 2;
  }
  try {
    const long bytes =
        std::ifstream(argv[1], std::ios::binary | std::ios::ate).tellg();
    const double cpuStart = processCpuSeconds();
    const auto wallStart = std::chrono::steady_clock::now();
    auto* model = new seqlattice_cli::Model(seqlattice_cli::loadModel(argv[1]));
    const double cpu = processCpuSeconds() - cpuStart;
    const auto wallSince = [&wallStart] {
      return std::chrono::duration<double>(std::chrono::steady_clock::now() -
                                           wallStart)
          .count();
    };
    const double wall = wallSince();
    model->sequences.prepare();
    const double cpuReady = processCpuSeconds() - cpuStart;
    const double wallReady = wallSince();
    std::printf("%ld %ld %.1f %.1f %.1f %.1f\n", bytes, patternsOf(*model),
                cpu * 1e3, wall * 1e3, cpuReady * 1e3, wallReady * 1e3);
    std::fflush(stdout);
    std::_Exit(0);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "load_model: %s\n", e.what());
    return 1;
  }
}
