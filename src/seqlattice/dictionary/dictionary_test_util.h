// Helpers shared by the dictionary's tests: patterns written as nested
// vectors, {{1, 2}, {3}} standing for (1 2)(3), stored through the host's int**
// arrays (pattern_test_util.h), turned into Sequences and back into text.
#ifndef SEQLATTICE_DICTIONARY_DICTIONARY_TEST_UTIL_H_
#define SEQLATTICE_DICTIONARY_DICTIONARY_TEST_UTIL_H_

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/pattern/pattern_test_util.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

using Adjacency = std::set<std::pair<int, int>>;

// A new Sequence whose set k has the time k + 1.
inline std::unique_ptr<Sequence> newSequence(const Sets& sets) {
  std::unique_ptr<Sequence> sequence(new Sequence());
  addSets(*sequence, sets);
  return sequence;
}

// Stores a pattern with a counter of the given values.
inline void addPattern(SequenceDictionary& dictionary, const Sets& sets,
                       int count, int ordinal = 0, int missed = 0) {
  PatternArrays arrays(sets);
  SequenceCounter counter(ordinal, count, nullptr);
  counter.setMaxMissed(missed);
  dictionary.addSequence(arrays.sets(), arrays.nSets(), &counter);
}

// Stores (1) and (2) with count 3, and (1 2) and (1)(2) with count 2: item 2
// extends (1) both by joining its set and by following it.
inline void addPairPatterns(SequenceDictionary& dictionary) {
  addPattern(dictionary, {{1}}, 3);
  addPattern(dictionary, {{2}}, 3);
  addPattern(dictionary, {{1, 2}}, 2);
  addPattern(dictionary, {{1}, {2}}, 2);
}

inline SequenceCounter* counterOf(SequenceDictionary& dictionary,
                                  const Sets& sets) {
  PatternArrays arrays(sets);
  return dictionary.getDescriptor(arrays.sets(), arrays.nSets());
}

inline bool stored(SequenceDictionary& dictionary, const Sets& sets) {
  PatternArrays arrays(sets);
  return dictionary.hasSequence(arrays.sets(), arrays.nSets());
}

// The adjacency pairs of a stored pattern; empty when it has no set.
inline Adjacency adjacencyOf(SequenceDictionary& dictionary, const Sets& sets) {
  SequenceCounter* counter = counterOf(dictionary, sets);
  if (counter == nullptr || counter->getAdjacentItems() == nullptr) return {};
  return *counter->getAdjacentItems();
}

// "(1 2)(3)"; with times "(1 2)[1](3)[2]".
inline std::string text(const Sequence& sequence, bool withTimes = false) {
  std::string out;
  for (int k = 0; k < sequence.Length(); ++k) {
    const TimedItemSet* set = sequence[k];
    out += "(";
    for (const int* item = set->Begin(); item != set->End(); ++item) {
      if (item != set->Begin()) out += " ";
      out += std::to_string(*item);
    }
    out += ")";
    if (withTimes) {
      out += "[" + std::to_string(static_cast<int>(set->GetTime())) + "]";
    }
  }
  return out;
}

// The texts of found sequences, which are deleted.
inline std::set<std::string> takeTexts(std::set<Sequence*>& found) {
  std::set<std::string> texts;
  for (Sequence* sequence : found) {
    texts.insert(text(*sequence));
    delete sequence;
  }
  found.clear();
  return texts;
}

inline std::vector<std::string> takeTexts(std::vector<Sequence const*>& found) {
  std::vector<std::string> texts;
  for (Sequence const* sequence : found) {
    texts.push_back(text(*sequence, true));
    delete sequence;
  }
  found.clear();
  return texts;
}

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_DICTIONARY_DICTIONARY_TEST_UTIL_H_
