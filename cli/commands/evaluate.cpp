// seqlattice evaluate: how well the model of a log predicts each customer's
// last order (or last item) from the orders before it, for the recommender,
// the library's confidence order and the most popular items, side by side.
#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "seqlattice/mining/sequencedatabase.h"
#include "seqlattice/recommend/recommender.h"
#include "seqlattice/sequence/timeditemset.h"
#include "support/clierror.h"
#include "support/inputlog.h"
#include "support/minemodel.h"
#include "support/modelfile.h"
#include "support/output.h"
#include "support/prediction.h"
#include "support/progress.h"
#include "support/recommendoptions.h"
#include "support/sequencelabels.h"

namespace seqlattice_cli {

namespace {

namespace mining = SEQUENCE_NAMESPACE_800::mining;
namespace recommend = SEQUENCE_NAMESPACE_800::recommend;
using SEQUENCE_NAMESPACE_800::Sequence;

struct EvaluateOptions {
  std::string input;
  MineSettings mining;
  InputOptions inputOptions;
  std::string holdout = "last-set";
  int folds = 1;
  PredictSettings prediction;
  Format format = Format::kTable;
};

// Hits at 1, 5 and 10, reciprocal ranks and answered customers of one method.
struct Score {
  long customers = 0;
  long hits[3] = {0, 0, 0};
  double reciprocalRanks = 0;
  long answered = 0;

