// Prediction and rule extraction on a dictionary of about 10^5 patterns:
// GetFutureItems and GetCurrentItems per call (median and 99th percentile
// over a fixed set of customer histories, reported as counters in
// microseconds, by wall clock and by thread CPU time) and one whole GetRules.
//
// The dictionary comes from a synthetic customer database (fixed seed):
// customers of a shop with a hundred products of skewed popularity, a
// handful of planted buying sequences. The library's miner stores every
// pattern of up to five items that at least four customers contain (about
// 10^5 patterns) and builds the lattice.
//
// Run: build/release/bench/predict_bench
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench_timing.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/sequencedatabase.h"
#include "seqlattice/rules/customerdatabase_test_util.h"
#include "seqlattice/rules/seqassociationrule.h"
#include "seqlattice/rules/seqconsequentdescript.h"
#include "seqlattice/sequence/sequence.h"

namespace {

using SEQUENCE_NAMESPACE_800::SeqAssociationRule;
using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;
namespace mining = SEQUENCE_NAMESPACE_800::mining;
namespace test = SEQUENCE_NAMESPACE_800::test;

const unsigned kSeed = 20240611;
const int kCustomers = 6000;
const int kProducts = 100;
const int kMinCount = 4;
const int kMaxPatternItems = 5;
const int kHistories = 2000;

// An item set of 1 to 3 products drawn with Zipf-like popularity.
test::ItemSet basket(std::mt19937& random) {
  static const std::vector<double> weights = [] {
    std::vector<double> w(kProducts);
    for (int i = 0; i < kProducts; ++i) w[i] = 1.0 / std::pow(i + 1, 0.9);
    return w;
  }();
  std::discrete_distribution<int> product(weights.begin(), weights.end());
  std::uniform_int_distribution<int> size(1, 3);
  test::ItemSet set;
  const int n = size(random);
  while (static_cast<int>(set.size()) < n) {
    const int item = product(random);
    if (std::find(set.begin(), set.end(), item) == set.end()) {
      set.push_back(item);
    }
  }
  std::sort(set.begin(), set.end());
  return set;
}

// Histories of 3 to 8 baskets; every third customer follows one of a few
// planted sequences, interleaved with random baskets.
test::CustomerDatabase makeDatabase(std::mt19937& random) {
  const test::CustomerDatabase planted = {
      {{1}, {2, 3}, {4}}, {{5}, {6}, {7, 8}}, {{2}, {9}, {3}, {10}}};
  std::uniform_int_distribution<int> length(3, 8);
  std::bernoulli_distribution interleave(0.3);
  test::CustomerDatabase db;
  for (int c = 0; c < kCustomers; ++c) {
    test::History history;
    if (c % 3 == 0) {
      for (const test::ItemSet& set : planted[c / 3 % planted.size()]) {
        if (interleave(random)) history.push_back(basket(random));
        history.push_back(set);
      }
    } else {
      const int n = length(random);
      for (int k = 0; k < n; ++k) history.push_back(basket(random));
    }
    db.push_back(history);
  }
  return db;
}

struct Fixture {
  std::unique_ptr<SequenceDictionary> dict;
  std::vector<Sequence> histories;  // prediction requests: history prefixes
};

Fixture& fixture() {
  static Fixture* built = [] {
    std::mt19937 random(kSeed);
    const test::CustomerDatabase db = makeDatabase(random);
    Fixture* f = new Fixture;
    f->dict.reset(new SequenceDictionary(kMaxPatternItems + 1));
    mining::SequenceDatabase customers;
    for (const test::History& history : db) {
      customers.beginCustomer();
      for (size_t k = 0; k < history.size(); ++k) {
        customers.addTransaction(static_cast<double>(k), history[k]);
      }
      customers.endCustomer();
    }
    mining::MinerOptions options;
    options.minSupport = mining::MinSupport::count(kMinCount);
    options.maxItems = kMaxPatternItems;
    mining::mineIntoDictionary(customers, options, *f->dict);
    std::uniform_int_distribution<int> customer(0, kCustomers - 1);
    for (int h = 0; h < kHistories; ++h) {
      const test::History& history = db[customer(random)];
      std::uniform_int_distribution<size_t> cut(1, history.size());
      f->histories.push_back(test::toSequence(
          test::History(history.begin(), history.begin() + cut(random))));
    }
    return f;
  }();
  return *built;
}

// Times every history once per iteration, by the wall clock and by the
// thread's CPU clock (which other load on the machine does not inflate), and
// reports the median and 99th percentile per call in microseconds.
template <typename Call>
void perCall(benchmark::State& state, Call call) {
  Fixture& f = fixture();
  std::vector<double> wall;
  std::vector<double> cpu;
  std::vector<SeqConsequentDescriptor> predictions;
  for (auto _ : state) {
    for (const Sequence& history : f.histories) {
      predictions.clear();
      const auto start = std::chrono::steady_clock::now();
      const double cpuStart = bench_timing::threadCpuMicros();
      call(*f.dict, predictions, history);
      cpu.push_back(bench_timing::threadCpuMicros() - cpuStart);
      wall.push_back(std::chrono::duration<double, std::micro>(
                         std::chrono::steady_clock::now() - start)
                         .count());
    }
    benchmark::DoNotOptimize(predictions.data());
  }
  bench_timing::report(state, "wall", wall);
  bench_timing::report(state, "cpu", cpu);
  state.counters["patterns"] = f.dict->NumberOfSequences();
  state.SetItemsProcessed(static_cast<int64_t>(wall.size()));
}

void BM_GetFutureItems(benchmark::State& state) {
  const bool lastSetOnly = state.range(0) != 0;
  perCall(state, [&](SequenceDictionary& dict,
                     std::vector<SeqConsequentDescriptor>& out,
                     const Sequence& history) {
    dict.GetFutureItems(out, &history, 10, lastSetOnly);
  });
}
BENCHMARK(BM_GetFutureItems)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

void BM_GetCurrentItems(benchmark::State& state) {
  perCall(
      state,
      [](SequenceDictionary& dict, std::vector<SeqConsequentDescriptor>& out,
         const Sequence& history) { dict.GetCurrentItems(out, &history, 10); });
}
BENCHMARK(BM_GetCurrentItems)->Unit(benchmark::kMillisecond);

void BM_GetRules(benchmark::State& state) {
  Fixture& f = fixture();
  size_t rules = 0;
  for (auto _ : state) {
    std::vector<SeqAssociationRule> out;
    f.dict->GetRules(out, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 'C', false);
    rules = out.size();
  }
  state.counters["rules"] = static_cast<double>(rules);
  state.counters["patterns"] = f.dict->NumberOfSequences();
}
BENCHMARK(BM_GetRules)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
