// The search under a window alone (no minimum or maximum gap, no maximum
// span) over bitmaps of each customer's transactions, used when no customer
// holds more than 64 transactions with frequent items: a pattern's
// occurrences in a customer are one 64-bit word of positions, not a list.
//
// Without gap limits a new item set only has to start after the earliest
// end of the sets before it, so a node keeps per customer the positions s
// after that end where its last set may start: those whose window (the
// transactions up to the window past s) holds every item of the set.
// Another item y joins the set by keeping the starts whose window holds y,
// a precomputed word per customer and item; a new set y starts at the
// positions after the node's earliest end whose window holds y. The
// earliest end follows from the first start and the positions of the last
// set's items, which the node keeps per customer too.
//
// With gap statistics a node also keeps, of the sets before its last, where
// their occurrences end earliest from each start and the latest start
// ending there, so that the shortest gap of the earliest occurrence is read
// off the words. Supports, gaps and the order of the records are those of
// the general search.
#ifndef SEQLATTICE_MINING_INTERNAL_WINDOWSEARCH_H_
#define SEQLATTICE_MINING_INTERNAL_WINDOWSEARCH_H_

#include <cstddef>

#include "seqlattice/mining/internal/patternemitter.h"
#include "seqlattice/mining/internal/timeddatabase.h"
#include "seqlattice/mining/miner.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

// Whether windowSearch can mine db under time: a window, no other limit,
// and no customer with more than 64 transactions.
bool windowSearchApplies(const TimedDatabase& db, const TimeConstraints& time);

// Mines db as the general search under time constraints does (minCount,
// options' window, item limit and deadline) on `threads` workers, passing
// the records to emitter from the calling thread, with the gap statistics
// when gaps. Throws SearchStopped at the deadline.
void windowSearch(const TimedDatabase& db, const MinerOptions& options,
                  long minCount, std::size_t threads, PatternEmitter& emitter,
                  bool gaps);

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_INTERNAL_WINDOWSEARCH_H_
