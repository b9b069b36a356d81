// Feeds arbitrary bytes to the CSV/TSV log reader. The first byte chooses the
// delimiter; the rest is the file. A read may succeed or throw InputError (or
// MiningError, for a database past the memory limit); anything else, a
// crash, a hang or a sanitizer report is a finding.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "seqlattice/input/csvreader.h"
#include "seqlattice/input/inputerror.h"
#include "seqlattice/mining/miningerror.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  namespace seq = SEQUENCE_NAMESPACE_800;
  if (size == 0) return 0;
  static const char kDelimiters[] = {',', ';', '\t', '|'};
  seq::input::CsvOptions options;
  options.delimiter = kDelimiters[data[0] % sizeof kDelimiters];
  options.memoryLimit = std::size_t{64} << 20;
  std::istringstream in(
      std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
  try {
    seq::input::readCsv(in, "fuzz.csv", options);
  } catch (const seq::input::InputError&) {
  } catch (const seq::mining::MiningError&) {
  }
  return 0;
}
