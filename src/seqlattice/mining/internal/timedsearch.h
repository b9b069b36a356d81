// The miner's search under time constraints (docs/time-constraints.md): a
// depth-first prefix extension, like the unconstrained search, over lists of
// occurrences with times. A node keeps, per customer containing its pattern,
// the occurrences that can still be extended, each reduced to what the
// constraints look at: the transactions that start the pattern, start and end
// the next-to-last item set, and start and end the last one. Of the
// occurrences ending their last set in the same transactions only those that
// no other one beats on every limit are kept (with window 0 they merge into
// one), so the lists stay short while the supports stay exact; what no limit
// reads (the start without a maximum span, the previous set's start without
// a maximum gap or gap statistics) is cleared first, so more of them merge;
// and once the window of the last set's end no longer reaches back to the
// previous set's end (without a minimum gap), that end is no limit either.
//
// A node's frequent extensions are counted first, per customer once; then
// all its children are built in one pass over its occurrences, each new
// occurrence handed to the child of its item, before any child is expanded.
// The counting reads each customer's items where a new set or another item
// of the last set may come from, or, where few candidates meet many such
// items, looks each candidate up in the customers holding it and stops as
// soon as it is known to be frequent or not.
//
// Extending a pattern only at its end never makes it more frequent under the
// constraints, so pruning by support stays exact. The candidates of a node's
// children are its parent's frequent extensions, except the sequence
// extensions under a maximum gap: there a pattern without a middle item set
// can be rarer than the pattern, and the candidates after a set ending in y
// are the items that follow y as a two-item pattern.
//
// The subtrees of the frequent items are tasks of runOrderedTasks; output is
// in PatternEmitter's records, with gap statistics when asked for.
#ifndef SEQLATTICE_MINING_INTERNAL_TIMEDSEARCH_H_
#define SEQLATTICE_MINING_INTERNAL_TIMEDSEARCH_H_

#include <cstddef>
#include <functional>

#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/sequencedatabase.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

// Throws MiningError when a constraint is out of its range (see
// TimeConstraints) or not a number.
void checkTimeConstraints(const TimeConstraints& time);

// Mines db under options.time with minCount (at most customers + 1) on
// `threads` workers, feeding sink (and gaps, when not null) from the calling
// thread through a PatternEmitter with progress; fills summary's counts.
// Throws SearchStopped at the deadline as the unconstrained search does.
void timedSearch(const SequenceDatabase& db, const MinerOptions& options,
                 long minCount, std::size_t threads,
                 const std::function<bool(long)>& progress, PatternSink& sink,
                 GapSink* gaps, MiningSummary& summary);

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_INTERNAL_TIMEDSEARCH_H_
