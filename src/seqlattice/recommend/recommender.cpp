#include "seqlattice/recommend/recommender.h"

#include <algorithm>
#include <climits>
#include <stdexcept>
#include <string>
#include <utility>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/recommend/internal/itemtable.h"
#include "seqlattice/recommend/popularityweight.h"
#include "seqlattice/rules/seqconsequentdescript.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

namespace {

// The distinct items of the history's item sets [from, Length()).
std::vector<int> itemsFrom(const Sequence& history, int from) {
  std::vector<int> items;
  for (int s = std::max(0, from); s < history.Length(); ++s) {
    const TimedItemSet* set = history[s];
    items.insert(items.end(), set->Begin(), set->End());
  }
  std::sort(items.begin(), items.end());
  items.erase(std::unique(items.begin(), items.end()), items.end());
  return items;
}

bool contains(const std::vector<int>& sorted, int item) {
  return std::binary_search(sorted.begin(), sorted.end(), item);
}

std::vector<std::vector<int>> itemSetsOf(const NTSequence& pattern) {
  std::vector<std::vector<int>> sets(
      static_cast<std::size_t>(pattern.getNSets()));
  for (int s = 0; s < pattern.getNSets(); ++s) {
    for (int i = 0; i < pattern.getSizeOfSet(s); ++i) {
      sets[static_cast<std::size_t>(s)].push_back(pattern.getItemInSet(i, s));
    }
  }
  return sets;
}

// Whether the history filter lets the item through.
bool admitted(HistoryItems mode, const std::vector<int>& historyItems,
              int item) {
  switch (mode) {
    case HistoryItems::kNewOnly:
      return !contains(historyItems, item);
    case HistoryItems::kRepeatOnly:
      return contains(historyItems, item);
    default:
      return true;
  }
}

// The evidence gathered for one item. Only the figures are kept here (every
// proposed item has one, thousands per call); the few items returned get
// their Recommendation, with its lists, at the end.
struct Candidate {
  const NTSequence* pattern = nullptr;  // the best lattice rule's antecedent
  double lattice = 0;                   // the best rule's score
  double anyOf = 0;      // 1 - product of (1 - score) over the rules
  double sequences = 0;  // the index's weight, 0 when it proposed nothing
  double next = 0;       // the next-item estimate
  // The best lattice rule's counts, when pattern is set.
  long patternCount = 0;
  long count = 0;
  double popularity = 0;
  int skippedSets = 0;
  int nextRunSets = 0;  // of the run behind the estimate, 0 for none
  bool fromIndex = false;
  long nextRunCount = 0;
  long nextCount = 0;
  double nextChance = 0;
  double score = 0;
  Source source = Source::kPopular;
};
using ItemCandidate = std::pair<int, Candidate>;

// Decreasing score, then decreasing item code (the library's tie rule).
bool ranksBefore(const ItemCandidate* a, const ItemCandidate* b) {
  if (a->second.score != b->second.score) {
    return a->second.score > b->second.score;
  }
  return a->first > b->first;
}

}  // namespace

struct Recommender::Scratch {
  ItemTable<Candidate> candidates;
  FollowerMemo followerMemo;
  // Each item's popularity factor for factorPower, kept across calls: a
  // call ranks thousands of candidates, and a power and a lookup of the
  // item's count for each took a quarter of a KOSARAK call. 0: not yet
  // computed (a factor is positive).
  ItemTable<double> popularityFactors;
  double factorPower = 0;
};

double automaticNextWeight(double nextShare) {
  if (nextShare < kMostlyRightNext) return kNextWeight;
  return nextShare < kNearlyAlwaysRightNext ? kMildNextWeight : 0.0;
}

