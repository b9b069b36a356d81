// CollectItems gives the items, item sets and sequences that a model document
// declares once a number each, so that the document can refer to them by
// number. Built from a rule list (the PMML sequence model) or from a whole
// dictionary (the lattice document).
//
// Numbers start at 1 in each of the three maps and follow key order (item
// code; TimedItemSet order; Sequence order), not the order of discovery. Item
// set keys are held with time 0, so a look-up finds a set whatever its time.
//
// From a dictionary, items come from the one-item patterns only and item sets
// from the one-set patterns only; the sequence map stays empty while
// GetNSequences() counts every stored pattern of every level up to
// LargestSequence(), the empty pattern included.
//
// The collection owns copies of everything it holds and keeps no reference
// to the rules or the dictionary. Not safe for concurrent use.
#ifndef SEQLATTICE_EXPORT_COLLECTITEMS_H_
#define SEQLATTICE_EXPORT_COLLECTITEMS_H_

#include <map>
#include <ostream>
#include <vector>

#include "seqlattice/rules/seqassociationrule.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"

namespace SEQUENCE_NAMESPACE_800 {

class SequenceDictionary;

// The rule's whole pattern: a copy of the antecedent joined with the
// consequent by JoinCurrent (join type 0) or JoinTemporal (join type 1); for
// any other join type the antecedent alone. A join type 0 rule with an empty
// side throws std::invalid_argument.
Sequence JoinedSequence(const SeqAssociationRule& rule);

class CollectItems {
 public:
  typedef std::map<int, int> ItemMap;
  typedef std::map<TimedItemSet, int> ItemsetMap;
  typedef std::map<Sequence, int> SequenceMap;

  // Empty maps, no sequences.
  CollectItems();
  // The antecedent, consequent and joined sequence of every rule, the items
  // and item sets of the joined sequences and, for join type 0, also the
  // item sets of the antecedent and the first set of the consequent.
  explicit CollectItems(std::vector<SeqAssociationRule>& rules);
  // Items of the dictionary's one-item patterns, item sets of its one-set
  // patterns. Throws std::invalid_argument for a null dictionary and
  // std::bad_alloc when the dictionary cannot list its patterns.
  explicit CollectItems(SequenceDictionary const* dictionary);

  int GetNUniqItems() const { return static_cast<int>(items_.size()); }
  int GetNUniqItemsets() const { return static_cast<int>(itemsets_.size()); }
  // The number of sequences counted at construction (see above).
  int GetNSequences() const { return nSequences_; }

  const ItemMap& GetUniqItems() const { return items_; }
  const ItemsetMap& GetUniqItemsets() const { return itemsets_; }
  const SequenceMap& GetUniqSequences() const { return sequences_; }

  // The entry's number, or -1 when absent. Item sets match whatever their
  // time; sequences by their item sets only, as their order compares them.
  int IndexOfUniqItem(int item) const;
  int IndexOfUniqItemset(TimedItemSet const& set) const;
  int IndexOfUniqSequence(Sequence const& sequence) const;

  // Three blocks of "N of ... = n" and the (key,number) pairs. Item set and
  // sequence keys are printed by their own Display, which writes to
  // std::cout (and leaves it in fixed notation with precision 0): pass
  // std::cout for one coherent listing.
  void Display(std::ostream& os) const;

 private:
  // Enters a time-0 copy of the set and, when withItems, its items.
  void AddItemsAndSet(const TimedItemSet& set, bool withItems);
  void Number();

  ItemMap items_;
  ItemsetMap itemsets_;
  SequenceMap sequences_;
  int nSequences_ = 0;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_EXPORT_COLLECTITEMS_H_
