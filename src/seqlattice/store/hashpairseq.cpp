#include "seqlattice/store/hashpairseq.h"

#include <iostream>
#include <new>
#include <stdexcept>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/internal/nodepool.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// The product is formed in single precision, as the load factor is a float,
// and only then widened and rounded half up.
int thresholdFor(int capacity, float loadFactor) {
  const float product = static_cast<float>(capacity) * loadFactor;
  return static_cast<int>(static_cast<double>(product) + 0.5);
}

// A table needs at least one bucket to compute bucket indexes.
int checkedCapacity(int capacity) {
  if (capacity <= 0) {
    throw std::invalid_argument(
        "HashtableSQPair: the capacity must be positive");
  }
  return capacity;
}

void deletePair(const ISQCPair& pair) {
  delete pair.key;
  delete pair.value;
}

}  // namespace

namespace KvSequence {

template <bool IsConst>
PairIterator<IsConst>& PairIterator<IsConst>::operator++() {
  if (node != nullptr) node = node->next;
  while (node == nullptr && bucket < table->capacity) {
    ++bucket;
    if (bucket < table->capacity) node = table->buckets[bucket];
  }
  return *this;
}

template class PairIterator<false>;
template class PairIterator<true>;

}  // namespace KvSequence

HashtableSQPair::HashtableSQPair(int capacity)
    : buckets(new SQCPairNode*[checkedCapacity(capacity)]()),
      capacity(capacity),
      count(0),
      threshold(0),
      loadFactor(0.75f),
      nRehashes(0),
      nodes(nullptr) {
  threshold = thresholdFor(capacity, loadFactor);
  try {
    nodes = new store_internal::NodePool();
  } catch (...) {
    delete[] buckets;
    throw;
  }
}

HashtableSQPair::~HashtableSQPair() {
  clear();
  delete nodes;
  delete[] buckets;
}

int HashtableSQPair::bucketOf(int hashCode, int capacity) {
  // Truncating remainder, moved into range for the negative hash of a
  // negative one-item pattern; non-negative codes are unaffected.
  int b = hashCode % capacity;
  return b < 0 ? b + capacity : b;
}

SQCPairNode* HashtableSQPair::findInBucket(const NTSequence* key, int b) const {
  const int hashCode = key->getHashCode();
  for (SQCPairNode* node = buckets[b]; node != nullptr; node = node->next) {
    if (node->hashCode == hashCode && *node->pair.key == *key) return node;
  }
  return nullptr;
}

void HashtableSQPair::insertAbsent(NTSequence* key, SequenceCounter* value,
                                   int b) {
  if (count + 1 > threshold) {
    rehash();
    b = bucketOf(key->getHashCode(), capacity);
  }
  buckets[b] = new (nodes->take())
      SQCPairNode{ISQCPair{key, value}, buckets[b], key->getHashCode()};
  ++count;
}

void HashtableSQPair::rehash() {
  const int newCapacity = 2 * capacity + 1;
  SQCPairNode** newBuckets = new SQCPairNode*[newCapacity]();
  ++nRehashes;
  threshold = thresholdFor(newCapacity, loadFactor);
  for (int b = 0; b < capacity; ++b) {
    // Nodes move head first onto the heads of their new chains: pairs that
    // stay together end up in reverse order.
    while (SQCPairNode* node = buckets[b]) {
      buckets[b] = node->next;
      SQCPairNode*& head = newBuckets[bucketOf(node->hashCode, newCapacity)];
      node->next = head;
      head = node;
    }
  }
  delete[] buckets;
  buckets = newBuckets;
  capacity = newCapacity;
}

bool HashtableSQPair::put(NTSequence* key, SequenceCounter* value) {
  const int b = bucketOf(key->getHashCode(), capacity);
  if (findInBucket(key, b) != nullptr) return false;
  insertAbsent(key, value, b);
  return true;
}

void HashtableSQPair::putOverwrite(NTSequence* key, SequenceCounter* value) {
  const int b = bucketOf(key->getHashCode(), capacity);
  SQCPairNode* node = findInBucket(key, b);
  if (node == nullptr) {
    insertAbsent(key, value, b);
    return;
  }
  if (node->pair.key != key) delete node->pair.key;
  if (node->pair.value != value) delete node->pair.value;
  node->pair = ISQCPair{key, value};
}

ISQCPair* HashtableSQPair::get(const NTSequence* key) const {
  SQCPairNode* node = findInBucket(key, bucketOf(key->getHashCode(), capacity));
  return node == nullptr ? nullptr : &node->pair;
}

void HashtableSQPair::getAll(const NTSequence* const* keys, int n,
                             ISQCPair** found) const {
  constexpr int kStage = 32;
  int bucket[kStage];
  SQCPairNode* node[kStage];
  for (int from = 0; from < n; from += kStage) {
    const int m = n - from < kStage ? n - from : kStage;
    const NTSequence* const* key = keys + from;
    for (int i = 0; i < m; ++i) {
      bucket[i] = bucketOf(key[i]->getHashCode(), capacity);
      __builtin_prefetch(&buckets[bucket[i]]);
    }
    for (int i = 0; i < m; ++i) {
      node[i] = buckets[bucket[i]];
      if (node[i] != nullptr) __builtin_prefetch(node[i]);
    }
    // The first node with the key's hash code is nearly always the match.
    for (int i = 0; i < m; ++i) {
      const int hashCode = key[i]->getHashCode();
      while (node[i] != nullptr && node[i]->hashCode != hashCode) {
        node[i] = node[i]->next;
      }
      if (node[i] != nullptr) __builtin_prefetch(node[i]->pair.key);
    }
    for (int i = 0; i < m; ++i) {
      SQCPairNode* match = node[i] != nullptr && *node[i]->pair.key == *key[i]
                               ? node[i]
                               : findInBucket(key[i], bucket[i]);
      found[from + i] = match == nullptr ? nullptr : &match->pair;
    }
  }
}

