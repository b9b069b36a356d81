#include "seqlattice/export/collectitems.h"

#include <stdexcept>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/export/internal/patternlist.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

// Gives the entries of a map the numbers 1, 2, 3 ... in key order.
template <typename Map>
void NumberInKeyOrder(Map& map) {
  int number = 0;
  for (auto& entry : map) entry.second = ++number;
}

template <typename Map, typename Key>
int NumberOf(const Map& map, const Key& key) {
  const auto found = map.find(key);
  return found != map.end() ? found->second : -1;
}

}  // namespace

Sequence JoinedSequence(const SeqAssociationRule& rule) {
  Sequence joined(rule.GetAntecedent());
  if (rule.GetJoinType() == 0) {
    joined.JoinCurrent(&rule.GetConsequent());
  } else if (rule.GetJoinType() == 1) {
    joined.JoinTemporal(&rule.GetConsequent());
  }
  return joined;
}

CollectItems::CollectItems() = default;

CollectItems::CollectItems(std::vector<SeqAssociationRule>& rules) {
  for (const SeqAssociationRule& rule : rules) {
    const Sequence& antecedent = rule.GetAntecedent();
    const Sequence& consequent = rule.GetConsequent();
    const Sequence joined = JoinedSequence(rule);
    sequences_.emplace(antecedent, 0);
    sequences_.emplace(consequent, 0);
    sequences_.emplace(joined, 0);
    for (int i = 0; i < joined.Length(); ++i) {
      AddItemsAndSet(*joined[i], true);
    }
    // A current join merges the antecedent's last set with the consequent's
    // first, so the sets the two sides hold on their own are declared too.
    if (rule.GetJoinType() == 0) {
      for (int i = 0; i < antecedent.Length(); ++i) {
        AddItemsAndSet(*antecedent[i], false);
      }
      if (consequent.Length() > 0) AddItemsAndSet(*consequent[0], false);
    }
  }
  Number();
  nSequences_ = static_cast<int>(sequences_.size());
}

CollectItems::CollectItems(SequenceDictionary const* dictionary) {
  if (dictionary == nullptr) {
    throw std::invalid_argument("CollectItems: no dictionary given");
  }
  internal::PatternList list;
  const int largest = dictionary->LargestSequence();
  for (int k = 0; k <= largest; ++k) {
    list.Fill(*dictionary, k);
    nSequences_ += static_cast<int>(list.Patterns().size());
    for (Sequence const* pattern : list.Patterns()) {
      for (int i = 0; i < pattern->Length(); ++i) {
        const TimedItemSet& set = *(*pattern)[i];
        // Only a pattern of one set has a set of k items.
        if (set.Size() == k) AddItemsAndSet(set, k == 1);
      }
    }
  }
  Number();
}

void CollectItems::AddItemsAndSet(const TimedItemSet& set, bool withItems) {
  TimedItemSet key(set);
  key.SetTime(0.0);
  if (withItems) {
    for (const int* item = key.Begin(); item != key.End(); ++item) {
      items_.emplace(*item, 0);
    }
  }
  itemsets_.emplace(key, 0);
}

void CollectItems::Number() {
  NumberInKeyOrder(items_);
  NumberInKeyOrder(itemsets_);
  NumberInKeyOrder(sequences_);
}

int CollectItems::IndexOfUniqItem(int item) const {
  return NumberOf(items_, item);
}

// The keys are held with time 0; the set order ignores times, so the set
// itself finds the entry of its time-0 copy.
int CollectItems::IndexOfUniqItemset(TimedItemSet const& set) const {
  return NumberOf(itemsets_, set);
}

int CollectItems::IndexOfUniqSequence(Sequence const& sequence) const {
  return NumberOf(sequences_, sequence);
}

namespace {

// Writes "(key,number)" pairs separated by ","; printKey writes the key.
template <typename Map, typename PrintKey>
void DisplayPairs(std::ostream& os, const Map& map, PrintKey printKey) {
  os << "(";
  bool first = true;
  for (const auto& entry : map) {
    if (!first) os << ",";
    first = false;
    os << "(";
    printKey(entry.first);
    os << "," << entry.second << ")";
  }
  os << ")\n";
}

}  // namespace

void CollectItems::Display(std::ostream& os) const {
  os << "N of items = " << items_.size() << "\n(item,id) pairs: ";
  DisplayPairs(os, items_, [&os](int item) { os << item; });
  os << "N of item sets = " << itemsets_.size() << "\n(itemset,id) pairs: ";
  DisplayPairs(os, itemsets_,
               [](const TimedItemSet& set) { set.Display(true); });
  os << "N of sequences = " << sequences_.size() << "\n(sequence,id) pairs: ";
  DisplayPairs(os, sequences_,
               [](const Sequence& sequence) { sequence.Display(true); });
}

}  // namespace SEQUENCE_NAMESPACE_800
