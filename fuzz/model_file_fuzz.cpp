// Feeds arbitrary bytes to the tool's model loader (support/modelfile.h):
// the binary or XML dictionary, the trailer with its labels and mining
// parameters, the checksum and the consistency checks. A load may succeed or
// throw CliError. A model that loads must be usable: its rules, a prediction
// and its pattern listing are taken too. Anything else, a crash, a hang,
// runaway memory or a sanitizer report is a finding.
//
// The checksum would stop most mutations at the door, so a binary input whose
// end mark and trailer mark are in place gets the checksum of its dictionary
// part written into its trailer before it is loaded: the dictionary reader,
// the consistency checks and the operations on what loads are fuzzed as a
// forged model file would reach them.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_input.h"
#include "seqlattice/rules/seqassociationrule.h"
#include "seqlattice/rules/seqconsequentdescript.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "support/clierror.h"
#include "support/modelfile.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz_input::silenceMessages();
  return 0;
}

namespace {

// The input with the checksum of a binary model's dictionary part written into
// its trailer, when the end mark and the trailer mark say where they are.
std::string withChecksum(const std::uint8_t* data, std::size_t size) {
  std::string bytes(reinterpret_cast<const char*>(data), size);
  if (size < 16 || bytes.compare(size - 8, 8, "SQLMODL1") != 0) return bytes;
  std::uint64_t trailer = 0;
  for (int i = 7; i >= 0; --i) {
    trailer =
        (trailer << 8) | static_cast<unsigned char>(
                             bytes[size - 16 + static_cast<std::size_t>(i)]);
  }
  if (trailer < 16 || trailer > size - 16) return bytes;
  const std::size_t record = size - 16 - static_cast<std::size_t>(trailer);
  if (bytes.compare(record, 8, "SQLTRAIL") != 0) return bytes;
  std::uint32_t crc = seqlattice_cli::crc32(bytes.substr(0, record));
  for (std::size_t i = 0; i < 4; ++i) {
    bytes[record + 12 + i] = static_cast<char>((crc >> (8 * i)) & 0xFF);
  }
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  namespace seq = SEQUENCE_NAMESPACE_800;
  seqlattice_cli::Model model;
  const std::string bytes = withChecksum(data, size);
  try {
    model = seqlattice_cli::loadModel(fuzz_input::fileWith(
        reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
  } catch (const seqlattice_cli::CliError&) {
    return 0;
  }
  seq::SequenceDictionary& dict = *model.dictionary;
  std::vector<seq::SeqAssociationRule> rules;
  dict.GetRules(rules, 0, 1, 0, 1, 0, 1, 'C', false);
  // The customer holds every labelled item once, in one set each.
  seq::Sequence customer;
  double time = 0;
  for (const auto& label : model.items.stringLabels()) {
    seq::TimedItemSet set;
    set.AddItem(label.first);
    set.SetTime(time++);
    customer.AddTimedItemSet(&set);
    if (time > 8) break;
  }
  std::vector<seq::SeqConsequentDescriptor> predictions;
  dict.GetFutureItems(predictions, &customer, 5, false);
  for (int k = 1; k <= dict.LargestSequence(); ++k) {
    std::vector<const seq::Sequence*> patterns;
    dict.getSequencesOfSize(patterns, k, false);
    for (const seq::Sequence* p : patterns) delete p;
  }
  fuzz_input::saveToNowhere(dict);
  return 0;
}
