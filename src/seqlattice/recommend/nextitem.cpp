#include "seqlattice/recommend/nextitem.h"

#include <algorithm>
#include <utility>

#include "seqlattice/sequence/timeditemset.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

namespace {

std::uint64_t mix(std::uint64_t h, std::uint64_t value) {
  // splitmix64's finaliser over the running hash and the next value.
  std::uint64_t z = h ^ (value + 0x9e3779b97f4a7c15ULL + (h << 6) + (h >> 2));
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
  z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
  return z ^ (z >> 31);
}

std::uint64_t setHash(const int* begin, const int* end) {
  std::uint64_t h = 0x51ed270b27b5a0f3ULL;
  for (const int* it = begin; it != end; ++it) {
    h = mix(h, static_cast<std::uint32_t>(*it));
  }
  return h;
}

// A run's hash, grown backwards one item set at a time (the run's last item
// set first), so that a history's runs of 1, 2, ... sets come one from the
// other.
std::uint64_t extend(std::uint64_t runHash, std::uint64_t setHash) {
  return mix(runHash, setHash);
}
constexpr std::uint64_t kEmptyRun = 0x2545f4914f6cdd1dULL;

bool inSet(const std::vector<int>& items,
           const std::vector<std::uint32_t>& sets, std::uint32_t set,
           int item) {
  return std::binary_search(items.begin() + sets[set],
                            items.begin() + sets[set + 1], item);
}

struct Occurrence {
  std::uint64_t hash;
  std::uint32_t firstSet;
  std::uint32_t length;
};

}  // namespace

