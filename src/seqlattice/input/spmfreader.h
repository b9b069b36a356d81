// Reader of the SPMF sequence format: one customer a line, items as
// non-negative integers separated by blanks, -1 closing an item set and -2
// closing the sequence ("1 -1 2 3 -1 -2"). Item sets take their index in the
// line as their time. Blank lines and lines starting with '@' (metadata), '#'
// or '%' (comments) are skipped; a CR before the line end is ignored.
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

#include "seqlattice/mining/sequencedatabase.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

// Appends every sequence of `in` to `db`; `name` prefixes error messages.
void readSpmf(std::istream& in, const std::string& name,
              mining::SequenceDatabase& db);

// Opens `path` ("path: cannot open file" when it cannot) and reads it, with
// the path as the name in messages.
void readSpmfFile(const std::string& path, mining::SequenceDatabase& db);

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_SPMFREADER_H_
