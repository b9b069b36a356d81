// What a model holds and how it was mined, as "info" shows it and the Python
// package's Model.info returns it: named fields in a fixed order.
#ifndef SEQLATTICE_CLI_SUPPORT_MODELINFO_H_
#define SEQLATTICE_CLI_SUPPORT_MODELINFO_H_

#include <string>
#include <utility>
#include <vector>

#include "support/modelfile.h"
#include "support/output.h"

namespace seqlattice_cli {

using InfoFields = std::vector<std::pair<std::string, Json>>;

// name is what the "model" field shows (the file the model came from).
InfoFields modelInfo(const Model& model, const std::string& name);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_MODELINFO_H_
