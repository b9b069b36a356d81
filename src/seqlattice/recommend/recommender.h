// Recommender ranks the items a customer is likely to acquire next, for the
// tool and for hosts, beside the library's GetFutureItems (whose order and
// measures it leaves untouched and can reproduce, Ranking::kConfidence).
//
// Its own ranking (Ranking::kRecommend) weighs three kinds of evidence:
//  - the lattice: the stored patterns that the history contains and that end
//    in its most recent item set, each followed by a candidate item in a new
//    item set; a match anchored k item sets earlier counts
//    earlierSetWeight^k times as much and never proposes an item of the last
//    k item sets (the library's passes). The confidence of each rule is
//    smoothed towards the item's popularity with priorStrength pseudo
//    customers (by default estimated from the model's data), so that a
//    rule seen in 2 customers cannot beat one seen in 2,000 on a lucky
//    ratio; an item's rules give its best rule's score or the chance that
//    any of them comes true (RuleCombination);
//  - the model's sequence index, when the model carries one: the customers
//    whose sequences contain the whole recent context (however rare) and what
//    they acquired soon after it, smoothed the same way; in very long
//    sequences, the counts of what followed in the most similar customers
//    instead, alone (SequenceEvidence);
//  - the items' popularity, as the last fallback, so that every customer
//    gets an answer; such items are marked Source::kPopular.
// docs/recommender.md gives the reasons for each choice and the measured
// figures behind the defaults.
//
// A Recommender keeps references to the dictionary and the index (both stay
// the caller's and must outlive it, unchanged). It finds the lattice's
// evidence through a LatticeIndex, which turns each stored pattern it meets
// into a node once per Recommender (the memory grows with the patterns
// matched, at most with the dictionary's), and keeps its per-call tables
// between calls (they grow with the items proposed, at most with the
// model's items). Not thread-safe, one Recommender per thread: the
// dictionary's lookups rewrite its scratch key, the nodes are added as they
// are met, and every call rewrites the per-call tables.
#ifndef SEQLATTICE_RECOMMEND_RECOMMENDER_H_
#define SEQLATTICE_RECOMMEND_RECOMMENDER_H_

#include <memory>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/recommend/latticeindex.h"
#include "seqlattice/recommend/nextitem.h"
#include "seqlattice/recommend/sequenceindex.h"
#include "seqlattice/sequence/sequence.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

enum class Ranking {
  kRecommend,   // the blended, smoothed score described above
  kConfidence,  // exactly GetFutureItems: its items, order and measures
  kLift,        // the blended score divided by the item's popularity
};

// Which items of the customer's own history may be recommended.
enum class HistoryItems {
  kAuto,  // new items only when the model's data rarely repeats items
          // (repeat rate below kRareRepeats), else all
  kAll,
  kNewOnly,     // none of the history's items
  kRepeatOnly,  // only the history's items
};

// How the sequence index is asked what follows the recent context.
enum class SequenceEvidence {
  kAuto,       // kSimilar when the model's customers hold kVeryLongSequence
               // item sets or more on average, else kFollowers
  kFollowers,  // SequenceIndex::followersOf: the customers holding the
               // context (minContextCustomers, maxDropped, decay)
  kSimilar,    // SequenceIndex::similarCounts from kSimilarFirstRound
};

// How the lattice rules that propose the same item make its lattice score.
enum class RuleCombination {
  kAuto,   // kAnyOf when the model's customers hold kLongSequence item sets
           // or more on average, else kBest
  kBest,   // the score of the best rule
  kAnyOf,  // 1 - the product of (1 - score) over the rules: the chance that
           // some rule's item follows, were the rules independent
};

