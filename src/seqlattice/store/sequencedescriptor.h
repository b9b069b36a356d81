// SequenceCounter is the record kept beside every stored pattern: how often it
// occurred, at which input ordinal it entered the store, how many occurrences
// it may have missed before that, optional gap statistics and, once the
// lattice is built, the (item, position code) pairs that extend the pattern to
// another stored pattern. Position code 2k means the item joins item set k,
// 2k+1 that it forms a new set inserted at index k.
//
// Ownership: a counter owns its StatsBucket and its adjacency set and deletes
// both in its destructor; the setters adopt the new object and delete the one
// they replace. A counter stored in a HashtableSQPair belongs to the table.
// Counters are not copyable, since they own what they point to.
//
// A counter read from a file, or linked by the lattice build, keeps its pairs
// in one sorted array rather than as a tree: a model holds millions of pairs,
// and a tree node each was most of the cost of loading or building it.
// adjacentPairs() walks the array as it is; getAdjacentItems() makes the set
// from it on its first call, after which the set is what the counter holds
// (the array stays, unused, until a mutator drops it). The library's own
// readers go through adjacentPairs(), so predicting from, querying, exporting
// or saving a loaded or freshly built model never makes a set.
//
// CarmaSequenceDescriptor is the kind of counter the dictionary creates. It
// adds nothing but a constructor and is deleted through SequenceCounter*,
// which has no virtual destructor on purpose: a counter is kept small and is
// never used polymorphically. Do not give the derived class state of its own.
//
// Thread safety: the const accessors (getters, getNAdjacent, adjacentPairs,
// getAdjacentItems, display, the writers) may be called from several threads
// at once on the same counter; the set is made once and published atomically,
// so every caller gets the same set. Anything that changes the counter
// (setters, addAdjacentItem, setAdjacentItems, clearAdjacentItems, the
// readers, changing the set through the pointer getAdjacentItems returned)
// must not run beside any other call on it.
#ifndef SEQLATTICE_STORE_SEQUENCEDESCRIPTOR_H_
#define SEQLATTICE_STORE_SEQUENCEDESCRIPTOR_H_

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <ostream>
#include <set>
#include <utility>

#include "seqlattice/store/statsbucket.h"

namespace SEQUENCE_NAMESPACE_800 {

class SequenceCounter {
 public:
  // (item, position code) pairs, ordered by item, then by position.
  typedef std::pair<int, int> AdjacentPair;
  typedef std::set<AdjacentPair> AdjacencySet;

  // The counter's pairs in set order, read from the set when it has been made
  // and from the array a reader left otherwise. It stays valid while the
  // counter lives and nothing changes it.
  class PairRange {
   public:
    class const_iterator {
     public:
      typedef std::forward_iterator_tag iterator_category;
      typedef AdjacentPair value_type;
      typedef std::ptrdiff_t difference_type;
      typedef const AdjacentPair* pointer;
      typedef const AdjacentPair& reference;

      reference operator*() const { return inArray_ ? *inArrayAt_ : *inSet_; }
      pointer operator->() const { return &**this; }
      const_iterator& operator++() {
        if (inArray_) {
          ++inArrayAt_;
        } else {
          ++inSet_;
        }
        return *this;
      }
      const_iterator operator++(int) {
        const_iterator before = *this;
        ++*this;
        return before;
      }
      bool operator==(const const_iterator& other) const {
        return inArray_ ? inArrayAt_ == other.inArrayAt_
                        : inSet_ == other.inSet_;
      }
      bool operator!=(const const_iterator& other) const {
        return !(*this == other);
      }

     private:
      friend class PairRange;
      explicit const_iterator(const AdjacentPair* at)
          : inArray_(true), inArrayAt_(at) {}
      explicit const_iterator(AdjacencySet::const_iterator at)
          : inArray_(false), inArrayAt_(nullptr), inSet_(at) {}

      bool inArray_;
      const AdjacentPair* inArrayAt_;
      AdjacencySet::const_iterator inSet_;
    };

    const_iterator begin() const {
      return set_ != nullptr ? const_iterator(set_->cbegin())
                             : const_iterator(array_);
    }
    const_iterator end() const {
      return set_ != nullptr ? const_iterator(set_->cend())
                             : const_iterator(array_ + arraySize_);
    }
    std::size_t size() const {
      return set_ != nullptr ? set_->size()
                             : static_cast<std::size_t>(arraySize_);
    }
    bool empty() const { return size() == 0; }
    // The first pair not less than pair, in logarithmic time.
    const_iterator lower_bound(const AdjacentPair& pair) const {
      return set_ != nullptr ? const_iterator(set_->lower_bound(pair))
                             : const_iterator(std::lower_bound(
                                   array_, array_ + arraySize_, pair));
    }
    // Whether the counter has a set, made or not yet (getAdjacentItems() is
    // not null), even an empty one.
    bool present() const { return set_ != nullptr || array_ != nullptr; }

