// Feeds arbitrary bytes to the SPMF sequence reader. A read may succeed or
// throw InputError (or MiningError, for a database past the memory limit);
// anything else, a crash, a hang or a sanitizer report is a finding.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "seqlattice/input/inputerror.h"
#include "seqlattice/input/spmfreader.h"
#include "seqlattice/mining/miningerror.h"
#include "seqlattice/mining/sequencedatabase.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  namespace seq = SEQUENCE_NAMESPACE_800;
  std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
  seq::mining::SequenceDatabase database;
  database.setMemoryLimit(std::size_t{64} << 20);
  try {
    seq::input::readSpmf(in, "fuzz.txt", database);
  } catch (const seq::input::InputError&) {
  } catch (const seq::mining::MiningError&) {
  }
  return 0;
}
