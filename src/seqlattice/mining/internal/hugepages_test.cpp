#include "seqlattice/mining/internal/hugepages.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {
namespace {

TEST(HugePagesTest, ReservesALargeBufferWithoutFillingIt) {
  std::vector<std::uint32_t> v;
  const std::size_t n = 3 * kHugePageMinBytes / sizeof(std::uint32_t);
  reserveOnHugePages(v, n);
  EXPECT_GE(v.capacity(), n);
  EXPECT_EQ(v.size(), 0u);
  v.resize(n, 7);
  EXPECT_EQ(v[n - 1], 7u);
}

TEST(HugePagesTest, LeavesAVectorWithRoomAsItIs) {
  std::vector<std::uint32_t> v{1, 2, 3};
  v.reserve(100);
  const std::uint32_t* before = v.data();
  reserveOnHugePages(v, 50);
  EXPECT_EQ(v.data(), before);
  EXPECT_EQ(v, (std::vector<std::uint32_t>{1, 2, 3}));
}

TEST(HugePagesTest, KeepsTheElementsOfASmallVectorItGrows) {
  std::vector<std::uint32_t> v{4, 5};
  reserveOnHugePages(v, 1000);
  EXPECT_GE(v.capacity(), 1000u);
  EXPECT_EQ(v, (std::vector<std::uint32_t>{4, 5}));
}

}  // namespace
}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
