// Feeds arbitrary text to the XML dictionary reader, with and without the
// format version "1.0". A load may return 0, throw
// SeqExceptions::IOException* or succeed; anything else, a crash, a leak or
// a sanitizer report is a finding.
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
  // The length chooses the reader, so that one input can serve both.
  const bool versionOneZero = size % 2 == 1;
  std::ifstream in(SEQUENCE_NAMESPACE_800::test::fileWith(data, size));
  SEQUENCE_NAMESPACE_800::SequenceDictionary dictionary;
  try {
    const long read = versionOneZero ? dictionary.readObjectXML(in, "1.0")
                                     : dictionary.readObjectXML(in);
    if (read == 0) return 0;
  } catch (SEQUENCE_NAMESPACE_800::SeqExceptions::IOException* e) {
    delete e;
    return 0;
  }
  SEQUENCE_NAMESPACE_800::test::saveToNowhere(dictionary);
  return 0;
}
