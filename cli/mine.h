// seqlattice mine: read a transaction file, mine every frequent sequential
// pattern into a dictionary, build its lattice and save the model.
#ifndef SEQLATTICE_CLI_MINE_H_
#define SEQLATTICE_CLI_MINE_H_

#include <string>

#include "inputlog.h"
#include "output.h"

namespace seqlattice_cli {

struct MineOptions {
  std::string input;
  std::string output;
  std::string minSupport = "0.05";
  int maxItems = 9;
  InputOptions inputOptions;
  bool xml = false;
};

// "0.02" is a fraction of the customers (0 < F <= 1), "12" a count of
// customers (N >= 1); false for anything else.
bool parseMinSupport(const std::string& text, bool* isFraction, double* value);

void runMine(const MineOptions& options);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_MINE_H_
