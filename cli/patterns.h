// seqlattice patterns: the stored patterns, all of them or those that
// contain, begin with or end with a given sequence.
#ifndef SEQLATTICE_CLI_PATTERNS_H_
#define SEQLATTICE_CLI_PATTERNS_H_

#include <CLI/CLI.hpp>
#include <climits>
#include <string>

#include "output.h"

namespace seqlattice_cli {

struct PatternsOptions {
  std::string model;
  std::string contains;
  std::string beginning;
  std::string ending;
  int size = 0;
  bool maximal = false;
  int minCount = 0;
  int maxCount = INT_MAX;
  Format format = Format::kTable;
  // Which query option was given (an empty query is still a query).
  CLI::Option* containsOption = nullptr;
  CLI::Option* beginningOption = nullptr;
  CLI::Option* endingOption = nullptr;
};

void runPatterns(const PatternsOptions& options);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_PATTERNS_H_
