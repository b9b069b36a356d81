// HashtableSQPair against std::unordered_map keyed by the same NTSequence hash
// code (equality by NTSequence::operator==), for 10^4, 10^5 and 10^6 distinct
// patterns of 1 to 5 items: insertion, successful and failed lookup, removal
// and a full walk. Both stores start small (89 buckets, as the dictionary's
// higher levels do) and grow while inserting.
//
// Run: build/release/bench/hashpairseq_bench --benchmark_min_time=0.5
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace {

using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::ISQCPair;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;

const int kInitialBuckets = 89;
const int kItems = 1000;  // item codes 0 .. 999

// A random pattern of 1 to 5 items, cut into sets at random, items ascending
// within a set as the host delivers them. Each set in the int** convention:
// its item count first.
typedef std::vector<std::vector<int>> Sets;

Sets randomSets(std::mt19937& random) {
  std::uniform_int_distribution<int> length(1, 5);
  std::uniform_int_distribution<int> item(0, kItems - 1);
  std::bernoulli_distribution newSet(0.5);
  Sets sets(1, std::vector<int>(1, 0));
  const int n = length(random);
  for (int i = 0; i < n; ++i) {
    if (i > 0 && newSet(random)) sets.emplace_back(1, 0);
    sets.back().push_back(item(random));
  }
  for (std::vector<int>& set : sets) {
    set[0] = static_cast<int>(set.size()) - 1;
    std::sort(set.begin() + 1, set.end());
  }
  return sets;
}

NTSequence* patternOf(Sets sets) {
  std::vector<int*> arrays;
  for (std::vector<int>& set : sets) arrays.push_back(set.data());
  return new NTSequence(arrays.data(), static_cast<int>(arrays.size()));
}

typedef std::vector<std::unique_ptr<NTSequence>> Patterns;

// n distinct patterns, equal copies of them in another order (the lookups'
// probes) and n patterns that are not among them.
struct Workload {
  Patterns stored;
  Patterns hits;
  Patterns misses;
};

const Workload& workload(int n) {
  static std::map<int, std::unique_ptr<Workload>> cache;
  std::unique_ptr<Workload>& w = cache[n];
  if (w) return *w;
  w.reset(new Workload());
  std::mt19937 random(static_cast<unsigned>(n));
  std::set<Sets> seen;
  while (static_cast<int>(w->stored.size()) < n) {
    const Sets sets = randomSets(random);
    if (seen.insert(sets).second) w->stored.emplace_back(patternOf(sets));
  }
  for (const auto& p : w->stored) w->hits.emplace_back(new NTSequence(*p));
  std::shuffle(w->hits.begin(), w->hits.end(), random);
  while (static_cast<int>(w->misses.size()) < n) {
    const Sets sets = randomSets(random);
    if (seen.count(sets) == 0) w->misses.emplace_back(patternOf(sets));
  }
  return *w;
}

// The two stores behind one interface, both owning keys and counters.
class TableStore {
 public:
  TableStore() : table(kInitialBuckets) {}
  void insert(NTSequence* key, SequenceCounter* value) {
    table.put(key, value);
  }
  bool find(const NTSequence* key) const { return table.get(key) != nullptr; }
  void erase(const NTSequence* key) { table.remove(key); }
  long sumOfCounts() const {
    long sum = 0;
    for (const ISQCPair& pair : table) sum += pair.value->getCount();
    return sum;
  }

 private:
  HashtableSQPair table;
};

class StdStore {
 public:
  ~StdStore() {
    for (const auto& pair : map) {
      delete pair.first;
      delete pair.second;
    }
  }
  void insert(NTSequence* key, SequenceCounter* value) {
    map.emplace(key, value);
  }
  bool find(const NTSequence* key) const {
    return map.find(const_cast<NTSequence*>(key)) != map.end();
  }
  void erase(const NTSequence* key) {
    auto it = map.find(const_cast<NTSequence*>(key));
    if (it == map.end()) return;
    delete it->first;
    delete it->second;
    map.erase(it);
  }
  long sumOfCounts() const {
    long sum = 0;
    for (const auto& pair : map) sum += pair.second->getCount();
    return sum;
  }

 private:
  struct Hash {
    std::size_t operator()(const NTSequence* key) const {
      return static_cast<std::uint32_t>(key->getHashCode());
    }
  };
  struct Equal {
    bool operator()(const NTSequence* a, const NTSequence* b) const {
      return *a == *b;
    }
  };
  std::unordered_map<NTSequence*, SequenceCounter*, Hash, Equal> map;
};

// A store holding copies of every stored pattern of the workload.
template <class Store>
std::unique_ptr<Store> filled(const Workload& w) {
  std::unique_ptr<Store> store(new Store());
  int ordinal = 0;
  for (const auto& p : w.stored) {
    store->insert(new NTSequence(*p),
                  new SequenceCounter(ordinal++, 1, nullptr));
  }
  return store;
}

template <class Store>
void BM_Insert(benchmark::State& state) {
  const Workload& w = workload(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<NTSequence*> keys;
    std::vector<SequenceCounter*> values;
    for (const auto& p : w.stored) {
      keys.push_back(new NTSequence(*p));
      values.push_back(new SequenceCounter(0, 1, nullptr));
    }
    std::unique_ptr<Store> store(new Store());
    state.ResumeTiming();
    for (std::size_t i = 0; i < keys.size(); ++i) {
      store->insert(keys[i], values[i]);
    }
    state.PauseTiming();
    store.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Store>
void lookups(benchmark::State& state, const Patterns& probes) {
  const Workload& w = workload(static_cast<int>(state.range(0)));
  std::unique_ptr<Store> store = filled<Store>(w);
  for (auto _ : state) {
    int found = 0;
    for (const auto& probe : probes) found += store->find(probe.get());
    benchmark::DoNotOptimize(found);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Store>
void BM_LookupHit(benchmark::State& state) {
  lookups<Store>(state, workload(static_cast<int>(state.range(0))).hits);
}

template <class Store>
void BM_LookupMiss(benchmark::State& state) {
  lookups<Store>(state, workload(static_cast<int>(state.range(0))).misses);
}

template <class Store>
void BM_Remove(benchmark::State& state) {
  const Workload& w = workload(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    std::unique_ptr<Store> store = filled<Store>(w);
    state.ResumeTiming();
    for (const auto& probe : w.hits) store->erase(probe.get());
    state.PauseTiming();
    store.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Store>
void BM_Iterate(benchmark::State& state) {
  const Workload& w = workload(static_cast<int>(state.range(0)));
  std::unique_ptr<Store> store = filled<Store>(w);
  for (auto _ : state) benchmark::DoNotOptimize(store->sumOfCounts());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

#define SEQLATTICE_STORE_BENCH(name)   \
  BENCHMARK_TEMPLATE(name, TableStore) \
      ->RangeMultiplier(10)            \
      ->Range(10000, 1000000)          \
      ->Unit(benchmark::kMicrosecond); \
  BENCHMARK_TEMPLATE(name, StdStore)   \
      ->RangeMultiplier(10)            \
      ->Range(10000, 1000000)          \
      ->Unit(benchmark::kMicrosecond)

SEQLATTICE_STORE_BENCH(BM_Insert);
SEQLATTICE_STORE_BENCH(BM_LookupHit);
SEQLATTICE_STORE_BENCH(BM_LookupMiss);
SEQLATTICE_STORE_BENCH(BM_Remove);
SEQLATTICE_STORE_BENCH(BM_Iterate);

}  // namespace

BENCHMARK_MAIN();
