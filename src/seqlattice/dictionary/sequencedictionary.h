// SequenceDictionary: the library's central store of sequence patterns and
// the lattice over them. For every pattern length k (a "level",
// 0 .. nLevels-1) it keeps one HashtableSQPair mapping NTSequence patterns of
// k items to their counters. Level 0 holds the empty pattern, whose count is
// the number of input sequences N. The host counts patterns into the store,
// prunes it, builds the lattice (each counter learns the (item, position
// code) pairs that extend its pattern to another stored one) and queries it.
//
// Ownership: the dictionary owns its tables, its two arrays and its scratch
// key `probe`; each table owns its keys and counters. Counters and keys that
// lookups return stay the dictionary's. Sequence objects that the Find
// operations and getSequencesOfSize hand out belong to the caller.
//
// Not safe for concurrent use, not even for lookups: lookups from int**
// arrays or a Sequence refill `probe`. Single-pattern operations turn an
// out-of-memory failure into SeqExceptions::DictionaryFailure; bulk
// operations return KvStatus(kStatusFailure, false) instead.
//
// The destructor is virtual (beyond the interface's twelve slots) so that a
// dictionary can be deleted through its own type, also when a host derives
// from it to override a counting query.
#ifndef SEQLATTICE_DICTIONARY_SEQUENCEDICTIONARY_H_
#define SEQLATTICE_DICTIONARY_SEQUENCEDICTIONARY_H_

#include <fstream>
#include <ostream>
#include <set>
#include <vector>

#include "seqlattice/dictionary/dictionarysettings.h"
#include "seqlattice/dictionary/sequencesemilattice.h"
#include "seqlattice/support/kvstatus.h"

namespace SEQUENCE_NAMESPACE_800 {

class HashtableSQPair;
struct ISQCPair;
class NTSequence;
class Sequence;
class SequenceCounter;

class SequenceDictionary : public SequenceSemiLattice {
 public:
  // Construction, settings and the counting queries: sequencedictionary.cpp.

  // Default settings and nothing else; fill it with createDictionary or by
  // loading. Destroying it unfilled is safe.
  SequenceDictionary();
  // Default settings with n levels; tables built, level 0 defined. Throws
  // SeqExceptions::DictionaryFailure when n < 1.
  explicit SequenceDictionary(int n);
  // Tables as the settings say; level 0 defined. Throws
  // SeqExceptions::DictionaryFailure when s.nLevels < 1 or a level's bucket
  // count is not positive.
  explicit SequenceDictionary(SeqDictionarySettings s);
  // Adopts `tables` (n + 1 slots, slot k holding the table of k-item
  // patterns, the last slot unused) and everything in it; level 0 is taken
  // as it is and the lattice counts as built. For hosts that assemble tables
  // themselves. Throws SeqExceptions::DictionaryFailure, adopting nothing,
  // when n < 1.
  SequenceDictionary(HashtableSQPair** tables, int n);
  virtual ~SequenceDictionary();

  SequenceDictionary(const SequenceDictionary&) = delete;
  SequenceDictionary& operator=(const SequenceDictionary&) = delete;

  // Rebuilds the tables from s (clears `cancelled`, keeps `latticeBuilt`).
  // Meant for a default-constructed object; tables held before are released.
  void createDictionary(SeqDictionarySettings s);
  // Stores the empty pattern with an all-zero counter in level 0.
  void defineLevel0();
  // Empties every table and defines level 0 again; settings, `latticeBuilt`,
  // `minSupport` and the time settings are kept.
  void reset();

  // Stored and saved only; the host gives them their meaning.
  void setSlidingWindow(double window);
  void setMinGap(double gap);
  void setMaxGap(double gap);
  // Makes a running GetRules or GetFutureItems stop; nothing clears it.
  void setCancel();
  bool isCancelled() const { return cancelled; }
  bool isLatticeBuilt() const;

  // Counting queries (interface slots 2 to 5).
  int NumberOfSequences() const override;
  int LargestSequence() const override;
  int CountSequencesOfSize(int k) const override;
  int CountSequencesBiggerThan(int k) const override;

  // Counting (patterncounting.cpp). Patterns come as an NTSequence, as int**
  // item-set arrays (sets[s][0] items followed by the items, n sets) or as a
  // Sequence. A pattern of nLevels or more items is never stored: addSequence
  // throws SeqExceptions::DictionaryFailure for it, lookups find nothing.
  // addSequence stores a new counter copying sc's count, ordinal and missed
  // count (sc may be null and stays the caller's) and replaces an equal stored
  // pattern. Lookups from int** or a Sequence allocate nothing once `probe` has
  // held a pattern of the same number of items.
  void addSequence(int** p, int n, SequenceCounter* sc);
  SequenceCounter* incrementCount(int** p, int n);
  SequenceCounter* getDescriptor(NTSequence const* s) const;
  SequenceCounter* getDescriptor(int** p, int n);
  SequenceCounter* getDescriptor(Sequence const* s);
  NTSequence* getSequence(int** p, int n);
  bool hasSequence(int** p, int n);
  void remove(NTSequence* s);
  void remove(int** p, int n);
  void remove(Sequence const* s);

  // Pruning (pruning.cpp); s is an absolute count, whole up to rounding error
  // or rounded up. Level 0 and entries without a counter are never pruned. Each
  // returns the number removed; only reduceAll sets minSupport (s / N).
  int reduceDictionaryWithCount(int k, double s);
  int reduceDictionary(int k, double s);
  int reduceAllWithCount(double s);
  int reduceAll(double s);
  KvCommon_850::KvStatus dropAfter(int t);

