// Predictions as "predict" makes them: the one path from a customer's
// history to the ranked items a model expects next, shared by the predict
// command and the Python package's Model.predict. The predictor (the
// recommender of seqlattice/recommend, or the library's own orders) and the
// columns it reports live here only; a front end shows the table it gets, so
// a change of predictor reaches every front end at once.
#ifndef SEQLATTICE_CLI_SUPPORT_PREDICTION_H_
#define SEQLATTICE_CLI_SUPPORT_PREDICTION_H_

#include <functional>
#include <string>
#include <vector>

#include "seqlattice/input/columnreader.h"
#include "seqlattice/recommend/recommender.h"
#include "support/itemsyntax.h"
#include "support/modelfile.h"
#include "support/output.h"

namespace seqlattice_cli {

// The recommender's options (top, lastSetOnly, the evidence weights) and
// the choices that fill in its ranking and history filter: the base's
// ranking and historyItems are set from rank, newOnly and repeatOnly.
struct PredictSettings : SEQUENCE_NAMESPACE_800::recommend::RecommendOptions {
  bool current = false;            // items of the current (last) order, in the
                                   // library's confidence order
  std::string rank = "recommend";  // recommend, lift or confidence
  bool newOnly = false;            // leave out items the customer has
  bool repeatOnly = false;         // only items the customer has
  bool explain = false;            // add the evidence behind each item
  std::string sequenceEvidence = "auto";  // auto, followers or similar
  std::string rules = "auto";             // auto, best or any
  std::string customer;                   // predictLog: only this customer
};

// settings' recommender options, ranking and history filter filled in.
SEQUENCE_NAMESPACE_800::recommend::RecommendOptions recommendOptions(
    const PredictSettings& settings);

// The code of each item label in the model's coding, to read a log of new
// customers with (labels the model does not know share one unused code).
std::function<int(const std::string&)> modelItemCoder(const Model& model);

// One customer's predictions: rank, item, for the recommender's rankings the
// score and the source of its evidence, the library's measures and, with
// explain, the evidence. Labels the model does not know are appended to
// *unknown. Throws CliError on a contradictory choice.
ResultTable predictHistory(Model& model, const LabelSets& history,
                           const PredictSettings& settings,
                           std::vector<std::string>* unknown);

// The predictions for every customer of log (or settings.customer only),
// read with modelItemCoder: the customer's label first, then the columns of
// predictHistory. Throws CliError (exit 1) when settings.customer is not in
// log.
ResultTable predictLog(
    Model& model, const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const PredictSettings& settings);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_PREDICTION_H_
