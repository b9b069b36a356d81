// Byte layouts, counts, stream checks and messages of the binary records.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <utility>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/io/io_test_util.h"
#include "seqlattice/pattern/packedsequence.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// The record of the empty tables of a dictionary: tag and count 0 per level.
test::Bytes& appendEmptyTables(test::Bytes& bytes, int levels) {
  for (int k = 0; k < levels; ++k) bytes.text("HT", 2).i32(0);
  return bytes;
}

TEST(BinaryDictionaryTest, EmptyTablesTakeFixedBytesAndCount) {
  for (int levels : {1, 3, 10}) {
    const SeqDictionarySettings settings = test::smallSettings(levels);
    SequenceDictionary dictionary(settings);
    dictionary.getLevel(0)->clear();
    dictionary.setSlidingWindow(2.5);
    dictionary.setMinGap(1.0);
    dictionary.setMaxGap(4.0);
    const test::Written written = test::writeBinary(dictionary);

    EXPECT_EQ(written.bytes.size(), 2u + 1 + 42 + 6 * levels + 32);
    EXPECT_EQ(written.count, 6L * levels + 35);
    test::Bytes expected;
    expected.text("SD0", 3);
    test::appendSettings(expected, settings);
    appendEmptyTables(expected, levels).f64(0.0).f64(2.5).f64(1.0).f64(4.0);
    EXPECT_EQ(written.bytes, expected.str()) << levels << " levels";
  }
}

TEST(BinaryDictionaryTest, UnfilledDictionarySavesWithoutTables) {
  const SequenceDictionary unfilled;
  test::Bytes expected;
  expected.text("SD0", 3);
  test::appendSettings(expected, SeqDictionarySettings());
  expected.f64(0.0).f64(0.0).f64(0.0).f64(0.0);
  EXPECT_EQ(test::writeBinary(unfilled).bytes, expected.str());
  std::ostringstream xml;
  EXPECT_EQ(unfilled.writeObjectXML(xml), 8);
  EXPECT_EQ(xml.str().find("HashtableSQPair"), std::string::npos);
}

TEST(BinaryDictionaryTest, LevelZeroEntryIsSavedAsPatternAndCounter) {
  SequenceDictionary dictionary(test::smallSettings(2));
  const test::Written written = test::writeBinary(dictionary);
  test::Bytes expected;
  expected.text("SD0", 3);
  test::appendSettings(expected, test::smallSettings(2));
  // The empty pattern: tag, word 0, no items, no sets; its all-zero counter.
  expected.text("HT", 2).i32(1);
  expected.text("NT:\0", 4).i64(0).i32(0).i32(0);
  expected.text("SD\0", 3).i32(0).i32(0).i32(0).i32(0).i32(0);
  expected.text("HT", 2).i32(0);
  expected.f64(0.0).f64(0.0).f64(0.0).f64(0.0);
  EXPECT_EQ(written.bytes, expected.str());
  EXPECT_EQ(written.count, 3 + (6 + 16 + 23) + 6 + 32);
}

// A saved dictionary with the lattice-built byte replaced.
std::string withBuiltByte(char byte) {
  SequenceDictionary dictionary(test::smallSettings(2));
  std::string bytes = test::saveBinary(dictionary);
  bytes[2] = byte;
  return bytes;
}

TEST(BinaryDictionaryTest, OnlyTheCharacterOneReadsAsBuilt) {
  for (char byte : {'0', 'x', '\x01', '\0', 'T'}) {
    SequenceDictionary loaded;
    test::readBinary(withBuiltByte(byte), loaded);
    EXPECT_FALSE(loaded.isLatticeBuilt()) << static_cast<int>(byte);
  }
  SequenceDictionary loaded;
  test::readBinary(withBuiltByte('1'), loaded);
  EXPECT_TRUE(loaded.isLatticeBuilt());
}

