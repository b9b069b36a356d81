// The lattice build: every stored pattern learns the (item, position code)
// pairs that extend it to a stored pattern one level up.
#include <algorithm>
#include <cstdint>
#include <deque>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "seqlattice/dictionary/internal/paralleltasks.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// The sub-patterns of the patterns of one level, looked up in the level below
// in batches: the tables are far larger than the caches, so one lookup at a
// time would wait for its bucket, node and key in turn, while a batch lets
// those waits overlap (HashtableSQPair::getAll). The links found are kept
// until the level is done, then sorted by counter and handed to each counter
// as one sorted array: no tree node per pair, and a counter's pairs lie
// together in memory for whoever walks them later (saving, queries).
class SubPatternBatch {
 public:
  explicit SubPatternBatch(const HashtableSQPair& below) : below_(below) {}

  // Queues the sub-pattern of `pattern` without its item at flat index pos,
  // which links to `pattern` by (item, code).
  void add(NTSequence* pattern, int pos, int s, int j) {
    if (n_ == static_cast<int>(scratch_.size())) {
      scratch_.emplace_back();
      keys_.push_back(nullptr);
      pairs_.emplace_back();
      found_.push_back(nullptr);
    }
    NTSequence& sub = scratch_[n_];
    // The scratch array has 32 slots; longer patterns cannot be keys, but
    // a copy makes room rather than rely on it.
    if (pattern->size() > 32) sub = *pattern;
    const bool setGone = sub.removeItem(pos, pattern) == 1;
    keys_[n_] = &sub;
    pairs_[n_] = {pattern->getItemInSet(j, s), setGone ? 2 * s + 1 : 2 * s};
    ++n_;
  }

  bool full() const { return n_ >= kBatch; }

  // Looks the queued sub-patterns up and keeps the links of those stored
  // with a counter; pruned sub-patterns learn nothing.
  void flush() {
    below_.getAll(keys_.data(), n_, found_.data());
    for (int i = 0; i < n_; ++i) {
      if (found_[i] != nullptr && found_[i]->value != nullptr) {
        links_.emplace_back(found_[i]->value, pairs_[i]);
      }
    }
    n_ = 0;
  }

  // Looks up what is still queued and puts the links in order of counter.
  void finish() {
    flush();
    sortLinks();
    links_.erase(std::unique(links_.begin(), links_.end()), links_.end());
    sorted_ = std::vector<Link>();
  }

  // Gives every counter the links name (after finish) the array of its
  // pairs. A counter of a level that was reset has just an empty array, which
  // its pairs replace; elsewhere they join whatever the counter held.
  void link(bool belowReset) {
    typedef SequenceCounter::AdjacentPair Pair;
    const auto end = links_.end();
    for (auto at = links_.begin(); at != end;) {
      SequenceCounter* counter = at->counter();
      auto last = at + 1;
      while (last != end && last->counter() == counter) ++last;
      const int n = static_cast<int>(last - at);
      if (belowReset) {
        std::unique_ptr<Pair[]> pairs(new Pair[static_cast<std::size_t>(n)]);
        for (int i = 0; i < n; ++i) pairs[i] = at[i].pair();
        counter->adoptPairArray(pairs.release(), n);
      } else {
        for (; at != last; ++at) {
          counter->addAdjacentItem(at->pair().first, at->pair().second);
        }
      }
      at = last;
    }
    links_ = std::vector<Link>();
  }

 private:
  // A counter and a pair as one 128-bit number that orders as (counter
  // address, item, code), so that the sort compares single numbers rather
  // than field by field.
  class Link {
   public:
    Link() = default;
    Link(SequenceCounter* counter, std::pair<int, int> pair)
        : key_(static_cast<unsigned __int128>(
                   reinterpret_cast<std::uintptr_t>(counter))
                   << 64 |
               static_cast<unsigned __int128>(orderedBits(pair.first)) << 32 |
               orderedBits(pair.second)) {}
    SequenceCounter* counter() const {
      return reinterpret_cast<SequenceCounter*>(
          static_cast<std::uintptr_t>(key_ >> 64));
    }
    std::pair<int, int> pair() const {
      return {fromOrderedBits(static_cast<std::uint32_t>(key_ >> 32)),
              fromOrderedBits(static_cast<std::uint32_t>(key_))};
    }
    bool operator<(const Link& other) const { return key_ < other.key_; }
    bool operator==(const Link& other) const { return key_ == other.key_; }

   private:
    // Flipping the sign bit orders ints as unsigned numbers.
    static std::uint32_t orderedBits(int v) {
      return static_cast<std::uint32_t>(v) ^ 0x80000000u;
    }
    static int fromOrderedBits(std::uint32_t bits) {
      return static_cast<int>(bits ^ 0x80000000u);
    }
    unsigned __int128 key_;
  };

  // Sorts the links: one pass spreads them over buckets of neighbouring
  // counter addresses, in address order, and each bucket, small enough to
  // stay in the cache, is then sorted on its own. A sort of the whole array
  // at once would wait on memory at every level of its recursion.
  void sortLinks() {
    if (links_.size() < kBuckets * 4) {
      std::sort(links_.begin(), links_.end());
      return;
    }
    std::uintptr_t low = address(links_.front());
    std::uintptr_t high = low;
    for (const Link& l : links_) {
      low = std::min(low, address(l));
      high = std::max(high, address(l));
    }
    const int bits = 64 - __builtin_clzll((high - low) | 1);
    const int shift = std::max(0, bits - kBucketBits);
    std::vector<std::size_t> start(kBuckets + 1, 0);
    for (const Link& l : links_) ++start[((address(l) - low) >> shift) + 1];
    for (std::size_t b = 0; b < kBuckets; ++b) start[b + 1] += start[b];
    std::vector<std::size_t> next(start.begin(), start.end() - 1);
    sorted_.resize(links_.size());
    for (const Link& l : links_) {
      sorted_[next[(address(l) - low) >> shift]++] = l;
    }
    for (std::size_t b = 0; b < kBuckets; ++b) {
      std::sort(sorted_.begin() + static_cast<long>(start[b]),
                sorted_.begin() + static_cast<long>(start[b + 1]));
    }
    links_.swap(sorted_);
  }

