// Rule extraction: every stored pattern of two or more item sets gives at
// most one rule, its last item set being the consequent and the sets before
// it the antecedent. Rules within the caller's bounds are sorted by the named
// measure and appended.
#include <algorithm>
#include <climits>
#include <cmath>
#include <exception>
#include <utility>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/rules/seqassociationrule.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {

using KvCommon_850::kStatusCancelled;
using KvCommon_850::kStatusFailure;
using KvCommon_850::KvStatus;

namespace {

// Truncates toward zero like a cast, but saturates instead of overflowing and
// gives 0 for not-a-number, so that any bound the host passes is defined.
int truncateToInt(double value) {
  if (std::isnan(value)) return 0;
  if (value >= static_cast<double>(INT_MAX)) return INT_MAX;
  if (value <= static_cast<double>(INT_MIN)) return INT_MIN;
  return static_cast<int>(value);
}

struct RuleBounds {
  int minCount;
  int maxCount;
  double minConfidence;
  double maxConfidence;
  double minCause;
  double maxCause;
};

// The pattern's item sets first .. last as a Sequence (no times).
Sequence setsOf(const NTSequence& pattern, int first, int last) {
  Sequence result(last - first + 1);
  TimedItemSet set;
  for (int s = first; s <= last; ++s) {
    for (int i = 0; i < pattern.getSizeOfSet(s); ++i) {
      set.AddItem(pattern.getItemInSet(i, s));
    }
    result.AddTimedItemSet(&set);
    set.Clear();
  }
  return result;
}

// A rule found, kept as the stored pattern it comes from: the pattern keys
// stay valid while GetRules runs, and the rule's sequences are made only
// once, in the caller's vector.
struct FoundRule {
  const NTSequence* pattern;
  double support;
  double confidence;
  double cause;
};

// Gathers the rules of the patterns it is shown, in the order shown.
class RuleCollector {
 public:
  RuleCollector(const SequenceDictionary& dict, const RuleBounds& bounds,
                bool maximalOnly, double n)
      : dict_(dict), bounds_(bounds), maximalOnly_(maximalOnly), n_(n) {}

  // Walks one level's table; false when an entry has no counter.
  bool collectLevel(const HashtableSQPair& table) {
    for (const ISQCPair& entry : table) {
      if (entry.value == nullptr) return false;
      consider(*entry.key, *entry.value);
    }
    return true;
  }

  const std::vector<FoundRule>& found() const { return found_; }

 private:
  // The cheap tests come first; the antecedent is looked up only then, the
  // consequent only after the confidence test.
  void consider(const NTSequence& pattern, const SequenceCounter& counter) {
    const int count = counter.getCount();
    if (count < bounds_.minCount || count > bounds_.maxCount) return;
    if (maximalOnly_ && counter.getNAdjacent() != 0) return;
    const int sets = pattern.getNSets();
    if (sets < 2) return;

    const SequenceCounter* antecedent = counterOfSets(pattern, 0, sets - 2);
    if (antecedent == nullptr) return;
    const double confidence =
        count / static_cast<double>(antecedent->getCount());
    if (!(bounds_.minConfidence <= confidence &&
          confidence <= bounds_.maxConfidence)) {
      return;
    }
    const SequenceCounter* consequent =
        counterOfSets(pattern, sets - 1, sets - 1);
    if (consequent == nullptr) return;
    const double cause = count / static_cast<double>(consequent->getCount());
    if (!(bounds_.minCause <= cause && cause <= bounds_.maxCause)) return;
    found_.push_back({&pattern, count / n_, confidence, cause});
  }

  // The counter of the pattern's item sets first .. last taken as a pattern
  // of their own. Every sub-pattern of a counted pattern is counted, so null
  // only comes from a store that the dictionary's own operations never
  // leave; such a pattern gives no rule.
  const SequenceCounter* counterOfSets(const NTSequence& pattern, int first,
                                       int last) {
    // Each set in the int** convention: its item count, then its items.
    items_.clear();
    for (int s = first; s <= last; ++s) {
      items_.push_back(pattern.getSizeOfSet(s));
      for (int i = 0; i < pattern.getSizeOfSet(s); ++i) {
        items_.push_back(pattern.getItemInSet(i, s));
      }
    }
    sets_.clear();
    for (size_t at = 0; at < items_.size(); at += items_[at] + 1) {
      sets_.push_back(&items_[at]);
    }
    const NTSequence key(sets_.data(), last - first + 1);
    return dict_.getDescriptor(&key);
  }

