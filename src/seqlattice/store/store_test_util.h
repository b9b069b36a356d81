// Helpers shared by the store's tests: patterns from brace lists and the
// pairs of a table in iteration order.
#ifndef SEQLATTICE_STORE_STORE_TEST_UTIL_H_
#define SEQLATTICE_STORE_STORE_TEST_UTIL_H_

#include <vector>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace storetest {

typedef std::vector<std::vector<int>> Sets;

// A new pattern of the given item sets, in the int** convention's order.
inline NTSequence* makePattern(const Sets& sets) {
  std::vector<std::vector<int>> arrays;
  std::vector<int*> pointers;
  for (const std::vector<int>& set : sets) {
    std::vector<int> array(1, static_cast<int>(set.size()));
    array.insert(array.end(), set.begin(), set.end());
    arrays.push_back(array);
  }
  for (std::vector<int>& array : arrays) pointers.push_back(array.data());
  return new NTSequence(pointers.data(), static_cast<int>(pointers.size()));
}

// A new one-item pattern; its hash code is the item itself.
inline NTSequence* makeItem(int item) { return makePattern({{item}}); }

// The keys of a table in iteration order.
inline std::vector<const NTSequence*> keysInOrder(const HashtableSQPair& t) {
  std::vector<const NTSequence*> keys;
  for (const ISQCPair& pair : t) keys.push_back(pair.key);
  return keys;
}

}  // namespace storetest
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_STORE_STORE_TEST_UTIL_H_
