// seqlattice info: what a model holds and how it was mined.
#include <algorithm>
#include <iostream>
#include <memory>
#include <string>

#include "commands/commands.h"
#include "commands/modelatexit.h"
#include "support/modelfile.h"
#include "support/modelinfo.h"
#include "support/output.h"

namespace seqlattice_cli {

namespace {

struct InfoOptions {
  std::string model;
  Format format = Format::kTable;
};

// A text table shows "field  value" lines; CSV has the columns field and
// value; JSON is one object.
void writeFields(const InfoFields& fields, Format format) {
  if (format == Format::kJson) {
    Json object = Json::object();
    for (const auto& [field, value] : fields) object[field] = value;
    std::cout << object.dump(2) << "\n";
    return;
  }
  if (format == Format::kCsv) {
    ResultTable table({"field", "value"});
    for (const auto& [field, value] : fields) table.addRow({field, value});
    table.write(std::cout, format);
    return;
  }
  std::size_t width = 0;
  for (const auto& field : fields) width = std::max(width, field.first.size());
  for (const auto& [field, value] : fields) {
    std::cout << field << std::string(width + 2 - field.size(), ' ')
              << cellText(value, true) << "\n";
  }
}

void runInfo(const InfoOptions& options) {
  Model model = loadModel(options.model);
  ModelAtExit atExit(model);
  writeFields(modelInfo(model, options.model), options.format);
}

}  // namespace

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
