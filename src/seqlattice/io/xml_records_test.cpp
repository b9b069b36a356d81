// Elements, value order, counts and failures of the XML object format.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/io/io_test_util.h"
#include "seqlattice/pattern/packedsequence.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Builds the expected text of an element: tags indented by 2 (depth - 1),
// values by 2 depth.
class Element {
 public:
  Element(const std::string& name, int depth) : name_(name), depth_(depth) {
    text_ = indent(depth - 1) + "<" + name + ">\n";
  }
  Element& i(long v) { return value("int", std::to_string(v)); }
  Element& l(long v) { return value("long", std::to_string(v)); }
  Element& d(const std::string& v) { return value("double", v); }
  Element& nest(const std::string& element) {
    text_ += element;
    return *this;
  }
  std::string end() const {
    return text_ + indent(depth_ - 1) + "</" + name_ + ">\n";
  }

 private:
  static std::string indent(int levels) { return std::string(2 * levels, ' '); }
  Element& value(const std::string& type, const std::string& v) {
    text_ += indent(depth_) + "<" + type + ">" + v + "</" + type + ">\n";
    return *this;
  }
  std::string name_;
  int depth_;
  std::string text_;
};

template <typename Object>
std::pair<std::string, long> writeXML(const Object& object) {
  std::ostringstream out;
  const long count = object.writeObjectXML(out);
  return {out.str(), count};
}

int occurrences(const std::string& text, const std::string& part) {
  int n = 0;
  for (std::size_t at = text.find(part); at != std::string::npos;
       at = text.find(part, at + 1)) {
    ++n;
  }
  return n;
}

TEST(XMLPatternTest, ElementHoldsWordCountItemsAndSets) {
  test::PatternArrays arrays({{4}, {7, 9}});
  const NTSequence pattern(arrays.sets(), arrays.nSets());
  const auto [text, count] = writeXML(pattern);
  EXPECT_EQ(text, Element("NTSequence", 4).l(5).i(3).i(4).i(7).i(9).i(2).end());
  EXPECT_EQ(count, 3 + 5);

  NTSequence read;
  EXPECT_EQ(test::readXML(text, read), 3 + 5);
  EXPECT_TRUE(read == pattern);
  EXPECT_EQ(read.getNSets(), 2);
}

TEST(XMLPatternTest, TimedPatternTruncatesTimesTowardZero) {
  test::PatternArrays arrays(test::Sets{{6}});
  const double start[] = {2.75};
  const double end[] = {-1.5};
  const PackedSequence pattern(arrays.sets(), start, end, 1);
  const auto [text, count] = writeXML(pattern);
  EXPECT_EQ(text,
            Element("PackedSequence", 4).l(1).i(1).i(6).i(1).i(2).i(-1).end());
  EXPECT_EQ(count, 1 + 2 + 5);

  PackedSequence read;
  EXPECT_EQ(test::readXML(text, read), 1 + 2 + 5);
  EXPECT_TRUE(read == pattern);
  EXPECT_EQ(read.getTimeForSet(0), std::make_pair(2.0, -1.0));
}

TEST(XMLPatternTest, FailuresGoToTheirStreams) {
  NTSequence pattern;
  test::Printed printed = test::expectIOException([&] {
    test::readXML(Element("PackedSequence", 4).l(0).i(0).i(0).end(), pattern);
  });
  EXPECT_EQ(printed.err, "Failure reading NTSequence!\n");
  EXPECT_EQ(printed.out, "");

  PackedSequence timed;
  printed = test::expectIOException([&] {
    test::readXML(Element("PackedSequence", 4).l(0).i(0).l(0).end(), timed);
  });
  EXPECT_EQ(printed.out, "Failure reading PackedSequence!\n");
  EXPECT_EQ(printed.err, "");
}

