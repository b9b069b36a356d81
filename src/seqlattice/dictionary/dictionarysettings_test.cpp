#include "seqlattice/dictionary/dictionarysettings.h"

#include <gtest/gtest.h>

namespace SEQUENCE_NAMESPACE_800 {

namespace {

TEST(SeqDictionarySettingsTest, DefaultsGiveTenLevels) {
  SeqDictionarySettings s;
  EXPECT_EQ(s.level0Size, 2);
  EXPECT_EQ(s.level1Size, 11519);
  EXPECT_EQ(s.level2Size, 23039);
  EXPECT_EQ(s.level3Size, 23039);
  EXPECT_EQ(s.level4Size, 23039);
  EXPECT_EQ(s.level5Size, 23039);
  EXPECT_EQ(s.level6Size, 11519);
  EXPECT_EQ(s.level7Size, 11519);
  EXPECT_EQ(s.higherLevelSize, 89);
  EXPECT_EQ(s.nLevels, 10);
  EXPECT_EQ(s.reserved, 0);
}

TEST(SeqDictionarySettingsTest, CopiesAreIndependentValues) {
  SeqDictionarySettings s;
  s.nLevels = 4;
  s.reserved = 7;
  SeqDictionarySettings copy = s;
  s.nLevels = 5;
  EXPECT_EQ(copy.nLevels, 4);
  EXPECT_EQ(copy.reserved, 7);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
