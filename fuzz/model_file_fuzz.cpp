// Feeds arbitrary bytes to the tool's model loader (support/modelfile.h):
// the binary or XML dictionary, the trailer with its labels and mining
// parameters, the checksum and the consistency checks. A load may succeed or
// throw CliError. A model that loads must be usable: its rules, a prediction
// and its pattern listing are taken too. Anything else, a crash, a hang,
// runaway memory or a sanitizer report is a finding.
//
// The checksum stops most mutations at the door; the seeds are models whose
// checksums the fuzzer cannot forge, so the deeper paths are mostly reached
// through the trailer and through inputs that recompute nothing. Saving a
// model with a damaged dictionary and its checksum recomputed is what the
// model-file tests do by hand.
#include <cstddef>
#include <cstdint>
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

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  namespace seq = SEQUENCE_NAMESPACE_800;
  seqlattice_cli::Model model;
  try {
    model = seqlattice_cli::loadModel(fuzz_input::fileWith(data, size));
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
