// Random dictionaries saved and loaded in both formats come back entry for
// entry, tables iterating in the order a load gives.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/io/io_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

class RandomDictionary {
 public:
  explicit RandomDictionary(unsigned seed) : random_(seed) {}

  // Levels 1 .. nLevels-1 all hold patterns, so that the XML form, which
  // stops at the last level of the unbroken run from level 1, holds them all.
  std::unique_ptr<SequenceDictionary> make() {
    const int levels = 2 + below(6);
    auto dictionary =
        std::make_unique<SequenceDictionary>(test::smallSettings(levels));
    for (int i = below(50); i > 0; --i) dictionary->incrementCount(nullptr, 0);
    for (int size = 1; size < levels; ++size) {
      for (int i = 1 + below(40); i > 0; --i) {
        const test::Sets sets = pattern(size);
        test::addPattern(*dictionary, sets, number(), number(), number());
        decorate(*test::counterOf(*dictionary, sets));
      }
    }
    dictionary->setSlidingWindow(real());
    dictionary->setMinGap(real());
    dictionary->setMaxGap(real());
    return dictionary;
  }

 private:
  int below(int n) { return static_cast<int>(random_() % n); }

  // Sets of ascending, distinct items from -10 to 29, `size` items in all.
  // Items are the host's signed codes: a one-item pattern of a negative item
  // has a negative hash code, which the tables take like any other.
  test::Sets pattern(int size) {
    test::Sets sets;
    while (size > 0) {
      const int n = 1 + below(std::min(size, 4));
      std::vector<int> set;
      while (static_cast<int>(set.size()) < n) {
        const int item = below(40) - 10;
        if (std::find(set.begin(), set.end(), item) == set.end()) {
          set.push_back(item);
        }
      }
      std::sort(set.begin(), set.end());
      sets.push_back(set);
      size -= n;
    }
    return sets;
  }

  int number() {
    switch (below(8)) {
      case 0:
        return INT_MIN;
      case 1:
        return INT_MAX;
      case 2:
        return -below(100);
      default:
        return below(1000);
    }
  }

  double real() {
    switch (below(10)) {
      case 0:
        return std::numeric_limits<double>::quiet_NaN();
      case 1:
        return -std::numeric_limits<double>::infinity();
      case 2:
        return -0.0;
      case 3:
        return std::numeric_limits<double>::denorm_min();
      default:
        return std::uniform_real_distribution<double>(-1e6, 1e6)(random_);
    }
  }

  void decorate(SequenceCounter& counter) {
    if (below(3) == 0) {
      for (int i = 1 + below(5); i > 0; --i) {
        counter.addAdjacentItem(below(30), below(12));
      }
    }
    if (below(4) == 0) {
      auto* bucket = new StatsBucket();
      bucket->InitialGap(real());
      bucket->UpdateGap(real());
      counter.setStatsBucket(bucket);
    }
  }

  std::mt19937 random_;
};

// Saves the random dictionaries of 25 seeds with `save` and loads each into a
// fresh dictionary with `load`.
template <typename Save, typename Load>
void expectRoundTrips(Save save, Load load) {
  for (unsigned seed = 1; seed <= 25; ++seed) {
    SCOPED_TRACE(seed);
    const std::unique_ptr<SequenceDictionary> saved =
        RandomDictionary(seed).make();
    test::ScratchFile file;
    file.write(save(*saved));
    SequenceDictionary loaded;
    ASSERT_EQ(load(file, loaded), test::Outcome::kLoaded);
    test::expectLoadedAs(*saved, loaded, saved->getNLevels());
  }
}

TEST(RoundTripTest, RandomDictionariesInTheBinaryFormat) {
  expectRoundTrips(test::saveBinary, test::loadBinary);
}

TEST(RoundTripTest, RandomDictionariesInTheXMLFormat) {
  expectRoundTrips(test::saveXML, [](const test::ScratchFile& file,
                                     SequenceDictionary& dictionary) {
    return test::loadXML(file, dictionary);
  });
}

