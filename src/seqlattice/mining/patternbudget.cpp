#include "seqlattice/mining/patternbudget.h"

#include <algorithm>

#include "seqlattice/mining/miningerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

namespace {

struct OverBudget {};

// Counts patterns and stops the search (by throwing, which the miner passes
// on after stopping its workers) past the budget.
class CountingSink : public PatternSink {
 public:
  explicit CountingSink(long budget) : budget_(budget) {}
  void addPattern(int**, int, long, long) override {
    if (++patterns_ > budget_) throw OverBudget();
  }

 private:
  long budget_;
  long patterns_ = 0;
};

}  // namespace

long lowestCountWithin(const SequenceDatabase& db, MinerOptions options,
                       long maxPatterns, long floorCount) {
  if (maxPatterns < 1) throw MiningError("the pattern budget must be >= 1");
  const long customers = static_cast<long>(db.customerCount());
  auto fits = [&](long count) {
    options.minSupport = MinSupport::count(count);
    CountingSink sink(maxPatterns);
    try {
      SequenceMiner(options).mine(db, sink);
      return true;
    } catch (const OverBudget&) {
      return false;
    }
  };
  long low = std::max(1L, floorCount);
  if (fits(low)) return low;
  // Grow fourfold until it fits, then halve the gap down to about 10% of the
  // count: each trial costs about the same (it stops at the budget), so few
  // trials matter more than a count closer to the lowest.
  long high = low;
  do {
    low = high;
    if (low >= customers) return customers + 1;
    high = std::min(customers, high * 4);
  } while (!fits(high));
  while (high - low > std::max(1L, high / 10)) {
    const long middle = low + (high - low) / 2;
    if (fits(middle)) {
      high = middle;
    } else {
      low = middle;
    }
  }
  return high;
}

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
