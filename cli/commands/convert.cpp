// seqlattice convert: a model from the binary to the XML object format or
// back; the labels and mining parameters travel along.
#include <memory>
#include <string>

#include "commands/commands.h"
#include "commands/modelatexit.h"
#include "support/atomicfile.h"
#include "support/modelfile.h"

namespace seqlattice_cli {

namespace {

struct ConvertOptions {
  std::string input;
  std::string output;
  std::string to;  // "binary", "xml", or empty for the other form
};

void runConvert(const ConvertOptions& options) {
  refuseSameFile(options.input, options.output);
  Model model = loadModel(options.input);
  ModelAtExit atExit(model);
  bool xml = options.to.empty() ? !model.xml : options.to == "xml";
  saveModel(model, options.output, xml);
}

}  // namespace

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
