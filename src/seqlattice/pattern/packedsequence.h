// PackedSequence is the timed counterpart of NTSequence: the same flat item
// array and set-boundary bit word, plus a (first time, last time) pair per
// item set. Hosts use it to keep patterns with their times, for example to
// check with mergeOk whether neighbouring sets may be merged under a time
// span; an NTSequence can be refilled from it.
//
// Unlike NTSequence, the buffers carry capacities and are reused when large
// enough: reuseAs only ever grows them. A default-constructed object has no
// buffers at all. The hash uses other constants than NTSequence's, so the two
// classes hash the same pattern differently.
//
// Ownership: the object owns its three arrays; assignment releases the ones
// it replaces. Little is range-checked: removeItem throws std::length_error
// rather than write past its buffers, and the hash refuses patterns of more
// than 31 items (std::length_error). The time accessors take unchecked set
// indexes.
//
// Not safe for concurrent use.
#ifndef SEQLATTICE_PATTERN_PACKEDSEQUENCE_H_
#define SEQLATTICE_PATTERN_PACKEDSEQUENCE_H_

#include <iosfwd>
#include <utility>

namespace SEQUENCE_NAMESPACE_800 {

class Sequence;
class NTSequence;

class PackedSequence {
 public:
  // Empty, no buffers.
  PackedSequence();
  // Sets in the int** convention (see NTSequence); set k gets the times
  // startTimes[k] and endTimes[k].
  PackedSequence(int** sets, const double* startTimes, const double* endTimes,
                 int nSets);
  // As above, both times of set k being times[k].
  PackedSequence(int** sets, const double* times, int nSets);
  // All item sets of *seq; both times of set k are its k-th set's time.
  explicit PackedSequence(const Sequence* seq);
  // Deep copy with capacities equal to the sizes; hash copied.
  PackedSequence(const PackedSequence& other);
  // As the copy constructor; releases the arrays held before.
  PackedSequence& operator=(const PackedSequence& other);
  ~PackedSequence();

  // Refill with the meaning of the matching constructor, growing the buffers
  // only when they are too small. The first three recompute the hash; the
  // last copies p's hash code.
  void reuseAs(int** sets, const double* startTimes, const double* endTimes,
               int nSets);
  void reuseAs(int** sets, const double* times, int nSets);
  void reuseAs(const Sequence* seq);
  void reuseAs(const PackedSequence* p);

  int size() const { return size_; }
  int getNSets() const { return nSets_; }
  long getPattern() const { return pattern_; }
  int getHashCode() const { return hashCode_; }
  int getItemsCapacity() const { return itemsCapacity_; }
  int getSetCapacity() const { return setCapacity_; }
  // As NTSequence::getSizeOfSet / getItemInSet.
  int getSizeOfSet(int s) const;
  int getItemInSet(int i, int s) const;

  // (first time, last time) of set s.
  std::pair<double, double> getTimeForSet(int s) const;
  void setTimeForSet(std::pair<double, double> t, int s);

  // mergeMask has one bit per boundary between neighbouring sets, the
  // boundary after set i being bit nSets-2-i. True when every run of sets to
  // be merged spans at most maxSpan, from the first set's start time to the
  // last set's end time.
  bool mergeOk(int mergeMask, double maxSpan) const;

  // The hash of the current content (not necessarily the cached one).
  int computeHash() const;

  // Hash code, pattern word, size, then items; times are not compared.
  bool operator==(const PackedSequence& other) const;

  // As NTSequence::removeItem; every remaining set keeps the times of the src
  // set it comes from. Writes into the existing buffers: throws
  // std::length_error when they are too small, std::out_of_range when k is
  // not an item index of a non-empty src.
  int removeItem(int k, PackedSequence* src);

  // As NTSequence::display, each set closing with "[start,end])"; leaves os
  // in fixed notation with precision 0.
  void display(std::ostream& os) const;

  // Saved formats; defined with the persistence code (io/).
  long writeObject(std::fstream& out) const;  // binary record
  long readObject(std::fstream& in);
  long writeObjectXML(std::ostream& out) const;  // XML object element
  long readObjectXML(std::ifstream& in);

 private:
  friend class NTSequence;  // reuseAs(const PackedSequence*) reads the items

  // Grows items_ to at least nItems slots and the time arrays to at least
  // nSets slots, reallocating to exactly those sizes when too small.
  void reserve(int nItems, int nSets);
  // Releases the three arrays and zeroes the capacities.
  void release();
  // Sets the shape fields after the items were written, and the hash.
  void adopt(int size, int nSets, long pattern);

  int size_ = 0;                  // items in all sets
  int itemsCapacity_ = 0;         // slots of items_
  int nSets_ = 0;                 // item sets
  int setCapacity_ = 0;           // slots of startTimes_ and endTimes_
  int hashCode_ = 0;              // cached hash
  long pattern_ = 0;              // set-boundary bits, as in NTSequence
  int* items_ = nullptr;          // owned
  double* startTimes_ = nullptr;  // owned, per set: first time
  double* endTimes_ = nullptr;    // owned, per set: last time
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_PATTERN_PACKEDSEQUENCE_H_