TEST(BinaryDictionaryTest, SettingsLevelCountDecidesHowManyTablesAreRead) {
  test::Bytes threeTables;
  threeTables.text("SD1", 3);
  test::appendSettings(threeTables, test::smallSettings(3));
  appendEmptyTables(threeTables, 3).f64(0.5).f64(6.0).f64(1.0).f64(2.0);
  const std::string trailer = "MORE";

  SequenceDictionary loaded;
  long consumed = 0;
  const long count =
      test::readBinary(threeTables.str() + trailer, loaded, &consumed);
  EXPECT_EQ(consumed, static_cast<long>(threeTables.str().size()));
  EXPECT_EQ(count, 3 + 3 * 6 + 32);
  EXPECT_EQ(loaded.getNLevels(), 3);
  EXPECT_TRUE(loaded.isLatticeBuilt());
  EXPECT_EQ(loaded.getMinSupport(), 0.5);
  EXPECT_EQ(loaded.getSlidingWindow(), 6.0);
  EXPECT_EQ(loaded.getMinGap(), 1.0);
  EXPECT_EQ(loaded.getMaxGap(), 2.0);

  // With only two table records the doubles land where the third tag is due.
  test::Bytes twoTables;
  twoTables.text("SD1", 3);
  test::appendSettings(twoTables, test::smallSettings(3));
  appendEmptyTables(twoTables, 2).f64(0.5).f64(6.0).f64(1.0).f64(2.0);
  SequenceDictionary partial;
  const test::Printed printed = test::expectIOException(
      [&] { test::readBinary(twoTables.str(), partial); });
  EXPECT_EQ(printed.err, "Error reading HashtableSQPair!\n");
}

TEST(BinaryDictionaryTest, WrongDictionaryTagFails) {
  std::string bytes =
      test::saveBinary(SequenceDictionary(test::smallSettings(2)));
  bytes[0] = 'D';
  bytes[1] = 'S';
  SequenceDictionary loaded;
  const test::Printed printed =
      test::expectIOException([&] { test::readBinary(bytes, loaded); });
  EXPECT_EQ(printed.err, "Error reading SequenceDictionary!\n");
  EXPECT_EQ(printed.out, "");
}

TEST(BinaryDictionaryTest, OnlyTheBadBitStopsASave) {
  SequenceDictionary dictionary(test::smallSettings(2));
  test::ScratchFile file;
  std::fstream out = file.openBinary(true);
  out.setstate(std::ios::badbit);
  const test::Printed printed =
      test::expectIOException([&] { dictionary.writeObject(out); });
  EXPECT_EQ(printed.out, "Bad stream for saving SequenceDictionary!\n");
  EXPECT_EQ(printed.err, "");

  // Fail and end-of-file are no reason to refuse: the save goes ahead (and
  // the stream writes nothing), the count as for a good stream without the
  // items of the patterns.
  std::fstream failed = file.openBinary(true);
  failed.setstate(std::ios::failbit | std::ios::eofbit);
  EXPECT_EQ(dictionary.writeObject(failed), 3 + (6 + 16 + 23) + 6 + 32);
}

TEST(BinaryDictionaryTest, ReadCountMatchesWriteCount) {
  SequenceDictionary dictionary(test::smallSettings(4));
  test::addPattern(dictionary, {{3}}, 5, 1, 0);
  test::addPattern(dictionary, {{3, 4}}, 2, 2, 1);
  test::addPattern(dictionary, {{3}, {4, 6}}, 2, 3, 0);
  test::counterOf(dictionary, {{3}})->addAdjacentItem(4, 0);
  test::counterOf(dictionary, {{3}})->addAdjacentItem(4, 1);
  auto* bucket = new StatsBucket();
  bucket->InitialGap(2.0);
  test::counterOf(dictionary, {{3, 4}})->setStatsBucket(bucket);
  const test::Written written = test::writeBinary(dictionary);
  // Level 1: (3) with two pairs; level 2: (3 4) with statistics; level 3.
  const long expected = 3 + (6 + 16 + 23) + (6 + 20 + 23 + 16) +
                        (6 + 24 + 23 + 30) + (6 + 28 + 23) + 32;
  EXPECT_EQ(written.count, expected);
  SequenceDictionary loaded;
  EXPECT_EQ(test::readBinary(written.bytes, loaded), expected);
  test::expectLoadedAs(dictionary, loaded, 4);
}

TEST(BinaryPatternTest, RecordHoldsTagWordItemsAndSetCount) {
  test::PatternArrays arrays({{4}, {7, 9}});
  const NTSequence pattern(arrays.sets(), arrays.nSets());
  const test::Written written = test::writeBinary(pattern);
  test::Bytes expected;
  expected.text("NT:\0", 4).i64(5).i32(3).i32(4).i32(7).i32(9).i32(2);
  EXPECT_EQ(written.bytes, expected.str());
  EXPECT_EQ(written.count, 28);

  NTSequence read;
  EXPECT_EQ(test::readBinary(written.bytes, read), 28);
  EXPECT_TRUE(read == pattern);
  EXPECT_EQ(read.getHashCode(), pattern.computeHash());
  EXPECT_EQ(read.getNSets(), 2);
}

TEST(BinaryPatternTest, ShortItemListCountsTheItemsReadWhole) {
  const std::string bytes =
      test::Bytes().text("NT:\0", 4).i64(3).i32(3).i32(4).i32(7).str();
  NTSequence read;
  EXPECT_EQ(test::readBinary(bytes, read), 16 + 8);
  EXPECT_EQ(read.size(), 3);
}

