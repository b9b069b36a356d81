// seqlattice report: the model as one self-contained HTML page (summary,
// frequent items, a sortable and filterable rules table, a journeys picture
// and a "what comes next" box) for people to explore in a browser.
#include <memory>
#include <ostream>
#include <string>

#include "commands/commands.h"
#include "commands/modelatexit.h"
#include "support/atomicfile.h"
#include "support/htmlreport.h"
#include "support/modelfile.h"
#include "support/parsedoption.h"
#include "support/reportdata.h"

namespace seqlattice_cli {

namespace {

struct ReportOptions {
  std::string model;
  std::string output;
  ReportSettings settings;
};

void runReport(const ReportOptions& options) {
  refuseSameFile(options.model, options.output);
  Model model = loadModel(options.model);
  ModelAtExit atExit(model);
  const Json data = reportData(model, options.model, options.settings);
  writeOutput(options.output,
              [&](std::ostream& out) { writeHtmlReport(out, data); });
}

}  // namespace

Command addReportCommand(CLI::App& app) {
  auto options = std::make_shared<ReportOptions>();
  CLI::App* command = app.add_subcommand(
      "report", "Write the model as an HTML page to explore in a browser");
  command->add_option("MODEL", options->model, "Model file")->required();
  command->add_option("-o,--output", options->output,
                      "Output file (default: standard output)");
  command
      ->add_option("--top", options->settings.topRules,
                   "Rules embedded in the page, the strongest first (they "
                   "bound its size)")
      ->check(wholeNumber(1))
      ->capture_default_str();
  command
      ->add_option("--top-items", options->settings.topItems,
                   "Most frequent items listed")
      ->check(wholeNumber(1))
      ->capture_default_str();
  addRuleBoundOptions(command, &options->settings.bounds, true);
  command->footer(
      "Example:\n"
      "  seqlattice report orders.model -o report.html --sort lift");
  return {command, [options] { runReport(*options); }};
}

}  // namespace seqlattice_cli
