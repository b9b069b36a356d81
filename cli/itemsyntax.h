// Item sequences as the commands take them: item sets separated by ';' and
// the items of a set by ',', so "espresso machine,milk frother;descaler" is
// (espresso machine, milk frother) followed by (descaler). Spaces around
// labels are dropped. Labels holding ',' or ';' cannot be written this way.
#ifndef SEQLATTICE_CLI_ITEMSYNTAX_H_
#define SEQLATTICE_CLI_ITEMSYNTAX_H_

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace seqlattice_cli {

using LabelSets = std::vector<std::vector<std::string>>;

// Splits "a,b;c"; throws CliError (usage) when a set or a label is empty.
LabelSets parseItemSequence(const std::string& text);

// Checks an option's value with parseItemSequence at parse time.
CLI::Validator itemSequenceValidator();

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_ITEMSYNTAX_H_
