// Corrupt and hostile files: the readers refuse what would make them
// allocate or loop beyond the file, and every damaged file ends in an
// IOException, a 0 result or a loaded dictionary, with nothing leaked.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <random>
#include <string>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/io/io_test_util.h"
#include "seqlattice/pattern/packedsequence.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// A pattern record of one set holding `count` items 1, 2, ... (or none when
// the count is negative).
test::Bytes patternRecord(const char* tag, int count) {
  test::Bytes bytes;
  bytes.text(tag, 4).i64(1).i32(count);
  for (int i = 0; i < count; ++i) bytes.i32(i + 1);
  return bytes.i32(1);
}

TEST(CorruptPatternTest, ItemCountsOutsideWhatAPatternHoldsFail) {
  for (int count : {32, 1000, -1}) {
    NTSequence read;
    const test::Printed printed = test::expectIOException(
        [&] { test::readBinary(patternRecord("NT:\0", count).str(), read); });
    EXPECT_EQ(printed.err, "Failure reading NTSequence!\n") << count;
  }
  NTSequence longest;
  EXPECT_EQ(test::readBinary(patternRecord("NT:\0", 31).str(), longest),
            16 + 4 * 31);
  EXPECT_EQ(longest.size(), 31);
}

TEST(CorruptPatternTest, TimedPatternCountsOutsideWhatAPatternHoldsFail) {
  const test::Bytes tooManySets =
      test::Bytes().text("PS:\0", 4).i64(1).i32(1).i32(4).i32(32);
  for (const test::Bytes& bytes : {patternRecord("PS:\0", 32), tooManySets}) {
    PackedSequence read;
    const test::Printed printed =
        test::expectIOException([&] { test::readBinary(bytes.str(), read); });
    EXPECT_EQ(printed.out, "Failure reading PackedSequence!\n");
  }
}

TEST(CorruptPatternTest, XMLItemCountsOutsideWhatAPatternHoldsFail) {
  for (int count : {32, -5}) {
    std::ostringstream text;
    text << "<NTSequence>\n<long>1</long>\n<int>" << count << "</int>\n";
    NTSequence read;
    const test::Printed printed =
        test::expectIOException([&] { test::readXML(text.str(), read); });
    EXPECT_EQ(printed.err, "Failure reading NTSequence!\n") << count;
  }
}

TEST(CorruptCounterTest, MorePairsThanTheStreamHoldsFail) {
  const std::string bytes = test::Bytes()
                                .text("SD\0", 3)
                                .i32(1)
                                .i32(0)
                                .i32(0)
                                .i32(1 << 30)
                                .i32(4)
                                .i32(1)
                                .str();
  SequenceCounter read(0, 0, nullptr);
  const test::Printed printed =
      test::expectIOException([&] { test::readBinary(bytes, read); });
  EXPECT_EQ(printed.err, "Error reading Sequence!\n");
  EXPECT_EQ(read.getAdjacentItems(), nullptr);
}

TEST(CorruptTableTest, MoreEntriesThanTheStreamHoldsFail) {
  // Two entries need 86 bytes; 85 follow the count.
  const std::string entry =
      patternRecord("NT:\0", 0)
          .append(
              test::Bytes().text("SD\0", 3).i32(1).i32(0).i32(0).i32(0).i32(0))
          .str();
  ASSERT_EQ(entry.size(), 43u);
  const std::string bytes = test::Bytes().text("HT", 2).i32(2).str() + entry +
                            entry.substr(0, entry.size() - 1);
  HashtableSQPair table(3);
  const test::Printed printed =
      test::expectIOException([&] { test::readBinary(bytes, table); });
  EXPECT_EQ(printed.err, "Error reading HashtableSQPair!\n");
  EXPECT_EQ(table.getCount(), 0);

  HashtableSQPair xmlTable(3);
  const test::Printed xmlPrinted = test::expectIOException([&] {
    test::readXML(
        "<HashtableSQPair>\n<int>2000000000</int>\n</HashtableSQPair>\n",
        xmlTable);
  });
  EXPECT_EQ(xmlPrinted.err, "Error reading HashtableSQPair!\n");
}

TEST(CorruptTableTest, PatternOfANegativeItemIsNoCorruption) {
  // A one-item pattern hashes to its item; a negative item is still a
  // pattern that a table holds.
  const std::string bytes =
      test::Bytes()
          .text("HT", 2)
          .i32(1)
          .text("NT:\0", 4)
          .i64(1)
          .i32(1)
          .i32(-3)
          .i32(1)
          .append(
              test::Bytes().text("SD\0", 3).i32(1).i32(0).i32(0).i32(0).i32(0))
          .str();
  HashtableSQPair table(3);
  EXPECT_EQ(test::readBinary(bytes, table), 6 + 20 + 23);
  EXPECT_EQ(table.getCount(), 1);
  int item[] = {1, -3};
  const NTSequence key(item);
  EXPECT_EQ(key.getHashCode(), -3);
  ASSERT_NE(table.get(&key), nullptr);
  EXPECT_EQ(table.get(&key)->value->getCount(), 1);
}