// Below this share of item sets repeating one of the five before them (most
// item sets bring only new items), the automatic choice leaves the history's
// items out.
constexpr double kRareRepeats = 0.5;
// In long sequences what comes soon after the context is a better guide
// than what comes much later, and matches anchored on earlier item sets keep
// more of their worth; in short ones the whole rest is near anyway, and the
// most recent item set says more. The values are measured
// (docs/recommender.md).
constexpr double kLongSequence = 20;
constexpr double kLongSequenceDecay = 0.3;
constexpr double kLongSequenceEarlierWeight = 0.5;
constexpr double kShortSequenceEarlierWeight = 0.3;
// In very long sequences nearly every frequent item follows every pattern
// somewhere later, so the lattice's "anywhere later" confidences come close
// to the items' popularity; there the similar customers' own sequences are
// the evidence, alone (measured, docs/recommender.md).
constexpr double kVeryLongSequence = 50;
// The first round of SequenceIndex::similarCounts: sub-contexts leaving out
// up to two items compete with the whole context from the start.
constexpr int kSimilarFirstRound = 2;
// The range of Recommender::estimatedPrior: where the two-item rules scatter
// around the items' popularity more than counting noise explains (or
// nearly so), the estimate falls below kMinPrior, the strength measured
// best on such data (docs/recommender.md).
constexpr double kMinPrior = 2;
constexpr double kMaxPrior = 100;
// The next-item estimate of an item is kNextShare times its chance of being
// in the next item set plus the rest times its chance of being in one of the
// next two; RecommendOptions::nextWeight is kNextWeight by default. The
// values are measured (docs/recommender.md).
constexpr double kNextShare = 0.6;
constexpr double kNextWeight = 0.72;
// Where an item set's most frequent follower, when it comes within a few item
// sets, comes right next this often or more (NextItemIndex::nextShare),
// "what comes next" is "what comes soon", which the lattice and the index
// already say better; the estimate then gets a mild weight or none by
// default (below).
constexpr double kMostlyRightNext = 0.75;
// Between kMostlyRightNext and this share, "next" and "soon" mostly agree but
// not always: the estimate, at the mild kMildNextWeight, reorders the
// candidates that the lattice and the index score nearly alike and leaves
// the rest of their ranking as it was (measured, docs/recommender.md).
constexpr double kNearlyAlwaysRightNext = 0.85;
constexpr double kMildNextWeight = 0.26;
// Where item sets hold this many items or more on average (baskets rather
// than clicks), a whole item set rarely recurs and the next one is no single
// item; the estimate is left out by default there too (measured on the
// bundled sample, docs/recommender.md).
constexpr double kBasketItems = 1.5;

// The weight a negative RecommendOptions::nextWeight stands for where item
// sets hold fewer than kBasketItems items on average (else it is 0), from
// NextItemIndex::nextShare: kNextWeight below kMostlyRightNext,
// kMildNextWeight below kNearlyAlwaysRightNext, else 0.
double automaticNextWeight(double nextShare);

struct RecommendOptions {
  int top = 5;  // largest number of items returned; <= 0 returns none
  Ranking ranking = Ranking::kRecommend;
  HistoryItems historyItems = HistoryItems::kAuto;
  // Lattice matches only on the last item set (for kConfidence, the flag of
  // GetFutureItems).
  bool lastSetOnly = false;
  // Pseudo customers of popularity added to every confidence (and to the
  // customers of each context of the sequence index). Negative: estimated
  // from the model's data (Recommender::estimatedPrior).
  double priorStrength = -1;
  RuleCombination ruleCombination = RuleCombination::kAuto;
  // Weight of a match anchored one item set earlier than the previous pass.
  // Negative: chosen from the model's data, 0.5 when its customers hold
  // kLongSequence item sets or more on average, else 0.3.
  double earlierSetWeight = -1;
  // Share of the score taken from the sequence index (when the model has
  // one); the rest comes from the lattice. Negative: chosen from the model's
  // data, 1 when its customers hold kVeryLongSequence item sets or more on
  // average, else 0.5.
  double sequenceWeight = -1;
  SequenceEvidence sequenceEvidence = SequenceEvidence::kAuto;
  // The last item sets of the history that form the index's context.
  int contextSets = 8;
  // Fewer customers than this with the whole context: leave context items
  // out, up to maxDropped of them.
  int minContextCustomers = 100;
  int maxDropped = 4;
  // How fast the weight of a follower falls with its distance (in item
  // sets) from the context (kFollowers): 1 / (1 + decay * distance).
  // Negative: chosen
  // from the model's data, kLongSequenceDecay when its customers hold
  // kLongSequence item sets or more on average, else 0 (and 0 without
  // sequences in the model).
  double decay = -1;
  // Share of the score taken from the next-item estimate (NextItemIndex;
  // see kNextShare), when the model has sequences; the rest is the score
  // above. Negative: automaticNextWeight of the model's sequences.
  double nextWeight = -1;
  // The evidence of the lattice and the sequences is multiplied by the
  // item's popularity to this power (popularityweight.h). Negative: chosen
  // from the model's sequences (automaticPopularityPower).
  double popularityPower = -1;
  // Fill the list with the most popular items.
  bool popularFallback = true;
};

