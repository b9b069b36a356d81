#include "support/modeldocuments.h"

#include <ostream>

#include "support/atomicfile.h"
#include "support/clierror.h"

namespace seqlattice_cli {

namespace {

void checkStatus(const KvCommon_850::KvStatus& status, const char* what) {
  if (!status.IsOK()) {
    failInput(std::string("export: ") + what + " failed (status " +
              std::to_string(status.GetCode()) + ")");
  }
}

}  // namespace

void exportPmml(Model& model, const RuleBounds& b, const std::string& path) {
  writeOutput(path, [&](std::ostream& out) {
    checkStatus(
        model.dictionary->ExportRulesXML(
            out, b.minSupport, b.maxSupport, b.minConfidence, b.maxConfidence,
            b.minCause, b.maxCause, model.mining.maxItemsPerTransaction,
            model.mining.avgItemsPerTransaction(), b.sortLetter, b.maximal),
        "the PMML document");
  });
}

void exportLattice(Model& model, double minSupport, const std::string& path) {
  writeOutput(path, [&](std::ostream& out) {
    checkStatus(model.dictionary->ExportLatticeXML(out, minSupport),
                "the lattice document");
  });
}

}  // namespace seqlattice_cli
