#include "seqlattice/recommend/sequenceindex.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

namespace {

// A sub-context's walk is kept in a memo when it read at least this many
// entries per item it found: below, repeating it costs about what keeping
// it does (an allocation and a copy per call, and a memo that fills and
// forgets sooner).
constexpr std::size_t kWalkPerKeptFollower = 16;

// How many holders ahead a walk asks for a tail's starts and for its first
// entries.
constexpr long kAheadStarts = 4;
constexpr long kAheadEntries = 2;

// Keeps the holders of `holders` (ascending customers) that are also in the
// ascending customers [b, bEnd), whose item's first item set is firstSets[k]
// for b[k]; a holder's `after` becomes the latest first item set plus one.
// Seeks through the longer list rather than walking it, since a rare item's
// few customers are usually checked against a popular item's many.
void keepHolders(std::vector<SequenceIndex::Holder>* holders,
                 const std::uint32_t* b, const std::uint32_t* bEnd,
                 const std::uint32_t* firstSets) {
  std::size_t kept = 0;
  const std::uint32_t* from = b;
  for (const SequenceIndex::Holder& h : *holders) {
    const std::size_t left = static_cast<std::size_t>(bEnd - from);
    std::size_t step = 1;
    while (step < left && from[step] < h.customer) step *= 2;
    from = std::lower_bound(from, from + std::min(step + 1, left), h.customer);
    if (from == bEnd) break;
    if (*from != h.customer) continue;
    const std::uint32_t after = firstSets[from - b] + 1;
    (*holders)[kept++] = {h.customer, std::max(h.after, after)};
  }
  holders->resize(kept);
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
  return true;
}

void SequenceIndex::prepare() const {
  std::call_once(*built_, [this] { buildPostings(); });
}

void SequenceIndex::numberItems() const {
  entries_.assign(items_.size(), {0, 0});
  distinctItems_.clear();
  if (items_.empty()) return;
  const auto bounds = std::minmax_element(items_.begin(), items_.end());
  const int low = *bounds.first;
  const long long range = static_cast<long long>(*bounds.second) - low + 1;
  // Item codes are mostly small and dense: a table over their range numbers
  // them in two passes, where sorting every entry took half of loading a
  // small model. Sparse codes keep to the sort, so the table stays no
  // larger than a few times the entries.
  if (range <= 4 * static_cast<long long>(items_.size()) + 4096) {
    auto offset = [low](int item) {
      return static_cast<std::size_t>(static_cast<long long>(item) - low);
    };
    std::vector<std::uint32_t> number(static_cast<std::size_t>(range), 0);
    for (int item : items_) number[offset(item)] = 1;
    for (long long v = 0; v < range; ++v) {
      if (number[static_cast<std::size_t>(v)] == 0) continue;
      number[static_cast<std::size_t>(v)] =
          static_cast<std::uint32_t>(distinctItems_.size());
      distinctItems_.push_back(static_cast<int>(low + v));
    }
    for (std::size_t i = 0; i < items_.size(); ++i) {
      entries_[i].dense = number[offset(items_[i])];
    }
    return;
  }
  distinctItems_ = items_;
  std::sort(distinctItems_.begin(), distinctItems_.end());
  distinctItems_.erase(
      std::unique(distinctItems_.begin(), distinctItems_.end()),
      distinctItems_.end());
  for (std::size_t i = 0; i < items_.size(); ++i) {
    entries_[i].dense = static_cast<std::uint32_t>(
        std::lower_bound(distinctItems_.begin(), distinctItems_.end(),
                         items_[i]) -
        distinctItems_.begin());
  }
}

void SequenceIndex::buildPostings() const {
  numberItems();
  emptySets_ = false;
  for (std::size_t s = 0; s + 1 < setStart_.size() && !emptySets_; ++s) {
    emptySets_ = setStart_[s] == setStart_[s + 1];
  }
  // One posting per (item, customer), customers ascending. The pass that
  // links each entry to the same item's previous one in its customer counts
  // the postings (the entries with none); a second pass fills them.
  std::vector<std::uint32_t> lastCustomer(distinctItems_.size(), UINT32_MAX);
  std::vector<std::uint32_t> lastAt(distinctItems_.size(), 0);
  std::vector<std::uint32_t> counts(distinctItems_.size() + 1, 0);
  for (std::uint32_t c = 0; c + 1 < customerStart_.size(); ++c) {
    for (std::uint32_t i = setStart_[customerStart_[c]];
         i < setStart_[customerStart_[c + 1]]; ++i) {
      const std::uint32_t d = entries_[i].dense;
      if (lastCustomer[d] == c) {
        entries_[i].previous = lastAt[d];
      } else {
        lastCustomer[d] = c;
        ++counts[d + 1];
      }
      lastAt[d] = i + 1;
    }
  }
  for (std::size_t d = 1; d < counts.size(); ++d) counts[d] += counts[d - 1];
  postingStart_ = counts;
  postings_.assign(counts.back(), 0);
  firstSets_.assign(counts.back(), 0);
  for (std::uint32_t c = 0; c + 1 < customerStart_.size(); ++c) {
    for (std::uint32_t s = customerStart_[c]; s < customerStart_[c + 1]; ++s) {
      for (std::uint32_t i = setStart_[s]; i < setStart_[s + 1]; ++i) {
        if (entries_[i].previous != 0) continue;
        const std::uint32_t d = entries_[i].dense;
        firstSets_[counts[d]] = s;
        postings_[counts[d]++] = c;
      }
    }
  }
  // The rows cost at most 4 * kDirectShare bytes per posting of their items.
  const std::size_t customers = customerCount();
  directAt_.assign(distinctItems_.size(), kNoRow);
  std::size_t rows = 0;
  for (std::size_t d = 0; d < distinctItems_.size(); ++d) {
    const std::size_t held = postingStart_[d + 1] - postingStart_[d];
    if (held * kDirectShare >= customers) directAt_[d] = rows++ * customers;
  }
  direct_.assign(rows * customers, 0);
  for (std::size_t d = 0; d < distinctItems_.size(); ++d) {
    if (directAt_[d] == kNoRow) continue;
    std::uint32_t* row = direct_.data() + directAt_[d];
    for (std::uint32_t k = postingStart_[d]; k < postingStart_[d + 1]; ++k) {
      row[postings_[k]] = firstSets_[k] + 1;
    }
  }
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

void SequenceIndex::holdersOf(const std::vector<int>& context,
                              std::vector<Holder>* holders) const {
  holders->clear();
  std::vector<std::pair<std::uint32_t, std::size_t>> lists;  // (size, dense)
  for (int item : context) {
    auto at =
        std::lower_bound(distinctItems_.begin(), distinctItems_.end(), item);
    if (at == distinctItems_.end() || *at != item) return;
    const std::size_t d = static_cast<std::size_t>(at - distinctItems_.begin());
    lists.emplace_back(postingStart_[d + 1] - postingStart_[d], d);
  }
  if (lists.empty()) return;
  std::sort(lists.begin(), lists.end());  // rarest first
  const std::size_t rarest = lists[0].second;
  for (std::uint32_t k = postingStart_[rarest]; k < postingStart_[rarest + 1];
       ++k) {
    holders->push_back({postings_[k], firstSets_[k] + 1});
  }
  // The lists are the popular ones from some point on: those with a row
  // are checked by reading it, the others by searching their postings.
  std::size_t k = 1;
  for (; k < lists.size() && directAt_[lists[k].second] == kNoRow &&
         !holders->empty();
       ++k) {
    const std::size_t d = lists[k].second;
    keepHolders(holders, postings_.data() + postingStart_[d],
                postings_.data() + postingStart_[d + 1],
                firstSets_.data() + postingStart_[d]);
  }
  for (; k < lists.size() && !holders->empty(); ++k) {
    const std::uint32_t* row = direct_.data() + directAt_[lists[k].second];
    std::size_t kept = 0;
    for (const Holder& h : *holders) {
      const std::uint32_t after = row[h.customer];
      if (after != 0)
        (*holders)[kept++] = {h.customer, std::max(h.after, after)};
    }
    holders->resize(kept);
  }
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

const double* SequenceIndex::Scratch::distanceWeights(std::uint32_t count,
                                                      double decay) {
  if (decay != weightsDecay) {
    byDistance.clear();
    weightsDecay = decay;
  }
  while (byDistance.size() < count) {
    byDistance.push_back(
        1.0 / (1.0 + decay * static_cast<double>(byDistance.size())));
  }
  return byDistance.data();
}

SequenceIndex::Scratch& SequenceIndex::Scratch::forItems(std::size_t items) {
  thread_local Scratch scratch;
  if (scratch.weights.size() < items) {
    scratch.weights.resize(items, 0.0);
    scratch.subsetWeights.resize(items, 0.0);
    scratch.met.resize(items + 1);
    scratch.touched.resize(items + 1);
  }
  return scratch;
}

std::size_t SequenceIndex::addFollowers(const std::vector<Holder>& holders,
                                        double decay, Scratch* scratch) const {
  double* weights = scratch->subsetWeights.data();
  int* met = scratch->met.data();
  std::size_t size = scratch->metCount;
  const Entry* entries = entries_.data();
  const std::uint32_t* setStart = setStart_.data();
  std::size_t walked = 0;
  const Holder* const first = holders.data();
  const Holder* const stop = first + holders.size();
  for (const Holder* at = first; at != stop; ++at) {
    const Holder& holder = *at;
    // The holders' tails lie anywhere in the sequences: their starts are
    // asked for a few holders ahead, their first entries two ahead (whose
    // starts were asked for two holders before), so that a walk seldom waits
    // for memory.
    if (stop - at > kAheadStarts) {
      __builtin_prefetch(setStart + at[kAheadStarts].after);
      __builtin_prefetch(customerStart_.data() + at[kAheadStarts].customer + 1);
    }
    if (stop - at > kAheadEntries) {
      __builtin_prefetch(entries + setStart[at[kAheadEntries].after]);
    }
    const std::uint32_t s = holder.after;
    const std::uint32_t end = customerStart_[holder.customer + 1];
    if (s >= end) continue;
    const double* weightAt = scratch->distanceWeights(end - s, decay);
    // An item counts at its first entry from `from` on: where its previous
    // entry, if any, lies before `from`. One loop over the entries, the item
    // set (and its weight) moving on at each set's end, or with the entry
    // when every set of the tail holds one item, as in most long sequences.
    const std::uint32_t from = setStart[s];
    const std::uint32_t last = setStart[end];
    walked += last - from;
    // Whether an entry counts is a coin toss to the branch predictor on
    // data that revisits items, so an entry that does not count adds 0
    // (which leaves every sum as it was), and an item whose weight leaves
    // zero is kept by a store the next one may overwrite, rather than by a
    // branch. Each item is kept at most once (weights only grow), so met
    // cannot overflow; one whose weight stays zero (a decay so large that
    // the weight underflows) is not listed.
    // With every weight of the table above zero (as for any decay short of
    // an underflow), an item counted at zero leaves zero, which the branch
    // predictor need not wait for the sum to learn.
    auto add = [&](std::uint32_t i, std::uint32_t distance, auto positive) {
      const Entry e = entries[i];
      double& weight = weights[e.dense];
      const bool counts = e.previous <= from;
      const double before = weight;
      weight += counts ? weightAt[distance] : 0.0;
      met[size] = static_cast<int>(e.dense);
      const bool left = decltype(positive)::value ? counts : weight != 0;
      size += static_cast<std::size_t>((before == 0) & left);
    };
    auto walk = [&](auto positive) {
      if (last - from == end - s && !emptySets_) {
        // One item per set (clicks): the distance is the entry's.
        for (std::uint32_t i = from; i < last; ++i) add(i, i - from, positive);
      } else {
        std::uint32_t t = s;
        std::uint32_t setEnd = setStart[s + 1];
        for (std::uint32_t i = from; i < last; ++i) {
          while (i == setEnd) setEnd = setStart[++t + 1];
          add(i, t - s, positive);
        }
      }
    };
    // The table falls with the distance: its last weight is its least.
    if (weightAt[end - s - 1] > 0) {
      walk(std::true_type{});
    } else {
      walk(std::false_type{});
    }
    scratch->metCount = size;
  }
  return walked;
}

FollowerCounts SequenceIndex::followersOf(const std::vector<int>& context,
                                          int minCustomers, int maxDropped,
                                          double decay, double smoothing,
                                          FollowerMemo* memo) const {
  prepare();
  FollowerCounts result;
  result.context = knownItems(context);
  const std::vector<int>& known = result.context;
  if (known.empty()) return result;

  Scratch& scratch = Scratch::forItems(distinctItems_.size());
  double* weights = scratch.weights.data();
  int* touched = scratch.touched.data();
  std::size_t& touchedCount = scratch.touchedCount;
  // Leaves the thread's arrays zero, also when an allocation fails.
  struct Clean {
    Scratch& scratch;
    ~Clean() {
      for (std::size_t k = 0; k < scratch.touchedCount; ++k) {
        scratch.weights[static_cast<std::size_t>(scratch.touched[k])] = 0;
      }
      scratch.touchedCount = 0;
      for (std::size_t k = 0; k < scratch.metCount; ++k) {
        scratch.subsetWeights[static_cast<std::size_t>(scratch.met[k])] = 0;
      }
      scratch.metCount = 0;
    }
  } clean{scratch};
  std::vector<Holder> holders;
  FollowerMemo::Entry walked;
  auto count = [&](long held) {
    ++result.contexts;
    result.contextCustomers += held;
  };
  // The store is kept only for an item whose weight leaves zero, as in a
  // walk.
  auto addShare = [&](std::uint32_t d, double w) {
    const double before = weights[d];
    weights[d] += w;
    touched[touchedCount] = static_cast<int>(d);
    touchedCount += static_cast<std::size_t>((before == 0) & (weights[d] != 0));
  };
  for (int dropped = 0;
       dropped <= maxDropped && dropped < static_cast<int>(known.size());
       ++dropped) {
    forEachSubset(
        known, known.size() - static_cast<std::size_t>(dropped),
        [&](const std::vector<int>& subset) {
          const FollowerMemo::Entry* entry =
              memo != nullptr ? memo->find(this, decay, subset) : nullptr;
          if (entry != nullptr) {
            if (entry->holders == 0) return;
            count(entry->holders);
            const double share =
                1.0 / (static_cast<double>(entry->holders) + smoothing);
            for (const auto& [d, w] : entry->followers) addShare(d, w * share);
            return;
          }
          holdersOf(subset, &holders);
          const long held = static_cast<long>(holders.size());
          walked.holders = held;
          walked.followers.clear();
          if (held > 0) {
            count(held);
            const std::size_t read = addFollowers(holders, decay, &scratch);
            // A walk that read few entries per item it found is about as
            // cheap to repeat as to keep: the memo keeps the others.
            const bool keep = memo != nullptr &&
                              read >= kWalkPerKeptFollower * scratch.metCount;
            const double share = 1.0 / (static_cast<double>(held) + smoothing);
            double* subsetWeights = scratch.subsetWeights.data();
            for (std::size_t k = 0; k < scratch.metCount; ++k) {
              const std::uint32_t d =
                  static_cast<std::uint32_t>(scratch.met[k]);
              const double w = subsetWeights[d];
              subsetWeights[d] = 0;
              if (keep) walked.followers.emplace_back(d, w);
              addShare(d, w * share);
            }
            scratch.metCount = 0;
            if (!keep) return;
          }
          if (memo != nullptr) memo->remember(this, decay, subset, walked);
        });
    result.dropped = dropped;
    if (result.contextCustomers >= minCustomers) break;
  }
  // Ascending dense order is ascending item order: when many items were
  // touched, listing them again off the array beats sorting them. Whether an
  // item was touched is a coin toss to the branch predictor, so the list is
  // made by a store that the next item overwrites when it was not.
  if (touchedCount * 8 > distinctItems_.size()) {
    std::size_t listed = 0;
    for (std::size_t d = 0; d < distinctItems_.size(); ++d) {
      touched[listed] = static_cast<int>(d);
      listed += static_cast<std::size_t>(weights[d] != 0);
    }
    touchedCount = listed;
  } else {
    std::sort(touched, touched + touchedCount);
  }
  result.followers.resize(touchedCount);
  for (std::size_t k = 0; k < touchedCount; ++k) {
    const std::size_t d = static_cast<std::size_t>(touched[k]);
    result.followers[k] = {distinctItems_[d], weights[d] / result.contexts};
  }
  return result;
}

FollowerCounts SequenceIndex::similarCounts(const std::vector<int>& context,
                                            int firstRound) const {
  prepare();
  FollowerCounts result;
  result.context = knownItems(context);
  const std::vector<int>& known = result.context;
  const int n = static_cast<int>(known.size());
  std::vector<double> weights(distinctItems_.size(), 0.0);
  std::vector<int> touched;
  std::vector<bool> counted(customerCount(), false);
  std::vector<std::uint32_t> countedList;
  std::vector<Holder> holders;
  for (int round = std::min(std::max(0, firstRound), n - 1);
       round < n && touched.empty(); ++round) {
    for (std::uint32_t c : countedList) counted[c] = false;
    countedList.clear();
    result.contexts = 0;
    for (int keep = n; keep >= n - round; --keep) {
      forEachSubset(known, static_cast<std::size_t>(keep),
                    [&](const std::vector<int>& subset) {
                      holdersOf(subset, &holders);
                      if (holders.empty()) return;
                      ++result.contexts;
                      const double share = static_cast<double>(keep) / n /
                                           static_cast<double>(holders.size());
                      for (const Holder& holder : holders) {
                        const std::uint32_t c = holder.customer;
                        if (counted[c]) continue;
                        const std::uint32_t from = holder.after;
                        const std::uint32_t end = customerStart_[c + 1];
                        if (from >= end) continue;
                        counted[c] = true;
                        countedList.push_back(c);
                        for (std::uint32_t i = setStart_[from];
                             i < setStart_[end]; ++i) {
                          const std::size_t d = entries_[i].dense;
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
