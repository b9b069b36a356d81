// The umbrella header compiles on its own and offers the short alias.
#include <gtest/gtest.h>

#include <type_traits>

#include "seqlattice/seqlattice.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

TEST(UmbrellaTest, AliasNamesTheLibraryNamespace) {
  static_assert(std::is_same_v<seqlattice::SeqExceptions::IOException,
                               SeqExceptions::IOException>);
  KvCommon_850::KvStatus status;
  EXPECT_TRUE(status.IsOK());
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