Recommender::Recommender(SequenceDictionary& dict, const SequenceIndex* index)
    : dict_(dict),
      index_(index),
      lattice_(dict),
      scratch_(std::make_unique<Scratch>()) {
  const SequenceCounter* level0 = dict.getLevel0Descriptor();
  n_ = level0 != nullptr ? level0->getCount() : 0;
  const HashtableSQPair* level1 = dict.getLevel(1);
  if (level1 != nullptr) {
    for (const ISQCPair& entry : *level1) {
      if (entry.value == nullptr) continue;
      itemCounts_.emplace_back(entry.key->getItemInSet(0, 0),
                               entry.value->getCount());
    }
  }
  std::sort(itemCounts_.begin(), itemCounts_.end());
  std::vector<std::pair<int, long>> byCount = itemCounts_;
  std::sort(byCount.begin(), byCount.end(), [](const auto& a, const auto& b) {
    return a.second != b.second ? a.second > b.second : a.first > b.first;
  });
  for (const auto& entry : byCount) popular_.push_back(entry.first);
  if (index_ != nullptr && !index_->empty()) {
    repeatRate_ = index_->repeatRate(5);
    const bool longSequences = index_->meanLength() >= kLongSequence;
    automaticDecay_ = longSequences ? kLongSequenceDecay : 0.0;
    automaticEarlierWeight_ = longSequences ? kLongSequenceEarlierWeight
                                            : kShortSequenceEarlierWeight;
    if (longSequences) automaticCombination_ = RuleCombination::kAnyOf;
    if (index_->meanLength() >= kVeryLongSequence) {
      automaticSequenceWeight_ = 1.0;
      automaticEvidence_ = SequenceEvidence::kSimilar;
    }
  }
}

Recommender::~Recommender() = default;

double Recommender::estimatedPrior() {
  if (estimatedPrior_ >= 0) return estimatedPrior_;
  // Method of moments of a beta-binomial: each rule (x)(y) has a true
  // confidence drawn around p(y) with variance p(1 - p) / (a + 1); its
  // observed ratio adds binomial noise p(1 - p) / count(x).
  double excess = 0;
  double spread = 0;
  const HashtableSQPair* level1 = dict_.getLevel(1);
  if (level1 != nullptr) {
    for (const ISQCPair& entry : *level1) {
      if (entry.value == nullptr) continue;
      const double n = entry.value->getCount();
      if (n < 2) continue;
      for (const LatticeIndex::Follower& f : lattice_.followersOf(*entry.key)) {
        const double p = f.popularity;
        const double r = f.count / n;
        excess += (r - p) * (r - p) - p * (1 - p) / n;
        spread += p * (1 - p) * (1 - 1 / n);
      }
    }
  }
  // Only the pairs above the minimum support are stored, which inflates
  // their scatter; below kMinPrior the estimate says little. No scatter
  // beyond the noise: the rules say nothing popularity does not.
  estimatedPrior_ = spread <= 0 ? kMinPrior
                    : excess <= 0
                        ? kMaxPrior
                        : std::clamp(spread / excess - 1, kMinPrior, kMaxPrior);
  return estimatedPrior_;
}

const NextItemIndex& Recommender::nextItems() {
  if (nextItems_ == nullptr) {
    nextItems_ = std::make_unique<NextItemIndex>(*index_);
  }
  return *nextItems_;
}

long Recommender::itemCount(int item) const {
  auto at = std::lower_bound(itemCounts_.begin(), itemCounts_.end(),
                             std::make_pair(item, LONG_MIN));
  return at == itemCounts_.end() || at->first != item ? 0 : at->second;
}

double Recommender::popularityFactorOf(int item, double power) {
  if (power != scratch_->factorPower) {
    scratch_->popularityFactors.newRound();
    scratch_->factorPower = power;
  }
  double& factor = scratch_->popularityFactors[item];
  if (factor == 0.0) {
    factor = popularityFactor(popularity(item), n_ > 0 ? 1.0 / n_ : 1.0, power);
  }
  return factor;
}

double Recommender::popularity(int item) const {
  return n_ > 0 ? static_cast<double>(itemCount(item)) / n_ : 0.0;
}

std::vector<Recommendation> Recommender::byConfidence(
    const Sequence& history, const RecommendOptions& options) {
  const bool filtering = options.historyItems == HistoryItems::kNewOnly ||
                         options.historyItems == HistoryItems::kRepeatOnly;
  std::vector<SeqConsequentDescriptor> predictions;
  KvCommon_850::KvStatus status = dict_.GetFutureItems(
      predictions, &history, filtering ? INT_MAX : options.top,
      options.lastSetOnly);
  if (!status.IsOK()) {
    throw std::runtime_error("GetFutureItems failed with status " +
                             std::to_string(status.GetCode()));
  }
  const std::vector<int> historyItems = itemsFrom(history, 0);
  std::vector<Recommendation> out;
  for (const SeqConsequentDescriptor& p : predictions) {
    if (static_cast<int>(out.size()) >= options.top) break;
    if (!admitted(options.historyItems, historyItems, p.GetItem())) continue;
    Recommendation r;
    r.item = p.GetItem();
    r.score = p.GetConfidence();
    r.source = Source::kLattice;
    r.confidence = p.GetConfidence();
    r.support = p.GetSupport();
    r.cause = p.GetCause();
    out.push_back(r);
  }
  return out;
}

