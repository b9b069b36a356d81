// seqlattice info: what a model holds and how it was mined.
#include "info.h"

#include "command.h"

namespace seqlattice_cli {

Command addInfoCommand(CLI::App& app) {
  auto options = std::make_shared<InfoOptions>();
  CLI::App* command = app.add_subcommand(
      "info", "Show a model's settings, size per level and mining parameters");
  command->add_option("MODEL", options->model, "Model file")->required();
  addFormatOption(command, &options->format);
  command->footer("Example:\n  seqlattice info orders.model");
  return {command, [options] { runInfo(*options); }};
}

}  // namespace seqlattice_cli
