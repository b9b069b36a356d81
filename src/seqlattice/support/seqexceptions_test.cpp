#include "seqlattice/support/seqexceptions.h"

#include <gtest/gtest.h>

#include <string>

namespace SEQUENCE_NAMESPACE_800 {

namespace {

TEST(SeqExceptionsTest, IOExceptionIsThrownByPointerAndDeletedByCatcher) {
  try {
    throw new SeqExceptions::IOException;
  } catch (SeqExceptions::IOException* e) {
    const std::exception& base = *e;
    EXPECT_NE(std::string(base.what()).find("saved object"), std::string::npos);
    delete e;
  }
}

TEST(SeqExceptionsTest, DictionaryFailureIsAStdException) {
  try {
    throw SeqExceptions::DictionaryFailure();
  } catch (const std::exception& e) {
    EXPECT_NE(std::string(e.what()).find("dictionary"), std::string::npos);
  }
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
