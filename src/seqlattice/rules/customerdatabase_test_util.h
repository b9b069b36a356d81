// Test and benchmark support: a customer database written as nested vectors,
// a plain level-wise count of the patterns it contains, and a dictionary filled
// the way a host fills one (patterns with their exact counts, N as the count
// of the empty pattern, then the lattice). Header-only, so that the tests and
// the benchmarks share it without it entering the library.
#ifndef SEQLATTICE_RULES_CUSTOMERDATABASE_TEST_UTIL_H_
#define SEQLATTICE_RULES_CUSTOMERDATABASE_TEST_UTIL_H_

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/pattern/pattern_test_util.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

typedef std::vector<int> ItemSet;      // ascending items
typedef std::vector<ItemSet> History;  // item sets in time order
typedef std::vector<History> CustomerDatabase;

// Adds to `out` the patterns of `target` items that the history contains and
// that grow from `pattern` (whose last set is matched at history set `last`,
// -1 for the empty pattern) one item at a time, in pattern order: into the
// last set after its last item, or as a new set at a later history set. Only
// patterns in `frequent` are grown further, which is how every pattern of a
// frequent one's prefixes stays frequent.
inline void collectPatterns(const History& history, int last, History& pattern,
                            int items, int target,
                            const std::set<History>& frequent,
                            std::set<History>& out) {
  if (items == target) {
    out.insert(pattern);
    return;
  }
  if (items > 0 && frequent.count(pattern) == 0) return;
  if (last >= 0) {
    for (int item : history[last]) {
      if (item <= pattern.back().back()) continue;
      pattern.back().push_back(item);
      collectPatterns(history, last, pattern, items + 1, target, frequent, out);
      pattern.back().pop_back();
    }
  }
  for (size_t t = last + 1; t < history.size(); ++t) {
    for (int item : history[t]) {
      pattern.push_back(ItemSet(1, item));
      collectPatterns(history, static_cast<int>(t), pattern, items + 1, target,
                      frequent, out);
      pattern.pop_back();
    }
  }
}

// Support counts, level by level: every pattern of at most maxItems items
// that at least minCount customers contain (each customer counted once), its
// sets mapping in order to distinct item sets of the customer, each set a
// subset of its item set.
inline std::map<History, int> countPatterns(const CustomerDatabase& db,
                                            int minCount, int maxItems) {
  std::map<History, int> result;
  std::set<History> frequent;
  for (int size = 1; size <= maxItems; ++size) {
    std::map<History, int> counts;
    for (const History& history : db) {
      std::set<History> contained;
      History pattern;
      collectPatterns(history, -1, pattern, 0, size, frequent, contained);
      for (const History& p : contained) ++counts[p];
    }
    bool any = false;
    for (const auto& entry : counts) {
      if (entry.second < minCount) continue;
      result.insert(entry);
      frequent.insert(entry.first);
      any = true;
    }
    if (!any) break;
  }
  return result;
}

// Stores `pattern` with the given count through the host's int** interface,
// under a CarmaSequenceDescriptor (test::addPattern stores a plain
// SequenceCounter).
inline void addCarmaPattern(SequenceDictionary& dict, const History& pattern,
                            int count) {
  PatternArrays arrays(pattern);
  CarmaSequenceDescriptor counter(0, 0, count);
  dict.addSequence(arrays.sets(), arrays.nSets(), &counter);
}

// Fills an empty dictionary with every pattern the database contains at least
// minCount times (of up to getNLevels() - 1 items), with N = db.size().
inline void fillDictionary(SequenceDictionary& dict, const CustomerDatabase& db,
                           int minCount, bool withLattice = true) {
  int* none[1] = {nullptr};
  for (size_t c = 0; c < db.size(); ++c) dict.incrementCount(none, 0);
  for (const auto& entry : countPatterns(db, minCount, dict.getNLevels() - 1)) {
    addCarmaPattern(dict, entry.first, entry.second);
  }
  if (withLattice) dict.buildLattice();
}

// A dictionary of nLevels levels filled as fillDictionary says.
inline std::unique_ptr<SequenceDictionary> buildDictionary(
    const CustomerDatabase& db, int minCount, int nLevels = 10,
    bool withLattice = true) {
  std::unique_ptr<SequenceDictionary> dict(new SequenceDictionary(nLevels));
  fillDictionary(*dict, db, minCount, withLattice);
  return dict;
}

// The history as a Sequence, item set k at time firstTime + k * step.
inline Sequence toSequence(const History& history, double firstTime = 1.0,
                           double step = 1.0) {
  Sequence result(static_cast<int>(history.size()));
  for (size_t k = 0; k < history.size(); ++k) {
    TimedItemSet set(static_cast<int>(history[k].size()),
                     firstTime + static_cast<double>(k) * step);
    for (int item : history[k]) set.AddItem(item);
    result.AddTimedItemSet(&set);
  }
  return result;
}

// "(1)(2 3)": the item sets in order, times left out.
inline std::string show(const Sequence& sequence) {
  std::string text;
  for (int k = 0; k < sequence.Length(); ++k) {
    const TimedItemSet* set = sequence[k];
    text += "(";
    for (const int* item = set->Begin(); item != set->End(); ++item) {
      if (item != set->Begin()) text += " ";
      text += std::to_string(*item);
    }
    text += ")";
  }
  return text;
}

// The same for a pattern.
inline std::string show(const NTSequence& p) {
  const std::unique_ptr<Sequence> sequence(p.createSequence());
  return show(*sequence);
}

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RULES_CUSTOMERDATABASE_TEST_UTIL_H_
