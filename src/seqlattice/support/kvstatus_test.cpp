#include "seqlattice/support/kvstatus.h"

#include <gtest/gtest.h>

namespace SEQUENCE_NAMESPACE_800 {

namespace {

TEST(KvStatusTest, DefaultIsOk) {
  KvCommon_850::KvStatus status;
  EXPECT_TRUE(status.IsOK());
  EXPECT_EQ(status.GetCode(), 0);
  EXPECT_FALSE(status.GetFlag());
  EXPECT_TRUE(status.GetDiscreteData().empty());
}

TEST(KvStatusTest, BuiltFromCodeIsNotOk) {
  KvCommon_850::KvStatus status(KvCommon_850::kStatusFailure, false);
  EXPECT_FALSE(status.IsOK());
  EXPECT_EQ(status.GetCode(), KvCommon_850::kStatusFailure);
  EXPECT_FALSE(status.GetFlag());

  KvCommon_850::KvStatus flagged(1, true);
  EXPECT_FALSE(flagged.IsOK());
  EXPECT_EQ(flagged.GetCode(), 1);
  EXPECT_TRUE(flagged.GetFlag());
}

// The numbers are part of the published interface: hosts compare against them.
TEST(KvStatusTest, NamedCodesKeepTheirNumbers) {
  EXPECT_EQ(KvCommon_850::kStatusCancelled, 1);
  EXPECT_EQ(KvCommon_850::kStatusFailure, 60000);
  EXPECT_EQ(KvCommon_850::kStatusIndexError, 60001);
}

TEST(KvStatusTest, CodeZeroIsStillNotOk) {
  KvCommon_850::KvStatus status(0, false);
  EXPECT_FALSE(status.IsOK());
  EXPECT_EQ(status.GetCode(), 0);
}

TEST(KvStatusTest, DiscreteDataKeepOrder) {
  KvCommon_850::KvStatus status(60001, false);
  status.SetDiscreteDatum(7);
  status.SetDiscreteDatum(3);
  ASSERT_EQ(status.GetDiscreteData().size(), 2u);
  EXPECT_EQ(status.GetDiscreteData()[0], 7);
  EXPECT_EQ(status.GetDiscreteData()[1], 3);
  KvCommon_850::KvStatus copy = status;
  EXPECT_EQ(copy.GetDiscreteData(), status.GetDiscreteData());
  EXPECT_EQ(copy.GetCode(), 60001);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
