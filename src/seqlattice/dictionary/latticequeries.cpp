// Queries over the built lattice: the Find walks, the patterns of one size
// and the diagnostic listing of a level.
#include <memory>
#include <new>
#include <utility>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {

using KvCommon_850::kStatusFailure;
using KvCommon_850::KvStatus;

namespace {

// Initial buckets of the two work tables of a Find walk.
constexpr int kFrontBuckets = 89;

bool followsAny(int, int) { return true; }

// The item joins a set, or forms a new set after the last one.
bool followsAtEnd(int code, int nSets) {
  return code % 2 == 0 || code > 2 * nSets;
}

// The item joins a set, or forms a new set before the first one.
bool followsAtFront(int code, int) { return code % 2 == 0 || code == 1; }

// The stored entry equal to pattern when it has a counter whose count is at
// least minCount, or null.
ISQCPair* storedWithCount(const SequenceDictionary& dictionary,
                          const NTSequence& pattern, int minCount) {
  HashtableSQPair* table = dictionary.getLevel(pattern.size());
  ISQCPair* entry = table != nullptr ? table->get(&pattern) : nullptr;
  if (entry == nullptr || entry->value == nullptr) return nullptr;
  return entry->value->getCount() >= minCount ? entry : nullptr;
}

// Puts a pattern with no counter into a work table, which then owns it.
void putKey(HashtableSQPair& table, std::unique_ptr<NTSequence> key) {
  if (table.put(key.get(), nullptr)) key.release();
}

}  // namespace

// Walks up the lattice from seq one level at a time. Each front holds
// patterns of one size and refuses duplicates, so every pattern is reported
// once. A pattern above maxCount is walked through but not reported.
KvStatus SequenceDictionary::findReachable(Sequence const* seq,
                                           std::set<Sequence*>& out,
                                           int minCount, int maxCount,
                                           ExtensionFilter follows) const {
  if (seq == nullptr) return KvStatus();
  std::unique_ptr<NTSequence> start(new NTSequence(seq));
  if (storedWithCount(*this, *start, minCount) == nullptr) return KvStatus();
  std::unique_ptr<HashtableSQPair> current(new HashtableSQPair(kFrontBuckets));
  std::unique_ptr<HashtableSQPair> next(new HashtableSQPair(kFrontBuckets));
  putKey(*current, std::move(start));
  while (current->getCount() > 0) {
    for (const ISQCPair& front : *current) {
      const NTSequence& pattern = *front.key;
      ISQCPair* entry = getLevel(pattern.size())->get(&pattern);
      SequenceCounter* counter = entry != nullptr ? entry->value : nullptr;
      if (counter != nullptr) {
        for (const std::pair<int, int>& adjacent : counter->adjacentPairs()) {
          if (!follows(adjacent.second, pattern.getNSets())) continue;
          std::unique_ptr<NTSequence> child(
              new NTSequence(pattern, adjacent.first, adjacent.second));
          if (next->containsKey(child.get())) continue;
          if (storedWithCount(*this, *child, minCount) == nullptr) continue;
          putKey(*next, std::move(child));
        }
      }
      if (counter != nullptr && counter->getCount() <= maxCount) {
        std::unique_ptr<Sequence> found(pattern.createSequence());
        out.insert(found.get());
        found.release();
      }
    }
    current->clear();
    std::swap(current, next);
  }
  return KvStatus();
}

KvStatus SequenceDictionary::FindSequences(Sequence const* seq,
                                           std::set<Sequence*>& out,
                                           int minCount, int maxCount) {
  return findReachable(seq, out, minCount, maxCount, followsAny);
}

KvStatus SequenceDictionary::FindSequencesBeginning(Sequence const* seq,
                                                    std::set<Sequence*>& out,
                                                    int minCount,
                                                    int maxCount) {
  return findReachable(seq, out, minCount, maxCount, followsAtEnd);
}

KvStatus SequenceDictionary::FindSequencesEnding(Sequence const* seq,
                                                 std::set<Sequence*>& out,
                                                 int minCount, int maxCount) {
  return findReachable(seq, out, minCount, maxCount, followsAtFront);
}

// Item set s of each result carries the time s.
KvStatus SequenceDictionary::getSequencesOfSize(
    std::vector<Sequence const*>& out, int k, bool maximalOnly) const {
  HashtableSQPair* table = getLevel(k);
  if (table == nullptr) return KvStatus();
  try {
    for (const ISQCPair& entry : *table) {
      if (maximalOnly && entry.value != nullptr &&
          entry.value->getNAdjacent() != 0) {
        continue;
      }
      const NTSequence& pattern = *entry.key;
      std::unique_ptr<Sequence> sequence(new Sequence());
      for (int s = 0; s < pattern.getNSets(); ++s) {
        TimedItemSet set(pattern.getSizeOfSet(s), static_cast<double>(s));
        for (int j = 0; j < pattern.getSizeOfSet(s); ++j) {
          set.AddItem(pattern.getItemInSet(j, s));
        }
        sequence->AddTimedItemSet(&set);
      }
      out.push_back(sequence.get());
      sequence.release();
    }
  } catch (const std::bad_alloc&) {
    return KvStatus(kStatusFailure, false);
  }
  return KvStatus();
}

// The count is tested after each entry, so up to limit + 1 entries are
// written, and one even when limit < 1.
void SequenceDictionary::displaySize(int k, int limit, std::ostream& os) const {
  HashtableSQPair* table = getLevel(k);
  if (table == nullptr) return;
  int written = 0;
  for (const ISQCPair& entry : *table) {
    entry.key->display(os);
    if (entry.value != nullptr) entry.value->display(os, false);
    if (++written > limit) return;
  }
}

}  // namespace SEQUENCE_NAMESPACE_800