NextItemIndex::NextItemIndex(const SequenceIndex& sequences)
    : sequences_(sequences) {
  const std::vector<int>& items = sequences.items();
  const std::vector<std::uint32_t>& sets = sequences.setStarts();
  const std::vector<std::uint32_t>& customers = sequences.customerStarts();
  const int* data = items.data();
  std::vector<std::uint64_t> hashes(sets.size() - 1);
  for (std::size_t s = 0; s + 1 < sets.size(); ++s) {
    hashes[s] = setHash(data + sets[s], data + sets[s + 1]);
  }
  // Every run that an item set follows, within one customer.
  std::vector<Occurrence> occurrences;
  for (std::size_t c = 0; c + 1 < customers.size(); ++c) {
    const std::uint32_t first = customers[c];
    for (std::uint32_t last = first; last + 1 < customers[c + 1]; ++last) {
      std::uint64_t h = kEmptyRun;
      for (std::uint32_t length = 1;
           length <= static_cast<std::uint32_t>(kMaxRun) &&
           length <= last - first + 1;
           ++length) {
        h = extend(h, hashes[last + 1 - length]);
        occurrences.push_back({h, last + 1 - length, length});
      }
    }
  }
  std::sort(occurrences.begin(), occurrences.end(),
            [](const Occurrence& a, const Occurrence& b) {
              return a.hash != b.hash ? a.hash < b.hash
                                      : a.firstSet < b.firstSet;
            });
  // customerOf[s]: the end of the customer holding item set s, so that the
  // second item set after a run is looked at only within its customer.
  std::vector<std::uint32_t> customerEnd(sets.size() - 1);
  for (std::size_t c = 0; c + 1 < customers.size(); ++c) {
    for (std::uint32_t s = customers[c]; s < customers[c + 1]; ++s) {
      customerEnd[s] = customers[c + 1];
    }
  }
  std::vector<const int*> begins;
  std::vector<const int*> ends;
  // (item, 1: in the next item set, 0: only in the one after it), each item
  // once per occurrence.
  std::vector<std::pair<int, int>> seen;
  std::vector<Follower> followers;
  std::vector<std::uint32_t> nextSets;  // of the group's occurrences
  // For nextShare(): the one-set runs' most frequent followers, right next
  // and within kAheadSets.
  double rightNext = 0;
  double ahead = 0;
  for (std::size_t g = 0; g < occurrences.size();) {
    std::size_t groupEnd = g;
    while (groupEnd < occurrences.size() &&
           occurrences[groupEnd].hash == occurrences[g].hash) {
      ++groupEnd;
    }
    const Occurrence& head = occurrences[g];
    begins.clear();
    ends.clear();
    for (std::uint32_t s = head.firstSet; s < head.firstSet + head.length;
         ++s) {
      begins.push_back(data + sets[s]);
      ends.push_back(data + sets[s + 1]);
    }
    // Occurrences whose sets differ from the first one's (a hash collision)
    // are left out.
    seen.clear();
    nextSets.clear();
    std::uint32_t count = 0;
    for (std::size_t o = g; o < groupEnd; ++o) {
      const Occurrence& occ = occurrences[o];
      if (o != g && (occ.length != head.length ||
                     !sameSets(occ.firstSet, begins, ends))) {
        continue;
      }
      ++count;
      const std::uint32_t next = occ.firstSet + occ.length;
      nextSets.push_back(next);
      const int* nextBegin = data + sets[next];
      const int* nextEnd = data + sets[next + 1];
      for (const int* it = nextBegin; it != nextEnd; ++it) {
        seen.emplace_back(*it, 1);
      }
      if (next + 1 == customerEnd[next]) continue;
      for (std::uint32_t i = sets[next + 1]; i < sets[next + 2]; ++i) {
        if (!std::binary_search(nextBegin, nextEnd, items[i])) {
          seen.emplace_back(items[i], 0);
        }
      }
    }
    g = groupEnd;
    if (count < static_cast<std::uint32_t>(kMinRunCount)) continue;
    std::sort(seen.begin(), seen.end());
    followers.clear();
    for (std::size_t i = 0; i < seen.size();) {
      Follower f{seen[i].first, 0, 0};
      for (; i < seen.size() && seen[i].first == f.item; ++i) {
        f.next += static_cast<std::uint32_t>(seen[i].second);
        ++f.soon;
      }
      followers.push_back(f);
    }
    if (head.length == 1) {
      const Follower& top = *std::max_element(
          followers.begin(), followers.end(),
          [](const Follower& a, const Follower& b) { return a.next < b.next; });
      rightNext += top.next;
      ahead += top.next;
      for (std::uint32_t next : nextSets) {
        if (inSet(items, sets, next, top.item)) continue;
        const std::uint32_t end = std::min<std::uint32_t>(
            customerEnd[next], next + static_cast<std::uint32_t>(kAheadSets));
        for (std::uint32_t s = next + 1; s < end; ++s) {
          if (inSet(items, sets, s, top.item)) {
            ahead += 1;
            break;
          }
        }
      }
    }
    if (followers.size() > static_cast<std::size_t>(kMaxRunFollowers)) {
      std::sort(followers.begin(), followers.end(),
                [](const Follower& a, const Follower& b) {
                  const std::uint32_t sa = a.next + a.soon;
                  const std::uint32_t sb = b.next + b.soon;
                  return sa != sb ? sa > sb : a.item < b.item;
                });
      followers.resize(static_cast<std::size_t>(kMaxRunFollowers));
      std::sort(
          followers.begin(), followers.end(),
          [](const Follower& a, const Follower& b) { return a.item < b.item; });
    }
    const auto begin = static_cast<std::uint32_t>(followers_.size());
    followers_.insert(followers_.end(), followers.begin(), followers.end());
    runs_.push_back({head.hash, head.firstSet, head.length, count, begin,
                     static_cast<std::uint32_t>(followers_.size())});
  }
  if (ahead > 0) nextShare_ = rightNext / ahead;
  runs_.shrink_to_fit();
  followers_.shrink_to_fit();
}

const NextItemIndex::Run* NextItemIndex::find(
    std::uint64_t hash, const std::vector<const int*>& begins,
    const std::vector<const int*>& ends) const {
  auto at = std::lower_bound(
      runs_.begin(), runs_.end(), hash,
      [](const Run& run, std::uint64_t h) { return run.hash < h; });
  for (; at != runs_.end() && at->hash == hash; ++at) {
    if (at->length == begins.size() && sameSets(at->firstSet, begins, ends)) {
      return &*at;
    }
  }
  return nullptr;
}

