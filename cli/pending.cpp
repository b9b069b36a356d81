// Run functions of the commands whose library parts this build lacks (see
// SEQLATTICE_CLI_PENDING in CMakeLists.txt): each says so and fails.
#include "clierror.h"
#include "convert.h"
#include "export.h"
#include "info.h"
#include "mine.h"
#include "patterns.h"
#include "predict.h"
#include "rules.h"

namespace seqlattice_cli {

#ifdef SEQLATTICE_CLI_PENDING_MINE
void runMine(const MineOptions&) { failNotAvailable("mine"); }
#endif
#ifdef SEQLATTICE_CLI_PENDING_RULES
void runRules(const RulesOptions&) { failNotAvailable("rules"); }
#endif
#ifdef SEQLATTICE_CLI_PENDING_PREDICT
void runPredict(const PredictOptions&) { failNotAvailable("predict"); }
#endif
#ifdef SEQLATTICE_CLI_PENDING_PATTERNS
void runPatterns(const PatternsOptions&) { failNotAvailable("patterns"); }
#endif
#ifdef SEQLATTICE_CLI_PENDING_EXPORT
void runPmml(const ExportOptions&) { failNotAvailable("export"); }
void runLattice(const ExportOptions&) { failNotAvailable("export"); }
void runDot(const ExportOptions&) { failNotAvailable("export"); }
#endif
#ifdef SEQLATTICE_CLI_PENDING_CONVERT
void runConvert(const ConvertOptions&) { failNotAvailable("convert"); }
#endif
#ifdef SEQLATTICE_CLI_PENDING_INFO
void runInfo(const InfoOptions&) { failNotAvailable("info"); }
#endif

}  // namespace seqlattice_cli