  // Lattice build (latticebuild.cpp). Links every stored pattern of levels 0 ..
  // LargestSequence()-1 to its one-item extensions, replacing the adjacency
  // sets it finds. OK, or KvStatus(kStatusFailure, false) when anything failed
  // (lattice not marked built). A large dictionary is linked on threads of
  // the build's own, a level each; the call returns when they are done.
  KvCommon_850::KvStatus buildLattice();

  // Lattice queries (interface slots 1, 8 and 9; latticequeries.cpp): the
  // stored patterns with a count of at least minCount reachable from seq,
  // reported when their count is at most maxCount. getSequencesOfSize gives
  // item set s the time s.
  KvCommon_850::KvStatus FindSequences(Sequence const* seq,
                                       std::set<Sequence*>& out, int minCount,
                                       int maxCount) override;
  KvCommon_850::KvStatus FindSequencesBeginning(Sequence const* seq,
                                                std::set<Sequence*>& out,
                                                int minCount,
                                                int maxCount) override;
  KvCommon_850::KvStatus FindSequencesEnding(Sequence const* seq,
                                             std::set<Sequence*>& out,
                                             int minCount,
                                             int maxCount) override;
  KvCommon_850::KvStatus getSequencesOfSize(std::vector<Sequence const*>& out,
                                            int k, bool maximalOnly) const;
  void displaySize(int k, int limit, std::ostream& os) const;

  // Documents (interface slots 6 and 7): export/pmmlexport.cpp and
  // export/latticeexport.cpp.
  KvCommon_850::KvStatus ExportLatticeXML(std::ostream& out,
                                          double minSupport) const override;
  KvCommon_850::KvStatus ExportRulesXML(std::ostream& out, double minSupport,
                                        double maxSupport, double minConfidence,
                                        double maxConfidence, double minCause,
                                        double maxCause,
                                        int maxItemsPerTransaction,
                                        double avgItemsPerTransaction,
                                        char sortBy,
                                        bool maximalOnly) const override;

  // Predictions and rules (interface slots 10 to 12): rules/currentitems.cpp,
  // rules/futureitems.cpp and rules/ruleextraction.cpp.
  KvCommon_850::KvStatus GetCurrentItems(
      std::vector<SeqConsequentDescriptor>& predictions,
      const Sequence* customer, int maxItems) override;
  KvCommon_850::KvStatus GetFutureItems(
      std::vector<SeqConsequentDescriptor>& predictions,
      const Sequence* customer, int maxItems, bool lastSetOnly) override;
  KvCommon_850::KvStatus GetRules(std::vector<SeqAssociationRule>& rules,
                                  double minSupport, double maxSupport,
                                  double minConfidence, double maxConfidence,
                                  double minCause, double maxCause, char sortBy,
                                  bool maximalOnly) const override;

  // Matching (rules/subsequencematch.cpp). The stored patterns that the
  // customer's history contains, the last
  // skipLast item sets left out; the found patterns belong to the caller.
  KvCommon_850::KvStatus getSubsequencesInSequence(
      std::vector<NTSequence*>& found, const Sequence* customer, int skipLast);

  // Persistence (io/dictionary_io.cpp): binary record and XML element. The
  // second XML reader takes the document's format version ("1.0" documents lack
  // the minimum support).
  long writeObject(std::fstream& out) const;
  long readObject(std::fstream& in);
  long writeObjectXML(std::ostream& out) const;
  long readObjectXML(std::ifstream& in);
  long readObjectXML(std::ifstream& in, const char* version);

  int getNLevels() const { return nLevels; }
  double getMinSupport() const { return minSupport; }
  double getSlidingWindow() const { return slidingWindow; }
  double getMinGap() const { return minGap; }
  double getMaxGap() const { return maxGap; }
  const SeqDictionarySettings& getSettings() const { return settings; }
  // The table of k-item patterns, or null when k is not a level.
  HashtableSQPair* getLevel(int k) const;
  // Initial bucket count of level k (0 .. nLevels), or 0 outside that range.
  int getTableSize(int k) const;
  // Counter of the empty pattern (its count is N), or null when missing.
  SequenceCounter* getLevel0Descriptor() const;

 private:
  // Whether a Find walk follows the extension with this position code of a
  // pattern of nSets item sets.
  typedef bool (*ExtensionFilter)(int code, int nSets);

  // Allocates and fills the tables from `settings`; releases older ones.
  void buildTables();
  void releaseTables();
  void refillProbe(int** p, int n);
  void refillProbe(Sequence const* s);
  // The stored entry equal to `probe`, or null.
  ISQCPair* lookupProbe() const;
  // The stored entry equal to the pattern, found through `probe`.
  ISQCPair* lookup(int** p, int n);
  ISQCPair* lookup(Sequence const* s);
  void removeProbe();
  // The stored entry of the empty pattern, or null.
  ISQCPair* level0Entry() const;
  int reduceLevel(int k, double s, bool withMissed);
  KvCommon_850::KvStatus findReachable(Sequence const* seq,
                                       std::set<Sequence*>& out, int minCount,
                                       int maxCount,
                                       ExtensionFilter follows) const;

  int nLevels;
  double minSupport;
  double slidingWindow;
  double minGap;
  double maxGap;
  SeqDictionarySettings settings;
  HashtableSQPair** levels;  // nLevels + 1 slots, the last one never used
  int* tableSizes;           // nLevels + 1 initial bucket counts
  bool cancelled;
  bool latticeBuilt;
  NTSequence* probe;  // scratch key of the int** and Sequence lookups
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_DICTIONARY_SEQUENCEDICTIONARY_H_
