// Sequence is a customer's history: an ordered list of transactions
// (TimedItemSet). The order is the order of insertion; nothing sorts by time.
//
// The Sequence owns a private implementation object, which owns a copy of
// every item set put into it: AddTimedItemSet, the joins and assignment copy
// and never keep the caller's object. Objects returned by operator[] stay the
// sequence's.
//
// Deliberate quirks kept for compatibility with saved models and hosts:
//  - assignment appends the other's sets after the ones held (no clear);
//  - operator[] and GetTimeOfTimedItemSet only reject an index greater than
//    the length, by throwing KvCommon_850::KvStatus with code kStatusIndexError
//    (60001). An index equal to the length, or a negative one, is let through;
//    here it yields a null pointer or a NaN time rather than reading outside
//    the array.
// Display writes to std::cout, not to a stream argument.
//
// Not safe for concurrent use.
#ifndef SEQLATTICE_SEQUENCE_SEQUENCE_H_
#define SEQLATTICE_SEQUENCE_SEQUENCE_H_

#include "seqlattice/sequence/timeditemset.h"

namespace SEQUENCE_NAMESPACE_800 {

class Sequence {
 public:
  // Empty, with room for 2 item sets.
  Sequence();
  // Empty, with room for n item sets.
  explicit Sequence(int n);
  // Copies of every item set of the other, in order.
  Sequence(const Sequence& other);
  // Appends copies of the other's item sets after the ones held.
  Sequence& operator=(const Sequence& other);
  ~Sequence();

  // Appends a copy of *s.
  void AddTimedItemSet(const TimedItemSet* s);

  // Number of item sets.
  int Length() const;
  // Total number of items over all item sets.
  int Size() const;

  // The item set at index i; throws KvStatus(kStatusIndexError) carrying i and
  // Length() as discrete data when i > Length(). Null when i == Length() or i <
  // 0.
  const TimedItemSet* operator[](int i) const;
  // The time of the item set at index i; throws KvStatus(kStatusIndexError)
  // carrying i when i > Length(). NaN when i == Length() or i < 0.
  double GetTimeOfTimedItemSet(int i) const;

  // Deletes all item sets.
  void Clear();

  // Appends copies of all the other's item sets.
  void JoinTemporal(const Sequence* other);
  // Merges the other's first item set into this sequence's last one (keeping
  // this one's time) and appends copies of the rest. Both sequences must be
  // non-empty; otherwise std::invalid_argument is thrown.
  void JoinCurrent(const Sequence* other);

  // Lexicographic on the item sets (TimedItemSet::operator<); times ignored.
  bool operator<(const Sequence& other) const;
  // Same length and every item set equal, times included.
  bool operator==(const Sequence& other) const;

  // Prints "<(1 5[3])(2[7])>" and a newline on std::cout (times when
  // showTime is true).
  void Display(bool showTime) const;

 private:
  class SequenceImp;
  SequenceImp* imp_;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_SEQUENCE_SEQUENCE_H_