// Patterns whose hash codes are negative: the one-item pattern of a negative
// item hashes to the item itself, INT_MIN included.
std::unique_ptr<SequenceDictionary> negativeItemDictionary() {
  auto dictionary =
      std::make_unique<SequenceDictionary>(test::smallSettings(3));
  test::addPattern(*dictionary, {{-3}}, 4);
  test::addPattern(*dictionary, {{INT_MIN}}, 2);
  test::addPattern(*dictionary, {{7}}, 3);
  test::addPattern(*dictionary, {{-3}, {7}}, 2);
  test::addPattern(*dictionary, {{INT_MIN, -3}}, 1);
  return dictionary;
}

TEST(RoundTripTest, PatternsOfNegativeItemsComeBackInBothFormats) {
  const std::unique_ptr<SequenceDictionary> saved = negativeItemDictionary();
  test::ScratchFile file;
  file.write(test::saveBinary(*saved));
  SequenceDictionary fromBinary;
  ASSERT_EQ(test::loadBinary(file, fromBinary), test::Outcome::kLoaded);
  test::expectLoadedAs(*saved, fromBinary, 3);
  ASSERT_NE(test::counterOf(fromBinary, {{INT_MIN}}), nullptr);
  EXPECT_EQ(test::counterOf(fromBinary, {{INT_MIN}})->getCount(), 2);

  file.write(test::saveXML(*saved));
  SequenceDictionary fromXML;
  ASSERT_EQ(test::loadXML(file, fromXML), test::Outcome::kLoaded);
  test::expectLoadedAs(*saved, fromXML, 3);
  ASSERT_NE(test::counterOf(fromXML, {{-3}}), nullptr);
  EXPECT_EQ(test::counterOf(fromXML, {{-3}})->getCount(), 4);
}

TEST(RoundTripTest, ASecondLoadGivesTheSameDictionaryAgain) {
  const std::unique_ptr<SequenceDictionary> saved = RandomDictionary(99).make();
  test::ScratchFile file;
  file.write(test::saveBinary(*saved));
  SequenceDictionary once;
  ASSERT_EQ(test::loadBinary(file, once), test::Outcome::kLoaded);
  file.write(test::saveXML(once));
  SequenceDictionary twice;
  ASSERT_EQ(test::loadXML(file, twice), test::Outcome::kLoaded);
  test::expectLoadedAs(once, twice, once.getNLevels());
}

// A dictionary large enough for its levels to be saved on several threads:
// the record is still the level records one after another, in level order,
// and loads back as it was.
TEST(RoundTripTest, ALargeDictionaryIsSavedLevelByLevel) {
  constexpr int kItems = 150;
  auto saved = std::make_unique<SequenceDictionary>(test::smallSettings(4));
  for (int i = 1; i <= kItems; ++i) {
    test::addPattern(*saved, {{i}}, 3 + i);
    for (int j = 1; j <= kItems; ++j) {
      test::addPattern(*saved, {{i}, {j}}, 2, i, j);
    }
  }
  test::addPattern(*saved, {{1}, {2}, {3}}, 2);
  ASSERT_TRUE(saved->buildLattice().IsOK());
  const test::Written whole = test::writeBinary(*saved);
  std::size_t levelBytes = 0;
  for (int k = 0; k < saved->getNLevels(); ++k) {
    levelBytes += test::writeBinary(*saved->getLevel(k)).bytes.size();
  }
  std::size_t at = whole.bytes.size() - 32 - levelBytes;
  // The count leaves the settings record out.
  long count = 3 + 32;
  for (int k = 0; k < saved->getNLevels(); ++k) {
    const test::Written level = test::writeBinary(*saved->getLevel(k));
    EXPECT_EQ(whole.bytes.compare(at, level.bytes.size(), level.bytes), 0) << k;
    at += level.bytes.size();
    count += level.count;
  }
  EXPECT_EQ(whole.count, count);
  test::ScratchFile file;
  file.write(whole.bytes);
  SequenceDictionary loaded;
  ASSERT_EQ(test::loadBinary(file, loaded), test::Outcome::kLoaded);
  test::expectLoadedAs(*saved, loaded, saved->getNLevels());
  EXPECT_EQ(test::counterOf(loaded, {{150}})->getCount(), 153);
  EXPECT_EQ(test::counterOf(loaded, {{1}, {2}})->getNAdjacent(), 1);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
