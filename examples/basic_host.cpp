// A small host program: it builds customer sequences and pattern keys with
// the library and prints them with the library's own display operations.
#include <iostream>
#include <memory>

#include "seqlattice/seqlattice.h"

namespace {

using seqlattice::NTSequence;
using seqlattice::PackedSequence;
using seqlattice::Sequence;
using seqlattice::TimedItemSet;

// A transaction at the given time; the items may come in any order.
TimedItemSet Transaction(std::initializer_list<int> items, double time) {
  TimedItemSet set;
  set.AddAllItems(items.begin(), static_cast<int>(items.size()), time);
  return set;
}

void Explain(const char* text) { std::cout << "\n" << text << "\n"; }

}  // namespace

int main() {
  Explain("One transaction: items 5, 1, 3 entered in that order, at time 2.");
  const TimedItemSet basket = Transaction({5, 1, 3}, 2.0);
  basket.Display(true);
  std::cout << "\n";

  Explain("Customer A bought (1 5) at time 3, then (2) at time 7:");
  Sequence customerA;
  const TimedItemSet first = Transaction({5, 1}, 3.0);
  const TimedItemSet second = Transaction({2}, 7.0);
  customerA.AddTimedItemSet(&first);
  customerA.AddTimedItemSet(&second);
  customerA.Display(true);

  Explain("Customer B bought (4) at time 1, (2 9) at time 4, (6) at time 8:");
  Sequence customerB;
  for (const TimedItemSet& set :
       {Transaction({4}, 1.0), Transaction({9, 2}, 4.0),
        Transaction({6}, 8.0)}) {
    customerB.AddTimedItemSet(&set);
  }
  customerB.Display(true);

  Explain("Customer B's history joined after customer A's, without times:");
  Sequence joined(customerA);
  joined.JoinTemporal(&customerB);
  joined.Display(false);

  Explain("The pattern (1 2)(3) built from item set arrays {count, items}:");
  int set0[] = {2, 1, 2};
  int set1[] = {1, 3};
  int* sets[] = {set0, set1};
  const NTSequence fromArrays(sets, 2);
  fromArrays.display(std::cout);

  Explain("The pattern of customer B's sequence (times dropped):");
  const NTSequence fromB(&customerB);
  fromB.display(std::cout);

  Explain("That pattern extended by item 7 joining its second set (code 2):");
  NTSequence extended(fromB, 7, 2);
  extended.display(std::cout);

  Explain("The same pattern with item 7 (flat index 2) removed again:");
  NTSequence scratch;
  const int setVanished = scratch.removeItem(2, &extended);
  scratch.display(std::cout);
  std::cout << "a whole item set disappeared: " << (setVanished ? "yes" : "no")
            << "\n";

  Explain("The pattern turned back into a sequence (set k gets time k+1):");
  const std::unique_ptr<Sequence> back(scratch.createSequence());
  back->Display(true);

  Explain("Customer B as a timed pattern, with each set's time:");
  const PackedSequence timed(&customerB);
  timed.display(std::cout);

  Explain("May B's first two sets be merged within a span of 3? Of 2?");
  std::cout << "span 3: " << (timed.mergeOk(0b10, 3.0) ? "yes" : "no")
            << ", span 2: " << (timed.mergeOk(0b10, 2.0) ? "yes" : "no")
            << "\n";
  return 0;
}
