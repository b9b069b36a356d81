// seqlattice mine: read a transaction file, mine every frequent sequential
// pattern into a dictionary, build its lattice and save the model.
#include "mine.h"

#include <cstdlib>

#include "command.h"

namespace seqlattice_cli {

bool parseMinSupport(const std::string& text, bool* isFraction, double* value) {
  char* end = nullptr;
  double parsed = std::strtod(text.c_str(), &end);
  if (text.empty() || end != text.c_str() + text.size()) return false;
  *isFraction = text.find_first_not_of("0123456789") != std::string::npos;
  *value = parsed;
  return *isFraction ? parsed > 0 && parsed <= 1
                     : parsed >= 1 && parsed <= 2147483647;
}

Command addMineCommand(CLI::App& app) {
  auto options = std::make_shared<MineOptions>();
  CLI::App* command = app.add_subcommand(
      "mine",
      "Mine the frequent sequential patterns of a transaction file into a "
      "model");
  command
      ->add_option("INPUT", options->input,
                   "Transaction file: CSV/TSV with a header, or SPMF")
      ->required();
  command->add_option("-o,--output", options->output, "Model file to write")
      ->required();
  command
      ->add_option("--min-support", options->minSupport,
                   "Least support of a pattern: a fraction of the customers "
                   "(0.05) or a count of customers (30)")
      ->check(CLI::Validator(
          [](std::string& text) -> std::string {
            bool isFraction;
            double value;
            return parseMinSupport(text, &isFraction, &value)
                       ? ""
                       : "expected a fraction of the customers (0 < F <= 1) "
                         "or a count of customers (N >= 1), not \"" +
                             text + "\"";
          },
          "F|N"))
      ->capture_default_str();
  command
      ->add_option("--max-items", options->maxItems,
                   "Largest number of items in a pattern")
      ->check(CLI::Range(1, 31))
      ->capture_default_str();
  addInputOptions(command, &options->inputOptions, "--format");
  command->add_flag("--xml", options->xml,
                    "Write the model in the XML object format");
  command->footer(
      "Examples:\n"
      "  seqlattice mine data/sample/orders.csv -o orders.model "
      "--min-support 0.02\n"
      "  seqlattice mine log.tsv -o log.model --customer client --time date "
      "--item product\n"
      "  seqlattice mine BMS1_spmf.txt -o bms.model --min-support 60");
  return {command, [options] { runMine(*options); }};
}

}  // namespace seqlattice_cli
