#include "seqlattice/recommend/sequenceindex.h"

#include <algorithm>
#include <utility>

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

namespace {

// Intersection of two ascending lists.
std::vector<std::uint32_t> intersect(const std::vector<std::uint32_t>& a,
                                     const std::uint32_t* b,
                                     const std::uint32_t* bEnd) {
  std::vector<std::uint32_t> out;
  std::set_intersection(a.begin(), a.end(), b, bEnd, std::back_inserter(out));
  return out;
}

// Calls visit with every way of keeping `keep` of the context's items.
template <typename Visit>
void forEachSubset(const std::vector<int>& context, std::size_t keep,
                   Visit visit) {
  std::vector<bool> chosen(context.size(), false);
  std::fill(chosen.begin(), chosen.begin() + static_cast<long>(keep), true);
  std::vector<int> subset;
  do {
    subset.clear();
    for (std::size_t i = 0; i < context.size(); ++i) {
      if (chosen[i]) subset.push_back(context[i]);
    }
    visit(subset);
  } while (std::prev_permutation(chosen.begin(), chosen.end()));
}

}  // namespace

SequenceIndex::SequenceIndex(const mining::SequenceDatabase& db) {
  items_ = db.items();
  setStart_ = db.itemStarts();
  customerStart_.reserve(db.customerCount() + 1);
  for (std::size_t c = 0; c < db.customerCount(); ++c) {
    customerStart_.push_back(db.endTransaction(c));
  }
  buildPostings();
}

bool SequenceIndex::fromFlat(std::vector<int> items,
                             std::vector<std::uint32_t> setStarts,
                             std::vector<std::uint32_t> customerStarts,
                             SequenceIndex* index) {
  *index = SequenceIndex();
  auto ascendingFromZero = [](const std::vector<std::uint32_t>& starts,
                              std::size_t last) {
    return !starts.empty() && starts.front() == 0 && starts.back() == last &&
           std::is_sorted(starts.begin(), starts.end());
  };
  if (!ascendingFromZero(setStarts, items.size()) ||
      !ascendingFromZero(customerStarts, setStarts.size() - 1)) {
    return false;
  }
  index->items_ = std::move(items);
  index->setStart_ = std::move(setStarts);
  index->customerStart_ = std::move(customerStarts);
  index->buildPostings();
  return true;
}

void SequenceIndex::buildPostings() {
  distinctItems_ = items_;
  std::sort(distinctItems_.begin(), distinctItems_.end());
  distinctItems_.erase(
      std::unique(distinctItems_.begin(), distinctItems_.end()),
      distinctItems_.end());
  // One posting per (item, customer), customers ascending: count, then fill.
  std::vector<std::uint32_t> lastCustomer(distinctItems_.size(), UINT32_MAX);
  std::vector<std::uint32_t> counts(distinctItems_.size() + 1, 0);
  auto denseOf = [&](int item) {
    return static_cast<std::size_t>(
        std::lower_bound(distinctItems_.begin(), distinctItems_.end(), item) -
        distinctItems_.begin());
  };
  std::vector<std::uint32_t>& dense = dense_;
  dense.resize(items_.size());
  for (std::size_t i = 0; i < items_.size(); ++i) {
    dense[i] = static_cast<std::uint32_t>(denseOf(items_[i]));
  }
  auto forEachPosting = [&](auto add) {
    std::fill(lastCustomer.begin(), lastCustomer.end(), UINT32_MAX);
    for (std::uint32_t c = 0; c + 1 < customerStart_.size(); ++c) {
      for (std::uint32_t i = setStart_[customerStart_[c]];
           i < setStart_[customerStart_[c + 1]]; ++i) {
        if (lastCustomer[dense[i]] == c) continue;
        lastCustomer[dense[i]] = c;
        add(dense[i], c);
      }
    }
  };
  forEachPosting([&](std::uint32_t d, std::uint32_t) { ++counts[d + 1]; });
  for (std::size_t d = 1; d < counts.size(); ++d) counts[d] += counts[d - 1];
  postingStart_ = counts;
  postings_.assign(counts.back(), 0);
  forEachPosting(
      [&](std::uint32_t d, std::uint32_t c) { postings_[counts[d]++] = c; });
}

