// HashtableSQPair maps patterns (NTSequence keys) to their counters
// (SequenceCounter values). The dictionary keeps one table per pattern length,
// so counting, pruning, the lattice build and every export walk these tables.
//
// It is a separately chained table of its own design, and its exact behaviour
// is part of the saved formats and of later results, because iteration order
// (bucket 0 upward, each chain from its head) is the order in which pairs are
// saved and visited:
// - the bucket of a key is its cached hash code modulo the capacity;
// - a new pair goes to the head of its chain;
// - before an insertion would take the count above the threshold, the table
//   grows to 2 * capacity + 1 buckets, moving nodes one by one, which reverses
//   the order of the pairs that stay together in a chain;
// - removing a pair that is not at the head of its chain moves the head's pair
//   into the freed place and frees the head node instead.
//
// Ownership: the table owns every key and counter stored in it and deletes
// them on remove, clear, putOverwrite (the pair replaced) and destruction.
// put of a key already present stores and deletes nothing: the caller keeps
// what it passed. Counters may be null (work tables hold keys only).
//
// Not safe: stored keys must not be mutated (their hash code chooses the
// bucket); insertion, removal and growth invalidate iterators; no operation is
// safe for concurrent use. The capacity must be positive.
#ifndef SEQLATTICE_STORE_HASHPAIRSEQ_H_
#define SEQLATTICE_STORE_HASHPAIRSEQ_H_

#include <fstream>
#include <ostream>
#include <type_traits>

namespace SEQUENCE_NAMESPACE_800 {

class NTSequence;
class SequenceCounter;
class HashtableSQPair;

namespace store_internal {
class NodePool;
}

// A stored pair: the pattern and its counter.
struct ISQCPair {
  NTSequence* key;
  SequenceCounter* value;
};

// One node of a bucket chain. The key's hash code is kept beside the pair so
// that walking a chain does not read keys that cannot match: a failed lookup
// then mostly touches nodes only (about a quarter faster in the benchmark, for
// 16 more bytes per node with glibc's allocator). Whoever changes a node's key
// keeps hashCode equal to key->getHashCode().
struct SQCPairNode {
  ISQCPair pair;
  SQCPairNode* next;
  int hashCode;
};

namespace KvSequence {

// Walks a table bucket by bucket, each chain from its head. iterator and
// const_iterator share this one implementation.
template <bool IsConst>
class PairIterator {
 public:
  typedef typename std::conditional<IsConst, const HashtableSQPair,
                                    HashtableSQPair>::type Table;
  typedef
      typename std::conditional<IsConst, const SQCPairNode, SQCPairNode>::type
          Node;
  typedef
      typename std::conditional<IsConst, const ISQCPair, ISQCPair>::type Pair;

  // Null table, null node, bucket 0.
  PairIterator() : table(nullptr), node(nullptr), bucket(0) {}
  PairIterator(Table* table, Node* node, int bucket)
      : table(table), node(node), bucket(bucket) {}
  // An iterator converts to a const_iterator, not the reverse.
  template <bool OtherConst,
            typename = typename std::enable_if<IsConst && !OtherConst>::type>
  PairIterator(const PairIterator<OtherConst>& other)  // NOLINT: implicit
      : table(other.table), node(other.node), bucket(other.bucket) {}

  Pair& operator*() const { return node->pair; }
  Pair* operator->() const { return &node->pair; }

  // Steps to the next pair; past the last one the iterator equals end().
  PairIterator& operator++();
  PairIterator operator++(int) {
    PairIterator before = *this;
    ++*this;
    return before;
  }

  // Equal when table, node and bucket are all equal.
  bool operator==(const PairIterator& other) const {
    return table == other.table && node == other.node && bucket == other.bucket;
  }
  bool operator!=(const PairIterator& other) const { return !(*this == other); }

 private:
  template <bool>
  friend class PairIterator;

  Table* table;
  Node* node;
  int bucket;
};

typedef PairIterator<false> iterator;
typedef PairIterator<true> const_iterator;

}  // namespace KvSequence

class HashtableSQPair {
 public:
  typedef KvSequence::iterator iterator;
  typedef KvSequence::const_iterator const_iterator;

  // capacity empty buckets; threshold from capacity * 0.75. A capacity of 0
  // or less throws std::invalid_argument.
  explicit HashtableSQPair(int capacity);
  // Deletes every stored key, counter and node, then the buckets.
  ~HashtableSQPair();

