// Helpers shared by the store's tests: patterns from brace lists and the
// pairs of a table in iteration order.
#ifndef SEQLATTICE_STORE_STORE_TEST_UTIL_H_
#define SEQLATTICE_STORE_STORE_TEST_UTIL_H_

#include <vector>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/pattern/pattern_test_util.h"
#include "seqlattice/store/hashpairseq.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// A new pattern of the given item sets, in the int** convention's order.
inline NTSequence* makePattern(const Sets& sets) {
  PatternArrays arrays(sets);
  return new NTSequence(arrays.sets(), arrays.nSets());
}

// A new one-item pattern; its hash code is the item itself.
inline NTSequence* makeItem(int item) { return makePattern({{item}}); }

// The keys of a table in iteration order.
inline std::vector<const NTSequence*> keysInOrder(const HashtableSQPair& t) {
  std::vector<const NTSequence*> keys;
  for (const ISQCPair& pair : t) keys.push_back(pair.key);
  return keys;
}

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_STORE_STORE_TEST_UTIL_H_
