#include "minedictionary.h"

#include "clierror.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace seqlattice_cli {

namespace {

namespace mining = SEQUENCE_NAMESPACE_800::mining;
using SEQUENCE_NAMESPACE_800::CarmaSequenceDescriptor;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;

class DictionarySink : public mining::PatternSink {
 public:
  explicit DictionarySink(SequenceDictionary& dict) : dict_(dict) {}

  void addPattern(int** sets, int nSets, long count,
                  long firstCustomer) override {
    CarmaSequenceDescriptor counter(static_cast<int>(firstCustomer), 0,
                                    static_cast<int>(count));
    dict_.addSequence(sets, nSets, &counter);
  }

 private:
  SequenceDictionary& dict_;
};

}  // namespace

mining::MiningSummary mineIntoDictionary(const mining::SequenceDatabase& db,
                                         const mining::MinerOptions& options,
                                         SequenceDictionary& dict) {
  DictionarySink sink(dict);
  mining::MiningSummary summary = mining::SequenceMiner(options).mine(db, sink);
  dict.getLevel0Descriptor()->setCount(static_cast<int>(db.customerCount()));
  // Every stored count reaches the minimum, so this removes nothing; it
  // records the minimum support that the documents state.
  dict.reduceAll(static_cast<double>(summary.minCount));
  KvCommon_850::KvStatus status = dict.buildLattice();
  if (!status.IsOK()) {
    failInput("mine: building the lattice failed (status " +
              std::to_string(status.GetCode()) + ")");
  }
  return summary;
}

}  // namespace seqlattice_cli
