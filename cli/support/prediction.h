// Predictions as "predict" makes them: the one path from a customer's
// history to the ranked items a model expects next, shared by the predict
// command and the Python package's Model.predict. The predictor and the
// columns it reports live here only; a front end shows the table it gets, so
// a change of predictor reaches every front end at once.
#ifndef SEQLATTICE_CLI_SUPPORT_PREDICTION_H_
#define SEQLATTICE_CLI_SUPPORT_PREDICTION_H_

#include <functional>
#include <string>
#include <vector>

#include "seqlattice/input/columnreader.h"
#include "support/itemsyntax.h"
#include "support/modelfile.h"
#include "support/output.h"

namespace seqlattice_cli {

struct PredictSettings {
  bool current = false;      // items of the current (last) order
  bool lastSetOnly = false;  // only patterns ending in the last order
  int top = 5;               // items per customer
};

// The code of each item label in the model's coding, to read a log of new
// customers with (labels the model does not know share one unused code).
std::function<int(const std::string&)> modelItemCoder(const Model& model);

// One customer's predictions: rank, item and the measures. Labels the model
// does not know are appended to *unknown.
ResultTable predictHistory(Model& model, const LabelSets& history,
                           const PredictSettings& settings,
                           std::vector<std::string>* unknown);

// The predictions for every customer of log, read with modelItemCoder: the
// customer's label first, then the columns of predictHistory.
ResultTable predictLog(
    Model& model, const SEQUENCE_NAMESPACE_800::input::LabelledDatabase& log,
    const PredictSettings& settings);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_PREDICTION_H_
