// Fills a dictionary with the patterns the miner finds: every frequent
// pattern stored with its exact count (ordinal of entry = index of the first
// customer containing it, max missed 0), N as the count of the empty pattern,
// the minimum support recorded with reduceAll, and the lattice built.
#ifndef SEQLATTICE_CLI_MINEDICTIONARY_H_
#define SEQLATTICE_CLI_MINEDICTIONARY_H_

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/sequencedatabase.h"

namespace seqlattice_cli {

// Throws CliError (exit 1) when the lattice cannot be built and MiningError
// when the search does not fit in memory.
SEQUENCE_NAMESPACE_800::mining::MiningSummary mineIntoDictionary(
    const SEQUENCE_NAMESPACE_800::mining::SequenceDatabase& db,
    const SEQUENCE_NAMESPACE_800::mining::MinerOptions& options,
    SEQUENCE_NAMESPACE_800::SequenceDictionary& dict);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_MINEDICTIONARY_H_
