// What the tool checks of a loaded dictionary beyond what the library's
// readers check. The readers validate tags and the item count of a pattern
// record (0 to 31), not its item-set count or its set-boundary word, so a
// damaged record (or one forged with its checksum recomputed) can load with a
// set count of two billion, or a negative one, and send every later walk over
// its sets far beyond its items. Each stored pattern must be consistent:
// its item count equal to its level, its set count the number of set
// boundaries of its word (0 for the empty pattern, 1 to the item count
// otherwise), no boundary bit above its items.
#ifndef SEQLATTICE_CLI_SUPPORT_MODELCHECK_H_
#define SEQLATTICE_CLI_SUPPORT_MODELCHECK_H_

#include <string>

#include "seqlattice/dictionary/sequencedictionary.h"

namespace seqlattice_cli {

// "" when every pattern of the dictionary is consistent, else what the first
// inconsistent one breaks ("a pattern of level 2 has 2000000000 item sets").
std::string inconsistentPattern(
    const SEQUENCE_NAMESPACE_800::SequenceDictionary& dictionary);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_MODELCHECK_H_
