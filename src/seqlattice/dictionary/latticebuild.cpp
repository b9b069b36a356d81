// The lattice build: every stored pattern learns the (item, position code)
// pairs that extend it to a stored pattern one level up.
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Gives every counter of `level` a new empty adjacency set, then adds to each
// stored pattern of `below` the pair that leads from it to a pattern of
// `level`: for every item of a pattern P, the sub-pattern without it learns
// (item, 2s+1) when the item was alone in set s of P, (item, 2s) otherwise.
// Sub-patterns that are not stored (pruned) learn nothing.
void linkToLevelBelow(HashtableSQPair& level, const HashtableSQPair& below) {
  for (HashtableSQPair::iterator it = level.begin(); it != level.end();) {
    const ISQCPair entry = *it++;
    if (entry.value != nullptr) {
      entry.value->setAdjacentItems(new SequenceCounter::AdjacencySet());
    }
    NTSequence* pattern = entry.key;
    // Refilled by removeItem for every item, so the lookups allocate nothing.
    NTSequence parent(*pattern);
    int pos = 0;
    for (int s = 0; s < pattern->getNSets(); ++s) {
      for (int j = 0; j < pattern->getSizeOfSet(s); ++j) {
        const bool setGone = parent.removeItem(pos, pattern) == 1;
        ++pos;
        ISQCPair* stored = below.get(&parent);
        if (stored != nullptr && stored->value != nullptr) {
          stored->value->addAdjacentItem(pattern->getItemInSet(j, s),
                                         setGone ? 2 * s + 1 : 2 * s);
        }
      }
    }
  }
}

}  // namespace

// Levels above the first empty one are not visited: in a pruned dictionary
// levels fill from the bottom. Because the levels are done in ascending
// order, a counter's set is always renewed before the level above adds to it.
KvCommon_850::KvStatus SequenceDictionary::buildLattice() {
  try {
    const int largest = LargestSequence();
    ISQCPair* root = level0Entry();
    if (root == nullptr) return KvCommon_850::KvStatus(60000, false);
    if (root->value != nullptr) {
      root->value->setAdjacentItems(new SequenceCounter::AdjacencySet());
    }
    for (int k = 1; k <= largest; ++k) {
      HashtableSQPair* level = getLevel(k);
      HashtableSQPair* below = getLevel(k - 1);
      if (level != nullptr && below != nullptr) {
        linkToLevelBelow(*level, *below);
      }
    }
  } catch (...) {
    // Whatever was linked so far stays; the lattice does not count as built.
    return KvCommon_850::KvStatus(60000, false);
  }
  latticeBuilt = true;
  return KvCommon_850::KvStatus();
}

}  // namespace SEQUENCE_NAMESPACE_800
