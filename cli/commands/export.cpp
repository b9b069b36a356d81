// seqlattice export pmml|lattice|dot: the model as a PMML sequence model, as
// the lattice document, or as a Graphviz graph of its most frequent
// patterns.
#include <memory>
#include <ostream>
#include <string>

#include "commands/commands.h"
#include "commands/modelatexit.h"
#include "support/atomicfile.h"
#include "support/dotgraph.h"
#include "support/modeldocuments.h"
#include "support/modelfile.h"
#include "support/parsedoption.h"
#include "support/rulebounds.h"

namespace seqlattice_cli {

namespace {

struct ExportOptions {
  std::string model;
  std::string output;
  RuleBounds bounds;
  double latticeMinSupport = 0.0;
  int top = 30;
};

Model loadModelFor(const ExportOptions& options) {
  refuseSameFile(options.model, options.output);
  return loadModel(options.model);
}

void runPmml(const ExportOptions& options) {
  Model model = loadModelFor(options);
  ModelAtExit atExit(model);
  exportPmml(model, options.bounds, options.output);
}

void runLattice(const ExportOptions& options) {
  Model model = loadModelFor(options);
  ModelAtExit atExit(model);
  exportLattice(model, options.latticeMinSupport, options.output);
}

void runDot(const ExportOptions& options) {
  Model model = loadModelFor(options);
  ModelAtExit atExit(model);
  writeOutput(options.output, [&](std::ostream& out) {
    writeDotGraph(out, *model.dictionary, model.items, options.top);
  });
}

// A document's subcommand with the options all three share.
CLI::App* addDocumentCommand(CLI::App* exportCommand, const char* name,
                             const char* description, ExportOptions* options) {
  CLI::App* command = exportCommand->add_subcommand(name, description);
  command->add_option("MODEL", options->model, "Model file")->required();
  command->add_option("-o,--output", options->output,
                      "Output file (default: standard output)");
  return command;
}

}  // namespace

Command addExportCommand(CLI::App& app) {
  auto options = std::make_shared<ExportOptions>();
  CLI::App* command =
      app.add_subcommand("export", "Write the model as a document");
  command->require_subcommand(1);
  CLI::App* pmml = addDocumentCommand(
      command, "pmml", "PMML 3.2 SequenceModel of the selected rules",
      options.get());
  addRuleBoundOptions(pmml, &options->bounds);
  pmml->footer(
      "Example:\n"
      "  seqlattice export pmml orders.model -o orders.pmml "
      "--min-confidence 0.3");
  CLI::App* lattice = addDocumentCommand(
      command, "lattice", "Lattice document of every stored pattern",
      options.get());
  lattice
      ->add_option("--min-support", options->latticeMinSupport,
                   "Minimum support to state when it exceeds the model's")
      ->check(CLI::Range(0.0, 1.0))
      ->capture_default_str();
  lattice->footer(
      "Example:\n"
      "  seqlattice export lattice orders.model -o orders-lattice.xml");
  CLI::App* dot = addDocumentCommand(
      command, "dot",
      "Graphviz graph of the most frequent patterns and their extensions",
      options.get());
  dot->add_option("--top", options->top, "Number of patterns shown")
      ->check(wholeNumber(1))
      ->capture_default_str();
  dot->footer(
      "Example:\n"
      "  seqlattice export dot orders.model --top 25 | dot -Tsvg > "
      "lattice.svg");
  command->footer(
      "Example:\n"
      "  seqlattice export pmml orders.model -o orders.pmml");
  return {command, [options, pmml, lattice, dot] {
            if (pmml->parsed()) runPmml(*options);
            if (lattice->parsed()) runLattice(*options);
            if (dot->parsed()) runDot(*options);
          }};
}

}  // namespace seqlattice_cli
