#include "support/modelcheck.h"

#include <bitset>
#include <cstdint>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"

namespace seqlattice_cli {

namespace {

using SEQUENCE_NAMESPACE_800::NTSequence;

// The message is built only for a pattern that has a problem: the check runs
// over every pattern of every model loaded.
std::string problemOf(const NTSequence& key, int level) {
  const int items = key.size();
  const int sets = key.getNSets();
  auto where = [level] {
    return "a pattern of level " + std::to_string(level);
  };
  if (items != level) {
    return where() + " has " + std::to_string(items) + " items";
  }
  const auto word = static_cast<std::uint64_t>(key.getPattern());
  const std::uint64_t itemBits =
      items >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << items) - 1;
  const auto boundaries =
      static_cast<int>(std::bitset<64>(word & itemBits).count());
  const bool lastClosed = items == 0 || (word & 1) != 0;
  if (sets != boundaries || (word & ~itemBits) != 0 || !lastClosed) {
    return where() + " has " + std::to_string(sets) +
           " item sets, which its items do not make";
  }
  return "";
}

}  // namespace

std::string inconsistentPattern(
    const SEQUENCE_NAMESPACE_800::SequenceDictionary& dictionary) {
  for (int level = 0; level < dictionary.getNLevels(); ++level) {
    const auto* table = dictionary.getLevel(level);
    if (table == nullptr) continue;
    // The keys are taken in batches fetched into the cache before any is
    // looked at: their cache misses then overlap instead of stalling the
    // check one after another.
    constexpr int kBatch = 32;
    const NTSequence* batch[kBatch];
    for (auto it = table->begin(), last = table->end(); it != last;) {
      int n = 0;
      for (; n < kBatch && it != last; ++it) {
        batch[n] = it->key;
        __builtin_prefetch(batch[n++]);
      }
      for (int i = 0; i < n; ++i) {
        if (batch[i] == nullptr) return "a pattern record is missing";
        std::string problem = problemOf(*batch[i], level);
        if (!problem.empty()) return problem;
      }
    }
  }
  return "";
}

}  // namespace seqlattice_cli