SeqDictionarySettings withSize(int level, int size, int levels) {
  SeqDictionarySettings s = test::smallSettings(levels);
  int* sizes[] = {&s.level0Size, &s.level1Size, &s.level2Size,
                  &s.level3Size, &s.level4Size, &s.level5Size,
                  &s.level6Size, &s.level7Size, &s.higherLevelSize};
  *sizes[std::min(level, 8)] = size;
  return s;
}

TEST(CorruptSettingsTest, SettingsWithoutBuildableTablesFail) {
  const SeqDictionarySettings bad[] = {
      test::smallSettings(0),  test::smallSettings(-3), test::smallSettings(65),
      withSize(0, 0, 4),       withSize(3, -1, 4),      withSize(9, 0, 10),
      withSize(2, 1 << 21, 4),
  };
  for (const SeqDictionarySettings& settings : bad) {
    test::Bytes bytes;
    test::appendSettings(bytes, settings);
    SeqDictionarySettings read;
    test::Printed printed =
        test::expectIOException([&] { test::readBinary(bytes.str(), read); });
    EXPECT_EQ(printed.err, "Error reading SeqDictionarySettings!\n");

    std::ostringstream text;
    settings.writeObjectXML(text);
    SeqDictionarySettings readXMLSettings;
    printed = test::expectIOException(
        [&] { test::readXML(text.str(), readXMLSettings); });
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(printed.out, "");
  }
}

TEST(CorruptSettingsTest, SizesOfLevelsNotInUseAreNotChecked) {
  const SeqDictionarySettings fine[] = {withSize(5, 0, 3), withSize(8, -7, 8),
                                        test::smallSettings(64)};
  for (const SeqDictionarySettings& settings : fine) {
    test::Bytes bytes;
    test::appendSettings(bytes, settings);
    SeqDictionarySettings read;
    EXPECT_EQ(test::readBinary(bytes.str(), read), 42);
    test::expectSameSettings(read, settings);
  }
}

TEST(CorruptSettingsTest, LargeTablesNeedAFileToMatch) {
  // 1,048,576 buckets and one more per byte of the rest of the file.
  SeqDictionarySettings settings = withSize(1, (1 << 20) - 2 + 100, 2);
  test::Bytes bytes;
  test::appendSettings(bytes, settings);
  SeqDictionarySettings read;
  test::expectIOException(
      [&] { test::readBinary(bytes.str() + std::string(99, 'x'), read); });
  EXPECT_EQ(test::readBinary(bytes.str() + std::string(100, 'x'), read), 42);
}

// A small dictionary of a few hundred bytes: three levels, adjacency sets,
// one counter with statistics.
std::unique_ptr<SequenceDictionary> sweepDictionary() {
  auto dictionary =
      std::make_unique<SequenceDictionary>(test::smallSettings(3));
  for (int i = 0; i < 4; ++i) dictionary->incrementCount(nullptr, 0);
  test::addPattern(*dictionary, {{1}}, 4, 1);
  test::addPattern(*dictionary, {{2}}, 3, 2);
  test::addPattern(*dictionary, {{1}, {2}}, 3, 3, 1);
  test::counterOf(*dictionary, {{1}})->addAdjacentItem(2, 1);
  test::counterOf(*dictionary, {{1}})->addAdjacentItem(2, 0);
  auto* bucket = new StatsBucket();
  bucket->InitialGap(1.5);
  test::counterOf(*dictionary, {{1}, {2}})->setStatsBucket(bucket);
  dictionary->setSlidingWindow(10.0);
  dictionary->setMaxGap(3.0);
  return dictionary;
}

// Saves a loaded dictionary in both formats, to nowhere: what was loaded
// must be writable too.
void saveToNowhere(const SequenceDictionary& dictionary) {
  test::NullBuffer nothing;
  std::ostream xml(&nothing);
  dictionary.writeObjectXML(xml);
  std::fstream binary;  // never opened: every write fails quietly
  dictionary.writeObject(binary);
}

struct Tally {
  int loaded = 0;
  int zero = 0;
  int failed = 0;
  void add(test::Outcome outcome) {
    if (outcome == test::Outcome::kLoaded) ++loaded;
    if (outcome == test::Outcome::kZero) ++zero;
    if (outcome == test::Outcome::kIOException) ++failed;
  }
};