TEST(XMLCounterTest, ElementHoldsNumbersPairsAndNestedStatistics) {
  SequenceCounter counter(4, 9, nullptr);
  counter.setMaxMissed(2);
  counter.addAdjacentItem(8, 3);
  counter.addAdjacentItem(5, 1);
  auto* bucket = new StatsBucket();
  bucket->InitialGap(0.1);
  bucket->UpdateGap(3.0);
  counter.setStatsBucket(bucket);
  const auto [text, count] = writeXML(counter);
  const std::string stats =
      Element("StatsBucket", 5).d("2").d("3.1").d("0.1").d("3").end();
  EXPECT_EQ(text, Element("SequenceCounter", 4)
                      .i(9)
                      .i(4)
                      .i(2)
                      .i(2)
                      .i(5)
                      .i(1)
                      .i(8)
                      .i(3)
                      .i(1)
                      .nest(stats)
                      .end());
  EXPECT_EQ(count, 7 + 4 + 6);

  SequenceCounter read(0, 0, nullptr);
  EXPECT_EQ(test::readXML(text, read), 7 + 4 + 6);
  EXPECT_EQ(test::describe(&read), test::describe(&counter));
}

TEST(XMLCounterTest, EmptyAdjacencySetIsWrittenAsNoPairsAndReadAsNone) {
  SequenceCounter counter(1, 2, nullptr);
  counter.addAdjacentItem(3, 4);
  counter.clearAdjacentItems();
  const auto [text, count] = writeXML(counter);
  EXPECT_EQ(text, Element("SequenceCounter", 4).i(2).i(1).i(0).i(0).i(0).end());
  EXPECT_EQ(count, 7);

  SequenceCounter read(0, 0, nullptr);
  EXPECT_EQ(test::readXML(text, read), 7);
  EXPECT_EQ(read.getAdjacentItems(), nullptr);
  EXPECT_EQ(read.getStatsBucket(), nullptr);
}

TEST(XMLCounterTest, FailuresAndTheirMessages) {
  const std::pair<std::string, std::string> cases[] = {
      {Element("Counter", 4).end(), "Error reading SequenceCounter!\n"},
      {Element("SequenceCounter", 4).i(1).i(0).i(0).i(-1).end(),
       "Error reading SequenceCounter!\n"},
      {Element("SequenceCounter", 4).i(1).i(0).i(0).i(2).i(1).i(1).end(),
       "Error reading SequenceCounter!\n"},
      {Element("SequenceCounter", 4).i(1).i(0).i(0).i(0).i(-1).end(),
       "Error reading SequenceCounter!\n"},
      {Element("SequenceCounter", 4)
           .i(1)
           .i(0)
           .i(0)
           .i(0)
           .i(1)
           .nest(Element("StatsBucket", 5).d("1").end())
           .end(),
       "Error reading StatsBucket!\n"},
  };
  for (const auto& [text, message] : cases) {
    SequenceCounter read(0, 0, nullptr);
    const test::Printed printed =
        test::expectIOException([&] { test::readXML(text, read); });
    EXPECT_EQ(printed.err, message) << text;
    EXPECT_EQ(printed.out, "");
  }
}

TEST(XMLSettingsTest, ElementHoldsTenValuesLevelCountFirst) {
  const SeqDictionarySettings settings = test::smallSettings(4);
  const auto [text, count] = writeXML(settings);
  EXPECT_EQ(text, Element("DictionarySettings", 2)
                      .i(2)
                      .i(3)
                      .i(5)
                      .i(7)
                      .i(11)
                      .i(13)
                      .i(17)
                      .i(19)
                      .i(4)
                      .i(23)
                      .end());
  EXPECT_EQ(count, 12);
  SeqDictionarySettings read;
  EXPECT_EQ(test::readXML(text, read), 12);
  test::expectSameSettings(read, settings);
}

TEST(XMLSettingsTest, FailuresThrowWithoutMessage) {
  SeqDictionarySettings read;
  const test::Printed printed = test::expectIOException([&] {
    test::readXML(Element("DictionarySettings", 2).i(2).end(), read);
  });
  EXPECT_EQ(printed.out, "");
  EXPECT_EQ(printed.err, "");
}

