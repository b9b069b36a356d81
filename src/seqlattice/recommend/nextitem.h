// NextItemIndex estimates which items come right after a customer's latest
// item sets: over the customers' sequences a model keeps (SequenceIndex), it
// counts every run of up to kMaxRun consecutive item sets and the items of the
// item set that immediately follows it, and of the two that follow it. The
// lattice and the sequence index count what comes "anywhere later", which
// says what a customer acquires soon but not what comes next; customers who
// come back to an item (A B A) are often predicted an item that does come,
// but after another one. This estimate says which.
//
// The estimate for a history blends the runs that end the history, the
// longest most: p(x) = (c_L(x) + kRunSmoothing * p_{L-1}(x)) / (n_L +
// kRunSmoothing) from the one-set run up to the longest stored one, n_L being
// the occurrences of the run of L sets and c_L(x) those followed by x (in the
// next item set, or in the next two). A long run seen a few times is thus
// pulled towards what its shorter suffixes say.
//
// The index keeps a reference to the SequenceIndex (which must outlive it,
// unchanged) to compare a history's runs with the stored ones. It is
// immutable once built; reading it from several threads is safe.
#ifndef SEQLATTICE_RECOMMEND_NEXTITEM_H_
#define SEQLATTICE_RECOMMEND_NEXTITEM_H_

#include <cstdint>
#include <vector>

#include "seqlattice/recommend/sequenceindex.h"
#include "seqlattice/sequence/sequence.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

// Longest run of consecutive item sets looked up.
constexpr int kMaxRun = 5;
// Fewest occurrences for a run to be kept: a run seen once says little and
// the runs seen once are most of them.
constexpr int kMinRunCount = 2;
// Pseudo occurrences of the shorter run added to each run's counts.
constexpr double kRunSmoothing = 20;
// How far ahead NextItemIndex::nextShare looks for an item set's most
// frequent follower.
constexpr int kAheadSets = 4;
// Most followers kept per run (those seen most often): a popular item's
// one-set run is followed by thousands of items once or twice, whose
// estimates are near zero anyway, and reading them would cost every lookup.
constexpr int kMaxRunFollowers = 64;

// The estimate for one item.
struct NextItemEstimate {
  int item = 0;
  double next = 0;  // estimated chance that it is in the next item set
  double soon = 0;  // ... in one of the next two item sets
  // The longest run that the item followed: its item sets (the last runSets
  // of NextItems::run), its occurrences and how many of them the item
  // followed right after.
  int runSets = 0;
  long runCount = 0;
  long nextCount = 0;
};

// What follows a history's latest item sets.
struct NextItems {
  std::vector<NextItemEstimate> items;  // ascending item order
  // The longest stored run ending the history (its item sets, oldest
  // first); empty when none is.
  std::vector<std::vector<int>> run;
};

class NextItemIndex {
 public:
  // Counts the runs of the index's sequences; keeps a reference to it.
  explicit NextItemIndex(const SequenceIndex& sequences);

  // Number of stored runs (of kMinRunCount occurrences or more).
  std::size_t runCount() const { return runs_.size(); }

  // How much the order of what follows matters in these sequences: over the
  // stored one-set runs, of the occurrences whose most frequent next item
  // (the run's) came within the next kAheadSets item sets, the share where
  // it came right next; 1 when none came.
  double nextShare() const { return nextShare_; }

  // The estimate for what follows the history's latest item sets (nothing
  // when not even its last item set is a stored run).
  NextItems estimate(const Sequence& history) const;

 private:
  struct Run {
    std::uint64_t hash;
    std::uint32_t firstSet;  // of the run's first occurrence, in setStarts()
    std::uint32_t length;    // item sets
    std::uint32_t count;     // occurrences followed by an item set
    std::uint32_t followerBegin;
    std::uint32_t followerEnd;
  };
  struct Follower {
    int item;
    std::uint32_t next;  // occurrences with the item in the next item set
    std::uint32_t soon;  // ... in the next two
  };
  // Whether the indexed sets [firstSet, firstSet + sets.size()) equal sets.
  bool sameSets(std::uint32_t firstSet, const std::vector<const int*>& begins,
                const std::vector<const int*>& ends) const;
  const Run* find(std::uint64_t hash, const std::vector<const int*>& begins,
                  const std::vector<const int*>& ends) const;

  const SequenceIndex& sequences_;
  std::vector<Run> runs_;  // by hash
  std::vector<Follower> followers_;
  double nextShare_ = 1.0;
};

}  // namespace recommend
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RECOMMEND_NEXTITEM_H_
