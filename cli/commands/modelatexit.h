// ModelAtExit leaves a command's model to the system when the command ends.
// Each command runs once in a process that ends with it; freeing a model of
// millions of patterns node by node costs a fifth of mining it and a third
// of loading it, and the system takes the memory back at once. Builds that
// check for leaks (SEQLATTICE_FREE_AT_EXIT) free it as usual. Only for the
// commands: the Python package keeps its models in a living process.
#ifndef SEQLATTICE_CLI_COMMANDS_MODELATEXIT_H_
#define SEQLATTICE_CLI_COMMANDS_MODELATEXIT_H_

#include "support/modelfile.h"

namespace seqlattice_cli {

class ModelAtExit {
 public:
  explicit ModelAtExit(Model& model) : model_(model) {}
  ModelAtExit(const ModelAtExit&) = delete;
  ModelAtExit& operator=(const ModelAtExit&) = delete;
  ~ModelAtExit() {
#ifndef SEQLATTICE_FREE_AT_EXIT
    static_cast<void>(model_.dictionary.release());
#endif
  }

 private:
  Model& model_;
};

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_COMMANDS_MODELATEXIT_H_
