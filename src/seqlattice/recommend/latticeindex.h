// LatticeIndex finds the lattice's evidence for a recommendation: the stored
// patterns that a customer's history contains and that end in one of its
// item sets, each with its count and the items that follow it in a new item
// set. It gives exactly the patterns SequenceDictionary::
// getSubsequencesInSequence gives, in the same order, with what a descriptor
// lookup and a walk over each pattern's extensions would give; but it turns
// every pattern it meets into a node once per loaded model (its count, its
// extensions backwards and the nodes they lead to, its followers and their
// counts), so that a later match walks over nodes: no pattern is built,
// hashed or looked up again.
//
// The walk is the library's: patterns grow backwards from the anchor item
// set one extension at a time; patterns whose first item set is matched at a
// later item set are extended first, those matched at the same item set in
// the patterns' own order; a pattern reached again is not given twice. That
// order decides which of two rules of equal weight a recommendation shows,
// so it is kept.
//
// The index keeps a reference to the dictionary, which stays the caller's and
// must outlive it, unchanged. Its nodes grow with the patterns met, at most
// one per stored pattern. Not thread-safe: lookups rewrite the dictionary's
// scratch key, nodes are added as they are met, and a match rewrites the
// index's scratch (the probe patterns of its batched lookups among it).
#ifndef SEQLATTICE_RECOMMEND_LATTICEINDEX_H_
#define SEQLATTICE_RECOMMEND_LATTICEINDEX_H_

#include <cstddef>
#include <deque>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/store/hashpairseq.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

class LatticeIndex {
 public:
  // An item that follows a pattern in a new item set.
  struct Follower {
    int item;
    long count;         // of the pattern followed by the item
    double popularity;  // the item's count over the model's customers
  };
  // One stored pattern of a match; the pointers stay valid while the index
  // lives.
  struct Match {
    const NTSequence* pattern;
    long count;
    const std::vector<Follower>* followers;  // in ascending item order
  };

  // dict must have its lattice built.
  explicit LatticeIndex(SequenceDictionary& dict);
  LatticeIndex(const LatticeIndex&) = delete;
  LatticeIndex& operator=(const LatticeIndex&) = delete;

  // Sets *out to the patterns that getSubsequencesInSequence finds in history
  // with its last skipLast item sets left out, in the order it gives them,
  // those without a descriptor left out. Throws
  // SeqExceptions::DictionaryFailure when the dictionary runs out of memory.
  void match(const Sequence& history, int skipLast, std::vector<Match>* out);

  // The items that follow a stored pattern in a new item set, in ascending
  // item order; empty when the pattern is not stored. Throws
  // SeqExceptions::DictionaryFailure as match() does.
  const std::vector<Follower>& followersOf(const NTSequence& pattern);

  // Nodes made so far (one per pattern met), for memory figures.
  std::size_t nodeCount() const { return nodes_.size(); }

 private:
  struct Node;
  struct Edge {
    int item;
    int position;  // 0: into the first item set, 1: a new one before it
    Node* to;      // valid once resolved; null when not stored
    bool resolved;
  };
  struct Node {
    explicit Node(const NTSequence& p, const SequenceCounter* c)
        : pattern(p), counter(c) {}
    NTSequence pattern;
    const SequenceCounter* counter;  // never null
    bool compiled = false;           // edges and followers read
    unsigned long offeredIn = 0;     // the match() that gave it last
    std::vector<Edge> edges;         // by item, then position
    std::vector<Follower> followers;
  };
  struct ByPattern {
    bool operator()(const Node* a, const Node* b) const {
      return a->pattern < b->pattern;
    }
  };
  struct Single {
    bool stored = false;   // the item is a stored one-item pattern
    Node* node = nullptr;  // null when it has no descriptor
  };
  // The kept item sets holding one item, ascending: [begin, end) of sets_.
  struct Occurrences {
    int item;
    std::size_t begin;
    std::size_t end;
  };

  Node* nodeOf(const NTSequence& pattern);
  // The node of a stored pattern whose descriptor is counter (null: none).
  Node* nodeFor(const NTSequence& pattern, const SequenceCounter* counter);
  const Single& singleOf(int item);
  void compile(Node& node);
  // Sets found_[k] to the dictionary's entry of the pattern followed by
  // followerItems_[k] in a new item set (null when not stored), looking
  // them up together so that their cache misses overlap (a node's first
  // compile looks up all its followers, often hundreds).
  void lookUpFollowers(const NTSequence& pattern, const HashtableSQPair& level);
  double popularity(int item);
  // Where an extension lands (the library's rule); -1 when nowhere.
  int targetSet(const Occurrences& at, int position, int j) const;
  void offer(Node* node, std::vector<Match>* out);
  // Extends a pattern whose first item set is matched at kept set j, as the
  // library's walk does, offering and queueing what it reaches.
  void extend(Node& node, int j, int n, int totalItems,
              std::vector<Match>* out);
  // Calls visit(occurrences, edge) for every edge whose item the history
  // holds, in the order of the edges' items.
  template <typename Visit>
  void forEachHeldEdge(std::vector<Edge>& edges, Visit visit);
  // Resolves the edges of pending_ (all from the pattern's node), looking
  // their extensions up together as lookUpFollowers() does.
  void resolve(const NTSequence& pattern);

  SequenceDictionary& dict_;
  int largest_ = 0;
  double n_ = 0;
  std::deque<Node> nodes_;
  std::unordered_map<const SequenceCounter*, Node*> byCounter_;
  std::unordered_map<int, Single> singles_;
  unsigned long matchNumber_ = 0;
  // Scratch of match(), kept between calls so that it does not allocate.
  std::vector<int> lastSet_;
  std::vector<std::pair<int, int>> itemSets_;  // (item, kept set)
  std::vector<int> sets_;
  std::vector<Occurrences> occurrences_;
  std::vector<std::set<Node*, ByPattern>> work_;
  // Scratch of compile(), kept between calls so that it does not allocate.
  std::vector<int> followerItems_;
  std::vector<int> setItems_;
  std::vector<int*> setPointers_;
  std::vector<std::vector<NTSequence>> probes_;  // by pattern size
  std::vector<const NTSequence*> probeKeys_;
  std::vector<ISQCPair*> found_;
  std::vector<Edge*> pending_;  // scratch of extend()
  std::vector<NTSequence> edgeProbes_;
};

}  // namespace recommend
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RECOMMEND_LATTICEINDEX_H_
