// The dictionary's hot paths: incrementCount as a host's counting loop calls
// it (stored and absent patterns mixed), the lattice build and a FindSequences
// walk, over the patterns of up to three items of random customers (so every
// sub-pattern of a stored pattern is stored too, as after mining).
//
// Run: build/release/bench/sequencedictionary_bench --benchmark_min_time=0.5
#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <set>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace {

using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;
using SEQUENCE_NAMESPACE_800::TimedItemSet;
typedef std::vector<std::vector<int>> Sets;

const int kMaxItems = 3;

// A customer of 3 to 6 transactions of 1 to 3 distinct items each.
Sets randomCustomer(std::mt19937& random, int nItems) {
  std::uniform_int_distribution<int> length(3, 6), width(1, 3),
      item(0, nItems - 1);
  Sets customer(length(random));
  for (std::vector<int>& set : customer) {
    std::set<int> items;
    for (int n = width(random); static_cast<int>(items.size()) < n;) {
      items.insert(item(random));
    }
    set.assign(items.begin(), items.end());
  }
  return customer;
}

// Patterns of up to kMaxItems items contained in the customer, one item set
// of the pattern per transaction used (each transaction contributes one
// item, or its first two items).
void collect(const Sets& customer, std::size_t from, Sets& pattern, int items,
             std::set<Sets>& out) {
  if (!pattern.empty()) out.insert(pattern);
  if (items == kMaxItems) return;
  for (std::size_t t = from; t < customer.size(); ++t) {
    for (int i : customer[t]) {
      pattern.push_back({i});
      collect(customer, t + 1, pattern, items + 1, out);
      pattern.pop_back();
    }
    if (customer[t].size() >= 2 && items + 2 <= kMaxItems) {
      pattern.push_back({customer[t][0], customer[t][1]});
      collect(customer, t + 1, pattern, items + 2, out);
      pattern.pop_back();
    }
  }
}

// The int** form of a pattern, owned; not copied, since pointers point into
// rows.
struct Arrays {
  explicit Arrays(const Sets& sets) {
    for (const std::vector<int>& set : sets) {
      rows.push_back(std::vector<int>(1, static_cast<int>(set.size())));
      rows.back().insert(rows.back().end(), set.begin(), set.end());
    }
    for (std::vector<int>& row : rows) pointers.push_back(row.data());
  }
  Arrays(const Arrays&) = delete;
  Arrays& operator=(const Arrays&) = delete;
  int** sets() { return pointers.data(); }
  int nSets() const { return static_cast<int>(rows.size()); }
  std::vector<std::vector<int>> rows;
  std::vector<int*> pointers;
};

struct Model {
  explicit Model(int nCustomers) : dictionary(kMaxItems + 1) {
    std::mt19937 random(7);
    std::set<Sets> all;
    for (int c = 0; c < nCustomers; ++c) {
      Sets pattern;
      collect(randomCustomer(random, 200), 0, pattern, 0, all);
    }
    SequenceCounter counter(0, 1, nullptr);
    for (const Sets& sets : all) {
      patterns.emplace_back(new Arrays(sets));
      dictionary.addSequence(patterns.back()->sets(), patterns.back()->nSets(),
                             &counter);
      // The same sets in reverse order are mostly not stored.
      patterns.emplace_back(new Arrays(Sets(sets.rbegin(), sets.rend())));
    }
  }
  SequenceDictionary dictionary;
  std::vector<std::unique_ptr<Arrays>> patterns;
};

void BM_IncrementCount(benchmark::State& state) {
  Model model(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    for (const std::unique_ptr<Arrays>& arrays : model.patterns) {
      benchmark::DoNotOptimize(
          model.dictionary.incrementCount(arrays->sets(), arrays->nSets()));
    }
  }
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(model.patterns.size()));
  state.counters["stored"] = model.dictionary.NumberOfSequences();
}
BENCHMARK(BM_IncrementCount)->Arg(100)->Arg(1000);

void BM_BuildLattice(benchmark::State& state) {
  Model model(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(model.dictionary.buildLattice());
  }
  state.SetItemsProcessed(state.iterations() *
                          model.dictionary.NumberOfSequences());
}
BENCHMARK(BM_BuildLattice)->Arg(100)->Arg(1000);

void BM_FindSequencesFromOneItem(benchmark::State& state) {
  Model model(static_cast<int>(state.range(0)));
  model.dictionary.buildLattice();
  TimedItemSet set(1, 1.0);
  set.AddItem(17);
  Sequence start;
  start.AddTimedItemSet(&set);
  for (auto _ : state) {
    std::set<Sequence*> out;
    model.dictionary.FindSequences(&start, out, 1, 1 << 30);
    state.counters["found"] = static_cast<double>(out.size());
    for (Sequence* found : out) delete found;
  }
}
BENCHMARK(BM_FindSequencesFromOneItem)->Arg(100)->Arg(1000);

}  // namespace

BENCHMARK_MAIN();