std::vector<Recommendation> Recommender::recommend(
    const Sequence& history, const RecommendOptions& options) {
  if (options.top <= 0) return {};
  if (options.ranking == Ranking::kConfidence) {
    return byConfidence(history, options);
  }
  const double prior =
      options.priorStrength < 0 ? estimatedPrior() : options.priorStrength;
  ItemTable<Candidate>& candidates = scratch_->candidates;
  candidates.newRound();

  const int length = history.Length();
  const double sequenceWeight =
      index_ != nullptr && !index_->empty() && length > 0
          ? std::min(1.0, options.sequenceWeight < 0 ? automaticSequenceWeight_
                                                     : options.sequenceWeight)
          : 0.0;

  // The lattice, one pass per item set the match is anchored on (none when
  // the index gives the whole score).
  const int passes = sequenceWeight >= 1.0 ? 0
                     : options.lastSetOnly
                         ? std::min(1, length)
                         : std::min(length, std::max(1, options.contextSets));
  const double earlierWeight = options.earlierSetWeight < 0
                                   ? automaticEarlierWeight_
                                   : options.earlierSetWeight;
  double weight = 1.0;
  for (int k = 0; k < passes; ++k, weight *= earlierWeight) {
    const std::vector<int> excluded = itemsFrom(history, length - k);
    lattice_.match(history, k, &matches_);
    for (const LatticeIndex::Match& m : matches_) {
      const double patternCount = m.count;
      for (const LatticeIndex::Follower& f : *m.followers) {
        if (contains(excluded, f.item)) continue;
        const double score =
            weight * (f.count + prior * f.popularity) / (patternCount + prior);
        Candidate& c = candidates[f.item];
        c.anyOf = 1.0 - (1.0 - c.anyOf) * (1.0 - score);
        if (score <= c.lattice) continue;
        c.lattice = score;
        c.pattern = m.pattern;
        c.patternCount = m.count;
        c.count = f.count;
        c.popularity = f.popularity;
        c.skippedSets = k;
      }
    }
  }

  // The sequence index: who else went through the recent context.
  long contextCustomers = 0;
  if (sequenceWeight > 0) {
    const std::vector<int> context =
        itemsFrom(history, length - std::max(1, options.contextSets));
    const SequenceEvidence evidence =
        options.sequenceEvidence == SequenceEvidence::kAuto
            ? automaticEvidence_
            : options.sequenceEvidence;
    const FollowerCounts followers =
        evidence == SequenceEvidence::kSimilar
            ? index_->similarCounts(context, kSimilarFirstRound)
            : index_->followersOf(
                  context, options.minContextCustomers, options.maxDropped,
                  options.decay < 0 ? automaticDecay_ : options.decay, prior,
                  &scratch_->followerMemo);
    contextCustomers = followers.contextCustomers;
    for (const auto& [item, w] : followers.followers) {
      Candidate& c = candidates[item];
      c.sequences = w;
      c.fromIndex = true;
    }
  }

  // What came right after the latest item sets.
  double nextWeight = 0.0;
  double popularityPower = std::max(0.0, options.popularityPower);
  if (index_ != nullptr && !index_->empty() && length > 0) {
    const double itemsPerSet =
        static_cast<double>(index_->items().size()) /
        static_cast<double>(index_->setStarts().size() - 1);
    const bool clicks = itemsPerSet < kBasketItems;
    nextWeight = options.nextWeight >= 0 ? std::min(1.0, options.nextWeight)
                 : clicks ? automaticNextWeight(nextItems().nextShare())
                          : 0.0;
    if (options.popularityPower < 0 && clicks) {
      popularityPower = automaticPopularityPower(nextItems().nextShare());
    }
  }
  NextItems next;
  if (nextWeight > 0) {
    next = nextItems().estimate(history);
    for (const NextItemEstimate& e : next.items) {
      Candidate& c = candidates[e.item];
      c.next = kNextShare * e.next + (1.0 - kNextShare) * e.soon;
      c.nextRunSets = e.runSets;
      c.nextRunCount = e.runCount;
      c.nextCount = e.nextCount;
      c.nextChance = e.next;
    }
  }

  HistoryItems mode = options.historyItems;
  if (mode == HistoryItems::kAuto) {
    mode = repeatRate_ < kRareRepeats ? HistoryItems::kNewOnly
                                      : HistoryItems::kAll;
  }
  const RuleCombination combination =
      options.ruleCombination == RuleCombination::kAuto
          ? automaticCombination_
          : options.ruleCombination;
  const std::vector<int> historyItems = itemsFrom(history, 0);
  std::vector<ItemCandidate*> best;
  best.reserve(candidates.size());
  for (ItemCandidate& entry : candidates) {
    const int item = entry.first;
    Candidate& c = entry.second;
    if (!admitted(mode, historyItems, item)) continue;
    const double factor =
        popularityPower > 0 ? popularityFactorOf(item, popularityPower) : 1.0;
    const double fromLattice =
        factor * (1.0 - sequenceWeight) *
        (combination == RuleCombination::kAnyOf ? c.anyOf : c.lattice);
    const double fromSequences = factor * sequenceWeight * c.sequences;
    const double fromNext = nextWeight * c.next;
    c.score = (1.0 - nextWeight) * (fromLattice + fromSequences) + fromNext;
    c.source =
        fromSequences > fromLattice ? Source::kSequences : Source::kLattice;
    if (fromNext > (1.0 - nextWeight) * std::max(fromLattice, fromSequences)) {
      c.source = Source::kNext;
    }
    if (options.ranking == Ranking::kLift) {
      c.score /= std::max(popularity(item), n_ > 0 ? 1.0 / n_ : 1.0);
    }
    best.push_back(&entry);
  }
  // Only the first options.top are wanted; the order is total (no two
  // candidates share an item), so they are those a full sort would give.
  const std::size_t kept =
      std::min(best.size(), static_cast<std::size_t>(options.top));
  std::partial_sort(best.begin(), best.begin() + static_cast<long>(kept),
                    best.end(), ranksBefore);
  best.resize(kept);
  std::vector<Recommendation> ranked;
  for (const ItemCandidate* entry : best) {
    const Candidate& c = entry->second;
    Recommendation r;
    r.item = entry->first;
    r.score = c.score;
    r.source = c.source;
    if (c.pattern != nullptr) {
      r.confidence = c.count / static_cast<double>(c.patternCount);
      r.support = n_ > 0 ? c.count / n_ : 0.0;
      r.cause = c.popularity > 0 ? c.count / (c.popularity * n_) : 0.0;
      r.pattern = itemSetsOf(*c.pattern);
      r.patternCount = c.patternCount;
      r.count = c.count;
      r.skippedSets = c.skippedSets;
    }
    if (c.fromIndex) r.contextCustomers = contextCustomers;
    r.followerWeight = c.sequences;
    r.nextRun.assign(next.run.end() - c.nextRunSets, next.run.end());
    r.nextRunCount = c.nextRunCount;
    r.nextCount = c.nextCount;
    r.nextChance = c.nextChance;
    r.itemCount = itemCount(entry->first);
    ranked.push_back(std::move(r));
  }

  if (options.popularFallback) {
    std::vector<int> chosen;
    for (const Recommendation& r : ranked) chosen.push_back(r.item);
    std::sort(chosen.begin(), chosen.end());
    for (int item : popular_) {
      if (static_cast<int>(ranked.size()) >= options.top) break;
      if (contains(chosen, item) || !admitted(mode, historyItems, item)) {
        continue;
      }
      Recommendation r;
      r.item = item;
      r.source = Source::kPopular;
      r.support = r.confidence = popularity(item);
      r.cause = 1.0;
      r.itemCount = itemCount(item);
      ranked.push_back(r);
    }
  }
  return ranked;
}

}  // namespace recommend
}  // namespace SEQUENCE_NAMESPACE_800
