// Choosing the minimum support from a pattern budget, the way top-k
// sequential pattern mining does: the lowest minimum count whose frequent
// patterns (of at most maxItems items) number no more than the budget. Each
// trial search stops as soon as it has found more patterns than the budget,
// so no trial holds more than the budget's worth of work, and nothing is
// stored.
#ifndef SEQLATTICE_MINING_PATTERNBUDGET_H_
#define SEQLATTICE_MINING_PATTERNBUDGET_H_

#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/sequencedatabase.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

// The lowest minimum count c >= floorCount (within about 10% of c) such that
// db has at most maxPatterns frequent patterns at c, searched with options'
// maxItems, threads and memory budget (its minSupport is ignored). Returns
// the number of customers + 1 (nothing frequent) when even a count of all
// the customers finds too many. Throws MiningError when maxPatterns < 1.
long lowestCountWithin(const SequenceDatabase& db, MinerOptions options,
                       long maxPatterns, long floorCount);

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_PATTERNBUDGET_H_
