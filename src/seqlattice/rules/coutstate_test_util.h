// A fixture for tests of listings on std::cout: each test starts from the
// state of a freshly made stream and leaves std::cout as it found it, since
// the listings change its precision on purpose.
#ifndef SEQLATTICE_RULES_COUTSTATE_TEST_UTIL_H_
#define SEQLATTICE_RULES_COUTSTATE_TEST_UTIL_H_

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

namespace SEQUENCE_NAMESPACE_800 {

class FreshCoutTest : public testing::Test {
 protected:
  void SetUp() override {
    saved_.copyfmt(std::cout);
    std::cout.copyfmt(std::ostringstream());
  }
  void TearDown() override { std::cout.copyfmt(saved_); }

 private:
  std::ostringstream saved_;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RULES_COUTSTATE_TEST_UTIL_H_
