#include "support/sequencelabels.h"

#include <algorithm>
#include <climits>
#include <optional>
#include <set>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/hashpairseq.h"

namespace seqlattice_cli {

using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::TimedItemSet;

int unknownItemCode(const SEQUENCE_NAMESPACE_800::SequenceDictionary& dict) {
  std::set<int> used;
  if (const auto* level1 = dict.getLevel(1)) {
    for (auto at = level1->begin(); at != level1->end(); ++at) {
      used.insert(at->key->getItemInSet(0, 0));
    }
  }
  int code = INT_MIN;
  while (used.count(code) != 0) ++code;
  return code;
}

Sequence makeSequence(const LabelSets& sets,
                      const SEQUENCE_NAMESPACE_800::input::ItemLabels& labels,
                      int unknownCode, std::vector<std::string>* unknown) {
  Sequence sequence(static_cast<int>(sets.size()));
  double time = 0;
  for (const auto& set : sets) {
    TimedItemSet itemSet(static_cast<int>(set.size()), time++);
    for (const std::string& label : set) {
      std::optional<int> code = labels.codeOf(label);
      if (!code && unknown != nullptr) unknown->push_back(label);
      itemSet.AddItem(code ? *code : unknownCode);
    }
    sequence.AddTimedItemSet(&itemSet);
  }
  return sequence;
}

Sequence customerSequence(
    const SEQUENCE_NAMESPACE_800::mining::SequenceDatabase& db, std::size_t c,
    long sets) {
  Sequence customer;
  auto end = db.endTransaction(c);
  if (sets >= 0) {
    end = std::min<decltype(end)>(
        end, db.firstTransaction(c) + static_cast<decltype(end)>(sets));
  }
  for (auto t = db.firstTransaction(c); t < end; ++t) {
    TimedItemSet set;
    set.AddAllItems(db.itemsBegin(t),
                    static_cast<int>(db.itemsEnd(t) - db.itemsBegin(t)),
                    db.time(t));
    customer.AddTimedItemSet(&set);
  }
  return customer;
}

Json sequenceCell(const Sequence& sequence,
                  const SEQUENCE_NAMESPACE_800::input::ItemLabels& labels) {
  Json sets = Json::array();
  for (int s = 0; s < sequence.Length(); ++s) {
    Json set = Json::array();
    const TimedItemSet* itemSet = sequence[s];
    for (const int* item = itemSet->Begin(); item != itemSet->End(); ++item) {
      set.push_back(labels.labelOf(*item));
    }
    sets.push_back(std::move(set));
  }
  return sets;
}

}  // namespace seqlattice_cli
