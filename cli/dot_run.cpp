// seqlattice export dot: the lattice's most frequent patterns as a Graphviz
// graph.
#include "atomicfile.h"
#include "dotgraph.h"
#include "export.h"
#include "modelfile.h"

namespace seqlattice_cli {

void runDot(const ExportOptions& options) {
  Model model = loadModel(options.model);
  writeOutput(options.output, [&](std::ostream& out) {
    writeDotGraph(out, *model.dictionary, model.items, options.top);
  });
}

}  // namespace seqlattice_cli
