#include "seqlattice/mining/internal/distinctvalues.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {

TEST(DistinctValuesTest, NarrowRangeGivesTheValuesAscendingAndTheirRanks) {
  const std::vector<int> v{7, 3, 7, 12, 3, 5, 12, 12};
  const std::vector<int> values = mining::internal::distinctValues(v);
  EXPECT_EQ(values, (std::vector<int>{3, 5, 7, 12}));
  EXPECT_EQ(mining::internal::valueRanks(v, values),
            (std::vector<std::uint32_t>{2, 0, 2, 3, 0, 1, 3, 3}));
}

TEST(DistinctValuesTest, WideRangeGivesTheSameAnswerBySorting) {
  const std::vector<int> v{INT_MAX, 0, -5, INT_MAX, 1 << 30, INT_MIN, 0};
  const std::vector<int> values = mining::internal::distinctValues(v);
  EXPECT_EQ(values, (std::vector<int>{INT_MIN, -5, 0, 1 << 30, INT_MAX}));
  EXPECT_EQ(mining::internal::valueRanks(v, values),
            (std::vector<std::uint32_t>{4, 2, 1, 4, 3, 0, 2}));
}

TEST(DistinctValuesTest, EmptyArrayHasNoValues) {
  const std::vector<int> empty;
  EXPECT_EQ(mining::internal::distinctValues(empty), std::vector<int>{});
  EXPECT_EQ(mining::internal::valueRanks(empty, {}),
            std::vector<std::uint32_t>{});
}

}  // namespace SEQUENCE_NAMESPACE_800
