// PatternStream writes the patterns the miner finds straight to a stream, one
// line each, and keeps none of them: `mine --patterns-only` uses it to list
// the frequent patterns of searches whose model would not fit in memory.
//
// Two line forms (docs/pattern-files.md):
//   spmf   1 -1 2 3 -1 #SUP: 7
//          (items of a set separated by blanks, each set closed by -1); a log
//          with text labels first gets "@CONVERTED_FROM_TEXT" and one
//          "@ITEM=code=label" line per labelled item, so the codes stay
//          readable
//   json   {"sequence":[["a"],["b","c"]],"freq":7}
//          (text labels as JSON strings, numeric labels as numbers)
//
// Deep searches give tens of millions of lines, so a line costs no
// allocation: the items' texts are made once each and kept in a table
// indexed by code, counts are written two digits at a time, and lines
// gather in a buffer handed to the stream a megabyte at a time (finish()
// hands over the rest).
//
// The sink is called from one thread (the miner's calling thread). The
// stream and the labels stay the caller's and must outlive the sink; write
// errors are the stream's state, which the caller checks after finish().
#ifndef SEQLATTICE_CLI_SUPPORT_PATTERNSTREAM_H_
#define SEQLATTICE_CLI_SUPPORT_PATTERNSTREAM_H_

#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

#include "seqlattice/input/itemlabels.h"
#include "seqlattice/mining/miner.h"

namespace seqlattice_cli {

enum class PatternFormat { kSpmf, kJson };

// "json" for names ending in .json, .jsonl or .ndjson, else "spmf".
PatternFormat patternFormatOf(const std::string& path);

class PatternStream : public SEQUENCE_NAMESPACE_800::mining::PatternSink {
 public:
  // Writes the SPMF label lines, when there are any, at once.
  PatternStream(std::ostream& out, PatternFormat format,
                const SEQUENCE_NAMESPACE_800::input::ItemLabels& labels);

  void addPattern(int** sets, int nSets, long count,
                  long firstCustomer) override;

  // Writes the lines still buffered; call once the search has ended.
  void finish();

 private:
  // The item as it stands in a line: its code (spmf) or its JSON label.
  const std::string& itemText(int item);
  std::string makeItemText(int item) const;
  void append(const std::string& text) { buffer_.append(text); }

  std::ostream& out_;
  PatternFormat format_;
  const SEQUENCE_NAMESPACE_800::input::ItemLabels& labels_;
  // Texts of the codes 0 .. kDenseItems-1 by code ("" until first needed),
  // of other codes by lookup.
  std::vector<std::string> denseTexts_;
  std::unordered_map<int, std::string> otherTexts_;
  std::string buffer_;
};

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_PATTERNSTREAM_H_
