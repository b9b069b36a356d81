// Text that came from input files or the command line may hold bytes that a
// terminal would obey (an escape sequence that clears the screen, a bell, a
// carriage return that hides what came before). Messages on the standard
// error stream pass their text through printable() first.
#ifndef SEQLATTICE_CLI_SUPPORT_PRINTABLE_H_
#define SEQLATTICE_CLI_SUPPORT_PRINTABLE_H_

#include <string>

namespace seqlattice_cli {

// text with every control byte (below 0x20, 0x7F), every C1 control
// (U+0080 to U+009F) and every byte that is not part of well-formed UTF-8
// written as \xHH; tabs and other UTF-8 text stay as they are.
std::string printable(const std::string& text);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_PRINTABLE_H_
