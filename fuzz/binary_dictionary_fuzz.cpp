// Feeds arbitrary bytes to the binary dictionary reader. A load may throw
// SeqExceptions::IOException* or succeed; anything else, a crash, a leak or
// a sanitizer report is a finding. Loaded dictionaries are only destroyed:
// walking their (often large) empty tables again would slow the search, and
// the XML target saves what it loads.
#include <cstddef>
#include <cstdint>
#include <fstream>

#include "fuzz_input.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/support/seqexceptions.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  SEQUENCE_NAMESPACE_800::test::silenceMessages();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  std::fstream in(SEQUENCE_NAMESPACE_800::test::fileWith(data, size),
                  std::ios::in | std::ios::binary);
  SEQUENCE_NAMESPACE_800::SequenceDictionary dictionary;
  try {
    dictionary.readObject(in);
  } catch (SEQUENCE_NAMESPACE_800::SeqExceptions::IOException* e) {
    delete e;
  }
  return 0;
}
