// Reader of the SPMF sequence format: one customer a line, items as
// non-negative integers separated by blanks, -1 closing an item set and -2
// closing the sequence ("1 -1 2 3 -1 -2"). Item sets take their index in the
// line as their time. Blank lines and lines starting with '@' (metadata), '#'
// or '%' (comments) are skipped; a CR before the line end and a UTF-8 byte
// order mark before the first line are ignored. Files converted from text
// name their items in metadata lines "@ITEM=code=label" (after a line
// "@CONVERTED_FROM_TEXT"): those become the items' labels.
//
// A malformed line throws InputError naming the source and the line:
// "data.txt:17: expected -2 at end of sequence". The database is then left
// with the customers read before that line (and the failing one still open),
// so a caller should discard it. A database that outgrows its memory limit
// throws its mining::MiningError.
#ifndef SEQLATTICE_INPUT_SPMFREADER_H_
#define SEQLATTICE_INPUT_SPMFREADER_H_

#include <istream>
#include <string>

#include "seqlattice/input/itemlabels.h"
#include "seqlattice/mining/sequencedatabase.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

// Appends every sequence of `in` to `db`; `name` prefixes error messages.
// When labels is not null it receives the labels of the "@ITEM" lines (an
// item without one is labelled by its code); a code or a label given twice,
// a numeric label or a negative code is an error of that line.
void readSpmf(std::istream& in, const std::string& name,
              mining::SequenceDatabase& db, ItemLabels* labels = nullptr);

// Opens `path` ("path: cannot open file" when it cannot) and reads it, with
// the path as the name in messages.
void readSpmfFile(const std::string& path, mining::SequenceDatabase& db,
                  ItemLabels* labels = nullptr);

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_SPMFREADER_H_
