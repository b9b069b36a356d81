// seqlattice convert: a model from the binary to the XML object format or
// back; the labels and mining parameters travel along.
#ifndef SEQLATTICE_CLI_CONVERT_H_
#define SEQLATTICE_CLI_CONVERT_H_

#include <string>

#include "output.h"

namespace seqlattice_cli {

struct ConvertOptions {
  std::string input;
  std::string output;
  std::string to;  // "binary", "xml", or empty for the other form
};

void runConvert(const ConvertOptions& options);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_CONVERT_H_
