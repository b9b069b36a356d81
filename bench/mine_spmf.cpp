// Mines one SPMF sequence file and prints what the benchmark script tabulates:
//   mine_spmf FILE MINSUP [MAX_ITEMS [THREADS [dictionary]]]
// MINSUP with a decimal point is a fraction of the customers, else a count.
// THREADS 0 uses every core. With "dictionary" the patterns fill a
// SequenceDictionary of MAX_ITEMS + 1 levels and its lattice is built, as
// the model-building host does; otherwise they are only counted.
// Output, one line: customers min_count patterns longest read_ms mine_ms
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/input/inputerror.h"
#include "seqlattice/input/spmfreader.h"
#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/miningerror.h"

namespace input = SEQUENCE_NAMESPACE_800::input;
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
  if (argc < 3 || argc > 6) {
    std::cerr << "usage: mine_spmf FILE MINSUP [MAX_ITEMS [THREADS "
                 "[dictionary]]]\n";
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
    input::readSpmfFile(argv[1], db);
    double readMs = millisecondsSince(start);

    start = std::chrono::steady_clock::now();
    mining::MiningSummary summary;
    if (argc > 5 && std::string(argv[5]) == "dictionary") {
      SEQUENCE_NAMESPACE_800::SequenceDictionary dictionary(options.maxItems +
                                                            1);
      summary = mining::mineIntoDictionary(db, options, dictionary);
    } else {
      CountingSink sink;
      summary = mining::SequenceMiner(options).mine(db, sink);
    }
    double mineMs = millisecondsSince(start);
    std::cout << summary.customers << ' ' << summary.minCount << ' '
              << summary.patterns << ' ' << summary.longestPattern << ' '
              << static_cast<long>(readMs) << ' ' << static_cast<long>(mineMs)
              << '\n';
  } catch (const input::InputError& e) {
    std::cerr << "mine_spmf: " << e.what() << '\n';
    return 1;
  } catch (const mining::MiningError& e) {
    std::cerr << "mine_spmf: " << e.what() << '\n';
    return 1;
  }
  return 0;
}
