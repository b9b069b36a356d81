// seqlattice predict: the items a customer is likely to buy next (or with
// the current order, --current), for one history or a whole file.
#ifndef SEQLATTICE_CLI_PREDICT_H_
#define SEQLATTICE_CLI_PREDICT_H_

#include <string>

#include "inputlog.h"
#include "output.h"

namespace seqlattice_cli {

struct PredictOptions {
  std::string model;
  std::string history;
  std::string input;
  InputOptions inputOptions;
  bool current = false;
  bool lastSetOnly = false;
  int top = 5;
  Format format = Format::kTable;
};

void runPredict(const PredictOptions& options);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_PREDICT_H_
