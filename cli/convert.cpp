// seqlattice convert: a model from the binary to the XML object format or
// back; the labels and mining parameters travel along.
#include "convert.h"

#include "command.h"

namespace seqlattice_cli {

Command addConvertCommand(CLI::App& app) {
  auto options = std::make_shared<ConvertOptions>();
  CLI::App* command = app.add_subcommand(
      "convert",
      "Convert a model between the binary and the XML object format");
  command->add_option("IN", options->input, "Model file to read")->required();
  command->add_option("OUT", options->output, "Model file to write")
      ->required();
  command
      ->add_option("--to", options->to,
                   "Form to write: binary or xml (default: the other form)")
      ->check(CLI::IsMember({"binary", "xml"}));
  command->footer(
      "Example:\n"
      "  seqlattice convert orders.model orders-model.xml");
  return {command, [options] { runConvert(*options); }};
}

}  // namespace seqlattice_cli