// A stream that ends after the pattern word: the item count cannot be read,
// so the pattern keeps its items and set count; only the word is new.
TEST(BinaryPatternTest, UnreadableItemCountKeepsTheItems) {
  test::PatternArrays arrays({{4}, {7, 9}});
  const NTSequence original(arrays.sets(), arrays.nSets());
  NTSequence read(original);
  long consumed = 0;
  EXPECT_EQ(test::readBinary(test::Bytes().text("NT:\0", 4).i64(6).str(), read,
                             &consumed),
            16);
  EXPECT_EQ(consumed, 12);
  EXPECT_EQ(read.getPattern(), 6);
  EXPECT_EQ(read.size(), 3);
  EXPECT_EQ(read.getNSets(), 2);
  EXPECT_EQ(read.getHashCode(), read.computeHash());
  EXPECT_FALSE(read == original);
  EXPECT_EQ(read.getItemIndex(4), 0);
  EXPECT_EQ(read.getItemIndex(7), 1);
  EXPECT_EQ(read.getItemIndex(9), 2);
}

TEST(BinaryPatternTest, TimedRecordKeepsTimesWhole) {
  test::PatternArrays arrays({{1, 2}, {5}});
  const double start[] = {1.25, -3.5};
  const double end[] = {2.75, 8.0};
  const PackedSequence pattern(arrays.sets(), start, end, arrays.nSets());
  const test::Written written = test::writeBinary(pattern);
  test::Bytes expected;
  expected.text("PS:\0", 4).i64(3).i32(3).i32(1).i32(2).i32(5).i32(2);
  expected.f64(1.25).f64(2.75).f64(-3.5).f64(8.0);
  EXPECT_EQ(written.bytes, expected.str());
  EXPECT_EQ(written.count, 16 + 12 + 32);

  PackedSequence read;
  EXPECT_EQ(test::readBinary(written.bytes, read), 16 + 12 + 32);
  EXPECT_TRUE(read == pattern);
  EXPECT_EQ(read.getItemsCapacity(), 3);
  EXPECT_EQ(read.getSetCapacity(), 2);
  EXPECT_EQ(read.getTimeForSet(0), std::make_pair(1.25, 2.75));
  EXPECT_EQ(read.getTimeForSet(1), std::make_pair(-3.5, 8.0));
}

TEST(BinaryPatternTest, TimedRecordWithNegativeSetCountKeepsItsSets) {
  test::PatternArrays arrays({{1}, {5}});
  const double times[] = {1.0, 2.0};
  PackedSequence read(arrays.sets(), times, arrays.nSets());
  const std::string bytes =
      test::Bytes().text("PS:\0", 4).i64(1).i32(1).i32(9).i32(-1).str();
  EXPECT_EQ(test::readBinary(bytes, read), 16 + 4);
  EXPECT_EQ(read.size(), 1);
  EXPECT_EQ(read.getNSets(), 2);
  EXPECT_EQ(read.getTimeForSet(1), std::make_pair(2.0, 2.0));
}

TEST(BinaryPatternTest, WrongTagsFailOnTheirStreams) {
  // Each reader meets the other's tag. The timed pattern reports on the
  // standard output, unlike every other reader.
  NTSequence pattern;
  test::Printed printed = test::expectIOException([&] {
    test::readBinary(test::Bytes().text("PS:\0", 4).i64(0).str(), pattern);
  });
  EXPECT_EQ(printed.err, "Failure reading NTSequence!\n");
  EXPECT_EQ(printed.out, "");

  PackedSequence timed;
  printed = test::expectIOException([&] {
    test::readBinary(test::Bytes().text("NT:\0", 4).i64(0).str(), timed);
  });
  EXPECT_EQ(printed.out, "Failure reading PackedSequence!\n");
  EXPECT_EQ(printed.err, "");
}

// A counter record: tag, numbers, pairs, statistics flag.
test::Bytes counterRecord(int count, int ordinal, int missed, int pairs) {
  test::Bytes bytes;
  bytes.text("SD\0", 3).i32(count).i32(ordinal).i32(missed).i32(pairs);
  return bytes;
}