  static std::uintptr_t address(const Link& l) {
    return reinterpret_cast<std::uintptr_t>(l.counter());
  }

  static constexpr int kBatch = 64;
  static constexpr int kBucketBits = 10;
  static constexpr std::size_t kBuckets = std::size_t{1} << kBucketBits;
  const HashtableSQPair& below_;
  std::deque<NTSequence> scratch_;  // grows without moving its keys
  std::vector<const NTSequence*> keys_;
  std::vector<std::pair<int, int>> pairs_;
  std::vector<ISQCPair*> found_;
  int n_ = 0;
  std::vector<Link> links_;
  std::vector<Link> sorted_;
};

// Queues in batch the links from each stored pattern of `level` to the
// pattern of the level below without one of its items: for every item of a
// pattern P, the sub-pattern without it learns (item, 2s+1) when the item was
// alone in set s of P, (item, 2s) otherwise. On the way, every counter of
// `level` gets an empty array in place of its pairs, set or array: once the
// lattice is built, every counter of a linked level has its (maybe empty)
// set, and linking the level above replaces the empty arrays of the counters
// it reaches. Only the counters of `level` change, and the lookups read the
// level below's keys, not its counters, so the levels can be walked at the
// same time.
void walkLevel(HashtableSQPair& level, SubPatternBatch& batch) {
  // The table's nodes, keys and counters lie all over memory: the walk asks
  // for the key and counter kAhead entries on while it works on this one.
  constexpr int kAhead = 16;
  const HashtableSQPair::iterator end = level.end();
  HashtableSQPair::iterator ahead = level.begin();
  for (int i = 0; i < kAhead && ahead != end; ++i) ++ahead;
  for (HashtableSQPair::iterator it = level.begin(); it != end; ++it) {
    if (ahead != end) {
      __builtin_prefetch((*ahead).key);
      __builtin_prefetch((*ahead).value);
      ++ahead;
    }
    const ISQCPair entry = *it;
    if (entry.value != nullptr) {
      entry.value->adoptPairArray(new SequenceCounter::AdjacentPair[0], 0);
    }
    NTSequence* pattern = entry.key;
    int pos = 0;
    for (int s = 0; s < pattern->getNSets(); ++s) {
      for (int j = 0; j < pattern->getSizeOfSet(s); ++j) {
        batch.add(pattern, pos++, s, j);
      }
    }
    if (batch.full()) batch.flush();
  }
  batch.finish();
}

// Below this many patterns a build takes less than starting a thread.
constexpr long kPatternsForThreads = 20000;

}  // namespace

// Two passes over the levels, each on as many threads as the machine has, the
// largest level first: the first walks every level, resetting its counters
// and finding the links to the level below; once every level is reset, the
// second hands each counter of the level below its pairs.
KvCommon_850::KvStatus SequenceDictionary::buildLattice() {
  try {
    const int largest = LargestSequence();
    ISQCPair* root = level0Entry();
    if (root == nullptr)
      return KvCommon_850::KvStatus(KvCommon_850::kStatusFailure, false);
    if (root->value != nullptr) {
      root->value->adoptPairArray(new SequenceCounter::AdjacentPair[0], 0);
    }
    std::vector<std::pair<long, int>> levels;  // (items to look up, level)
    std::vector<bool> reset(static_cast<std::size_t>(largest) + 1, false);
    reset[0] = true;
    long patterns = 0;
    for (int k = 1; k <= largest; ++k) {
      if (getLevel(k) != nullptr && getLevel(k - 1) != nullptr) {
        levels.emplace_back(static_cast<long>(getLevel(k)->getCount()) * k, k);
        reset[static_cast<std::size_t>(k)] = true;
        patterns += getLevel(k)->getCount();
      }
    }
    std::sort(levels.rbegin(), levels.rend());
    const unsigned threads =
        patterns < kPatternsForThreads
            ? 1
            : std::max(1u, std::thread::hardware_concurrency());
    std::vector<std::unique_ptr<SubPatternBatch>> batches(levels.size());
    dictionary_internal::runTasks(levels.size(), threads, [&](std::size_t i) {
      const int k = levels[i].second;
      batches[i] = std::make_unique<SubPatternBatch>(*getLevel(k - 1));
      walkLevel(*getLevel(k), *batches[i]);
    });
    dictionary_internal::runTasks(levels.size(), threads, [&](std::size_t i) {
      const int k = levels[i].second;
      batches[i]->link(reset[static_cast<std::size_t>(k - 1)]);
      batches[i].reset();
    });
  } catch (...) {
    // Whatever was linked so far stays; the lattice does not count as built.
    return KvCommon_850::KvStatus(KvCommon_850::kStatusFailure, false);
  }
  latticeBuilt = true;
  return KvCommon_850::KvStatus();
}

}  // namespace SEQUENCE_NAMESPACE_800