bool HashtableSQPair::containsKey(const NTSequence* key) const {
  return get(key) != nullptr;
}

void HashtableSQPair::remove(const NTSequence* key) {
  const int b = bucketOf(key->getHashCode(), capacity);
  SQCPairNode* node = findInBucket(key, b);
  if (node == nullptr) return;
  // As listRemove does it: the head's pair moves into the freed place.
  SQCPairNode*& head = buckets[b];
  deletePair(node->pair);
  if (node != head) {
    node->pair = head->pair;
    node->hashCode = head->hashCode;
  }
  SQCPairNode* old = head;
  head = old->next;
  nodes->give(old);
  --count;
}

void HashtableSQPair::clear() {
  for (int b = 0; b < capacity; ++b) {
    for (SQCPairNode* node = buckets[b]; node != nullptr; node = node->next) {
      deletePair(node->pair);
    }
    buckets[b] = nullptr;
  }
  // The nodes go with their blocks.
  nodes->release();
  count = 0;
}

HashtableSQPair::iterator HashtableSQPair::begin() {
  if (count == 0) return end();
  // Stepping from before bucket 0 lands on the head of the first non-empty
  // chain.
  return ++iterator(this, nullptr, -1);
}

HashtableSQPair::iterator HashtableSQPair::end() {
  return iterator(this, nullptr, capacity);
}

HashtableSQPair::const_iterator HashtableSQPair::begin() const {
  if (count == 0) return end();
  return ++const_iterator(this, nullptr, -1);
}

HashtableSQPair::const_iterator HashtableSQPair::end() const {
  return const_iterator(this, nullptr, capacity);
}

void HashtableSQPair::display() const {
  for (int b = 0; b < capacity; ++b) {
    std::cout << "Bucket " << b << " : ";
    showList(buckets[b]);
    std::cout << std::endl;
  }
  std::cout << "End of Hashtable." << std::endl;
}

double HashtableSQPair::freqTable() const {
  const int kLengths = 100;
  long histogram[kLengths] = {};
  for (int b = 0; b < capacity; ++b) {
    const int length = listCount(buckets[b]);
    ++histogram[length < kLengths - 1 ? length : kLengths - 1];
  }
  long nonEmptyChains = 0;
  long totalLength = 0;
  for (int length = 0; length < kLengths; ++length) {
    const long chains = histogram[length];
    if (chains <= 0) continue;
    std::cout << length << " : " << chains << std::endl;
    if (length > 0) {
      nonEmptyChains += chains;
      totalLength += length * chains;
    }
  }
  std::cout << "END OF TABLE" << std::endl;
  if (nonEmptyChains == 0) return 0.0;
  return static_cast<double>(totalLength) / static_cast<double>(nonEmptyChains);
}

void listHeadInsert(SQCPairNode*& head, const ISQCPair& pair) {
  head = new SQCPairNode{pair, head, pair.key->getHashCode()};
}

void listInsert(SQCPairNode* node, const ISQCPair& pair) {
  node->next = new SQCPairNode{pair, node->next, pair.key->getHashCode()};
}

void listHeadRemove(SQCPairNode*& head) {
  SQCPairNode* old = head;
  head = old->next;
  delete old;
}

void listRemove(SQCPairNode*& head, SQCPairNode* node) {
  deletePair(node->pair);
  if (node != head) {
    node->pair = head->pair;
    node->hashCode = head->hashCode;
  }
  listHeadRemove(head);
}

void listClear(SQCPairNode*& head) {
  while (head != nullptr) {
    deletePair(head->pair);
    listHeadRemove(head);
  }
}

void listClearSimple(SQCPairNode*& head) {
  while (head != nullptr) listHeadRemove(head);
}

SQCPairNode* listCopy(const SQCPairNode* head) {
  SQCPairNode* copy = nullptr;
  SQCPairNode** tail = &copy;
  try {
    for (const SQCPairNode* node = head; node != nullptr; node = node->next) {
      *tail = new SQCPairNode{node->pair, nullptr, node->hashCode};
      tail = &(*tail)->next;
    }
  } catch (...) {
    listClearSimple(copy);
    throw;
  }
  return copy;
}

int listCount(const SQCPairNode* head) {
  int n = 0;
  for (const SQCPairNode* node = head; node != nullptr; node = node->next) ++n;
  return n;
}

SQCPairNode* listSearch(SQCPairNode* head, const ISQCPair& pair) {
  SQCPairNode* found = nullptr;
  for (SQCPairNode* node = head; node != nullptr; node = node->next) {
    if (*node->pair.key == *pair.key) found = node;
  }
  return found;
}

void showList(const SQCPairNode* head) {
  for (const SQCPairNode* node = head; node != nullptr; node = node->next) {
  }
}

}  // namespace SEQUENCE_NAMESPACE_800
