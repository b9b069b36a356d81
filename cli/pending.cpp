// Run functions of the commands whose library parts this build lacks (see
// SEQLATTICE_CLI_PENDING in CMakeLists.txt): each says so and fails.
#include "clierror.h"
#include "export.h"

namespace seqlattice_cli {

#ifdef SEQLATTICE_CLI_PENDING_EXPORT
void runPmml(const ExportOptions&) { failNotAvailable("export"); }
void runLattice(const ExportOptions&) { failNotAvailable("export"); }
#endif

}  // namespace seqlattice_cli