TEST(BinaryCounterTest, RecordHoldsNumbersPairsAndStatistics) {
  SequenceCounter counter(4, 9, nullptr);
  counter.setMaxMissed(2);
  counter.addAdjacentItem(8, 3);
  counter.addAdjacentItem(5, 1);
  counter.addAdjacentItem(5, 0);
  auto* bucket = new StatsBucket();
  bucket->InitialGap(1.5);
  bucket->UpdateGap(4.0);
  counter.setStatsBucket(bucket);

  const test::Written written = test::writeBinary(counter);
  const std::string expected = counterRecord(9, 4, 2, 3)
                                   .i32(5)
                                   .i32(0)
                                   .i32(5)
                                   .i32(1)
                                   .i32(8)
                                   .i32(3)
                                   .i32(1)
                                   .text("SB", 2)
                                   .f64(2.0)
                                   .f64(5.5)
                                   .f64(1.5)
                                   .f64(4.0)
                                   .str();
  EXPECT_EQ(written.bytes, expected);
  EXPECT_EQ(written.bytes.size(), 23u + 24 + 34);
  EXPECT_EQ(written.count, 19 + 24 + 4 + 30);

  SequenceCounter read(0, 0, nullptr);
  EXPECT_EQ(test::readBinary(expected, read), 19 + 24 + 4 + 30);
  EXPECT_EQ(test::describe(&read), test::describe(&counter));
}

TEST(BinaryCounterTest, EmptyAdjacencySetIsSavedAsNoPairsAndReadAsNone) {
  SequenceCounter counter(1, 2, nullptr);
  counter.addAdjacentItem(3, 4);
  counter.clearAdjacentItems();
  ASSERT_NE(counter.getAdjacentItems(), nullptr);
  const test::Written written = test::writeBinary(counter);
  EXPECT_EQ(written.bytes, counterRecord(2, 1, 0, 0).i32(0).str());
  EXPECT_EQ(written.count, 23);

  SequenceCounter read(0, 0, nullptr);
  test::readBinary(written.bytes, read);
  EXPECT_EQ(read.getAdjacentItems(), nullptr);
  EXPECT_EQ(read.getCount(), 2);
  EXPECT_EQ(read.getOrdinalOfEntry(), 1);
}

TEST(BinaryCounterTest, AnyPositiveStatisticsFlagReadsABucket) {
  const std::string bytes = counterRecord(1, 0, 0, 0)
                                .i32(7)
                                .text("SB", 2)
                                .f64(3.0)
                                .f64(6.0)
                                .f64(1.0)
                                .f64(3.0)
                                .str();
  SequenceCounter read(0, 0, nullptr);
  long consumed = 0;
  EXPECT_EQ(test::readBinary(bytes, read, &consumed), 23 + 30);
  EXPECT_EQ(consumed, 57);
  ASSERT_NE(read.getStatsBucket(), nullptr);
  EXPECT_EQ(read.getStatsBucket()->GetNOfGaps(), 3.0);
  EXPECT_EQ(read.getStatsBucket()->GetMeanOfGaps(), 2.0);
}

TEST(BinaryCounterTest, RepeatedPairsCollapse) {
  const std::string bytes =
      counterRecord(1, 0, 0, 2).i32(6).i32(1).i32(6).i32(1).i32(0).str();
  SequenceCounter read(0, 0, nullptr);
  EXPECT_EQ(test::readBinary(bytes, read), 19 + 16 + 4);
  EXPECT_EQ(read.getNAdjacent(), 1);
}

TEST(BinaryCounterTest, FailuresAndTheirMessages) {
  const std::pair<std::string, std::string> cases[] = {
      {test::Bytes().text("SDX", 3).i32(0).str(),
       "Error reading SequenceCounter!\n"},
      {counterRecord(1, 0, 0, -1).str(), "Error reading Sequence!\n"},
      {counterRecord(1, 0, 0, 0).i32(-2).str(), "Error reading StatsBucket!\n"},
      {counterRecord(1, 0, 0, 0).i32(1).text("BS", 2).str(),
       "Error reading StatsBucket!\n"},
  };
  for (const auto& [bytes, message] : cases) {
    SequenceCounter read(0, 0, nullptr);
    const test::Printed printed =
        test::expectIOException([&] { test::readBinary(bytes, read); });
    EXPECT_EQ(printed.err, message);
    EXPECT_EQ(printed.out, "");
  }
}

TEST(BinaryStatsTest, RecordTakes34BytesAndCounts30) {
  StatsBucket bucket;
  bucket.InitialGap(-0.5);
  const test::Written written = test::writeBinary(bucket);
  EXPECT_EQ(
      written.bytes,
      test::Bytes().text("SB", 2).f64(1.0).f64(-0.5).f64(-0.5).f64(-0.5).str());
  EXPECT_EQ(written.count, 30);
  StatsBucket read;
  long consumed = 0;
  EXPECT_EQ(test::readBinary(written.bytes, read, &consumed), 30);
  EXPECT_EQ(consumed, 34);
  EXPECT_EQ(read.GetSumOfGaps(), -0.5);
}

