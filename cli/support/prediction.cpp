#include "support/prediction.h"

#include <initializer_list>
#include <utility>

#include "seqlattice/rules/seqconsequentdescript.h"
#include "seqlattice/sequence/sequence.h"
#include "support/clierror.h"
#include "support/recommendoptions.h"
#include "support/sequencelabels.h"

namespace seqlattice_cli {

namespace {

namespace recommend = SEQUENCE_NAMESPACE_800::recommend;
using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using SEQUENCE_NAMESPACE_800::Sequence;

// The library's current-item prediction, in the recommender's record.
std::vector<recommend::Recommendation> currentItems(Model& model,
                                                    const Sequence& customer,
                                                    int top) {
  std::vector<SeqConsequentDescriptor> predictions;
  KvCommon_850::KvStatus status =
      model.dictionary->GetCurrentItems(predictions, &customer, top);
  if (!status.IsOK()) {
    failInput("predict: prediction failed (status " +
              std::to_string(status.GetCode()) + ")");
  }
  std::vector<recommend::Recommendation> out;
  for (const SeqConsequentDescriptor& p : predictions) {
    recommend::Recommendation r;
    r.item = p.GetItem();
    r.score = r.confidence = p.GetConfidence();
    r.support = p.GetSupport();
    r.cause = p.GetCause();
    out.push_back(r);
  }
  return out;
}

// The value named `name` among choices; a usage error naming the option and
// the names it takes otherwise.
template <typename Value>
Value namedChoice(
    const std::string& option, const std::string& name,
    std::initializer_list<std::pair<const char*, Value>> choices) {
  std::string names;
  for (const auto& [choiceName, value] : choices) {
    if (name == choiceName) return value;
    names += names.empty() ? choiceName : std::string(", ") + choiceName;
  }
  failUsage(option + ": expected " + names + ", not \"" + name + "\"");
}

// The recommender over one model, with the settings' choices.
class Predictor {
 public:
  Predictor(Model& model, const PredictSettings& settings)
      : model_(model),
        current_(settings.current),
        options_(recommendOptions(settings)),
        recommender_(*model.dictionary, &model.sequences) {
    if (settings.current &&
        (settings.rank != "recommend" || settings.newOnly ||
         settings.repeatOnly || settings.lastSetOnly || settings.explain)) {
      failUsage(
          "predict: current predicts in the library's confidence order; it "
          "takes no rank, new-only, repeat-only, last-set-only or explain");
    }
  }

  std::vector<recommend::Recommendation> operator()(const Sequence& customer) {
    return current_ ? currentItems(model_, customer, options_.top)
                    : recommender_.recommend(customer, options_);
  }

 private:
  Model& model_;
  bool current_;
  recommend::RecommendOptions options_;
  recommend::Recommender recommender_;
};

// The columns: the library's measures for its own orders, the score and the
// evidence's source for the recommender's, and the evidence when explained.
class PredictionTable {
 public:
  PredictionTable(const Model& model, const PredictSettings& settings,
                  bool batch)
      : model_(model),
        measuresOnly_(settings.current || recommendOptions(settings).ranking ==
                                              recommend::Ranking::kConfidence),
        explain_(settings.explain),
        table_(columns(batch)) {}

  void add(const Json* customer,
           const std::vector<recommend::Recommendation>& predictions) {
    long rank = 0;
    for (const recommend::Recommendation& p : predictions) {
      std::vector<Json> row;
      if (customer != nullptr) row.push_back(*customer);
      row.insert(row.end(), {++rank, model_.items.labelOf(p.item)});
      if (!measuresOnly_) {
        row.insert(row.end(), {p.score, sourceName(p.source)});
      }
      row.insert(row.end(), {p.confidence, p.support, p.cause});
      if (explain_) addEvidence(p, &row);
      table_.addRow(std::move(row));
    }
  }
  ResultTable take() { return std::move(table_); }

