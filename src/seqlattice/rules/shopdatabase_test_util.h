// The small customer database of the rules and prediction tests, with every
// stored count worked out by hand below. Ten customers (N = 10); a pattern is
// stored when at least two customers contain it (its sets mapping, in order,
// to distinct item sets of the customer, each a subset).
//
//   C0 (1)(2)(3)(4)     C5 (4)(1 2)(5)
//   C1 (1)(2 3)(4)      C6 (1)(2)(4)
//   C2 (1 2)(3)(4)      C7 (2 3)(4 5)
//   C3 (2)(3)(4)        C8 (1)(9)
//   C4 (1)(3)(4 5)      C9 (3)(1)(2)(5)
//
// Stored patterns, their customers and counts, and the adjacency pairs
// (item, position code) that the lattice build gives them:
//
//   <>         N = 10                    (1,1) (2,1) (3,1) (4,1) (5,1)
//   (1)        C0 C1 C2 C4 C5 C6 C8 C9 8 (2,0) (2,3) (3,3) (4,3) (5,3)
//   (2)        C0 C1 C2 C3 C5 C6 C7 C9 8 (1,0) (1,1) (3,0) (3,3) (4,3) (5,3)
//   (3)        C0 C1 C2 C3 C4 C7 C9    7 (1,1) (2,0) (2,1) (4,3) (5,3)
//   (4)        C0 C1 C2 C3 C4 C5 C6 C7 8 (1,1) (2,1) (3,1) (5,0)
//   (5)        C4 C5 C7 C9             4 (1,1) (2,1) (3,1) (4,0)
//   (9)        C8                      1 not stored
//   (1 2)      C2 C5                   2 -
//   (2 3)      C1 C7                   2 (4,3)
//   (4 5)      C4 C7                   2 (3,1)
//   (1)(2)     C0 C1 C6 C9             4 (4,5)
//   (1)(3)     C0 C1 C2 C4             4 (4,5)
//   (1)(4)     C0 C1 C2 C4 C6          5 (2,3) (3,3)
//   (1)(5)     C4 C5 C9                3 -
//   (2)(3)     C0 C2 C3                3 (4,5)
//   (2)(4)     C0 C1 C2 C3 C6 C7       6 (1,1) (3,0) (3,3)
//   (2)(5)     C5 C7 C9                3 -
//   (3)(4)     C0 C1 C2 C3 C4 C7       6 (1,1) (2,0) (2,1) (5,2)
//   (3)(5)     C4 C7 C9                3 (4,2)
//   (2 3)(4)   C1 C7                   2 -
//   (3)(4 5)   C4 C7                   2 -
//   (1)(2)(4)  C0 C1 C6                3 -
//   (1)(3)(4)  C0 C1 C2 C4             4 -
//   (2)(3)(4)  C0 C2 C3                3 -
//
// Every other pattern is contained by at most one customer, for example
// (4)(5) by C5 only (C4 and C7 hold 4 and 5 in one set), (1)(2)(3) by C0,
// (1)(4 5) by C4 and (1 2)(3) by C2. So levels 1 to 3 are filled and
// LargestSequence() is 3.
#ifndef SEQLATTICE_RULES_SHOPDATABASE_TEST_UTIL_H_
#define SEQLATTICE_RULES_SHOPDATABASE_TEST_UTIL_H_

#include "seqlattice/rules/customerdatabase_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

inline const CustomerDatabase& shopDatabase() {
  static const CustomerDatabase db = {
      {{1}, {2}, {3}, {4}},  // C0
      {{1}, {2, 3}, {4}},    // C1
      {{1, 2}, {3}, {4}},    // C2
      {{2}, {3}, {4}},       // C3
      {{1}, {3}, {4, 5}},    // C4
      {{4}, {1, 2}, {5}},    // C5
      {{1}, {2}, {4}},       // C6
      {{2, 3}, {4, 5}},      // C7
      {{1}, {9}},            // C8
      {{3}, {1}, {2}, {5}},  // C9
  };
  return db;
}

// The minimum count of the stored patterns.
constexpr int kShopMinCount = 2;

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RULES_SHOPDATABASE_TEST_UTIL_H_
