// The lattice as a Graphviz graph: the N most frequent stored patterns as
// boxes labelled with their items and counts, and an arrow from each shown
// pattern to each shown pattern that extends it by one item (the lattice's
// links), laid out left to right. Ties in frequency go to the shorter
// pattern, then by text, so the graph is the same on every run. The rules
// graph is in rulesgraph.h.
#ifndef SEQLATTICE_CLI_SUPPORT_DOTGRAPH_H_
#define SEQLATTICE_CLI_SUPPORT_DOTGRAPH_H_

#include <ostream>
#include <string>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/input/itemlabels.h"

namespace seqlattice_cli {

// text inside a double-quoted Graphviz string: quotes and backslashes
// escaped, line breaks as spaces.
std::string dotEscaped(const std::string& text);

void writeDotGraph(std::ostream& out,
                   SEQUENCE_NAMESPACE_800::SequenceDictionary& dict,
                   const SEQUENCE_NAMESPACE_800::input::ItemLabels& labels,
                   int top);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_DOTGRAPH_H_
