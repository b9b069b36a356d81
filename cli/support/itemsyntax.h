// Item sequences as the commands take them: item sets separated by ';' and
// the items of a set by ',', so "espresso machine,milk frother;descaler" is
// (espresso machine, milk frother) followed by (descaler). Spaces around
// labels are dropped. Labels holding ',' or ';' cannot be written this way.
#ifndef SEQLATTICE_CLI_SUPPORT_ITEMSYNTAX_H_
#define SEQLATTICE_CLI_SUPPORT_ITEMSYNTAX_H_

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "support/parsedoption.h"

namespace seqlattice_cli {

using LabelSets = std::vector<std::vector<std::string>>;

// An item sequence option: no value until it is given.
using ItemSequenceOption = Parsed<std::optional<LabelSets>>;

// Splits "a,b;c" into *sets; "" (or blanks) is the empty sequence, a
// customer without orders yet. Returns "" or, when a set or a label is
// empty, what is wrong.
std::string parseItemSequence(const std::string& text, LabelSets* sets);

// Adds an item sequence option to command (shown as "TEXT:SEQ"); the empty
// sequence is accepted only when allowEmpty.
CLI::Option* addItemSequenceOption(CLI::App* command, const std::string& name,
                                   ItemSequenceOption* target, bool allowEmpty,
                                   const std::string& description);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_ITEMSYNTAX_H_
