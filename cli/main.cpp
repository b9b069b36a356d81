// seqlattice: mine transaction logs into sequential pattern models and use
// them (rules, predictions, pattern queries, documents) from the shell.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "seqlattice/input/inputerror.h"
#include "seqlattice/mining/miningerror.h"
#include "support/clierror.h"

namespace {

using seqlattice_cli::CliError;
using seqlattice_cli::Command;

// CLI11 reports an unknown command as a missing one; name it instead.
void checkCommandNames(CLI::App& app, int argc, char** argv) {
  CLI::App* level = &app;
  for (int i = 1; i < argc; ++i) {
    std::string name = argv[i];
    auto commands = level->get_subcommands([](CLI::App*) { return true; });
    if (name.empty() || name[0] == '-' || commands.empty()) return;
    try {
      level = level->get_subcommand(name);
    } catch (const CLI::OptionNotFound&) {
      std::string known;
      for (CLI::App* command : commands) {
        known += (known.empty() ? "" : ", ") + command->get_name();
      }
      seqlattice_cli::failUsage("unknown command \"" + name +
                                "\" (commands: " + known + ")");
    }
  }
}

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
  std::vector<Command> commands = {seqlattice_cli::addMineCommand(app),
                                   seqlattice_cli::addRulesCommand(app),
                                   seqlattice_cli::addPredictCommand(app),
                                   seqlattice_cli::addPatternsCommand(app),
                                   seqlattice_cli::addExportCommand(app),
                                   seqlattice_cli::addConvertCommand(app),
                                   seqlattice_cli::addInfoCommand(app),
                                   seqlattice_cli::addEvaluateCommand(app)};

  checkCommandNames(app, argc, argv);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& e) {
    return app.exit(e);  // --help or --version
  } catch (const CLI::ParseError& e) {
    std::cerr << "seqlattice: " << e.what()
              << "\nRun with --help for more information.\n";
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
    if (e.exitCode() == seqlattice_cli::kExitUsage) {
      std::cerr << "Run with --help for more information.\n";
    }
    return e.exitCode();
  } catch (const SEQUENCE_NAMESPACE_800::input::InputError& e) {
    std::cerr << "seqlattice: " << e.what() << "\n";
    return seqlattice_cli::kExitBadInput;
  } catch (const SEQUENCE_NAMESPACE_800::mining::MiningError& e) {
    std::cerr << "seqlattice: " << e.what() << "\n";
    return seqlattice_cli::kExitBadInput;
  } catch (const std::bad_alloc&) {
    std::cerr << "seqlattice: out of memory\n";
    return seqlattice_cli::kExitBadInput;
  } catch (const std::exception& e) {
    // Anything else is a fault of the tool, not of the input; still end with
    // a message rather than an abort.
    std::cerr << "seqlattice: internal error: " << e.what() << "\n";
    return seqlattice_cli::kExitBadInput;
  }
}