TEST(BinarySettingsTest, RecordStoresLevelCountBeforeHigherLevelSize) {
  SeqDictionarySettings settings;
  settings.reserved = 77;
  const test::Written written = test::writeBinary(settings);
  test::Bytes expected;
  expected.text("DS", 2);
  for (int v : {2, 11519, 23039, 23039, 23039, 23039, 11519, 11519, 10, 89}) {
    expected.i32(v);
  }
  EXPECT_EQ(written.bytes, expected.str());
  EXPECT_EQ(written.count, 42);

  SeqDictionarySettings read = test::smallSettings(3);
  EXPECT_EQ(test::readBinary(written.bytes, read), 42);
  test::expectSameSettings(read, SeqDictionarySettings());
}

TEST(BinarySettingsTest, WrongTagFails) {
  SeqDictionarySettings read;
  const test::Printed printed = test::expectIOException([&] {
    test::readBinary(test::Bytes().text("SD", 2).i32(2).str(), read);
  });
  EXPECT_EQ(printed.err, "Error reading SeqDictionarySettings!\n");
}

TEST(BinaryTableTest, EmptyOrNegativeEntryCountConsumesSixBytes) {
  for (int entries : {0, -1, -100000}) {
    HashtableSQPair table(5);
    long consumed = 0;
    const std::string bytes =
        test::Bytes().text("HT", 2).i32(entries).text("NT:\0", 4).str();
    EXPECT_EQ(test::readBinary(bytes, table, &consumed), 6);
    EXPECT_EQ(consumed, 6);
    EXPECT_EQ(table.getCount(), 0);
  }
}

TEST(BinaryTableTest, EntriesAreAddedAndLaterDuplicatesReplace) {
  test::PatternArrays first(test::Sets{{5}});
  HashtableSQPair table(5);
  table.put(new NTSequence(first.sets(), first.nSets()),
            new SequenceCounter(0, 1, nullptr));
  test::Bytes record;
  record.text("HT", 2).i32(3);
  for (int item : {6, 7, 6}) {
    record.text("NT:\0", 4).i64(1).i32(1).i32(item).i32(1);
    record.text("SD\0", 3).i32(item * 10).i32(0).i32(0).i32(0).i32(0);
  }
  EXPECT_EQ(test::readBinary(record.str(), table), 6 + 3 * (20 + 23));
  EXPECT_EQ(table.getCount(), 3);
  test::PatternArrays six(test::Sets{{6}});
  NTSequence key(six.sets(), six.nSets());
  ASSERT_NE(table.get(&key), nullptr);
  EXPECT_EQ(table.get(&key)->value->getCount(), 60);
}

TEST(BinaryTableTest, WrongTagFails) {
  HashtableSQPair table(5);
  const test::Printed printed = test::expectIOException([&] {
    test::readBinary(test::Bytes().text("TH", 2).i32(0).str(), table);
  });
  EXPECT_EQ(printed.err, "Error reading HashtableSQPair!\n");
}

TEST(BinaryTableTest, RecordFollowsIterationOrder) {
  HashtableSQPair table(11);
  for (int item : {1, 12, 3}) {
    test::PatternArrays arrays(test::Sets{{item}});
    table.put(new NTSequence(arrays.sets(), arrays.nSets()),
              new SequenceCounter(item, item, nullptr));
  }
  // Bucket 1 holds 12, then 1 (the head was inserted last); bucket 3 holds 3.
  test::Bytes expected;
  expected.text("HT", 2).i32(3);
  for (int item : {12, 1, 3}) {
    expected.text("NT:\0", 4).i64(1).i32(1).i32(item).i32(1);
    expected.append(counterRecord(item, item, 0, 0).i32(0));
  }
  const test::Written written = test::writeBinary(table);
  EXPECT_EQ(written.bytes, expected.str());
  EXPECT_EQ(written.count, 6 + 3 * (20 + 23));
}

TEST(BinaryTableTest, EntryWithoutCounterIsSavedAsZeroCounter) {
  HashtableSQPair table(3);
  test::PatternArrays arrays(test::Sets{{2}});
  table.put(new NTSequence(arrays.sets(), arrays.nSets()), nullptr);
  const test::Written written = test::writeBinary(table);
  EXPECT_EQ(written.bytes, test::Bytes()
                               .text("HT", 2)
                               .i32(1)
                               .text("NT:\0", 4)
                               .i64(1)
                               .i32(1)
                               .i32(2)
                               .i32(1)
                               .append(counterRecord(0, 0, 0, 0).i32(0))
                               .str());
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