  void add(const std::vector<int>& ranked, const std::vector<int>& heldOut) {
    ++customers;
    if (!ranked.empty()) ++answered;
    for (std::size_t r = 0; r < ranked.size(); ++r) {
      if (std::find(heldOut.begin(), heldOut.end(), ranked[r]) ==
          heldOut.end()) {
        continue;
      }
      reciprocalRanks += 1.0 / static_cast<double>(r + 1);
      const std::size_t cuts[3] = {1, 5, 10};
      for (int k = 0; k < 3; ++k) {
        if (r < cuts[k]) ++hits[k];
      }
      return;
    }
  }
  double share(long n) const {
    return customers > 0 ? static_cast<double>(n) / customers : 0.0;
  }
};

// One customer split into the history and the items held out; empty
// heldOut when the customer is too short to split.
struct Split {
  std::vector<std::vector<int>> history;
  std::vector<int> heldOut;
};

Split splitCustomer(const mining::SequenceDatabase& db, std::size_t c,
                    bool lastItem) {
  Split split;
  std::size_t items = 0;
  for (auto t = db.firstTransaction(c); t < db.endTransaction(c); ++t) {
    split.history.emplace_back(db.itemsBegin(t), db.itemsEnd(t));
    items += split.history.back().size();
  }
  if (split.history.size() < (lastItem ? 1u : 2u) || items < 2) {
    return Split{};
  }
  if (lastItem) {
    split.heldOut = {split.history.back().back()};
    split.history.back().pop_back();
    if (split.history.back().empty()) split.history.pop_back();
  } else {
    split.heldOut = split.history.back();
    split.history.pop_back();
  }
  return split;
}

Sequence toSequence(const std::vector<std::vector<int>>& sets) {
  Sequence sequence;
  double time = 0;
  for (const auto& set : sets) {
    SEQUENCE_NAMESPACE_800::TimedItemSet itemSet;
    itemSet.AddAllItems(set.data(), static_cast<int>(set.size()), time++);
    sequence.AddTimedItemSet(&itemSet);
  }
  return sequence;
}

std::vector<int> itemsOf(const std::vector<recommend::Recommendation>& list) {
  std::vector<int> items;
  for (const auto& r : list) items.push_back(r.item);
  return items;
}

void runEvaluate(const EvaluateOptions& options) {
  Progress progress;
  progress.note("reading " + options.input + " ...");
  auto log = loadInput(options.input, options.inputOptions);
  const mining::SequenceDatabase& db = log.database;
  if (db.customerCount() == 0) failInput(options.input + ": no customers");
  const bool lastItem = options.holdout == "last-item";
  const int listLength = std::max(10, options.prediction.top);
  Score scores[3];  // recommender, confidence order, most popular
  for (int fold = 0; fold < options.folds; ++fold) {
    // The fold's customers lose what is held out; the others train whole.
    std::vector<Split> splits(db.customerCount());
    SEQUENCE_NAMESPACE_800::input::LabelledDatabase train;
    train.items = log.items;
    train.customers = log.customers;
    for (std::size_t c = 0; c < db.customerCount(); ++c) {
      const bool tested = static_cast<int>(c % options.folds) == fold;
      if (tested) splits[c] = splitCustomer(db, c, lastItem);
      train.database.beginCustomer();
      if (!splits[c].heldOut.empty()) {
        for (std::size_t t = 0; t < splits[c].history.size(); ++t) {
          train.database.addTransaction(static_cast<double>(t),
                                        splits[c].history[t]);
        }
      } else {
        // Not tested, or too short to split: trains with every order.
        for (auto t = db.firstTransaction(c); t < db.endTransaction(c); ++t) {
          train.database.addTransaction(
              db.time(t), db.itemsBegin(t),
              static_cast<std::size_t>(db.itemsEnd(t) - db.itemsBegin(t)));
        }
      }
      train.database.endCustomer();
    }
    progress.note("fold " + std::to_string(fold + 1) + " of " +
                  std::to_string(options.folds) + ": mining ...");
    Model model;
    mineModel(train, options.mining, options.input,
              inputFormat(options.input, options.inputOptions), &model);
    recommend::Recommender recommender(*model.dictionary, &model.sequences);
    recommend::RecommendOptions settings = recommendOptions(options.prediction);
    settings.top = listLength;
    recommend::RecommendOptions byConfidence = settings;
    byConfidence.ranking = recommend::Ranking::kConfidence;
    byConfidence.historyItems = recommend::HistoryItems::kAll;
    const std::vector<int> popular =
        itemsOf(recommender.recommend(Sequence(), byConfidence));
    for (const Split& split : splits) {
      if (split.heldOut.empty()) continue;
      const Sequence history = toSequence(split.history);
      scores[0].add(itemsOf(recommender.recommend(history, settings)),
                    split.heldOut);
      scores[1].add(itemsOf(recommender.recommend(history, byConfidence)),
                    split.heldOut);
      scores[2].add(popular, split.heldOut);
    }
  }
  ResultTable table(
      {"method", "customers", "hit@1", "hit@5", "hit@10", "mrr", "coverage"});
  const char* names[3] = {"recommender", "confidence", "popular"};
  for (int m = 0; m < 3; ++m) {
    const Score& s = scores[m];
    table.addRow({names[m], s.customers, s.share(s.hits[0]), s.share(s.hits[1]),
                  s.share(s.hits[2]),
                  s.customers > 0 ? s.reciprocalRanks / s.customers : 0.0,
                  s.share(s.answered)});
  }
  table.write(std::cout, options.format);
}

}  // namespace

Command addEvaluateCommand(CLI::App& app) {
  auto options = std::make_shared<EvaluateOptions>();
  CLI::App* command = app.add_subcommand(
      "evaluate",
      "Measure the predictions on a log: hold out each customer's last order "
      "(or item), mine the rest, predict it");
  command->add_option("LOG", options->input, "Transaction file")->required();
  addMiningOptions(command, &options->mining);
  command
      ->add_option("--holdout", options->holdout,
                   "What is held out of each customer: last-set (the last "
                   "order) or last-item")
      ->check(CLI::IsMember({"last-set", "last-item"}))
      ->capture_default_str();
  command
      ->add_option("--folds", options->folds,
                   "Hold out from one customer in K at a time, the others "
                   "training with their whole history (1: every customer)")
      ->check(CLI::Range(1, 1000))
      ->capture_default_str();
  addRecommendOptions(command, &options->prediction);
  addFormatOption(command, &options->format);
  addInputOptions(command, &options->inputOptions, "--input-format");
  command->footer(
      "The recommender is measured with the ranking options given (--top: "
      "the length of the ranked lists, at least 10). Customers whose history "
      "would be empty are not counted. hit@k: share "
      "of customers with a held-out item among the first k; mrr: mean of "
      "1 / rank of the first such item (0 when none); coverage: share of "
      "customers given any item.\n"
      "Examples:\n"
      "  seqlattice evaluate data/sample/orders.csv\n"
      "  seqlattice evaluate log.csv --folds 5 --holdout last-item --format "
      "json");
  return {command, [options] { runEvaluate(*options); }};
}

}  // namespace seqlattice_cli