double SequenceIndex::repeatRate(int window) const {
  long sets = 0;
  long repeated = 0;
  for (std::size_t c = 0; c + 1 < customerStart_.size(); ++c) {
    const std::uint32_t first = customerStart_[c];
    for (std::uint32_t s = first + static_cast<std::uint32_t>(window);
         s < customerStart_[c + 1]; ++s) {
      ++sets;
      bool found = false;
      for (std::uint32_t i = setStart_[s]; i < setStart_[s + 1] && !found;
           ++i) {
        const int* from = items_.data() + setStart_[s - window];
        const int* to = items_.data() + setStart_[s];
        found = std::find(from, to, items_[i]) != to;
      }
      if (found) ++repeated;
    }
  }
  return sets == 0 ? 0.0 : static_cast<double>(repeated) / sets;
}

std::vector<std::uint32_t> SequenceIndex::customersWithAll(
    const std::vector<int>& context) const {
  std::vector<std::pair<std::uint32_t, std::size_t>> lists;  // (size, dense)
  for (int item : context) {
    auto at =
        std::lower_bound(distinctItems_.begin(), distinctItems_.end(), item);
    if (at == distinctItems_.end() || *at != item) return {};
    const std::size_t d = static_cast<std::size_t>(at - distinctItems_.begin());
    lists.emplace_back(postingStart_[d + 1] - postingStart_[d], d);
  }
  if (lists.empty()) return {};
  std::sort(lists.begin(), lists.end());  // rarest first
  const std::uint32_t* base = postings_.data();
  std::vector<std::uint32_t> result(base + postingStart_[lists[0].second],
                                    base + postingStart_[lists[0].second + 1]);
  for (std::size_t k = 1; k < lists.size() && !result.empty(); ++k) {
    const std::size_t d = lists[k].second;
    result =
        intersect(result, base + postingStart_[d], base + postingStart_[d + 1]);
  }
  return result;
}

std::vector<int> SequenceIndex::knownItems(
    const std::vector<int>& context) const {
  std::vector<int> known;
  for (int item : context) {
    if (std::binary_search(distinctItems_.begin(), distinctItems_.end(),
                           item)) {
      known.push_back(item);
    }
  }
  std::sort(known.begin(), known.end());
  known.erase(std::unique(known.begin(), known.end()), known.end());
  return known;
}

std::uint32_t SequenceIndex::setAfter(std::uint32_t c,
                                      const std::vector<int>& context,
                                      std::vector<bool>* seen) const {
  seen->assign(context.size(), false);
  std::size_t missing = context.size();
  std::uint32_t s = customerStart_[c];
  const std::uint32_t end = customerStart_[c + 1];
  for (; s < end && missing > 0; ++s) {
    for (std::uint32_t i = setStart_[s]; i < setStart_[s + 1]; ++i) {
      auto at = std::lower_bound(context.begin(), context.end(), items_[i]);
      if (at == context.end() || *at != items_[i]) continue;
      const std::size_t k = static_cast<std::size_t>(at - context.begin());
      if (!(*seen)[k]) {
        (*seen)[k] = true;
        --missing;
      }
    }
  }
  return missing > 0 ? end : s;
}

void SequenceIndex::addFollowers(const std::vector<int>& context,
                                 const std::vector<std::uint32_t>& customers,
                                 double decay, std::vector<double>* weights,
                                 std::vector<int>* touched) const {
  std::vector<bool> seen;
  std::vector<std::size_t> counted;  // dense items already counted for c
  for (std::uint32_t c : customers) {
    const std::uint32_t s = setAfter(c, context, &seen);
    const std::uint32_t end = customerStart_[c + 1];
    counted.clear();
    for (std::uint32_t t = s; t < end; ++t) {
      const double weight = 1.0 / (1.0 + decay * (t - s));
      for (std::uint32_t i = setStart_[t]; i < setStart_[t + 1]; ++i) {
        const std::size_t d = dense_[i];
        if (std::find(counted.begin(), counted.end(), d) != counted.end()) {
          continue;
        }
        counted.push_back(d);
        if ((*weights)[d] == 0) touched->push_back(static_cast<int>(d));
        (*weights)[d] += weight;
      }
    }
  }
}

