// Mines one SPMF sequence file and prints what the benchmark script tabulates:
//   mine_spmf FILE MINSUP [MAX_ITEMS [THREADS]]
// MINSUP with a decimal point is a fraction of the customers, else a count.
// Output, one line: customers min_count patterns longest read_ms mine_ms
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>

#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/miningerror.h"
#include "seqlattice/mining/spmfreader.h"

namespace mining = SEQUENCE_NAMESPACE_800::mining;

namespace {

class CountingSink : public mining::PatternSink {
 public:
  void addPattern(int**, int, long, long) override {}
};

double millisecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double, std::milli>(
             std::chrono::steady_clock::now() - start)
      .count();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3 || argc > 5) {
    std::cerr << "usage: mine_spmf FILE MINSUP [MAX_ITEMS [THREADS]]\n";
    return 2;
  }
  try {
    std::string minSupport = argv[2];
    mining::MinerOptions options;
    options.minSupport =
        minSupport.find('.') != std::string::npos
            ? mining::MinSupport::fraction(std::atof(minSupport.c_str()))
            : mining::MinSupport::count(std::atol(minSupport.c_str()));
    options.maxItems = argc > 3 ? std::atoi(argv[3]) : 31;
    options.threads = argc > 4 ? std::atoi(argv[4]) : 0;
    std::size_t available = mining::availableMemoryBytes();
    options.memoryBudget = available / 2;

    auto start = std::chrono::steady_clock::now();
    mining::SequenceDatabase db;
    db.setMemoryLimit(available / 3);
    mining::readSpmfFile(argv[1], db);
    double readMs = millisecondsSince(start);

    start = std::chrono::steady_clock::now();
    CountingSink sink;
    mining::MiningSummary summary =
        mining::SequenceMiner(options).mine(db, sink);
    double mineMs = millisecondsSince(start);
    std::cout << summary.customers << ' ' << summary.minCount << ' '
              << summary.patterns << ' ' << summary.longestPattern << ' '
              << static_cast<long>(readMs) << ' ' << static_cast<long>(mineMs)
              << '\n';
  } catch (const mining::MiningError& e) {
    std::cerr << "mine_spmf: " << e.what() << '\n';
    return 1;
  }
  return 0;
}