NextItems NextItemIndex::estimate(const Sequence& history) const {
  NextItems out;
  // The runs ending the history, shortest first (begins/ends oldest first).
  std::vector<const int*> begins;
  std::vector<const int*> ends;
  std::vector<const Run*> found;
  std::uint64_t h = kEmptyRun;
  const int length = history.Length();
  for (int sets = 1; sets <= std::min(kMaxRun, length); ++sets) {
    const TimedItemSet* set = history[length - sets];
    begins.insert(begins.begin(), set->Begin());
    ends.insert(ends.begin(), set->End());
    h = extend(h, setHash(set->Begin(), set->End()));
    const Run* run = find(h, begins, ends);
    // A longer run holds this one, so it is seen no more often.
    if (run == nullptr) break;
    found.push_back(run);
  }
  if (found.empty()) return out;
  // p_L = (c_L + a p_{L-1}) / (n_L + a): run L's counts weigh
  // 1 / (n_L + a) times the product of a / (n_M + a) over the longer runs M.
  std::vector<double> weights(found.size());
  double longer = 1.0;
  for (std::size_t k = found.size(); k-- > 0;) {
    const double n = found[k]->count;
    weights[k] = longer / (n + kRunSmoothing);
    longer *= kRunSmoothing / (n + kRunSmoothing);
  }
  for (std::size_t k = 0; k < found.size(); ++k) {
    const Run& run = *found[k];
    for (std::uint32_t f = run.followerBegin; f < run.followerEnd; ++f) {
      const Follower& follower = followers_[f];
      NextItemEstimate e;
      e.item = follower.item;
      e.next = weights[k] * follower.next;
      e.soon = weights[k] * follower.soon;
      e.runSets = static_cast<int>(run.length);
      e.runCount = run.count;
      e.nextCount = follower.next;
      out.items.push_back(e);
    }
  }
  // Sum each item's entries; the longest run's counts are kept (entries of
  // one item come shortest run first, stable_sort keeps that order).
  std::stable_sort(out.items.begin(), out.items.end(),
                   [](const NextItemEstimate& a, const NextItemEstimate& b) {
                     return a.item < b.item;
                   });
  std::size_t kept = 0;
  for (std::size_t i = 0; i < out.items.size(); ++i) {
    if (kept > 0 && out.items[kept - 1].item == out.items[i].item) {
      NextItemEstimate& e = out.items[kept - 1];
      e.next += out.items[i].next;
      e.soon += out.items[i].soon;
      e.runSets = out.items[i].runSets;
      e.runCount = out.items[i].runCount;
      e.nextCount = out.items[i].nextCount;
    } else {
      out.items[kept++] = out.items[i];
    }
  }
  out.items.resize(kept);
  const Run& longest = *found.back();
  const int* data = sequences_.items().data();
  const std::vector<std::uint32_t>& sets = sequences_.setStarts();
  for (std::uint32_t s = longest.firstSet;
       s < longest.firstSet + longest.length; ++s) {
    out.run.emplace_back(data + sets[s], data + sets[s + 1]);
  }
  return out;
}

bool NextItemIndex::sameSets(std::uint32_t firstSet,
                             const std::vector<const int*>& begins,
                             const std::vector<const int*>& ends) const {
  const int* data = sequences_.items().data();
  const std::vector<std::uint32_t>& sets = sequences_.setStarts();
  for (std::size_t k = 0; k < begins.size(); ++k) {
    const std::uint32_t s = firstSet + static_cast<std::uint32_t>(k);
    if (!std::equal(begins[k], ends[k], data + sets[s], data + sets[s + 1])) {
      return false;
    }
  }
  return true;
}

}  // namespace recommend
}  // namespace SEQUENCE_NAMESPACE_800
