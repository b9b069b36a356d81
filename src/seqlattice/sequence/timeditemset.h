// TimedItemSet is one transaction of a customer: a set of integer items seen
// at one time. Items are kept ascending and free of duplicates as long as they
// enter through AddItem (every constructor and AddAllItems use it).
//
// The data live in a private implementation object that the TimedItemSet owns
// and deletes; the public object holds only that pointer and forwards.
//
// Assignment merges, by design: `a = b` adds b's items to a's and keeps a's
// time. It never clears first. Display writes to std::cout and leaves it in
// fixed notation with precision 0 when times are shown.
//
// Not safe for concurrent use.
#ifndef SEQLATTICE_SEQUENCE_TIMEDITEMSET_H_
#define SEQLATTICE_SEQUENCE_TIMEDITEMSET_H_

namespace SEQUENCE_NAMESPACE_800 {

class TimedItemSet {
 public:
  // No items, time 0.0.
  TimedItemSet();
  // No items, the given time. The size hint is accepted and not used.
  TimedItemSet(int sizeHint, double time);
  // The other's time and, through AddItem, its items.
  TimedItemSet(const TimedItemSet& other);
  // Adds the other's items to the ones held; keeps this object's time.
  TimedItemSet& operator=(const TimedItemSet& other);
  ~TimedItemSet();

  // Inserts in ascending order; an item already present is ignored.
  void AddItem(int item);
  // Replaces the items by the n given ones (sorted, duplicates dropped) and
  // sets the time.
  void AddAllItems(const int* items, int n, double time);
  // No items, time 0.0.
  void Clear();

  void SetTime(double time);
  double GetTime() const;
  int Size() const;

  // The items in ascending order, from Begin() up to but excluding End().
  // Valid until the set is next changed.
  const int* Begin() const;
  const int* End() const;

  // Lexicographic on the items; a proper prefix is less. Times are ignored.
  bool operator<(const TimedItemSet& other) const;
  // Same items, and times less than the double epsilon apart (an absolute
  // tolerance; a NaN time is never equal).
  bool operator==(const TimedItemSet& other) const;

  // Prints "(1 5)", or "(1 5[3])" with the time, on std::cout. No newline.
  void Display(bool showTime) const;

 private:
  class TimedItemSetImp;
  TimedItemSetImp* imp_;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_SEQUENCE_TIMEDITEMSET_H_
