// seqlattice export: the model as a PMML sequence model, as the lattice
// document, or as a Graphviz graph of its most frequent patterns.
#include <iostream>

#include "atomicfile.h"
#include "clierror.h"
#include "dotgraph.h"
#include "export.h"
#include "modelfile.h"
#include "rulebounds.h"

namespace seqlattice_cli {

namespace {

void checkStatus(const KvCommon_850::KvStatus& status, const char* what) {
  if (!status.IsOK()) {
    failInput(std::string("export: ") + what + " failed (status " +
              std::to_string(status.GetCode()) + ")");
  }
}

}  // namespace

void runPmml(const ExportOptions& options) {
  Model model = loadModel(options.model);
  const RuleBounds& b = options.bounds;
  writeOutput(options.output, [&](std::ostream& out) {
    checkStatus(
        model.dictionary->ExportRulesXML(
            out, b.minSupport, b.maxSupport, b.minConfidence, b.maxConfidence,
            b.minCause, b.maxCause, model.mining.maxItemsPerTransaction,
            model.mining.avgItemsPerTransaction(), b.sortLetter(), b.maximal),
        "the PMML document");
  });
}

void runLattice(const ExportOptions& options) {
  Model model = loadModel(options.model);
  writeOutput(options.output, [&](std::ostream& out) {
    checkStatus(
        model.dictionary->ExportLatticeXML(out, options.latticeMinSupport),
        "the lattice document");
  });
}

void runDot(const ExportOptions& options) {
  Model model = loadModel(options.model);
  writeOutput(options.output, [&](std::ostream& out) {
    writeDotGraph(out, *model.dictionary, model.items, options.top);
  });
}

}  // namespace seqlattice_cli
