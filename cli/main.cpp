// seqlattice: mine transaction logs into sequential pattern models and use
// them (rules, predictions, pattern queries, documents) from the shell.
#include <CLI/CLI.hpp>
#include <iostream>
#include <new>
#include <vector>

#include "clierror.h"
#include "command.h"
#include "seqlattice/mining/miningerror.h"

namespace {

using seqlattice_cli::CliError;
using seqlattice_cli::Command;

int run(int argc, char** argv) {
  CLI::App app(
      "seqlattice: sequential association models of customer transaction "
      "logs",
      "seqlattice");
  app.set_version_flag("--version", "seqlattice 0.1.0");
  app.require_subcommand(1);
  app.footer(
      "Example:\n"
      "  seqlattice mine data/sample/orders.csv -o orders.model\n"
      "  seqlattice rules orders.model --top 10\n"
      "Run 'seqlattice COMMAND --help' for a command's options.");
  std::vector<Command> commands = {
      seqlattice_cli::addMineCommand(app),
      seqlattice_cli::addRulesCommand(app),
      seqlattice_cli::addPredictCommand(app),
      seqlattice_cli::addPatternsCommand(app),
      seqlattice_cli::addExportCommand(app),
      seqlattice_cli::addConvertCommand(app),
      seqlattice_cli::addInfoCommand(app)};

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& e) {
    return app.exit(e);  // --help or --version
  } catch (const CLI::ParseError& e) {
    app.exit(e);
    return seqlattice_cli::kExitUsage;
  }
  for (const Command& command : commands) {
    if (command.app->parsed()) command.run();
  }
  return seqlattice_cli::kExitOk;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const CliError& e) {
    std::cerr << "seqlattice: " << e.what() << "\n";
    return e.exitCode();
  } catch (const SEQUENCE_NAMESPACE_800::mining::MiningError& e) {
    std::cerr << "seqlattice: " << e.what() << "\n";
    return seqlattice_cli::kExitBadInput;
  } catch (const std::bad_alloc&) {
    std::cerr << "seqlattice: out of memory\n";
    return seqlattice_cli::kExitBadInput;
  }
}