// Loads a binary file from its start into a new dictionary, which is then
// destroyed.
test::Outcome loadAndDrop(std::fstream& in) {
  in.clear();
  in.seekg(0);
  auto dictionary = std::make_unique<SequenceDictionary>();
  try {
    dictionary->readObject(in);
  } catch (SeqExceptions::IOException* e) {
    delete e;
    return test::Outcome::kIOException;
  }
  return test::Outcome::kLoaded;
}

TEST(CorruptBinarySweepTest, EveryTruncationEndsCleanly) {
  const std::string bytes = test::saveBinary(*sweepDictionary());
  ASSERT_GT(bytes.size(), 200u);
  ASSERT_LT(bytes.size(), 400u);
  test::QuietStreams quiet;
  Tally tally;
  test::ScratchFile file;
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    file.write(bytes.substr(0, length));
    std::fstream in = file.openBinary(false);
    tally.add(loadAndDrop(in));
  }
  EXPECT_EQ(tally.loaded + tally.failed, static_cast<int>(bytes.size()));
  // Cuts in the last records leave a dictionary with what could be read.
  EXPECT_GT(tally.loaded, 0);
  EXPECT_GT(tally.failed, static_cast<int>(bytes.size()) / 2);
}

TEST(CorruptBinarySweepTest, EverySingleByteChangeEndsCleanly) {
  const std::string bytes = test::saveBinary(*sweepDictionary());
  test::QuietStreams quiet;
  Tally tally;
  test::ScratchFile file;
  file.write(bytes);
  std::fstream stream = file.openBinary(false);
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    for (int value = 0; value < 256; ++value) {
      if (static_cast<char>(value) == bytes[at]) continue;
      stream.clear();
      stream.seekp(static_cast<std::streamoff>(at));
      stream.put(static_cast<char>(value));
      stream.flush();
      tally.add(loadAndDrop(stream));
    }
    stream.clear();
    stream.seekp(static_cast<std::streamoff>(at));
    stream.put(bytes[at]);
  }
  EXPECT_EQ(tally.loaded + tally.failed, 255 * static_cast<int>(bytes.size()));
  EXPECT_GT(tally.loaded, 0);
  EXPECT_GT(tally.failed, 0);
  EXPECT_EQ(loadAndDrop(stream), test::Outcome::kLoaded);
}

test::Outcome loadXMLAndDrop(const test::ScratchFile& file) {
  auto dictionary = std::make_unique<SequenceDictionary>();
  const test::Outcome outcome = test::loadXML(file, *dictionary);
  if (outcome == test::Outcome::kLoaded) saveToNowhere(*dictionary);
  return outcome;
}

TEST(CorruptXMLSweepTest, SampledTruncationsAndChangesEndCleanly) {
  const std::string text = test::saveXML(*sweepDictionary());
  test::QuietStreams quiet;
  std::mt19937 random(20261122);
  test::ScratchFile file;
  Tally tally;
  std::uniform_int_distribution<std::size_t> position(0, text.size() - 1);
  for (int i = 0; i < 300; ++i) {
    file.write(text.substr(0, position(random)));
    tally.add(loadXMLAndDrop(file));
  }
  // Changes favour the characters the format is made of.
  const std::string alphabet = "<>/-0123456789.eEintlogdubSHNDq \n";
  std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() + 31);
  for (int i = 0; i < 1500; ++i) {
    std::string changed = text;
    const std::size_t choice = pick(random);
    changed[position(random)] = choice < alphabet.size()
                                    ? alphabet[choice]
                                    : static_cast<char>(random() & 0xff);
    file.write(changed);
    tally.add(loadXMLAndDrop(file));
  }
  EXPECT_EQ(tally.loaded + tally.zero + tally.failed, 1800);
  EXPECT_GT(tally.zero, 0);
  EXPECT_GT(tally.failed, 0);
  EXPECT_GT(tally.loaded, 0);
}

TEST(CorruptLoadTest, FailedLoadsLeaveDestroyableDictionaries) {
  const std::string bytes = test::saveBinary(*sweepDictionary());
  test::QuietStreams quiet;
  test::ScratchFile file;
  // Cut in the tag, the settings, the level-0 table, a later table.
  for (std::size_t length : {1u, 20u, 60u, 150u}) {
    file.write(bytes.substr(0, length));
    auto* dictionary = new SequenceDictionary();
    EXPECT_EQ(test::loadBinary(file, *dictionary), test::Outcome::kIOException);
    delete dictionary;
  }
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
