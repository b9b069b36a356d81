#include "support/recommendoptions.h"

#include "support/parsedoption.h"

namespace seqlattice_cli {

namespace recommend = SEQUENCE_NAMESPACE_800::recommend;

void addRecommendOptions(CLI::App* command, PredictSettings* settings) {
  recommend::RecommendOptions& o = *settings;
  command->add_option("--top", o.top, "Number of items per customer")
      ->check(wholeNumber(1))
      ->capture_default_str();
  command
      ->add_option("--rank", settings->rank,
                   "recommend: smoothed evidence of the lattice and the "
                   "customers' sequences, most popular items last; lift: the "
                   "same against each item's popularity; confidence: the "
                   "library's own order (GetFutureItems)")
      ->check(CLI::IsMember({"recommend", "lift", "confidence"}))
      ->capture_default_str();
  CLI::Option* newOnly =
      command->add_flag("--new-only", settings->newOnly,
                        "Leave out items the customer already has");
  CLI::Option* repeatOnly =
      command->add_flag("--repeat-only", settings->repeatOnly,
                        "Only items the customer already has");
  newOnly->excludes(repeatOnly);
  command->add_flag("--last-set-only", o.lastSetOnly,
                    "Use only patterns ending in the last order");
  command
      ->add_option("--prior", o.priorStrength,
                   "Customers' worth of popularity added to each confidence "
                   "(default: estimated from the scatter of the model's "
                   "two-item rules around the items' popularity, at least "
                   "2)")
      ->check(CLI::NonNegativeNumber);
  command
      ->add_option("--rules", settings->rules,
                   "How the patterns that propose the same item make its "
                   "score: best (the best one's), any (the chance that some "
                   "one's item follows, as if they were independent) or auto "
                   "(any when the model's customers have 20 orders or more "
                   "on average)")
      ->check(CLI::IsMember({"auto", "best", "any"}))
      ->capture_default_str();
  command
      ->add_option("--earlier-weight", o.earlierSetWeight,
                   "Weight of a pattern ending one order earlier (default: "
                   "0.5 when the model's customers have 20 orders or more on "
                   "average, else 0.3)")
      ->check(CLI::Range(0.0, 1.0));
  command
      ->add_option("--sequence-weight", o.sequenceWeight,
                   "Share of the score from the customers' sequences kept "
                   "in the model, the rest from the lattice (default: 1 when "
                   "the model's customers have 50 orders or more on average, "
                   "else 0.5)")
      ->check(CLI::Range(0.0, 1.0));
  command
      ->add_option("--sequence-evidence", settings->sequenceEvidence,
                   "How the customers' sequences are asked: followers (the "
                   "customers holding the recent context), similar (every "
                   "later occurrence in the customers most alike it) or auto "
                   "(similar when the model's customers have 50 orders or "
                   "more on average)")
      ->check(CLI::IsMember({"auto", "followers", "similar"}))
      ->capture_default_str();
  command
      ->add_option("--context-sets", o.contextSets,
                   "Latest orders that form the recent context")
      ->check(CLI::Range(1, 1000))
      ->capture_default_str();
  command
      ->add_option("--context-customers", o.minContextCustomers,
                   "Customers the recent context needs before none of its "
                   "items is left out")
      ->check(CLI::Range(1, 1000000))
      ->capture_default_str();
  command
      ->add_option("--max-dropped", o.maxDropped,
                   "Most context items left out to find such customers")
      ->check(CLI::Range(0, 8))
      ->capture_default_str();
  command
      ->add_option("--decay", o.decay,
                   "How fast an item's weight falls with the orders between "
                   "the context and it: 1 / (1 + decay * orders) (default: "
                   "0.3 when the model's customers have 20 orders or more on "
                   "average, else 0)")
      ->check(CLI::NonNegativeNumber);
  command
      ->add_option("--next-weight", o.nextWeight,
                   "Share of the score from what came right after the "
                   "latest orders in the customers' sequences kept in the "
                   "model (0 turns it off; default, where orders hold "
                   "under 1.5 items on average: 0.72 when the next order is "
                   "not mostly what comes soon anyway, 0.26 when it mostly "
                   "is, 0 when it nearly always is; else 0)")
      ->check(CLI::Range(0.0, 1.0));
  command
      ->add_option("--popularity-power", o.popularityPower,
                   "Multiply the lattice's and the sequences' evidence by "
                   "the item's popularity to this power (0 turns it off; "
                   "default, where orders hold under 1.5 items on average: "
                   "0.1 when the next order is mostly but not always what "
                   "comes soon, else 0)")
      ->check(CLI::Range(0.0, 10.0));
}

std::string sourceName(recommend::Source source) {
  switch (source) {
    case recommend::Source::kLattice:
      return "lattice";
    case recommend::Source::kSequences:
      return "sequences";
    case recommend::Source::kNext:
      return "next";
    default:
      return "popular";
  }
}

}  // namespace seqlattice_cli
