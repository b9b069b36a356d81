// The lattice build: every stored pattern learns the (item, position code)
// pairs that extend it to a stored pattern one level up.
#include <algorithm>
#include <cstdint>
#include <deque>
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
// until the level is done and then added parent by parent, in pair order:
// each adjacency set is then filled at its end, without a search, and its
// nodes lie together in memory for whoever walks it later (saving, queries).
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

  // Adds every link kept so far to its counter.
  void link() {
    flush();
    std::sort(links_.begin(), links_.end());
    for (const Link& l : links_) {
      SequenceCounter* counter = l.counter();
      SequenceCounter::AdjacencySet* set = counter->getAdjacentItems();
      if (set != nullptr) {
        set->emplace_hint(set->end(), l.pair());
      } else {
        counter->addAdjacentItem(l.pair().first, l.pair().second);
      }
    }
    links_.clear();
  }

 private:
  // A counter and a pair as one 128-bit number that orders as (counter
  // address, item, code), so that the sort compares single numbers rather
  // than field by field.
  class Link {
   public:
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

  static constexpr int kBatch = 64;
  const HashtableSQPair& below_;
  std::deque<NTSequence> scratch_;  // grows without moving its keys
  std::vector<const NTSequence*> keys_;
  std::vector<std::pair<int, int>> pairs_;
  std::vector<ISQCPair*> found_;
  int n_ = 0;
  std::vector<Link> links_;
};

// Gives every counter of `level` a new empty adjacency set.
void renewAdjacencySets(HashtableSQPair& level) {
  for (HashtableSQPair::iterator it = level.begin(); it != level.end(); ++it) {
    const ISQCPair entry = *it;
    if (entry.value != nullptr) {
      entry.value->setAdjacentItems(new SequenceCounter::AdjacencySet());
    }
  }
}

// Adds to each stored pattern of `below` the pair that leads from it to a
// pattern of `level`: for every item of a pattern P, the sub-pattern without
// it learns (item, 2s+1) when the item was alone in set s of P, (item, 2s)
// otherwise. Only the adjacency sets of `below` change, so the levels can be
// linked at the same time once every set is renewed.
void linkToLevelBelow(const HashtableSQPair& level,
                      const HashtableSQPair& below) {
  SubPatternBatch batch(below);
  for (HashtableSQPair::const_iterator it = level.begin(); it != level.end();
       ++it) {
    NTSequence* pattern = (*it).key;
    int pos = 0;
    for (int s = 0; s < pattern->getNSets(); ++s) {
      for (int j = 0; j < pattern->getSizeOfSet(s); ++j) {
        batch.add(pattern, pos++, s, j);
      }
    }
    if (batch.full()) batch.flush();
  }
  batch.link();
}

// Below this many patterns a build takes less than starting a thread.
constexpr long kPatternsForThreads = 20000;

}  // namespace

// Levels above the first empty one are not visited: in a pruned dictionary
// levels fill from the bottom. Every counter's set is renewed before any level
// is linked, since linking level k adds to the sets of level k-1; the levels
// are then linked on as many threads as the machine has, the largest first.
KvCommon_850::KvStatus SequenceDictionary::buildLattice() {
  try {
    const int largest = LargestSequence();
    ISQCPair* root = level0Entry();
    if (root == nullptr)
      return KvCommon_850::KvStatus(KvCommon_850::kStatusFailure, false);
    if (root->value != nullptr) {
      root->value->setAdjacentItems(new SequenceCounter::AdjacencySet());
    }
    std::vector<std::pair<long, int>> levels;  // (items to look up, level)
    long patterns = 0;
    for (int k = 1; k <= largest; ++k) {
      if (getLevel(k) != nullptr && getLevel(k - 1) != nullptr) {
        levels.emplace_back(static_cast<long>(getLevel(k)->getCount()) * k, k);
        patterns += getLevel(k)->getCount();
      }
    }
    std::sort(levels.rbegin(), levels.rend());
    const unsigned threads =
        patterns < kPatternsForThreads
            ? 1
            : std::max(1u, std::thread::hardware_concurrency());
    dictionary_internal::runTasks(levels.size(), threads, [&](std::size_t i) {
      renewAdjacencySets(*getLevel(levels[i].second));
    });
    dictionary_internal::runTasks(levels.size(), threads, [&](std::size_t i) {
      const int k = levels[i].second;
      linkToLevelBelow(*getLevel(k), *getLevel(k - 1));
    });
  } catch (...) {
    // Whatever was linked so far stays; the lattice does not count as built.
    return KvCommon_850::KvStatus(KvCommon_850::kStatusFailure, false);
  }
  latticeBuilt = true;
  return KvCommon_850::KvStatus();
}

}  // namespace SEQUENCE_NAMESPACE_800
