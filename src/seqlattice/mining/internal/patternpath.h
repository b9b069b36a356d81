// PatternPath is the pattern a depth-first search under time constraints is
// extending, item by item, and writes its records (PatternEmitter's layout)
// into the worker's output buffer. One per worker: not thread-safe. The
// item values and the buffer stay their owners'.
#ifndef SEQLATTICE_MINING_INTERNAL_PATTERNPATH_H_
#define SEQLATTICE_MINING_INTERNAL_PATTERNPATH_H_

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "seqlattice/mining/internal/orderedtasks.h"
#include "seqlattice/mining/internal/patternemitter.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

// The gap statistics of one pattern, added one customer's gap at a time.
struct GapTally {
  double n = 0, sum = 0, low = 0, high = 0;
  void add(double gap) {
    low = n == 0 ? gap : std::min(low, gap);
    high = n == 0 ? gap : std::max(high, gap);
    sum += gap;
    n += 1;
  }
  void appendTo(std::vector<int>& out) const {
    appendGaps(out, n, sum, low, high);
  }
};

class PatternPath {
 public:
  // itemValue maps the search's item codes to the items' values.
  PatternPath(const std::vector<int>& itemValue,
              std::chrono::steady_clock::time_point deadline)
      : itemValue_(&itemValue), deadline_(deadline) {}

  void setOutput(std::vector<int>* out, std::function<void()> full) {
    out_ = out;
    full_ = std::move(full);
  }
  std::vector<int>& out() { return *out_; }

  // Starts the one-item pattern x.
  void start(std::uint32_t x) {
    items_.assign(1, x);
    newSet_.assign(1, 1);
  }
  // Appends x as a new set when newSet, else into the last set.
  void push(std::uint32_t x, bool newSet) {
    items_.push_back(x);
    newSet_.push_back(newSet ? 1 : 0);
  }
  void pop() {
    items_.pop_back();
    newSet_.pop_back();
  }
  std::size_t size() const { return items_.size(); }
  // The items of the pattern's last set, in the order they were pushed.
  std::size_t lastSetBegin() const {
    std::size_t k = items_.size() - 1;
    while (newSet_[k] == 0) --k;
    return k;
  }
  std::uint32_t item(std::size_t k) const { return items_[k]; }

  // Appends the record of the pattern (`sets` sets), held by count
  // customers, the first of them customerId; the caller may append its gap
  // statistics before calling endRecord.
  void beginRecord(std::size_t count, std::uint32_t customerId, int sets) {
    std::vector<int>& out = *out_;
    out.push_back(static_cast<int>(count));
    out.push_back(static_cast<int>(customerId));
    out.push_back(sets);
    std::size_t sizeAt = 0;
    for (std::size_t k = 0; k < items_.size(); ++k) {
      if (newSet_[k]) {
        sizeAt = out.size();
        out.push_back(0);
      }
      ++out[sizeAt];
      out.push_back((*itemValue_)[items_[k]]);
    }
  }
  // Passes a full chunk on; throws SearchStopped past the deadline (looked
  // at every 1024 records).
  void endRecord() {
    if (full_ && out_->size() >= kChunkInts) full_();
    if ((++emitted_ & 1023) == 0 &&
        deadline_ != std::chrono::steady_clock::time_point::max() &&
        std::chrono::steady_clock::now() >= deadline_) {
      throw SearchStopped();
    }
  }

 private:
  const std::vector<int>* itemValue_;
  std::chrono::steady_clock::time_point deadline_;
  std::vector<std::uint32_t> items_;
  std::vector<char> newSet_;
  std::uint32_t emitted_ = 0;
  std::vector<int>* out_ = nullptr;
  std::function<void()> full_;
};

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_INTERNAL_PATTERNPATH_H_
