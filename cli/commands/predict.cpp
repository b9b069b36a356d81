// seqlattice predict: the items a customer is likely to buy next (or with
// the current order, --current), for one history, one customer of a log or a
// whole log.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/modelatexit.h"
#include "support/inputlog.h"
#include "support/itemsyntax.h"
#include "support/modelfile.h"
#include "support/output.h"
#include "support/parsedoption.h"
#include "support/prediction.h"
#include "support/printable.h"
#include "support/recommendoptions.h"

namespace seqlattice_cli {

namespace {

struct PredictOptions {
  std::string model;
  ItemSequenceOption history;
  std::string input;
  InputOptions inputOptions;
  PredictSettings settings;
  Format format = Format::kTable;
};

void warnUnknown(const std::vector<std::string>& unknown) {
  for (const std::string& label : unknown) {
    std::cerr << "seqlattice: predict: item \"" << printable(label)
              << "\" is not in the model\n";
  }
}

void runPredict(const PredictOptions& options) {
  Model model = loadModel(options.model);
  ModelAtExit atExit(model);
  if (!options.input.empty()) {
    auto log =
        loadInput(options.input, options.inputOptions, modelItemCoder(model));
    predictLog(model, log, options.settings).write(std::cout, options.format);
    return;
  }
  std::vector<std::string> unknown;
  ResultTable table =
      predictHistory(model, options.history.value.value_or(LabelSets()),
                     options.settings, &unknown);
  warnUnknown(unknown);
  table.write(std::cout, options.format);
}

}  // namespace

Command addPredictCommand(CLI::App& app) {
  auto options = std::make_shared<PredictOptions>();
  CLI::App* command = app.add_subcommand(
      "predict",
      "Predict the items a customer buys next, from the history so far");
  command->add_option("MODEL", options->model, "Model file")->required();
  CLI::Option* history = addItemSequenceOption(
      command, "--history", &options->history, true,
      "The customer's orders, oldest first: items of an order separated by "
      "',', orders by ';' (\"a,b;c\"); \"\" for a new customer");
  CLI::Option* input = command->add_option(
      "--input", options->input,
      "Batch mode: predict for every customer of this transaction file");
  history->excludes(input);
  input->excludes(history);
  command
      ->add_option("--customer", options->settings.customer,
                   "With --input: only this customer of the file")
      ->needs(input);
  CLI::Option* current = command->add_flag(
      "--current", options->settings.current,
      "Predict items of the current (last) order instead of the next one, "
      "in the library's confidence order");
  addRecommendOptions(command, &options->settings);
  command->add_flag("--explain", options->settings.explain,
                    "Add the evidence behind each item: the matched pattern "
                    "and its counts, and the customers of the recent context "
                    "that acquired the item next");
  for (const char* name : {"--rank", "--new-only", "--repeat-only",
                           "--last-set-only", "--explain"}) {
    current->excludes(name);
  }
  addFormatOption(command, &options->format);
  addInputOptions(command, &options->inputOptions, "--input-format", "-column");
  command->footer(
      "Examples:\n"
      "  seqlattice predict orders.model --history \"espresso machine;coffee "
      "beans\"\n"
      "  seqlattice predict orders.model --history \"descaler\" --explain\n"
      "  seqlattice predict orders.model --input recent.csv --customer c17\n"
      "  seqlattice predict orders.model --input recent.csv --top 3 --format "
      "csv");
  command->callback([history, input] {
    if (history->count() == 0 && input->count() == 0) {
      throw CLI::RequiredError("--history or --input");
    }
  });
  return {command, [options] { runPredict(*options); }};
}

}  // namespace seqlattice_cli