FollowerCounts SequenceIndex::followersOf(const std::vector<int>& context,
                                          int minCustomers, int maxDropped,
                                          double decay,
                                          double smoothing) const {
  FollowerCounts result;
  result.context = knownItems(context);
  const std::vector<int>& known = result.context;
  if (known.empty()) return result;

  std::vector<double> weights(distinctItems_.size(), 0.0);
  std::vector<double> subsetWeights(distinctItems_.size(), 0.0);
  std::vector<int> touched;
  std::vector<int> subsetTouched;
  for (int dropped = 0;
       dropped <= maxDropped && dropped < static_cast<int>(known.size());
       ++dropped) {
    forEachSubset(
        known, known.size() - static_cast<std::size_t>(dropped),
        [&](const std::vector<int>& subset) {
          std::vector<std::uint32_t> customers = customersWithAll(subset);
          if (customers.empty()) return;
          ++result.contexts;
          result.contextCustomers += static_cast<long>(customers.size());
          subsetTouched.clear();
          addFollowers(subset, customers, decay, &subsetWeights,
                       &subsetTouched);
          const double share =
              1.0 / (static_cast<double>(customers.size()) + smoothing);
          for (int d : subsetTouched) {
            const std::size_t at = static_cast<std::size_t>(d);
            if (weights[at] == 0) touched.push_back(d);
            weights[at] += subsetWeights[at] * share;
            subsetWeights[at] = 0;
          }
        });
    result.dropped = dropped;
    if (result.contextCustomers >= minCustomers) break;
  }
  std::sort(touched.begin(), touched.end());
  for (int d : touched) {
    result.followers.emplace_back(
        distinctItems_[static_cast<std::size_t>(d)],
        weights[static_cast<std::size_t>(d)] / result.contexts);
  }
  return result;
}

FollowerCounts SequenceIndex::similarCounts(const std::vector<int>& context,
                                            int firstRound) const {
  FollowerCounts result;
  result.context = knownItems(context);
  const std::vector<int>& known = result.context;
  const int n = static_cast<int>(known.size());
  std::vector<double> weights(distinctItems_.size(), 0.0);
  std::vector<int> touched;
  std::vector<bool> counted(customerCount(), false);
  std::vector<std::uint32_t> countedList;
  std::vector<bool> seen;
  for (int round = std::min(std::max(0, firstRound), n - 1);
       round < n && touched.empty(); ++round) {
    for (std::uint32_t c : countedList) counted[c] = false;
    countedList.clear();
    result.contexts = 0;
    for (int keep = n; keep >= n - round; --keep) {
      forEachSubset(
          known, static_cast<std::size_t>(keep),
          [&](const std::vector<int>& subset) {
            const std::vector<std::uint32_t> customers =
                customersWithAll(subset);
            if (customers.empty()) return;
            ++result.contexts;
            const double share = static_cast<double>(keep) / n /
                                 static_cast<double>(customers.size());
            for (std::uint32_t c : customers) {
              if (counted[c]) continue;
              const std::uint32_t from = setAfter(c, subset, &seen);
              const std::uint32_t end = customerStart_[c + 1];
              if (from >= end) continue;
              counted[c] = true;
              countedList.push_back(c);
              for (std::uint32_t i = setStart_[from]; i < setStart_[end]; ++i) {
                const std::size_t d = dense_[i];
                if (weights[d] == 0) {
                  touched.push_back(static_cast<int>(d));
                }
                weights[d] += share;
              }
            }
          });
    }
    result.dropped = round;
    result.contextCustomers = static_cast<long>(countedList.size());
  }
  std::sort(touched.begin(), touched.end());
  for (int d : touched) {
    result.followers.emplace_back(distinctItems_[static_cast<std::size_t>(d)],
                                  weights[static_cast<std::size_t>(d)]);
  }
  return result;
}

}  // namespace recommend
}  // namespace SEQUENCE_NAMESPACE_800
