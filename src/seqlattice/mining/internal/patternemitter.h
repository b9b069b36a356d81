// PatternEmitter turns the patterns that the miner's workers buffer as ints
// back into PatternSink calls, and keeps the run's summary as it goes.
//
// The buffer holds one record a pattern:
//   count, first customer, number of sets n, then n sets, each as its item
//   count followed by its items (ascending)
// so <(1 2), 3> found in 5 customers, first in customer 0, is
// 5 0 2 2 1 2 1 3. A set record is already the sink's int* set array, so the
// sink gets pointers into the buffer, not copies. With a GapSink, a record of
// two or more sets ends with its gap statistics: four doubles (number, sum,
// minimum, maximum), each as two ints (appendGaps).
//
// Used from one thread, the one that called SequenceMiner::mine.
#ifndef SEQLATTICE_MINING_INTERNAL_PATTERNEMITTER_H_
#define SEQLATTICE_MINING_INTERNAL_PATTERNEMITTER_H_

#include <functional>
#include <utility>
#include <vector>

#include "seqlattice/mining/miner.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

// Thrown by a worker past the deadline, or by the emitter when the progress
// callback asks to stop; SequenceMiner::mine catches it and returns what was
// found.
struct SearchStopped {};

class PatternEmitter {
 public:
  // sink and summary stay the caller's and must outlive the emitter;
  // progress may be empty.
  PatternEmitter(PatternSink& sink, MiningSummary& summary,
                 std::function<bool(long)> progress = {},
                 GapSink* gaps = nullptr)
      : sink_(sink),
        summary_(summary),
        progress_(std::move(progress)),
        gaps_(gaps) {}

  // Passes every record of buffer to the sink, in order, and counts it in
  // the summary. The sink may modify the sets it is given. Then reports the
  // count to the progress callback, and throws SearchStopped when it returns
  // false.
  void emit(std::vector<int>& buffer);

 private:
  PatternSink& sink_;
  MiningSummary& summary_;
  std::function<bool(long)> progress_;
  GapSink* gaps_;
  std::vector<int*> sets_;
};

// Appends the gap statistics of a record in the form emit reads.
void appendGaps(std::vector<int>& buffer, double n, double sum, double min,
                double max);

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_INTERNAL_PATTERNEMITTER_H_
