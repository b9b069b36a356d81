#include "seqlattice/mining/patternrecords.h"

#include <string>

#include "seqlattice/mining/miningerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

void PatternRecords::addPattern(int** sets, int nSets, long count,
                                long firstCustomer) {
  if (maxPatterns_ != 0 && patterns_ >= maxPatterns_) {
    throw MiningError("more than " + std::to_string(maxPatterns_) +
                      " patterns");
  }
  ++patterns_;
  records_.push_back(static_cast<int>(count));
  records_.push_back(static_cast<int>(firstCustomer));
  records_.push_back(nSets);
  for (int k = 0; k < nSets; ++k) {
    records_.insert(records_.end(), sets[k], sets[k] + sets[k][0] + 1);
  }
}

std::vector<std::size_t> recordStarts(const std::vector<int>& records) {
  std::vector<std::size_t> starts;
  std::size_t at = 0;
  auto broken = [&starts](const char* what) {
    return MiningError("pattern record " + std::to_string(starts.size()) +
                       " is broken: " + what);
  };
  while (at < records.size()) {
    if (records.size() - at < 3) throw broken("it ends early");
    const int nSets = records[at + 2];
    if (nSets < 1) throw broken("it has no item sets");
    std::size_t next = at + 3;
    for (int k = 0; k < nSets; ++k) {
      if (next >= records.size()) throw broken("it ends early");
      const int size = records[next];
      if (size < 1) throw broken("it has an empty item set");
      if (records.size() - next - 1 < static_cast<std::size_t>(size)) {
        throw broken("it ends early");
      }
      next += static_cast<std::size_t>(size) + 1;
    }
    starts.push_back(at);
    at = next;
  }
  return starts;
}

int recordItems(const std::vector<int>& records, std::size_t at) {
  int items = 0;
  std::size_t next = at + 3;
  for (int k = 0; k < records[at + 2]; ++k) {
    items += records[next];
    next += static_cast<std::size_t>(records[next]) + 1;
  }
  return items;
}

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
