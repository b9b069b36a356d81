// seqlattice export: the model as a PMML sequence model, as the lattice
// document, or as a Graphviz graph of its most frequent patterns.
#ifndef SEQLATTICE_CLI_EXPORT_H_
#define SEQLATTICE_CLI_EXPORT_H_

#include <string>

#include "output.h"
#include "rulebounds.h"

namespace seqlattice_cli {

struct ExportOptions {
  std::string model;
  std::string output;
  RuleBounds bounds;
  double latticeMinSupport = 0.0;
  int top = 30;
};

void runPmml(const ExportOptions& options);
void runLattice(const ExportOptions& options);
void runDot(const ExportOptions& options);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_EXPORT_H_
