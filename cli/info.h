// seqlattice info: what a model holds and how it was mined.
#ifndef SEQLATTICE_CLI_INFO_H_
#define SEQLATTICE_CLI_INFO_H_

#include <string>

#include "output.h"

namespace seqlattice_cli {

struct InfoOptions {
  std::string model;
  Format format = Format::kTable;
};

void runInfo(const InfoOptions& options);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_INFO_H_
