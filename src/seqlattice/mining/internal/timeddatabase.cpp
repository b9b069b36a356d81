#include "seqlattice/mining/internal/timeddatabase.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

TimedDatabase buildTimedDatabase(const SequenceDatabase& db, long minCount) {
  using u32 = TimedDatabase::u32;
  const u32 kNoSet = UINT32_MAX;
  std::vector<int> values(db.items());
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  auto codeOf = [&values](int v) {
    return static_cast<u32>(std::lower_bound(values.begin(), values.end(), v) -
                            values.begin());
  };
  std::vector<u32> support(values.size(), 0), seen(values.size(), kNoSet);
  for (std::size_t c = 0; c < db.customerCount(); ++c) {
    for (u32 t = db.firstTransaction(c); t < db.endTransaction(c); ++t) {
      for (const int* p = db.itemsBegin(t); p < db.itemsEnd(t); ++p) {
        u32 v = codeOf(*p);
        if (seen[v] != c) {
          seen[v] = static_cast<u32>(c);
          ++support[v];
        }
      }
    }
  }
  TimedDatabase work;
  std::vector<u32> dense(values.size(), kNoSet);
  for (std::size_t v = 0; v < values.size(); ++v) {
    if (support[v] < static_cast<u32>(minCount)) continue;
    dense[v] = static_cast<u32>(work.itemValue.size());
    work.itemValue.push_back(values[v]);
  }
  work.occurrences.resize(work.itemValue.size());
  work.holders.resize(work.itemValue.size());
  work.holderStart.resize(work.itemValue.size());
  std::vector<u32> lastSeen(work.itemValue.size(), kNoSet);
  for (std::size_t c = 0; c < db.customerCount(); ++c) {
    const std::size_t before = work.time.size();
    for (u32 t = db.firstTransaction(c); t < db.endTransaction(c); ++t) {
      const std::size_t first = work.items.size();
      const u32 index = static_cast<u32>(work.time.size());
      for (const int* p = db.itemsBegin(t); p < db.itemsEnd(t); ++p) {
        u32 x = dense[codeOf(*p)];
        if (x == kNoSet) continue;
        work.items.push_back(x);
        const u32 customer = static_cast<u32>(work.customerStart.size() - 1);
        if (work.holders[x].empty() || work.holders[x].back() != customer) {
          work.holders[x].push_back(customer);
          work.holderStart[x].push_back(
              static_cast<u32>(work.occurrences[x].size()));
        }
        work.occurrences[x].push_back(index);
      }
      if (work.items.size() == first) continue;
      work.transactionStart.push_back(static_cast<u32>(work.items.size()));
      work.time.push_back(db.time(t));
      work.customerOf.push_back(
          static_cast<u32>(work.customerStart.size() - 1));
    }
    if (work.time.size() == before) continue;
    work.customerStart.push_back(static_cast<u32>(work.time.size()));
    work.customerId.push_back(static_cast<u32>(c));
    const u32 customer = static_cast<u32>(work.customerId.size() - 1);
    for (u32 t = static_cast<u32>(work.time.size()); t-- > before;) {
      for (u32 k = work.transactionStart[t]; k < work.transactionStart[t + 1];
           ++k) {
        const u32 x = work.items[k];
        if (lastSeen[x] == customer) continue;
        lastSeen[x] = customer;
        work.lastTransaction.push_back(t);
        work.lastItem.push_back(x);
      }
    }
    work.lastStart.push_back(static_cast<u32>(work.lastItem.size()));
  }
  for (std::size_t x = 0; x < work.itemValue.size(); ++x) {
    work.holderStart[x].push_back(static_cast<u32>(work.occurrences[x].size()));
  }
  return work;
}

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
