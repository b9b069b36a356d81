// The order in which SequenceMiner reports a set of frequent patterns,
// computed from the patterns and their counts alone. The order in which a
// dictionary receives its patterns decides the order of its hash chains and
// so the bytes of its saved record: a model built from patterns counted
// elsewhere (another machine, a distributed run) is the same file as the
// mined one only when the patterns arrive in this order.
//
// The miner reports every one-item pattern by ascending item; then, per
// item in that order, its two-item extensions: the sequence extensions
// <x, y> by ascending y, then the item set extensions <(x y)> by ascending
// y; then, for each two-item pattern in that order, stably sorted by
// descending count, its subtree depth first, every node listing all its
// extensions (sequence ones, then item set ones, each by ascending item)
// before it descends into each of them in turn.
#ifndef SEQLATTICE_MINING_PATTERNORDER_H_
#define SEQLATTICE_MINING_PATTERNORDER_H_

#include <cstddef>
#include <string>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

// The starts of the records of `records` (patternrecords.h) in the miner's
// report order. Throws MiningError when a pattern is given twice or without
// its prefix (the pattern less its last item), which every frequent
// pattern's set holds, and for records that are not whole.
std::vector<std::size_t> minerReportOrder(const std::vector<int>& records);

// The pattern of the record at `at` as text: "<(1 2), 3>".
std::string recordText(const std::vector<int>& records, std::size_t at);

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_PATTERNORDER_H_