   private:
    friend class SequenceCounter;
    PairRange(const AdjacencySet* set, const AdjacentPair* array, int arraySize)
        : set_(set), array_(array), arraySize_(arraySize) {}

    const AdjacencySet* set_;
    const AdjacentPair* array_;
    int arraySize_;
  };

  // The entry ordinal comes before the count. The bucket (may be null) is
  // adopted; max missed starts at 0 and there is no adjacency set.
  SequenceCounter(int ordinalOfEntry, int count, StatsBucket* bucket);
  ~SequenceCounter();

  SequenceCounter(const SequenceCounter&) = delete;
  SequenceCounter& operator=(const SequenceCounter&) = delete;

  int getCount() const { return count; }
  int getOrdinalOfEntry() const { return ordinalOfEntry; }
  int getMaxMissed() const { return maxMissed; }
  StatsBucket* getStatsBucket() const { return statsBucket; }

  void setCount(int c) { count = c; }
  void setOrdinalOfEntry(int ordinal) { ordinalOfEntry = ordinal; }
  void setMaxMissed(int missed) { maxMissed = missed; }
  // Adopts bucket (may be null) and deletes the bucket held before, unless it
  // is the same object.
  void setStatsBucket(StatsBucket* bucket);

  // Inserts (item, position), creating the set on first use; a pair already
  // present stays as it is. Running out of memory throws
  // SeqExceptions::DictionaryFailure; any other exception from inside ends the
  // process (std::terminate), so callers need to handle only that one.
  void addAdjacentItem(int item, int position);
  // Number of pairs; 0 when there is no set.
  int getNAdjacent() const;
  // The pairs in set order, without making the set. Empty when there is no
  // set.
  PairRange adjacentPairs() const {
    return PairRange(adjacentItems.load(std::memory_order_acquire), packed,
                     nPacked);
  }
  // The set (may be null); the counter keeps it. The first call on a counter
  // that holds its pairs as an array makes the set, which may throw
  // SeqExceptions::DictionaryFailure when memory runs out.
  AdjacencySet* getAdjacentItems() const {
    AdjacencySet* set = adjacentItems.load(std::memory_order_acquire);
    return set != nullptr || packed == nullptr ? set : makeSetFromArray();
  }
  // Adopts items (may be null) and deletes the set held before, unless it is
  // the same object.
  void setAdjacentItems(AdjacencySet* items);
  // Adopts pairs, an array from new[] of n sorted, distinct pairs (or null
  // for none), in place of whatever set or array the counter held: the
  // lattice build and the readers hand their pairs over this way, without a
  // tree node per pair. A non-null array of 0 pairs stands for an empty set.
  void adoptPairArray(AdjacentPair* pairs, int n);
  // Empties the set but keeps it; nothing happens when there is none. On a
  // counter whose set has not been made yet, the empty set is made, which
  // may throw SeqExceptions::DictionaryFailure when memory runs out.
  void clearAdjacentItems();

  // Diagnostic listing on os (count line, gap statistics when there is a
  // bucket, the adjacency pairs when asked for and present). When a bucket or
  // adjacency set is printed, os is left in fixed notation with precision 2.
  void display(std::ostream& os, bool showAdjacent) const;

  // Binary record and XML element of the counter (implemented in io/).
  long writeObject(std::fstream& out) const;
  long readObject(std::fstream& in);
  long writeObjectXML(std::ostream& out) const;
  long readObjectXML(std::ifstream& in);

 private:
  // Makes the set from the array and publishes it, unless another thread
  // published one first; returns the published set.
  AdjacencySet* makeSetFromArray() const;
  // Deletes the array, if any.
  void dropPairArray();

  int count;
  int ordinalOfEntry;
  int maxMissed;
  // Pairs a reader left, or null; not read once the set exists.
  int nPacked;
  AdjacentPair* packed;
  StatsBucket* statsBucket;
  mutable std::atomic<AdjacencySet*> adjacentItems;
};

// The counter the dictionary makes for a new pattern. Note the argument order
// (ordinal, missed, count), which differs from SequenceCounter's on purpose.
class CarmaSequenceDescriptor : public SequenceCounter {
 public:
  CarmaSequenceDescriptor(int ordinalOfEntry, int maxMissed, int count);
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_STORE_SEQUENCEDESCRIPTOR_H_
