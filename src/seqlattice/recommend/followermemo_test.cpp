#include "seqlattice/recommend/followermemo.h"

#include <vector>

#include "gtest/gtest.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

recommend::FollowerMemo::Entry entryWith(long holders, std::size_t followers) {
  recommend::FollowerMemo::Entry entry;
  entry.holders = holders;
  for (std::size_t d = 0; d < followers; ++d) {
    entry.followers.emplace_back(static_cast<std::uint32_t>(d), 0.5);
  }
  return entry;
}

}  // namespace test

TEST(FollowerMemo, RemembersPerSubContext) {
  recommend::FollowerMemo memo;
  const int index = 0;
  EXPECT_EQ(memo.find(&index, 0.3, {1, 2}), nullptr);
  memo.remember(&index, 0.3, {1, 2}, test::entryWith(7, 3));
  memo.remember(&index, 0.3, {4}, test::entryWith(0, 0));
  const recommend::FollowerMemo::Entry* entry = memo.find(&index, 0.3, {1, 2});
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->holders, 7);
  EXPECT_EQ(entry->followers.size(), 3u);
  EXPECT_EQ(entry->followers[2].first, 2u);
  EXPECT_EQ(entry->followers[2].second, 0.5);
  ASSERT_NE(memo.find(&index, 0.3, {4}), nullptr);
  EXPECT_EQ(memo.find(&index, 0.3, {4})->holders, 0);
  EXPECT_EQ(memo.find(&index, 0.3, {2, 1}), nullptr);
  EXPECT_EQ(memo.entries(), 2u);
}

TEST(FollowerMemo, AnotherIndexOrDecayForgetsEverything) {
  recommend::FollowerMemo memo;
  const int index = 0;
  const int other = 0;
  memo.remember(&index, 0.3, {1}, test::entryWith(1, 1));
  EXPECT_EQ(memo.find(&other, 0.3, {1}), nullptr);
  EXPECT_EQ(memo.find(&index, 0.0, {1}), nullptr);
  memo.remember(&index, 0.0, {2}, test::entryWith(1, 1));
  EXPECT_EQ(memo.entries(), 1u);
  EXPECT_EQ(memo.find(&index, 0.0, {1}), nullptr);
  EXPECT_NE(memo.find(&index, 0.0, {2}), nullptr);
}

TEST(FollowerMemo, StaysWithinItsCells) {
  recommend::FollowerMemo memo;
  const int index = 0;
  // Too large to keep at all.
  memo.remember(&index, 0.0, {1},
                test::entryWith(1, recommend::FollowerMemo::kMaxCells));
  EXPECT_EQ(memo.entries(), 0u);
  // Three entries of a third each: the third one does not fit beside the
  // first two, which are forgotten.
  const std::size_t third = recommend::FollowerMemo::kMaxCells / 3;
  for (int item = 1; item <= 3; ++item) {
    memo.remember(&index, 0.0, {item}, test::entryWith(1, third));
  }
  EXPECT_EQ(memo.entries(), 1u);
  EXPECT_NE(memo.find(&index, 0.0, {3}), nullptr);
  EXPECT_LE(memo.cells(), recommend::FollowerMemo::kMaxCells);
}

}  // namespace SEQUENCE_NAMESPACE_800
