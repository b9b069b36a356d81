// Item sequences of the model shown and built by label.
//
// A label the model does not know cannot be part of any stored pattern; it is
// given one code that no stored item uses, so that it still occupies its item
// set (a history whose last order holds only new products is anchored on that
// order, as the model's matching expects).
#ifndef SEQLATTICE_CLI_SUPPORT_SEQUENCELABELS_H_
#define SEQLATTICE_CLI_SUPPORT_SEQUENCELABELS_H_

#include <string>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/input/csvreader.h"
#include "seqlattice/input/itemlabels.h"
#include "seqlattice/mining/sequencedatabase.h"
#include "seqlattice/sequence/sequence.h"
#include "support/inputlog.h"
#include "support/itemsyntax.h"
#include "support/modelfile.h"
#include "support/output.h"

namespace seqlattice_cli {
// A code that no one-item pattern of the dictionary uses.
int unknownItemCode(const SEQUENCE_NAMESPACE_800::SequenceDictionary& dict);

// The sequence of the labelled sets (times 0, 1, 2, ...); labels without a
// code become unknownCode and are appended to *unknown when it is not null.
SEQUENCE_NAMESPACE_800::Sequence makeSequence(
    const LabelSets& sets,
    const SEQUENCE_NAMESPACE_800::input::ItemLabels& labels, int unknownCode,
    std::vector<std::string>* unknown);

// Customer c of db as a Sequence; its first `sets` item sets when sets >= 0.
SEQUENCE_NAMESPACE_800::Sequence customerSequence(
    const SEQUENCE_NAMESPACE_800::mining::SequenceDatabase& db, std::size_t c,
    long sets = -1);

// The sequence's item sets as arrays of labels, for a result table.
Json sequenceCell(const SEQUENCE_NAMESPACE_800::Sequence& sequence,
                  const SEQUENCE_NAMESPACE_800::input::ItemLabels& labels);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_SEQUENCELABELS_H_
