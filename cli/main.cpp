// seqlattice: mine transaction logs into sequential pattern models and use
// them (rules, predictions, pattern queries, documents) from the shell.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "seqlattice/input/inputerror.h"
#include "seqlattice/mining/miningerror.h"
#include "seqlattice/support/seqexceptions.h"
#include "support/clierror.h"
#include "support/printable.h"
#include "support/stdoutbuffer.h"

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

// A full disk, a closed pipe (with SIGPIPE ignored) or a bad descriptor
// lose the results; say so rather than exit 0.
void checkStandardOutput() {
  std::cout.flush();
  if (std::cout) return;
  const auto* buffer =
      dynamic_cast<const seqlattice_cli::StdoutBuffer*>(std::cout.rdbuf());
  const int error = buffer != nullptr ? buffer->error() : 0;
  seqlattice_cli::failInput(
      std::string("cannot write to standard output") +
      (error != 0 ? std::string(": ") + std::strerror(error) : ""));
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
                                   seqlattice_cli::addEvaluateCommand(app),
                                   seqlattice_cli::addReportCommand(app)};

  checkCommandNames(app, argc, argv);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& e) {
    int code = app.exit(e);  // --help or --version
    checkStandardOutput();
    return code;
  } catch (const CLI::ParseError& e) {
    std::cerr << "seqlattice: " << seqlattice_cli::printable(e.what())
              << "\nRun with --help for more information.\n";
    return seqlattice_cli::kExitUsage;
  }
  for (const Command& command : commands) {
    if (command.app->parsed()) command.run();
  }
  checkStandardOutput();
  return seqlattice_cli::kExitOk;
}

int fail(const std::string& message, int exitCode) {
  std::cerr << "seqlattice: " << seqlattice_cli::printable(message) << "\n";
  return exitCode;
}

// run() with every failure turned into a message and an exit code.
int runGuarded(int argc, char** argv) {
  namespace seq = SEQUENCE_NAMESPACE_800;
  using seqlattice_cli::kExitBadInput;
  try {
    return run(argc, argv);
  } catch (const CliError& e) {
    fail(e.what(), e.exitCode());
    if (e.exitCode() == seqlattice_cli::kExitUsage) {
      std::cerr << "Run with --help for more information.\n";
    }
    return e.exitCode();
  } catch (const seq::input::InputError& e) {
    return fail(e.what(), kExitBadInput);
  } catch (const seq::mining::MiningError& e) {
    return fail(e.what(), kExitBadInput);
  } catch (const std::bad_alloc&) {
    return fail("out of memory", kExitBadInput);
  } catch (const seq::SeqExceptions::DictionaryFailure&) {
    // The dictionary's operations report running out of memory this way.
    return fail("out of memory (the pattern dictionary could not grow)",
                kExitBadInput);
  } catch (seq::SeqExceptions::IOException* e) {
    delete e;
    return fail("reading or writing a model failed", kExitBadInput);
  } catch (const std::exception& e) {
    // Anything else is a fault of the tool, not of the input; still end with
    // a message rather than an abort.
    return fail(std::string("internal error: ") + e.what(), kExitBadInput);
  } catch (...) {
    return fail("internal error", kExitBadInput);
  }
}

}  // namespace

int main(int argc, char** argv) {
  // Standard output goes through a buffer that remembers why a write
  // failed; std::cout gets its own back before the buffer goes.
  seqlattice_cli::StdoutBuffer standardOutput(STDOUT_FILENO);
  std::streambuf* previous = std::cout.rdbuf(&standardOutput);
  const int code = runGuarded(argc, argv);
  std::cout.flush();
  std::cout.rdbuf(previous);
  return code;
}
