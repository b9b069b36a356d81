// Reader of pattern files: frequent sequential patterns with their counts,
// one a line, as `seqlattice mine --patterns-only` writes them and as other
// miners do (docs/pattern-files.md). Two forms, told apart by the first
// pattern line:
//   SPMF        1 -1 2 3 -1 #SUP: 7   (items as codes; "@ITEM=code=label"
//                                      lines name them, as in SPMF logs)
//   JSON lines  {"sequence":[[1],[2,3]],"freq":7}   (the form of a
//               distributed PrefixSpan's DataFrame written as JSON; items
//               JSON integers or strings, string items become labels)
// Blank lines, and in the SPMF form lines starting with '@', '#' or '%',
// are skipped. Items within a set may come in any order.
//
// The patterns come back as records (mining/patternrecords.h) with first
// customer 0, in the file's order. Text that breaks the form throws
// InputError "file:line: problem".
#ifndef SEQLATTICE_INPUT_PATTERNFILE_H_
#define SEQLATTICE_INPUT_PATTERNFILE_H_

#include <istream>
#include <string>
#include <vector>

#include "seqlattice/input/itemlabels.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

struct PatternFile {
  std::vector<int> records;
  ItemLabels items;
  long patterns = 0;
  bool json = false;  // the form it was in
};

// Reads every pattern of `in`; `name` prefixes error messages.
PatternFile readPatterns(std::istream& in, const std::string& name);

// Opens `path` ("path: cannot open file" when it cannot) and reads it.
PatternFile readPatternFile(const std::string& path);

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_PATTERNFILE_H_