  HashtableSQPair(const HashtableSQPair&) = delete;
  HashtableSQPair& operator=(const HashtableSQPair&) = delete;

  // Stores (key, value) unless an equal key is stored; true when stored. On
  // false nothing changed and the caller still owns both objects.
  bool put(NTSequence* key, SequenceCounter* value);
  // Stores (key, value). An equal stored key and its counter are replaced and
  // deleted, except an object that is the very one passed again.
  void putOverwrite(NTSequence* key, SequenceCounter* value);
  // The stored pair whose key equals key, or null. The pair stays the table's;
  // its counter may be changed in place.
  ISQCPair* get(const NTSequence* key) const;
  // found[i] = get(keys[i]) for i < n. The reads of the n lookups are made
  // in stages (bucket slots, chain heads, keys) so that their cache misses
  // overlap rather than follow one another: for callers that know many
  // lookups in advance, such as the lattice build.
  void getAll(const NTSequence* const* keys, int n, ISQCPair** found) const;
  bool containsKey(const NTSequence* key) const;
  // Deletes the stored key equal to key and its counter; nothing when absent.
  // key itself is deleted only when it is the stored object.
  void remove(const NTSequence* key);
  // Deletes every pair; capacity, threshold and growth count stay.
  void clear();

  iterator begin();
  iterator end();
  const_iterator begin() const;
  const_iterator end() const;

  int getCapacity() const { return capacity; }
  int getCount() const { return count; }
  int getThreshold() const { return threshold; }
  int getNRehashes() const { return nRehashes; }

  // Lists the buckets on std::cout (the bucket contents are not printed).
  void display() const;
  // Prints a histogram of chain lengths on std::cout (lengths of 99 and more
  // counted as 99) and returns the mean length of the non-empty chains, or
  // 0.0 when all are empty.
  double freqTable() const;

  // Binary record and XML element of the table, pairs in iteration order
  // (implemented in io/).
  long writeObject(std::fstream& out) const;
  long readObject(std::fstream& in);
  long writeObjectXML(std::ostream& out) const;
  long readObjectXML(std::ifstream& in);

 private:
  template <bool>
  friend class KvSequence::PairIterator;

  // Bucket of a hash code for a table of the given capacity.
  static int bucketOf(int hashCode, int capacity);
  // Node of the stored key equal to key in bucket b, or null.
  SQCPairNode* findInBucket(const NTSequence* key, int b) const;
  // Inserts a key known to be absent from bucket b, growing first if needed.
  void insertAbsent(NTSequence* key, SequenceCounter* value, int b);
  // Grows to 2 * capacity + 1 buckets.
  void rehash();

  SQCPairNode** buckets;
  int capacity;
  int count;
  int threshold;
  float loadFactor;
  int nRehashes;
  // The chain nodes, carved from blocks rather than allocated one by one.
  store_internal::NodePool* nodes;
};

// Chain helpers. A chain is given by its head pointer, null when empty.

// Makes a new node holding a copy of pair the head of the chain.
void listHeadInsert(SQCPairNode*& head, const ISQCPair& pair);
// Inserts a new node holding a copy of pair right after node.
void listInsert(SQCPairNode* node, const ISQCPair& pair);
// Frees the head node (not its key or counter); its successor becomes head.
void listHeadRemove(SQCPairNode*& head);
// Deletes the key and counter of node, which must be in the chain, and takes
// it out in constant time: a non-head node receives the head's pair and the
// head node is freed in its place.
void listRemove(SQCPairNode*& head, SQCPairNode* node);
// Deletes every key, counter and node of the chain; head becomes null.
void listClear(SQCPairNode*& head);
// Frees every node of the chain, not the keys or counters; head becomes null.
void listClearSimple(SQCPairNode*& head);
// A new chain with the same pairs in the same order (keys and counters are
// shared, not copied).
SQCPairNode* listCopy(const SQCPairNode* head);
int listCount(const SQCPairNode* head);
// The last node whose key equals pair's key, or null.
SQCPairNode* listSearch(SQCPairNode* head, const ISQCPair& pair);
// Walks the chain without printing anything (kept as the chain listing hook
// of display()).
void showList(const SQCPairNode* head);

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_STORE_HASHPAIRSEQ_H_