TEST(XMLTableTest, FailuresAreReportedForTheTable) {
  const std::string cases[] = {
      Element("Hashtable", 2).i(0).end(),
      Element("HashtableSQPair", 2).l(0).end(),
      Element("HashtableSQPair", 2).i(0).i(0).end(),
  };
  for (const std::string& text : cases) {
    HashtableSQPair table(3);
    const test::Printed printed =
        test::expectIOException([&] { test::readXML(text, table); });
    EXPECT_EQ(printed.err, "Error reading HashtableSQPair!\n") << text;
  }
}

TEST(XMLTableTest, EntriesFollowIterationOrder) {
  HashtableSQPair table(11);
  for (int item : {1, 12}) {
    test::PatternArrays arrays(test::Sets{{item}});
    table.put(new NTSequence(arrays.sets(), arrays.nSets()),
              new SequenceCounter(0, item, nullptr));
  }
  const auto [text, count] = writeXML(table);
  Element expected("HashtableSQPair", 2);
  expected.i(2);
  for (int item : {12, 1}) {
    expected.nest(Element("NTSequence", 4).l(1).i(1).i(item).i(1).end());
    expected.nest(
        Element("SequenceCounter", 4).i(item).i(0).i(0).i(0).i(0).end());
  }
  EXPECT_EQ(text, expected.end());
  EXPECT_EQ(count, 3 + 2 * (6 + 7));
  HashtableSQPair read(11);
  EXPECT_EQ(test::readXML(text, read), 3 + 2 * (6 + 7));
  // Re-inserted in saved order, the two entries of one chain swap places.
  EXPECT_EQ(test::keysOf(read), test::loadOrder(table, 11));
  EXPECT_EQ(test::keysOf(read)[0], test::keysOf(table)[1]);
}

// Doubles at the end of a dictionary element, as the writer formats them.
SequenceDictionary* timedDictionary(int levels) {
  auto* dictionary = new SequenceDictionary(test::smallSettings(levels));
  dictionary->setSlidingWindow(7.0);
  dictionary->setMinGap(1.0);
  dictionary->setMaxGap(9.5);
  return dictionary;
}

TEST(XMLDictionaryTest, OnlyLevelZeroInUseWritesOneTable) {
  for (int levels : {1, 3, 10}) {
    std::unique_ptr<SequenceDictionary> dictionary(timedDictionary(levels));
    const auto [text, count] = writeXML(*dictionary);
    EXPECT_EQ(occurrences(text, "<HashtableSQPair>"), 1) << levels;
    // 8 of its own, the table with the level-0 entry; not the settings.
    EXPECT_EQ(count, 8 + (3 + 5 + 7));
    const std::string expected =
        Element("SequenceDictionary", 1)
            .i(0)
            .i(0)
            .nest(writeXML(test::smallSettings(levels)).first)
            .nest(writeXML(*dictionary->getLevel(0)).first)
            .d("0")
            .d("7")
            .d("1")
            .d("9.5")
            .end();
    EXPECT_EQ(text, expected);
  }
}

TEST(XMLDictionaryTest, LevelsUpToTheLargestInUseAreWritten) {
  SequenceDictionary dictionary(test::smallSettings(6));
  test::addPattern(dictionary, {{3}}, 4);
  test::addPattern(dictionary, {{3, 5}}, 2);
  // Level 4 is behind the empty level 3 and is not written.
  test::addPattern(dictionary, {{1, 2, 3, 4}}, 1);
  const auto [text, count] = writeXML(dictionary);
  EXPECT_EQ(occurrences(text, "<HashtableSQPair>"), 3);
  EXPECT_EQ(count, 8 + (3 + 12) + (3 + 6 + 7) + (3 + 7 + 7));

  SequenceDictionary loaded;
  EXPECT_EQ(test::readXML(text, loaded), 12 + 3 + (15 + 16 + 17) + 4);
  test::expectLoadedAs(dictionary, loaded, 3);
  EXPECT_EQ(loaded.getLevel(4)->getCount(), 0);
}

