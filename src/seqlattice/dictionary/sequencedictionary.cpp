// Construction, destruction, settings and the counting queries.
#include "seqlattice/dictionary/sequencedictionary.h"

#include <cstddef>
#include <new>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/support/seqexceptions.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Initial bucket count of level k: the settings field of that level, and
// higherLevelSize from level 8 upward.
int initialBuckets(const SeqDictionarySettings& s, int k) {
  switch (k) {
    case 0:
      return s.level0Size;
    case 1:
      return s.level1Size;
    case 2:
      return s.level2Size;
    case 3:
      return s.level3Size;
    case 4:
      return s.level4Size;
    case 5:
      return s.level5Size;
    case 6:
      return s.level6Size;
    case 7:
      return s.level7Size;
    default:
      return s.higherLevelSize;
  }
}

// Settings the tables cannot be built from are refused before anything is
// allocated or released.
void checkSettings(const SeqDictionarySettings& s) {
  if (s.nLevels < 1) throw SeqExceptions::DictionaryFailure();
  for (int k = 0; k < s.nLevels && k <= 8; ++k) {
    if (initialBuckets(s, k) < 1) throw SeqExceptions::DictionaryFailure();
  }
}

}  // namespace

SequenceDictionary::SequenceDictionary()
    : nLevels(0),
      minSupport(0.0),
      slidingWindow(0.0),
      minGap(0.0),
      maxGap(0.0),
      settings(),
      levels(nullptr),
      tableSizes(nullptr),
      cancelled(false),
      latticeBuilt(false),
      probe(nullptr) {}

// The constructors below delegate to the default one, so the destructor
// releases whatever was built when they throw half-way.
SequenceDictionary::SequenceDictionary(int n) : SequenceDictionary() {
  settings.nLevels = n;
  buildTables();
}

SequenceDictionary::SequenceDictionary(SeqDictionarySettings s)
    : SequenceDictionary() {
  settings = s;
  buildTables();
}

SequenceDictionary::SequenceDictionary(HashtableSQPair** tables, int n)
    : SequenceDictionary() {
  if (n < 1) throw SeqExceptions::DictionaryFailure();
  settings.nLevels = n;
  nLevels = n;
  probe = new NTSequence();
  tableSizes = new int[static_cast<std::size_t>(n) + 1];
  for (int k = 0; k <= n; ++k) tableSizes[k] = initialBuckets(settings, k);
  levels = tables;  // adopted last: nothing is adopted when allocation fails
  latticeBuilt = true;
}

SequenceDictionary::~SequenceDictionary() { releaseTables(); }

void SequenceDictionary::createDictionary(SeqDictionarySettings s) {
  checkSettings(s);
  try {
    settings = s;
    buildTables();
  } catch (const std::bad_alloc&) {
    throw SeqExceptions::DictionaryFailure();
  }
}

void SequenceDictionary::buildTables() {
  checkSettings(settings);
  releaseTables();
  cancelled = false;
  probe = new NTSequence();
  nLevels = settings.nLevels;
  const std::size_t slots = static_cast<std::size_t>(nLevels) + 1;
  tableSizes = new int[slots];
  for (int k = 0; k <= nLevels; ++k) {
    tableSizes[k] = initialBuckets(settings, k);
  }
  levels = new HashtableSQPair*[slots]();
  for (int k = 0; k < nLevels; ++k) {
    levels[k] = new HashtableSQPair(tableSizes[k]);
  }
  defineLevel0();
}

void SequenceDictionary::releaseTables() {
  if (levels != nullptr) {
    for (int k = 0; k < nLevels; ++k) {
      delete levels[k];
      levels[k] = nullptr;
    }
    delete[] levels;
    levels = nullptr;
  }
  delete[] tableSizes;
  tableSizes = nullptr;
  delete probe;
  probe = nullptr;
}

void SequenceDictionary::reset() {
  for (int k = 0; k < nLevels; ++k) {
    if (HashtableSQPair* table = getLevel(k)) table->clear();
  }
  defineLevel0();
}

void SequenceDictionary::setSlidingWindow(double window) {
  slidingWindow = window;
}

void SequenceDictionary::setMinGap(double gap) { minGap = gap; }

void SequenceDictionary::setMaxGap(double gap) { maxGap = gap; }

void SequenceDictionary::setCancel() { cancelled = true; }

bool SequenceDictionary::isLatticeBuilt() const { return latticeBuilt; }

HashtableSQPair* SequenceDictionary::getLevel(int k) const {
  if (levels == nullptr || k < 0 || k >= nLevels) return nullptr;
  return levels[k];
}

int SequenceDictionary::getTableSize(int k) const {
  if (tableSizes == nullptr || k < 0 || k > nLevels) return 0;
  return tableSizes[k];
}

ISQCPair* SequenceDictionary::level0Entry() const {
  HashtableSQPair* table = getLevel(0);
  if (table == nullptr) return nullptr;
  for (ISQCPair& entry : *table) {
    if (entry.key->size() == 0) return &entry;
  }
  return nullptr;
}

SequenceCounter* SequenceDictionary::getLevel0Descriptor() const {
  ISQCPair* entry = level0Entry();
  return entry != nullptr ? entry->value : nullptr;
}

int SequenceDictionary::CountSequencesOfSize(int k) const {
  HashtableSQPair* table = getLevel(k);
  return table != nullptr ? table->getCount() : 0;
}

int SequenceDictionary::NumberOfSequences() const {
  int total = 0;
  for (int k = 0; k < nLevels; ++k) {
    if (HashtableSQPair* table = getLevel(k)) total += table->getCount();
  }
  return total;
}

// The counting queries go through the virtual slots, so that a derived
// dictionary overriding CountSequencesOfSize changes them all.
int SequenceDictionary::LargestSequence() const {
  if (nLevels <= 1) return 0;
  for (int k = 1;; ++k) {
    if (CountSequencesOfSize(k) <= 0) return k - 1;
    if (k + 1 >= nLevels) return k;
  }
}

int SequenceDictionary::CountSequencesBiggerThan(int k) const {
  const int largest = LargestSequence();
  if (largest < k) return 0;
  int total = 0;
  for (int j = k; j <= largest; ++j) total += CountSequencesOfSize(j);
  return total;
}

}  // namespace SEQUENCE_NAMESPACE_800
