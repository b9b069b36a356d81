// How much an item's own popularity weighs on the recommender's score, beside
// the evidence that proposes it.
//
// The lattice's rules and the customers' sequences say which items follow the
// history; where the next item set is mostly what comes soon anyway, they
// leave many candidates nearly alike, and of those the more popular item is
// the one more often met in the next few item sets. The recommender then
// multiplies the evidence of the lattice and the sequences by
// popularityFactor (p(x)^power, p(x) = count(x) / N); the next-item estimate,
// which already says which item comes next, is left as it is. The values are
// measured (docs/recommender.md).
//
// Plain functions of numbers, no state: safe from any thread.
#ifndef SEQLATTICE_RECOMMEND_POPULARITYWEIGHT_H_
#define SEQLATTICE_RECOMMEND_POPULARITYWEIGHT_H_

namespace SEQUENCE_NAMESPACE_800 {
namespace recommend {

// The power a negative RecommendOptions::popularityPower stands for where the
// next item set is mostly, though not always, what comes soon.
constexpr double kPopularityPower = 0.1;

// popularity^power, with popularity raised to minPopularity first (an item
// proposed but not counted in the model's items: 1 / N, as if seen once), so
// the factor stays finite. Power 0 gives 1.
double popularityFactor(double popularity, double minPopularity, double power);

// The power a negative RecommendOptions::popularityPower stands for, from
// NextItemIndex::nextShare: kPopularityPower from kMostlyRightNext up to (not
// including) kNearlyAlwaysRightNext, the band where the next-item estimate
// has its mild weight (automaticNextWeight), else 0. Where item sets are
// baskets (kBasketItems items or more on average) the share is not asked and
// the power is 0.
double automaticPopularityPower(double nextShare);

}  // namespace recommend
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RECOMMEND_POPULARITYWEIGHT_H_
