// A fixture for tests of listings on std::cout: each test starts from the
// number format of a freshly made stream, and std::cout's own format is
// restored afterwards, since the listings change the precision on purpose.
#ifndef SEQLATTICE_RULES_COUTSTATE_TEST_UTIL_H_
#define SEQLATTICE_RULES_COUTSTATE_TEST_UTIL_H_

#include <gtest/gtest.h>

#include <iostream>

#include "seqlattice/sequence/sequence_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

class FreshCoutTest : public testing::Test {
 protected:
  void SetUp() override {
    std::cout.flags(std::ios_base::dec | std::ios_base::skipws);
    std::cout.precision(6);
  }

 private:
  CoutFormatGuard guard_;
};

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RULES_COUTSTATE_TEST_UTIL_H_
