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
// CarmaSequenceDescriptor is the kind of counter the dictionary creates. It
// adds nothing but a constructor and is deleted through SequenceCounter*,
// which has no virtual destructor on purpose: a counter is kept small and is
// never used polymorphically. Do not give the derived class state of its own.
//
// Not safe for concurrent use.
#ifndef SEQLATTICE_STORE_SEQUENCEDESCRIPTOR_H_
#define SEQLATTICE_STORE_SEQUENCEDESCRIPTOR_H_

#include <fstream>
#include <ostream>
#include <set>
#include <utility>

#include "seqlattice/store/statsbucket.h"

namespace SEQUENCE_NAMESPACE_800 {

class SequenceCounter {
 public:
  // (item, position code) pairs, ordered by item, then by position.
  typedef std::set<std::pair<int, int>> AdjacencySet;

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
  // The set (may be null); the counter keeps it.
  AdjacencySet* getAdjacentItems() const { return adjacentItems; }
  // Adopts items (may be null) and deletes the set held before, unless it is
  // the same object.
  void setAdjacentItems(AdjacencySet* items);
  // Empties the set but keeps it; nothing happens when there is none.
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
  int count;
  int ordinalOfEntry;
  int maxMissed;
  StatsBucket* statsBucket;
  AdjacencySet* adjacentItems;
};

// The counter the dictionary makes for a new pattern. Note the argument order
// (ordinal, missed, count), which differs from SequenceCounter's on purpose.
class CarmaSequenceDescriptor : public SequenceCounter {
 public:
  CarmaSequenceDescriptor(int ordinalOfEntry, int maxMissed, int count);
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_STORE_SEQUENCEDESCRIPTOR_H_
