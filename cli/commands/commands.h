// The tool's commands, one file each in cli/commands/: options, help,
// example and run together. A command's add function registers the
// subcommand and its options on the application and returns the function
// that runs it once the command line has been parsed. The run function
// writes its results to standard output (or a file) and reports failures by
// throwing CliError (support/clierror.h).
#ifndef SEQLATTICE_CLI_COMMANDS_COMMANDS_H_
#define SEQLATTICE_CLI_COMMANDS_COMMANDS_H_

#include <CLI/CLI.hpp>
#include <functional>

namespace seqlattice_cli {

struct Command {
  CLI::App* app;
  std::function<void()> run;
};

Command addMineCommand(CLI::App& app);
Command addRulesCommand(CLI::App& app);
Command addPredictCommand(CLI::App& app);
Command addPatternsCommand(CLI::App& app);
Command addExportCommand(CLI::App& app);
Command addConvertCommand(CLI::App& app);
Command addInfoCommand(CLI::App& app);
Command addEvaluateCommand(CLI::App& app);
Command addReportCommand(CLI::App& app);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_COMMANDS_COMMANDS_H_