enum class Source { kLattice, kSequences, kNext, kPopular };

// One recommended item with the evidence behind it.
struct Recommendation {
  int item = 0;
  double score = 0;
  Source source = Source::kPopular;  // the evidence that weighed most
  // The library's measures of the best lattice rule for the item (for
  // kConfidence, GetFutureItems's descriptor): confidence = count /
  // patternCount, support = count / N, cause = count / count of (item).
  double confidence = 0;
  double support = 0;
  double cause = 0;
  // The lattice rule: antecedent pattern (item sets), its count, the count
  // with the item after it, and how many trailing item sets of the history
  // its match left out. Empty pattern when no rule proposed the item.
  std::vector<std::vector<int>> pattern;
  long patternCount = 0;
  long count = 0;
  int skippedSets = 0;
  // The index's evidence: customers holding the context and the weight of
  // those followed by the item (0 when the index proposed nothing).
  long contextCustomers = 0;
  double followerWeight = 0;
  // The next-item estimate: the latest item sets of the history that the
  // item followed right after (empty when none), how often they occur in
  // the customers' sequences and how often the item came next; the
  // estimated chance of it coming next.
  std::vector<std::vector<int>> nextRun;
  long nextRunCount = 0;
  long nextCount = 0;
  double nextChance = 0;
  // Customers holding the item: its popularity times N, behind the
  // popularity factor (0 for kConfidence).
  long itemCount = 0;
};

class Recommender {
 public:
  // index may be null (a model without one); dict must have its lattice
  // built. Reads the popularity of every item once.
  Recommender(SequenceDictionary& dict, const SequenceIndex* index);
  ~Recommender();

  // The best options.top items for the history, best first. Throws
  // SeqExceptions::DictionaryFailure when the dictionary runs out of memory
  // and std::runtime_error when GetFutureItems fails (kConfidence).
  std::vector<Recommendation> recommend(const Sequence& history,
                                        const RecommendOptions& options);

  // The repeat rate that HistoryItems::kAuto compares with kRareRepeats;
  // 1.0 (keep history items) without an index.
  double repeatRate() const { return repeatRate_; }

  // The prior strength a negative RecommendOptions::priorStrength stands
  // for: a method-of-moments estimate from the lattice's two-item rules
  // (x)(y), whose confidences scatter around p(y) by counting noise plus
  // p(y)(1 - p(y)) / (prior + 1), clamped to [kMinPrior, kMaxPrior].
  // Computed on first use.
  double estimatedPrior();

 private:
  std::vector<Recommendation> byConfidence(const Sequence& history,
                                           const RecommendOptions& options);
  long itemCount(int item) const;
  double popularity(int item) const;
  // popularityFactor of the item, remembered per item for the power.
  double popularityFactorOf(int item, double power);
  // The index of runs, made on first use.
  const NextItemIndex& nextItems();

  // Per-call tables kept between calls, so that a call does not allocate
  // them (recommender.cpp).
  struct Scratch;

  SequenceDictionary& dict_;
  const SequenceIndex* index_;
  double n_ = 0;
  std::vector<std::pair<int, long>> itemCounts_;  // by item, ascending
  std::vector<int> popular_;  // items by decreasing count, then item code
  double repeatRate_ = 1.0;
  LatticeIndex lattice_;
  std::vector<LatticeIndex::Match> matches_;  // scratch of one pass
  std::unique_ptr<Scratch> scratch_;
  std::unique_ptr<NextItemIndex> nextItems_;
  double estimatedPrior_ = -1;
  double automaticDecay_ = 0.0;
  double automaticEarlierWeight_ = kShortSequenceEarlierWeight;
  double automaticSequenceWeight_ = 0.5;
  RuleCombination automaticCombination_ = RuleCombination::kBest;
  SequenceEvidence automaticEvidence_ = SequenceEvidence::kFollowers;
};

}  // namespace recommend
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RECOMMEND_RECOMMENDER_H_
