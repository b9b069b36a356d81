// NTSequence is the pattern key of the store: a sequence pattern without
// times, i.e. an ordered list of item sets, held as one flat item array plus a
// set-boundary bit word, with its hash code cached.
//
// Encoding: item i of n owns bit n-1-i of the pattern word, which is 1 when
// the item is the last of its set. So (x y z) is 1, (x)(y z) is 5, (x y)(z)
// is 3. Walks over the items start from the 32-bit mark 1 << (n-1), which
// limits a pattern to 31 items; the hash of three or more items reads a
// 40-entry factor table, so 39 items is a hard ceiling (computeHash throws
// std::length_error beyond it).
//
// Item sets handed to the builders (int**, Sequence, PackedSequence) must not
// be empty: an empty set adds a boundary without an item and corrupts the
// marks. The int** convention: sets[k][0] is the count of set k, followed by
// its items.
//
// Extension position codes: 2k puts the item into set k (in sorted place);
// 2k+1 makes it a new one-item set at index k.
//
// Ownership: the object owns its item array. A default-constructed object has
// a 32-slot array, the scratch buffer into which removeItem builds patterns
// without allocating; removeItem throws std::length_error rather than write
// past the array. Assignment releases the array it replaces.
//
// The hash code is recomputed by every constructor and mutator, except
// reuseAs(const PackedSequence*), which copies the timed pattern's hash
// (computed with other constants) on purpose. A pattern stored as a hash
// table key must not be mutated.
//
// Not safe for concurrent use.
#ifndef SEQLATTICE_PATTERN_NTSEQUENCE_H_
#define SEQLATTICE_PATTERN_NTSEQUENCE_H_

#include <iosfwd>

namespace SEQUENCE_NAMESPACE_800 {

class Sequence;
class PackedSequence;

class NTSequence {
 public:
  // Empty pattern with the 32-slot scratch array.
  NTSequence();
  // One set: set[0] items follow in set[1] ... set[set[0]].
  explicit NTSequence(int* set);
  // nSets sets in the int** convention, copied in the order given.
  NTSequence(int** sets, int nSets);
  // Deep copy; the hash code is copied, not recomputed.
  NTSequence(const NTSequence& other);
  // src extended by item at the given position code (see above). Throws
  // std::out_of_range for a position that names no set.
  NTSequence(const NTSequence& src, int item, int position);
  // From the first seq.Length() - dropLast item sets of seq; times ignored.
  // Throws std::out_of_range when dropLast is negative or above the length.
  NTSequence(const Sequence& seq, int dropLast);
  // From all item sets of *seq.
  explicit NTSequence(const Sequence* seq);
  // Copies all fields and items into a fresh array; releases the old one.
  NTSequence& operator=(const NTSequence& other);
  ~NTSequence();

  // Refill in place. The array is reallocated (to exactly the new item
  // count) only when the new item count differs from size().
  void reuseAs(int** sets, int nSets);
  void reuseAs(const Sequence* seq);
  // Takes items, sets and pattern word from p, and p's hash code as it is.
  void reuseAs(const PackedSequence* p);

  int size() const { return size_; }
  int getNSets() const { return nSets_; }
  long getPattern() const { return pattern_; }
  // The cached hash code (what hash tables bucket by).
  int getHashCode() const { return hashCode_; }
  // Number of items of set s; 0 when s is not a set index.
  int getSizeOfSet(int s) const;
  // Item i of set s; 0 when there is no such item (0 is also a valid item:
  // check with getSizeOfSet first).
  int getItemInSet(int i, int s) const;
  // Copies the items of set s to out[0], out[1], ...; out must have room.
  void getSetAsArray(int s, int* out) const;
  // Flat index of the first item equal to item, or -1.
  int getItemIndex(int item) const;

  // The hash of the current content (not necessarily the cached one).
  int computeHash() const;

  // Hash code, pattern word, size, then items.
  bool operator==(const NTSequence& other) const;
  // Strict order over flat positions; at equal items the pattern whose set
  // closes there sorts first, and a proper prefix sorts first.
  bool operator<(const NTSequence& other) const;

  // A new Sequence owned by the caller; set k gets the time k + 1.
  Sequence* createSequence() const;

  // Prints "HashCode  h", "Pattern  p" and "<(3 7)(9)>", one per line.
  void display(std::ostream& os) const;

  // Appends a new last set holding only item.
  void addItemAfterLast(int item);
  // Inserts item into set s after any equal items. Throws std::out_of_range
  // when s is not a set index.
  void addItemToSet(int item, int s);
  // Makes this a copy of *src without its item at flat index k. Returns 1
  // when a whole set disappeared, 0 otherwise (and for an empty src). Writes
  // into the existing array: throws std::length_error when it is too small,
  // std::out_of_range when k is not an item index of a non-empty src.
  int removeItem(int k, NTSequence* src);

  // Saved formats; defined with the persistence code (io/).
  long writeObject(std::fstream& out) const;  // binary record
  long readObject(std::fstream& in);
  long writeObjectXML(std::ostream& out) const;  // XML object element
  long readObjectXML(std::ifstream& in);

 private:
  // An empty pattern without an array. The other constructors delegate here,
  // so that the destructor releases what they allocated if they throw.
  struct NoItems {};
  explicit NTSequence(NoItems) {}

  // Releases the item array and allocates one of n slots (contents
  // undefined). Every replacement of items_ goes through here so that
  // itemsCapacity_ stays right.
  void replaceItems(int n);
  // The shared part of the copy constructor and assignment.
  void copyFrom(const NTSequence& other);
  // Refill from the item sets 0 .. end-1 of seq (reuseAs' reallocation rule).
  void fillFrom(const Sequence& seq, int end);
  // Sets the shape fields after the items were written, and the hash.
  void adopt(int size, int nSets, long pattern);
  void swap(NTSequence& other) noexcept;

  int size_ = 0;          // items in all sets
  int nSets_ = 0;         // item sets
  int hashCode_ = 0;      // cached computeHash() (see above)
  long pattern_ = 0;      // set-boundary bits
  int* items_ = nullptr;  // owned, itemsCapacity_ slots, size_ in use
  int itemsCapacity_ = 0;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_PATTERN_NTSEQUENCE_H_
