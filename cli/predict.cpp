// seqlattice predict: the items a customer is likely to buy next (or with
// the current order, --current), for one history or a whole file.
#include "predict.h"

#include "command.h"
#include "itemsyntax.h"

namespace seqlattice_cli {

Command addPredictCommand(CLI::App& app) {
  auto options = std::make_shared<PredictOptions>();
  CLI::App* command = app.add_subcommand(
      "predict",
      "Predict the items a customer buys next, from the history so far");
  command->add_option("MODEL", options->model, "Model file")->required();
  CLI::Option* history = command->add_option(
      "--history", options->history,
      "The customer's orders, oldest first: items of an order separated by "
      "',', orders by ';' (\"a,b;c\")");
  CLI::Option* input = command->add_option(
      "--input", options->input,
      "Batch mode: predict for every customer of this transaction file");
  history->check(itemSequenceValidator());
  history->excludes(input);
  input->excludes(history);
  command->add_flag("--current", options->current,
                    "Predict items of the current (last) order instead of "
                    "the next one");
  command
      ->add_flag("--last-set-only", options->lastSetOnly,
                 "Use only patterns ending in the last order")
      ->excludes("--current");
  command->add_option("--top", options->top, "Number of items per customer")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  addFormatOption(command, &options->format);
  addInputOptions(command, &options->inputOptions, "--input-format");
  command->footer(
      "Examples:\n"
      "  seqlattice predict orders.model --history \"espresso machine;coffee "
      "beans\"\n"
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
