// Helpers shared by the dictionary's tests: patterns written as nested
// vectors, {{1, 2}, {3}} standing for (1 2)(3), turned into the host's int**
// arrays, into Sequences and back into text.
#ifndef SEQLATTICE_DICTIONARY_DICTIONARY_TEST_UTIL_H_
#define SEQLATTICE_DICTIONARY_DICTIONARY_TEST_UTIL_H_

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace dictionary_test {

using Sets = std::vector<std::vector<int>>;
using Adjacency = std::set<std::pair<int, int>>;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;
using SEQUENCE_NAMESPACE_800::TimedItemSet;

// The int** form of a pattern: sets()[k][0] is the size of set k, followed
// by its items.
class PatternArrays {
 public:
  explicit PatternArrays(const Sets& sets) {
    for (const std::vector<int>& set : sets) {
      std::vector<int> row(1, static_cast<int>(set.size()));
      row.insert(row.end(), set.begin(), set.end());
      rows_.push_back(row);
    }
    for (std::vector<int>& row : rows_) pointers_.push_back(row.data());
  }
  int** sets() { return pointers_.data(); }
  int nSets() const { return static_cast<int>(rows_.size()); }

 private:
  std::vector<std::vector<int>> rows_;
  std::vector<int*> pointers_;
};

// A Sequence whose set k has the time k + 1.
inline std::unique_ptr<Sequence> makeSequence(const Sets& sets) {
  std::unique_ptr<Sequence> sequence(new Sequence());
  for (std::size_t k = 0; k < sets.size(); ++k) {
    TimedItemSet set(static_cast<int>(sets[k].size()),
                     static_cast<double>(k + 1));
    for (int item : sets[k]) set.AddItem(item);
    sequence->AddTimedItemSet(&set);
  }
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

}  // namespace dictionary_test

#endif  // SEQLATTICE_DICTIONARY_DICTIONARY_TEST_UTIL_H_
