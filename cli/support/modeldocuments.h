// The model's published documents as "export pmml" and "export lattice"
// write them, shared with the Python package's Model.to_pmml and
// Model.to_lattice_xml. Each writes to path through AtomicFile (standard
// output for "" or "-") and throws CliError (exit 1) when the library fails
// to produce the document.
#ifndef SEQLATTICE_CLI_SUPPORT_MODELDOCUMENTS_H_
#define SEQLATTICE_CLI_SUPPORT_MODELDOCUMENTS_H_

#include <string>

#include "support/modelfile.h"
#include "support/rulebounds.h"

namespace seqlattice_cli {

// The PMML 3.2 sequence model of the rules within bounds.
void exportPmml(Model& model, const RuleBounds& bounds,
                const std::string& path);

// The lattice document of every stored pattern; minSupport is stated when it
// exceeds the model's.
void exportLattice(Model& model, double minSupport, const std::string& path);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_MODELDOCUMENTS_H_
