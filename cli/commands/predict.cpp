// seqlattice predict: the items a customer is likely to buy next (or with
// the current order, --current), for one history, one customer of a log or a
// whole log.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "seqlattice/recommend/recommender.h"
#include "seqlattice/rules/seqconsequentdescript.h"
#include "support/clierror.h"
#include "support/inputlog.h"
#include "support/itemsyntax.h"
#include "support/modelfile.h"
#include "support/output.h"
#include "support/recommendoptions.h"
#include "support/sequencelabels.h"

namespace seqlattice_cli {

namespace {

namespace recommend = SEQUENCE_NAMESPACE_800::recommend;
using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using SEQUENCE_NAMESPACE_800::Sequence;

struct PredictOptions {
  std::string model;
  ItemSequenceOption history;
  std::string input;
  std::string customer;
  InputOptions inputOptions;
  bool current = false;
  bool explain = false;
  RecommendChoice choice;
  Format format = Format::kTable;
};

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

// The columns: the library's measures for its own orders, the score and the
// evidence's source for the recommender's, and the evidence when explained.
class PredictionTable {
 public:
  PredictionTable(const PredictOptions& options, bool batch)
      : table_(columns(options, batch)),
        measuresOnly_(options.current || options.choice.ranking() ==
                                             recommend::Ranking::kConfidence),
        explain_(options.explain) {}

  void add(const Model& model, const Json* customer,
           const std::vector<recommend::Recommendation>& predictions) {
    long rank = 0;
    for (const recommend::Recommendation& p : predictions) {
      std::vector<Json> row;
      if (customer != nullptr) row.push_back(*customer);
      row.insert(row.end(), {++rank, model.items.labelOf(p.item)});
      if (!measuresOnly_) {
        row.insert(row.end(), {p.score, sourceName(p.source)});
      }
      row.insert(row.end(), {p.confidence, p.support, p.cause});
      if (explain_) addEvidence(model, p, &row);
      table_.addRow(std::move(row));
    }
  }
  void write(Format format) const { table_.write(std::cout, format); }

 private:
  static std::vector<std::string> columns(const PredictOptions& options,
                                          bool batch) {
    std::vector<std::string> names = {"rank", "item"};
    if (batch) names.insert(names.begin(), "customer");
    if (!options.current &&
        options.choice.ranking() != recommend::Ranking::kConfidence) {
      names.insert(names.end(), {"score", "source"});
    }
    names.insert(names.end(), {"confidence", "support", "cause"});
    if (options.explain) {
      names.insert(names.end(),
                   {"pattern", "count", "pattern count", "skipped sets",
                    "context customers", "followers"});
    }
    return names;
  }

  static void addEvidence(const Model& model,
                          const recommend::Recommendation& p,
                          std::vector<Json>* row) {
    Json pattern = Json::array();
    for (const auto& set : p.pattern) {
      Json labels = Json::array();
      for (int item : set) labels.push_back(model.items.labelOf(item));
      pattern.push_back(std::move(labels));
    }
    row->insert(row->end(),
                {std::move(pattern), p.count, p.patternCount, p.skippedSets,
                 p.contextCustomers, p.followerWeight});
  }

  ResultTable table_;
  bool measuresOnly_;
  bool explain_;
};

void warnUnknown(const std::vector<std::string>& unknown) {
  for (const std::string& label : unknown) {
    std::cerr << "seqlattice: predict: item \"" << label
              << "\" is not in the model\n";
  }
}

void runPredict(const PredictOptions& options) {
  Model model = loadModel(options.model);
  recommend::Recommender recommender(*model.dictionary, &model.sequences);
  const recommend::RecommendOptions settings = options.choice.settings();
  auto predict = [&](const Sequence& customer) {
    return options.current ? currentItems(model, customer, settings.top)
                           : recommender.recommend(customer, settings);
  };
  const int unknownCode = unknownItemCode(*model.dictionary);
  if (!options.input.empty()) {
    auto log = loadLogForModel(options.input, options.inputOptions, model,
                               unknownCode);
    PredictionTable table(options, true);
    bool found = false;
    for (std::size_t c = 0; c < log.database.customerCount(); ++c) {
      if (!options.customer.empty() && log.customers[c] != options.customer) {
        continue;
      }
      found = true;
      Json label = log.customers[c];
      table.add(model, &label, predict(customerSequence(log.database, c)));
    }
    if (!found && !options.customer.empty()) {
      failInput(options.input + ": no customer \"" + options.customer + "\"");
    }
    table.write(options.format);
    return;
  }
  std::vector<std::string> unknown;
  Sequence customer = makeSequence(options.history.value.value_or(LabelSets()),
                                   model.items, unknownCode, &unknown);
  warnUnknown(unknown);
  PredictionTable table(options, false);
  table.add(model, nullptr, predict(customer));
  table.write(options.format);
}

}  // namespace

Command addPredictCommand(CLI::App& app) {
  auto options = std::make_shared<PredictOptions>();
  CLI::App* command = app.add_subcommand(
      "predict",
      "Predict the items a customer buys next, from the history so far");
  command->add_option("MODEL", options->model, "Model file")->required();
  CLI::Option* history = addItemSequenceOption(
      command, "--history", &options->history, true,
      "The customer's orders, oldest first: items of an order separated by "
      "',', orders by ';' (\"a,b;c\"); \"\" for a new customer");
  CLI::Option* input = command->add_option(
      "--input", options->input,
      "Batch mode: predict for every customer of this transaction file");
  history->excludes(input);
  input->excludes(history);
  command
      ->add_option("--customer", options->customer,
                   "With --input: only this customer of the file")
      ->needs(input);
  CLI::Option* current = command->add_flag(
      "--current", options->current,
      "Predict items of the current (last) order instead of the next one, "
      "in the library's confidence order");
  addRecommendOptions(command, &options->choice);
  command->add_flag("--explain", options->explain,
                    "Add the evidence behind each item: the matched pattern "
                    "and its counts, and the customers of the recent context "
                    "that acquired the item next");
  for (const char* name : {"--rank", "--new-only", "--repeat-only",
                           "--last-set-only", "--explain"}) {
    current->excludes(name);
  }
  addFormatOption(command, &options->format);
  addInputOptions(command, &options->inputOptions, "--input-format", "-column");
  command->footer(
      "Examples:\n"
      "  seqlattice predict orders.model --history \"espresso machine;coffee "
      "beans\"\n"
      "  seqlattice predict orders.model --history \"descaler\" --explain\n"
      "  seqlattice predict orders.model --input recent.csv --customer c17\n"
      "  seqlattice predict orders.model --input recent.csv --top 3 --format "
      "csv");
  command->callback([history, input] {
    if (history->count() == 0 && input->count() == 0) {
      throw CLI::RequiredError("--history or --input");
    }
  });
  return {command, [options] { runPredict(*options); }};
}

}  // namespace seqlattice_cli
