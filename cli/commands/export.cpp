// seqlattice export pmml|lattice|dot: the model as a PMML sequence model, as
// the lattice document, or as a Graphviz graph of its most frequent patterns
// or (--rules, --around) of its strongest rules.
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
#include "support/rulesgraph.h"

namespace seqlattice_cli {

namespace {

struct ExportOptions {
  std::string model;
  std::string output;
  RuleBounds bounds;
  double latticeMinSupport = 0.0;
  int top = 30;
  bool topGiven = false;  // else a rules graph keeps its own default
  bool rules = false;
  RulesGraphSettings rulesGraph;
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
  RulesGraphSettings rulesGraph = options.rulesGraph;
  if (options.topGiven) rulesGraph.top = options.top;
  writeOutput(options.output, [&](std::ostream& out) {
    if (options.rules || rulesGraph.around) {
      writeRulesGraph(out, model, rulesGraph);
    } else {
      writeDotGraph(out, *model.dictionary, model.items, options.top);
    }
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
      "Graphviz graph of the most frequent patterns and their extensions, "
      "or of the strongest rules",
      options.get());
  dot->add_option("--top", options->top,
                  "Number of patterns (30; with --rules: rules, 20) shown")
      ->check(wholeNumber(1))
      ->each([options](const std::string&) { options->topGiven = true; });
  dot->add_flag("--rules", options->rules,
                "Rules: an arrow from each antecedent to its consequent");
  dot->add_option("--around", options->rulesGraph.around,
                  "Rules around this item: those leading to it and those "
                  "following it (implies --rules)");
  dot->add_option("--measure", options->rulesGraph.measure,
                  "The measure that chooses the rules and sets the arrows' "
                  "width (with --rules)")
      ->check(CLI::IsMember(rulesGraphMeasures()))
      ->capture_default_str();
  dot->footer(
      "Example:\n"
      "  seqlattice export dot orders.model --around \"gooseneck kettle\" | "
      "dot -Tpng > kettle.png\n"
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