// A saved timedDictionary in the form of format version 1.0: without the
// minimum support, the first of the four doubles.
std::string versionOneZeroText(int levels) {
  std::unique_ptr<SequenceDictionary> saved(timedDictionary(levels));
  std::string text = writeXML(*saved).first;
  const std::string support = "  <double>0</double>\n";
  const std::size_t at = text.rfind(support, text.rfind("<double>7<"));
  EXPECT_NE(at, std::string::npos);
  return text.erase(at, support.size());
}

TEST(XMLDictionaryTest, VersionOneZeroDocumentsLackTheMinimumSupport) {
  const std::string text = versionOneZeroText(2);

  SequenceDictionary loaded;
  test::ScratchFile file;
  file.write(text);
  {
    std::ifstream in = file.openText();
    EXPECT_EQ(loaded.readObjectXML(in, "1.0"), 12 + 3 + 15 + 4);
  }
  EXPECT_EQ(loaded.getMinSupport(), 0.0);
  EXPECT_EQ(loaded.getSlidingWindow(), 7.0);
  EXPECT_EQ(loaded.getMinGap(), 1.0);
  EXPECT_EQ(loaded.getMaxGap(), 9.5);

  // Any other version reads four doubles, so the end tag comes too early.
  for (const char* version : {"1.0.1", "1.00", "1", ""}) {
    SequenceDictionary other;
    std::ifstream in = file.openText();
    EXPECT_EQ(other.readObjectXML(in, version), 0) << version;
  }
}

TEST(XMLDictionaryTest, VersionOneZeroKeepsTheSupportHeldBefore) {
  const std::string text = versionOneZeroText(2);
  SequenceDictionary loaded(test::smallSettings(2));
  test::addPattern(loaded, {{1}}, 3);
  loaded.reduceAll(0.25);
  const double before = loaded.getMinSupport();
  test::ScratchFile file;
  file.write(text);
  std::ifstream in = file.openText();
  EXPECT_EQ(loaded.readObjectXML(in, "1.0"), 12 + 3 + 15 + 4);
  EXPECT_EQ(loaded.getMinSupport(), before);
}

// The dictionary reader refuses the text by returning 0, quietly.
void expectQuietZero(const std::string& text) {
  SequenceDictionary loaded;
  long count = -1;
  const test::Printed printed =
      test::capturePrinted([&] { count = test::readXML(text, loaded); });
  EXPECT_EQ(count, 0);
  EXPECT_EQ(printed.out, "");
  EXPECT_EQ(printed.err, "");
}

TEST(XMLDictionaryTest, OtherRootYieldsZeroWithoutMessage) {
  std::unique_ptr<SequenceDictionary> saved(timedDictionary(2));
  std::string text = writeXML(*saved).first;
  text.replace(0, std::string("<SequenceDictionary>").size(), "<Dictionary>");
  expectQuietZero(text);
}

TEST(XMLDictionaryTest, LargestLevelBeyondTheSettingsYieldsZero) {
  const std::string text = Element("SequenceDictionary", 1)
                               .i(1)
                               .i(2)
                               .nest(writeXML(test::smallSettings(2)).first)
                               .end();
  expectQuietZero(text);
}

TEST(XMLDictionaryTest, OnlyTheBadBitStopsASave) {
  SequenceDictionary dictionary(test::smallSettings(2));
  std::ostringstream out;
  out.setstate(std::ios::badbit);
  const test::Printed printed =
      test::expectIOException([&] { dictionary.writeObjectXML(out); });
  EXPECT_EQ(printed.out, "Bad stream for saving SequenceDictionary to XML!\n");
  std::ostringstream failed;
  failed.setstate(std::ios::failbit);
  EXPECT_EQ(dictionary.writeObjectXML(failed), 8 + 3 + 5 + 7);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
