#include "seqlattice/mining/internal/workdatabase.h"

#include <algorithm>

#include "seqlattice/mining/internal/distinctvalues.h"
#include "seqlattice/mining/internal/hugepages.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

namespace {

using u32 = std::uint32_t;

// The distinct items of each customer by last occurrence, each with the
// transactions holding it: a backward pass finds the entries and counts
// their occurrences, a forward pass places the occurrences ascending.
void buildLastOccurrences(WorkDatabase& work) {
  std::vector<u32> seen(work.itemCount(), UINT32_MAX);
  std::vector<u32> entry(work.itemCount(), 0);
  reserveOnHugePages(work.lastTransaction, work.items.size());
  reserveOnHugePages(work.lastItem, work.items.size());
  reserveOnHugePages(work.occurrenceStart, work.items.size() + 1);
  reserveOnHugePages(work.occurrences, work.items.size());
  work.occurrences.resize(work.items.size());
  std::vector<u32> fill;
  for (u32 c = 0; c + 1 < work.customerStart.size(); ++c) {
    u32 first = static_cast<u32>(work.lastItem.size());
    for (u32 t = work.customerStart[c + 1]; t-- > work.customerStart[c];) {
      u32 begin = work.transactionStart[t], end = work.transactionStart[t + 1];
      if (end - begin > 1) work.multiItemSets = true;
      for (u32 k = begin; k < end; ++k) {
        u32 x = work.items[k];
        if (seen[x] != c) {
          seen[x] = c;
          entry[x] = static_cast<u32>(work.lastItem.size());
          work.lastTransaction.push_back(t);
          work.lastItem.push_back(x);
          work.occurrenceStart.push_back(0);
        }
        ++work.occurrenceStart[entry[x] + 1];
      }
    }
    u32 last = static_cast<u32>(work.lastItem.size());
    fill.resize(last - first);
    for (u32 k = first; k < last; ++k) {
      work.occurrenceStart[k + 1] += work.occurrenceStart[k];
      fill[k - first] = work.occurrenceStart[k];
    }
    for (u32 t = work.customerStart[c]; t < work.customerStart[c + 1]; ++t) {
      for (u32 k = work.transactionStart[t]; k < work.transactionStart[t + 1];
           ++k) {
        work.occurrences[fill[entry[work.items[k]] - first]++] = t;
      }
    }
    work.lastStart.push_back(last);
  }
}

// Per item code, the customers holding it and the first of them.
void countCustomers(const SequenceDatabase& db, const std::vector<u32>& code,
                    std::vector<u32>& support, std::vector<u32>& first) {
  std::vector<u32> seen(support.size(), UINT32_MAX);
  for (std::size_t c = 0; c < db.customerCount(); ++c) {
    std::size_t from = db.itemStarts()[db.firstTransaction(c)];
    std::size_t to = db.itemStarts()[db.endTransaction(c)];
    for (std::size_t k = from; k < to; ++k) {
      u32 v = code[k];
      if (seen[v] == c) continue;
      seen[v] = static_cast<u32>(c);
      if (support[v]++ == 0) first[v] = static_cast<u32>(c);
    }
  }
}

}  // namespace

WorkDatabase buildWorkDatabase(const SequenceDatabase& db, long minCount) {
  const std::vector<int>& raw = db.items();
  const std::vector<int> values = distinctValues(raw);
  const std::vector<u32> code = valueRanks(raw, values);
  std::vector<u32> support(values.size(), 0);
  std::vector<u32> first(values.size(), 0);
  countCustomers(db, code, support, first);
  WorkDatabase work;
  reserveOnHugePages(work.items, raw.size());
  reserveOnHugePages(work.transactionStart, db.transactionCount() + 1);
  std::vector<u32> dense(values.size(), UINT32_MAX);
  for (std::size_t v = 0; v < values.size(); ++v) {
    if (support[v] < static_cast<u32>(minCount)) continue;
    dense[v] = static_cast<u32>(work.itemValue.size());
    work.itemValue.push_back(values[v]);
    work.support.push_back(support[v]);
    work.firstCustomer.push_back(first[v]);
  }
  for (std::size_t c = 0; c < db.customerCount(); ++c) {
    std::size_t customerBegin = work.items.size();
    for (u32 t = db.firstTransaction(c); t < db.endTransaction(c); ++t) {
      std::size_t before = work.items.size();
      for (u32 k = db.itemStarts()[t]; k < db.itemStarts()[t + 1]; ++k) {
        if (dense[code[k]] != UINT32_MAX) work.items.push_back(dense[code[k]]);
      }
      if (work.items.size() > before) {
        work.transactionStart.push_back(static_cast<u32>(work.items.size()));
      }
    }
    if (work.items.size() == customerBegin) continue;
    work.longestCustomer =
        std::max(work.longestCustomer, work.items.size() - customerBegin);
    work.customerStart.push_back(
        static_cast<u32>(work.transactionStart.size() - 1));
    work.customerId.push_back(static_cast<u32>(c));
  }
  for (u32& f : work.firstCustomer) {
    f = static_cast<u32>(
        std::lower_bound(work.customerId.begin(), work.customerId.end(), f) -
        work.customerId.begin());
  }
  buildLastOccurrences(work);
  return work;
}

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
