#include "seqlattice/store/statsbucket.h"

#include <gtest/gtest.h>

#include <memory>

namespace SEQUENCE_NAMESPACE_800 {

namespace {

TEST(StatsBucketTest, NewBucketIsAllZeroAndMeanIsZero) {
  StatsBucket bucket;
  EXPECT_EQ(bucket.GetNOfGaps(), 0.0);
  EXPECT_EQ(bucket.GetSumOfGaps(), 0.0);
  EXPECT_EQ(bucket.GetMinOfGaps(), 0.0);
  EXPECT_EQ(bucket.GetMaxOfGaps(), 0.0);
  EXPECT_EQ(bucket.GetMeanOfGaps(), 0.0);
}

TEST(StatsBucketTest, InitialThenUpdates) {
  StatsBucket bucket;
  bucket.InitialGap(5);
  EXPECT_EQ(bucket.GetNOfGaps(), 1.0);
  EXPECT_EQ(bucket.GetSumOfGaps(), 5.0);
  EXPECT_EQ(bucket.GetMinOfGaps(), 5.0);
  EXPECT_EQ(bucket.GetMaxOfGaps(), 5.0);
  EXPECT_EQ(bucket.GetMeanOfGaps(), 5.0);

  bucket.UpdateGap(2);
  bucket.UpdateGap(9);
  EXPECT_EQ(bucket.GetNOfGaps(), 3.0);
  EXPECT_EQ(bucket.GetSumOfGaps(), 16.0);
  EXPECT_EQ(bucket.GetMinOfGaps(), 2.0);
  EXPECT_EQ(bucket.GetMaxOfGaps(), 9.0);
  EXPECT_DOUBLE_EQ(bucket.GetMeanOfGaps(), 16.0 / 3.0);
}

TEST(StatsBucketTest, InitialGapRestartsTheStatistics) {
  StatsBucket bucket;
  bucket.InitialGap(4);
  bucket.UpdateGap(10);
  bucket.InitialGap(7);
  EXPECT_EQ(bucket.GetNOfGaps(), 1.0);
  EXPECT_EQ(bucket.GetSumOfGaps(), 7.0);
  EXPECT_EQ(bucket.GetMinOfGaps(), 7.0);
  EXPECT_EQ(bucket.GetMaxOfGaps(), 7.0);
}

TEST(StatsBucketTest, UpdateWithoutInitialKeepsZeroInMinAndMax) {
  StatsBucket positive;
  positive.UpdateGap(3);
  EXPECT_EQ(positive.GetNOfGaps(), 1.0);
  EXPECT_EQ(positive.GetMinOfGaps(), 0.0);
  EXPECT_EQ(positive.GetMaxOfGaps(), 3.0);

  StatsBucket negative;
  negative.UpdateGap(-2.5);
  EXPECT_EQ(negative.GetMinOfGaps(), -2.5);
  EXPECT_EQ(negative.GetMaxOfGaps(), 0.0);
  EXPECT_EQ(negative.GetMeanOfGaps(), -2.5);
}

// Hosts may derive their own buckets; the counter deletes them through the
// base class.
TEST(StatsBucketTest, DerivedBucketIsDestroyedThroughBase) {
  static int destroyed = 0;
  struct CountingBucket : StatsBucket {
    ~CountingBucket() override { ++destroyed; }
  };
  std::unique_ptr<StatsBucket> bucket(new CountingBucket());
  bucket.reset();
  EXPECT_EQ(destroyed, 1);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
