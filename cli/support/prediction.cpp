#include "support/prediction.h"

#include <utility>

#include "seqlattice/rules/seqconsequentdescript.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "support/clierror.h"
#include "support/sequencelabels.h"

namespace seqlattice_cli {

namespace {

using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::TimedItemSet;

std::vector<SeqConsequentDescriptor> predictFor(
    Model& model, const Sequence& customer, const PredictSettings& settings) {
  std::vector<SeqConsequentDescriptor> predictions;
  KvCommon_850::KvStatus status =
      settings.current
          ? model.dictionary->GetCurrentItems(predictions, &customer,
                                              settings.top)
          : model.dictionary->GetFutureItems(
                predictions, &customer, settings.top, settings.lastSetOnly);
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

}  // namespace

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
  Sequence customer = makeSequence(history, model.items,
                                   unknownItemCode(*model.dictionary), unknown);
  ResultTable table(predictionColumns(false));
  addRows(table, model, nullptr, predictFor(model, customer, settings));
  return table;
}

ResultTable predictLog(
    Model& model, const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const PredictSettings& settings) {
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
    addRows(table, model, &label, predictFor(model, customer, settings));
  }
  return table;
}

}  // namespace seqlattice_cli
