// seqlattice predict: the items a customer is likely to buy next (or with
// the current order, --current), for one history or a whole file.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "seqlattice/rules/seqconsequentdescript.h"
#include "seqlattice/sequence/timeditemset.h"
#include "support/clierror.h"
#include "support/inputlog.h"
#include "support/itemsyntax.h"
#include "support/modelfile.h"
#include "support/output.h"
#include "support/parsedoption.h"
#include "support/printable.h"
#include "support/sequencelabels.h"

namespace seqlattice_cli {

namespace {

using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::TimedItemSet;

struct PredictOptions {
  std::string model;
  ItemSequenceOption history;
  std::string input;
  InputOptions inputOptions;
  bool current = false;
  bool lastSetOnly = false;
  int top = 5;
  Format format = Format::kTable;
};

std::vector<SeqConsequentDescriptor> predictFor(Model& model,
                                                const Sequence& customer,
                                                const PredictOptions& options) {
  std::vector<SeqConsequentDescriptor> predictions;
  KvCommon_850::KvStatus status =
      options.current
          ? model.dictionary->GetCurrentItems(predictions, &customer,
                                              options.top)
          : model.dictionary->GetFutureItems(predictions, &customer,
                                             options.top, options.lastSetOnly);
  if (!status.IsOK()) {
    failInput("predict: prediction failed (status " +
              std::to_string(status.GetCode()) + ")");
  }
  return predictions;
}

// One row per prediction; the customer column only in batch mode.
void addRows(ResultTable& table, const Model& model, const Json* customer,
             const std::vector<SeqConsequentDescriptor>& predictions) {
  long rank = 0;
  for (const SeqConsequentDescriptor& p : predictions) {
    std::vector<Json> row;
    if (customer != nullptr) row.push_back(*customer);
    row.insert(row.end(), {++rank, model.items.labelOf(p.GetItem()),
                           p.GetConfidence(), p.GetSupport(), p.GetCause()});
    table.addRow(std::move(row));
  }
}

std::vector<std::string> predictionColumns(bool batch) {
  std::vector<std::string> columns = {"rank", "item", "confidence", "support",
                                      "cause"};
  if (batch) columns.insert(columns.begin(), "customer");
  return columns;
}

void warnUnknown(const std::vector<std::string>& unknown) {
  for (const std::string& label : unknown) {
    std::cerr << "seqlattice: predict: item \"" << printable(label)
              << "\" is not in the model\n";
  }
}

void runPredict(const PredictOptions& options) {
  Model model = loadModel(options.model);
  const int unknownCode = unknownItemCode(*model.dictionary);
  if (!options.input.empty()) {
    auto log = loadInput(options.input, options.inputOptions,
                         [&](const std::string& label) {
                           auto code = model.items.codeOf(label);
                           return code ? *code : unknownCode;
                         });
    ResultTable table(predictionColumns(true));
    const auto& db = log.database;
    for (std::size_t c = 0; c < db.customerCount(); ++c) {
      Sequence customer;
      for (auto t = db.firstTransaction(c); t < db.endTransaction(c); ++t) {
        TimedItemSet set;
        set.AddAllItems(db.itemsBegin(t),
                        static_cast<int>(db.itemsEnd(t) - db.itemsBegin(t)),
                        db.time(t));
        customer.AddTimedItemSet(&set);
      }
      Json label = log.customers[c];
      addRows(table, model, &label, predictFor(model, customer, options));
    }
    table.write(std::cout, options.format);
    return;
  }
  std::vector<std::string> unknown;
  Sequence customer = makeSequence(options.history.value.value_or(LabelSets()),
                                   model.items, unknownCode, &unknown);
  warnUnknown(unknown);
  ResultTable table(predictionColumns(false));
  addRows(table, model, nullptr, predictFor(model, customer, options));
  table.write(std::cout, options.format);
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
  command->add_flag("--current", options->current,
                    "Predict items of the current (last) order instead of "
                    "the next one");
  command
      ->add_flag("--last-set-only", options->lastSetOnly,
                 "Use only patterns ending in the last order")
      ->excludes("--current");
  command->add_option("--top", options->top, "Number of items per customer")
      ->check(wholeNumber(1))
      ->capture_default_str();
  addFormatOption(command, &options->format);
  addInputOptions(command, &options->inputOptions, "--input-format");
  command->footer(
      "Examples:\n"
      "  seqlattice predict orders.model --history \"espresso machine;coffee "
      "beans\"\n"
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