 private:
  std::vector<std::string> columns(bool batch) const {
    std::vector<std::string> names = {"rank", "item"};
    if (batch) names.insert(names.begin(), "customer");
    if (!measuresOnly_) names.insert(names.end(), {"score", "source"});
    names.insert(names.end(), {"confidence", "support", "cause"});
    if (explain_) {
      names.insert(names.end(),
                   {"pattern", "count", "pattern count", "skipped sets",
                    "context customers", "followers", "next after",
                    "next count", "run count", "item count"});
    }
    return names;
  }

  void addEvidence(const recommend::Recommendation& p,
                   std::vector<Json>* row) const {
    row->insert(row->end(),
                {labelled(p.pattern), p.count, p.patternCount, p.skippedSets,
                 p.contextCustomers, p.followerWeight, labelled(p.nextRun),
                 p.nextCount, p.nextRunCount, p.itemCount});
  }

  // Item sets as arrays of labels.
  Json labelled(const std::vector<std::vector<int>>& sets) const {
    Json out = Json::array();
    for (const auto& set : sets) {
      Json labels = Json::array();
      for (int item : set) labels.push_back(model_.items.labelOf(item));
      out.push_back(std::move(labels));
    }
    return out;
  }

  const Model& model_;
  bool measuresOnly_;
  bool explain_;
  ResultTable table_;
};

}  // namespace

recommend::RecommendOptions recommendOptions(const PredictSettings& settings) {
  recommend::RecommendOptions options = settings;
  options.ranking = namedChoice<recommend::Ranking>(
      "rank", settings.rank,
      {{"recommend", recommend::Ranking::kRecommend},
       {"lift", recommend::Ranking::kLift},
       {"confidence", recommend::Ranking::kConfidence}});
  options.sequenceEvidence = namedChoice<recommend::SequenceEvidence>(
      "sequence-evidence", settings.sequenceEvidence,
      {{"auto", recommend::SequenceEvidence::kAuto},
       {"followers", recommend::SequenceEvidence::kFollowers},
       {"similar", recommend::SequenceEvidence::kSimilar}});
  options.ruleCombination = namedChoice<recommend::RuleCombination>(
      "rules", settings.rules,
      {{"auto", recommend::RuleCombination::kAuto},
       {"best", recommend::RuleCombination::kBest},
       {"any", recommend::RuleCombination::kAnyOf}});
  if (settings.newOnly && settings.repeatOnly) {
    failUsage("new-only and repeat-only exclude each other");
  }
  options.historyItems = settings.newOnly ? recommend::HistoryItems::kNewOnly
                         : settings.repeatOnly
                             ? recommend::HistoryItems::kRepeatOnly
                         : options.ranking == recommend::Ranking::kConfidence
                             ? recommend::HistoryItems::kAll
                             : recommend::HistoryItems::kAuto;
  return options;
}

std::function<int(const std::string&)> modelItemCoder(const Model& model) {
  const int unknownCode = unknownItemCode(*model.dictionary);
  const auto* items = &model.items;
  return [items, unknownCode](const std::string& label) {
    auto code = items->codeOf(label);
    return code ? *code : unknownCode;
  };
}

ResultTable predictHistory(Model& model, const LabelSets& history,
                           const PredictSettings& settings,
                           std::vector<std::string>* unknown) {
  Predictor predict(model, settings);
  Sequence customer = makeSequence(history, model.items,
                                   unknownItemCode(*model.dictionary), unknown);
  PredictionTable table(model, settings, false);
  table.add(nullptr, predict(customer));
  return table.take();
}

ResultTable predictLog(
    Model& model, const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const PredictSettings& settings) {
  Predictor predict(model, settings);
  PredictionTable table(model, settings, true);
  bool found = false;
  for (std::size_t c = 0; c < log.database.customerCount(); ++c) {
    if (!settings.customer.empty() && log.customers[c] != settings.customer) {
      continue;
    }
    found = true;
    Json label = log.customers[c];
    table.add(&label, predict(customerSequence(log.database, c)));
  }
  if (!found && !settings.customer.empty()) {
    failInput("predict: no customer \"" + settings.customer + "\"");
  }
  return table.take();
}

}  // namespace seqlattice_cli
