// The flat pattern encoding shared by NTSequence and PackedSequence: items of
// all sets one after the other, and a bit word in which item i of n owns bit
// n-1-i, set when the item closes its set. Both classes keep their own fields;
// these functions work on the raw parts so that the two encodings cannot
// drift apart. Library-internal: hosts do not include it.
#ifndef SEQLATTICE_PATTERN_INTERNAL_PATTERNCODE_H_
#define SEQLATTICE_PATTERN_INTERNAL_PATTERNCODE_H_

#include <ostream>

namespace SEQUENCE_NAMESPACE_800 {

class Sequence;

namespace patterncode {

// The boundary mark of the first of n items: the 32-bit 1 shifted left by
// n-1, widened with sign. It is negative at 32 items and 0 beyond, so every
// walk `for (mark = FirstMark(n); mark > 0; mark >>= 1)` stops at once there.
long FirstMark(int n);

// Sum of the counts of sets in the int** convention. Throws
// std::invalid_argument for a negative set or item count.
int CountItems(int** sets, int nSets);
// Total items of the item sets 0 .. end-1 of seq.
int CountItems(const Sequence& seq, int end);

// The hash factor table: 40 entries. The timed pattern hashes with its last
// 32 (from kTimedFactorOffset on).
extern const long kFactors[];
constexpr int kFactorCount = 40;
constexpr int kTimedFactorOffset = 8;

// Result of building or rewriting a pattern.
struct Shape {
  int size = 0;
  int nSets = 0;
  long pattern = 0;
};

// Appends items and set boundaries to a caller's array, building the bit
// word: a shift per item, plus one after each set.
class Builder {
 public:
  explicit Builder(int* out) : out_(out) {}
  void Add(int item) {
    out_[shape_.size++] = item;
    bits_ <<= 1;
  }
  void CloseSet() {
    bits_ += 1;
    ++shape_.nSets;
  }
  Shape Done() {
    shape_.pattern = static_cast<long>(bits_);
    return shape_;
  }

 private:
  int* out_;
  Shape shape_;
  unsigned long bits_ = 0;
};

// Copy sets in the int** convention into out (room for CountItems).
Shape FromSets(int** sets, int nSets, int* out);
// Copy the item sets 0 .. end-1 of seq into out; per set k, times[k] gets
// the set's time when times is not null.
Shape FromSequence(const Sequence& seq, int end, int* out, double* times);

// First flat index and item count of set s; false when there is no set s.
bool FindSet(int size, long pattern, int s, int* first, int* count);
// Item count of set s, 0 when there is no set s.
int SizeOfSet(int size, long pattern, int s);
// Item i of set s, 0 when there is no such item.
int ItemInSet(const int* items, int size, long pattern, int i, int s);

// The hash of a pattern. `factors` holds at least size + 1 entries when
// size >= 3 (std::length_error otherwise, given the table length);
// (c0, c1) weigh the two items of a two-item pattern.
int Hash(const int* items, int size, long pattern, const long* factors,
         int nFactors, long c0, long c1);

// Removal of flat item k of a source pattern into out, which has room for
// `capacity` items and may equal items. `result` is 1 when a whole set
// vanished; `removedSet` is the source set the item belonged to. An empty
// source gives an empty shape and result 0, whatever k. Throws
// std::out_of_range when k is not an item index and std::length_error when
// out is too small, before writing anything.
struct Removal {
  Shape shape;
  int result = 0;
  int removedSet = 0;
};
Removal Remove(const int* items, int size, long pattern, int k, int* out,
               int capacity);

// "HashCode  h\nPattern  p\n"
void WriteHeader(std::ostream& os, int hashCode, long pattern);
// "<", each set as "(" items separated by " " then closeSet(os, setIndex),
// ">\n".
template <typename CloseSet>
void WriteSets(std::ostream& os, const int* items, int size, long pattern,
               CloseSet closeSet) {
  os << "<";
  bool opening = true;
  int set = 0;
  int i = 0;
  for (long mark = FirstMark(size); mark > 0; mark >>= 1, ++i) {
    if (opening) os << "(";
    os << items[i];
    opening = (pattern & mark) != 0;
    if (opening) {
      closeSet(os, set++);
    } else {
      os << " ";
    }
  }
  os << ">\n";
}

}  // namespace patterncode
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_PATTERN_INTERNAL_PATTERNCODE_H_
