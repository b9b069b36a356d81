// Save and load throughput of a dictionary of about 10^6 patterns in the
// binary and the XML object format, through real files, beside a plain
// memcpy of the binary file's byte count as the ceiling. Throughput is
// counted in bytes of the saved form (bytes_per_second).
//
// Run: build/release/bench/persistence_bench --benchmark_min_time=1
// Files go to /dev/shm when it exists (else /tmp), so that the figures are
// about the library and not about the disk.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/store/statsbucket.h"

namespace {

using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;
using SEQUENCE_NAMESPACE_800::StatsBucket;

constexpr int kPatterns = 1000000;
constexpr int kItems = 1000;  // item codes 0 .. 999

std::string scratchPath(const char* name) {
  const std::string directory =
      ::access("/dev/shm", W_OK) == 0 ? "/dev/shm/" : "/tmp/";
  return directory + "seqlattice_bench_" + std::to_string(::getpid()) + "_" +
         name;
}

// Random patterns of 1 to 5 items (sets cut at random, items ascending
// within a set) with counters; one in four has adjacency pairs, one in
// twenty gap statistics, as a mined and latticed model has.
const SequenceDictionary& largeDictionary() {
  static const std::unique_ptr<SequenceDictionary> dictionary = [] {
    auto made = std::make_unique<SequenceDictionary>(6);
    std::mt19937 random(2026);
    std::uniform_int_distribution<int> item(0, kItems - 1);
    std::uniform_int_distribution<int> length(1, 5);
    std::vector<std::vector<int>> rows;
    std::vector<int*> sets;
    for (int stored = 0; stored < kPatterns;) {
      const int n = length(random);
      rows.clear();
      for (int i = 0; i < n; ++i) {
        if (rows.empty() || random() % 2 == 0) rows.push_back({0});
        std::vector<int>& row = rows.back();
        row.push_back(item(random));
        ++row[0];
        std::sort(row.begin() + 1, row.end());
      }
      sets.clear();
      for (std::vector<int>& row : rows) sets.push_back(row.data());
      const int nSets = static_cast<int>(sets.size());
      if (made->getDescriptor(sets.data(), nSets) != nullptr) continue;
      SequenceCounter counter(stored, 1 + stored % 97, nullptr);
      made->addSequence(sets.data(), nSets, &counter);
      SequenceCounter* added = made->getDescriptor(sets.data(), nSets);
      if (stored % 4 == 0) {
        added->addAdjacentItem(item(random), 1);
        added->addAdjacentItem(item(random), 3);
      }
      if (stored % 20 == 0) {
        auto* bucket = new StatsBucket();
        bucket->InitialGap(1.5);
        added->setStatsBucket(bucket);
      }
      ++stored;
    }
    made->setSlidingWindow(30.0);
    return made;
  }();
  return *dictionary;
}

long fileSize(const std::string& path) {
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  return static_cast<long>(in.tellg());
}

// The two formats: how a dictionary goes to a file and comes back.
struct Binary {
  static constexpr const char* kFile = "dictionary.bin";
  static void save(const SequenceDictionary& dictionary,
                   const std::string& path) {
    std::fstream out(path, std::ios::in | std::ios::out | std::ios::binary |
                               std::ios::trunc);
    dictionary.writeObject(out);
  }
  static void load(SequenceDictionary& dictionary, const std::string& path) {
    std::fstream in(path, std::ios::in | std::ios::binary);
    dictionary.readObject(in);
  }
};

struct XML {
  static constexpr const char* kFile = "dictionary.xml";
  static void save(const SequenceDictionary& dictionary,
                   const std::string& path) {
    std::ofstream out(path, std::ios::trunc);
    dictionary.writeObjectXML(out);
  }
  static void load(SequenceDictionary& dictionary, const std::string& path) {
    std::ifstream in(path);
    dictionary.readObjectXML(in);
  }
};

template <typename Format>
void BM_Save(benchmark::State& state) {
  const SequenceDictionary& dictionary = largeDictionary();
  const std::string path = scratchPath(Format::kFile);
  for (auto _ : state) Format::save(dictionary, path);
  state.SetBytesProcessed(state.iterations() * fileSize(path));
  std::remove(path.c_str());
}

// Destroying the loaded dictionary is not timed.
template <typename Format>
void BM_Load(benchmark::State& state) {
  const std::string path = scratchPath(Format::kFile);
  Format::save(largeDictionary(), path);
  for (auto _ : state) {
    auto loaded = std::make_unique<SequenceDictionary>();
    Format::load(*loaded, path);
    state.PauseTiming();
    loaded.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * fileSize(path));
  std::remove(path.c_str());
}

// The ceiling: copying the binary file's byte count in memory.
void BM_MemcpyBinarySize(benchmark::State& state) {
  const std::string path = scratchPath(Binary::kFile);
  Binary::save(largeDictionary(), path);
  const long bytes = fileSize(path);
  std::remove(path.c_str());
  std::vector<char> from(bytes, 'x');
  std::vector<char> to(bytes);
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), from.size());
    benchmark::DoNotOptimize(to.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * bytes);
}

BENCHMARK_TEMPLATE(BM_Save, Binary)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Load, Binary)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Save, XML)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Load, XML)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MemcpyBinarySize)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