  const SequenceDictionary& dict_;
  const RuleBounds bounds_;
  const bool maximalOnly_;
  const double n_;
  std::vector<FoundRule> found_;
  std::vector<int> items_;  // scratch of counterOfSets
  std::vector<int*> sets_;  // scratch of counterOfSets
};

bool isSortLetter(char sortBy) {
  return sortBy == 'S' || sortBy == 'C' || sortBy == 'A';
}

// The measure that a sort letter names: support, confidence or cause.
double measure(const FoundRule& rule, char sortBy) {
  if (sortBy == 'S') return rule.support;
  if (sortBy == 'C') return rule.confidence;
  return rule.cause;
}

// Appends the rules by decreasing measure, equal measures in the order found:
// pairs (1.0 - measure, index) sorted ascending. Not-a-number keys sort last,
// which keeps the order strict. On failure nothing stays appended.
void appendSorted(const std::vector<FoundRule>& found, char sortBy,
                  std::vector<SeqAssociationRule>& rules) {
  if (found.empty() || !isSortLetter(sortBy)) return;
  std::vector<std::pair<double, size_t>> order;
  order.reserve(found.size());
  for (size_t i = 0; i < found.size(); ++i) {
    order.emplace_back(1.0 - measure(found[i], sortBy), i);
  }
  std::sort(order.begin(), order.end(),
            [](const std::pair<double, size_t>& a,
               const std::pair<double, size_t>& b) {
              const bool aUndefined = std::isnan(a.first);
              const bool bUndefined = std::isnan(b.first);
              if (aUndefined != bUndefined) return bUndefined;
              if (!aUndefined && a.first != b.first) return a.first < b.first;
              return a.second < b.second;
            });
  const size_t before = rules.size();
  try {
    rules.reserve(before + found.size());
    for (const std::pair<double, size_t>& entry : order) {
      const FoundRule& rule = found[entry.second];
      const int sets = rule.pattern->getNSets();
      rules.emplace_back(setsOf(*rule.pattern, 0, sets - 2),
                         setsOf(*rule.pattern, sets - 1, sets - 1),
                         rule.support, rule.confidence, rule.cause, 1);
    }
  } catch (...) {
    rules.erase(rules.begin() + before, rules.end());
    throw;
  }
}

}  // namespace

KvStatus SequenceDictionary::GetRules(std::vector<SeqAssociationRule>& rules,
                                      double minSupport, double maxSupport,
                                      double minConfidence,
                                      double maxConfidence, double minCause,
                                      double maxCause, char sortBy,
                                      bool maximalOnly) const {
  try {
    const SequenceCounter* level0 = getLevel0Descriptor();
    if (level0 == nullptr) return KvStatus(kStatusFailure, false);
    const double n = level0->getCount();
    // The lower bound is truncated, the upper one rounded: intended.
    const RuleBounds bounds = {truncateToInt(minSupport * n),
                               truncateToInt(maxSupport * n + 0.5),
                               minConfidence,
                               maxConfidence,
                               minCause,
                               maxCause};
    RuleCollector collector(*this, bounds, maximalOnly, n);
    const int largest = LargestSequence();
    for (int level = 2; level <= largest; ++level) {
      if (cancelled) return KvStatus(kStatusCancelled, false);
      const HashtableSQPair* table = getLevel(level);
      if (table == nullptr || !collector.collectLevel(*table)) {
        return KvStatus(kStatusFailure, false);
      }
    }
    appendSorted(collector.found(), sortBy, rules);
    return KvStatus();
  } catch (const std::exception&) {
    // Chiefly std::bad_alloc, or SeqExceptions::DictionaryFailure from a
    // lookup that ran out of memory.
    return KvStatus(kStatusFailure, false);
  }
}

}  // namespace SEQUENCE_NAMESPACE_800
