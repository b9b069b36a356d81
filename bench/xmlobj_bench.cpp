// Throughput of the XML object streaming: values written to and parsed from
// a memory stream, in bytes of text per second. The persistence formats are
// built from these calls, so this is the ceiling of XML saving and loading.
#include <benchmark/benchmark.h>

#include <random>
#include <sstream>
#include <string>

#include "seqlattice/support/xmlobj.h"

namespace {

using KvXML_850::XMLObj;

constexpr int kValues = 1 << 16;

// An object of a few ints, a long and a double, as a stored pattern has.
void WriteObjects(std::ostream& out, std::mt19937_64& random) {
  const XMLObj obj("NTSequence", 4);
  std::uniform_real_distribution<double> unit(0, 1);
  for (int i = 0; i < kValues; i += 4) {
    obj.StartObj(out);
    obj.WriteSubElement(out, static_cast<long>(random() >> 1));
    obj.WriteSubElement(out, static_cast<int>(random() % 100000));
    obj.WriteSubElement(out, static_cast<int>(random() % 100000));
    obj.WriteSubElement(out, unit(random));
    obj.EndObj(out);
  }
}

void BM_XMLObjWrite(benchmark::State& state) {
  std::mt19937_64 random(1);
  std::size_t bytes = 0;
  for (auto _ : state) {
    std::ostringstream out;
    WriteObjects(out, random);
    bytes += out.str().size();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}
BENCHMARK(BM_XMLObjWrite);

void BM_XMLObjParse(benchmark::State& state) {
  std::mt19937_64 random(1);
  std::ostringstream out;
  WriteObjects(out, random);
  const std::string text = out.str();
  const XMLObj obj("NTSequence", 4);
  for (auto _ : state) {
    std::istringstream in(text);
    long l;
    int i;
    double d;
    for (int n = 0; n < kValues; n += 4) {
      const bool ok = obj.ParseStartObj(in) && obj.ParseValue(in, &l) &&
                      obj.ParseValue(in, &i) && obj.ParseValue(in, &i) &&
                      obj.ParseValue(in, &d) && obj.ParseEndObj(in);
      if (!ok) state.SkipWithError("parse failed");
    }
    benchmark::DoNotOptimize(d);
  }
  state.SetBytesProcessed(
      static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_XMLObjParse);

}  // namespace

BENCHMARK_MAIN();
