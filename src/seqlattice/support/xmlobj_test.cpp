#include "seqlattice/support/xmlobj.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {

namespace {

std::uint64_t Bits(double value) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

double FromBits(std::uint64_t bits) {
  double value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

template <typename Number>
std::string ValueText(Number value) {
  std::ostringstream out;
  KvXML_850::XMLObj("X", 1).WriteSubElement(out, value);
  return out.str();
}

// Parses one value of the type from text; on failure returns the sentinel
// and checks that the stream reports the failure.
template <typename Number>
bool Parse(const std::string& text, Number* value) {
  std::istringstream in(text);
  const bool ok = KvXML_850::XMLObj("X", 1).ParseValue(in, value);
  EXPECT_EQ(ok, !in.fail()) << text;
  return ok;
}

template <typename Number>
Number RoundTrip(Number value) {
  Number read{};
  EXPECT_TRUE(Parse(ValueText(value), &read)) << ValueText(value);
  return read;
}

TEST(XMLObjTest, WritesIndentedElementWithOneValuePerLine) {
  std::ostringstream out;
  KvXML_850::XMLObj obj("NTSequence", 4);
  obj.StartObj(out);
  obj.WriteSubElement(out, 5L);
  obj.WriteSubElement(out, -3);
  obj.WriteSubElement(out, 0.1);
  obj.EndObj(out);
  EXPECT_EQ(out.str(),
            "      <NTSequence>\n"
            "        <long>5</long>\n"
            "        <int>-3</int>\n"
            "        <double>0.1</double>\n"
            "      </NTSequence>\n");
}

TEST(XMLObjTest, OutermostDepthIsNotIndented) {
  std::ostringstream out;
  KvXML_850::XMLObj obj("SequenceDictionary", 1);
  obj.StartObj(out);
  obj.WriteSubElement(out, 1);
  obj.EndObj(out);
  EXPECT_EQ(out.str(),
            "<SequenceDictionary>\n  <int>1</int>\n</SequenceDictionary>\n");
}

TEST(XMLObjTest, DepthIsClampedToOneThroughSixtyFour) {
  EXPECT_EQ(KvXML_850::XMLObj("A", 0).GetDepth(), 1);
  EXPECT_EQ(KvXML_850::XMLObj("A", INT_MIN).GetDepth(), 1);
  EXPECT_EQ(KvXML_850::XMLObj("A", 64).GetDepth(), 64);
  EXPECT_EQ(KvXML_850::XMLObj("A", INT_MAX).GetDepth(), 64);
  std::ostringstream out;
  KvXML_850::XMLObj deep("A", 1000);
  deep.StartObj(out);
  deep.WriteSubElement(out, -2.2250738585072014e-308);
  deep.EndObj(out);
  EXPECT_EQ(out.str(), std::string(126, ' ') + "<A>\n" + std::string(128, ' ') +
                           "<double>-2.2250738585072014e-308</double>\n" +
                           std::string(126, ' ') + "</A>\n");
  EXPECT_EQ(KvXML_850::XMLObj("A", -3).GetName(), "A");
}

TEST(XMLObjTest, NumberForms) {
  EXPECT_EQ(ValueText(0), "  <int>0</int>\n");
  EXPECT_EQ(ValueText(INT_MIN), "  <int>-2147483648</int>\n");
  EXPECT_EQ(ValueText(LONG_MIN), "  <long>-9223372036854775808</long>\n");
  EXPECT_EQ(ValueText(LONG_MAX), "  <long>9223372036854775807</long>\n");
  EXPECT_EQ(ValueText(0.1), "  <double>0.1</double>\n");
  EXPECT_EQ(ValueText(3.0), "  <double>3</double>\n");
  EXPECT_EQ(ValueText(-0.0), "  <double>-0</double>\n");
  EXPECT_EQ(ValueText(1e-7), "  <double>1e-07</double>\n");
  EXPECT_EQ(ValueText(1e300), "  <double>1e+300</double>\n");
  EXPECT_EQ(ValueText(0.1 + 0.2), "  <double>0.30000000000000004</double>\n");
  EXPECT_EQ(ValueText(5e-324), "  <double>5e-324</double>\n");
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(ValueText(inf), "  <double>INF</double>\n");
  EXPECT_EQ(ValueText(-inf), "  <double>-INF</double>\n");
  EXPECT_EQ(ValueText(std::numeric_limits<double>::quiet_NaN()),
            "  <double>NaN</double>\n");
  EXPECT_EQ(ValueText(FromBits(0xfff8000000000000ULL)),
            "  <double>NaN(0xfff8000000000000)</double>\n");
  EXPECT_EQ(ValueText(FromBits(0x7ff0000000000001ULL)),
            "  <double>NaN(0x7ff0000000000001)</double>\n");
}

TEST(XMLObjTest, IntegersRoundTrip) {
  for (int value : {0, 1, -1, 42, INT_MIN, INT_MAX, INT_MIN + 1}) {
    EXPECT_EQ(RoundTrip(value), value);
  }
  for (long value : {0L, -1L, LONG_MIN, LONG_MAX, 1L << 40, -(1L << 33)}) {
    EXPECT_EQ(RoundTrip(value), value);
  }
  std::mt19937_64 random(20261122);
  for (int i = 0; i < 10000; ++i) {
    const auto bits = random();
    const long wide = static_cast<long>(bits);
    const int narrow = static_cast<int>(static_cast<std::int32_t>(bits));
    ASSERT_EQ(RoundTrip(wide), wide);
    ASSERT_EQ(RoundTrip(narrow), narrow);
  }
}

TEST(XMLObjTest, DoublesRoundTripBitForBit) {
  const double inf = std::numeric_limits<double>::infinity();
  const std::vector<double> special = {
      0.0,
      -0.0,
      0.1,
      -0.1,
      1.0 / 3,
      1e-7,
      5e-324,
      -5e-324,
      2.2250738585072009e-308,  // largest denormal
      std::numeric_limits<double>::min(),
      std::numeric_limits<double>::max(),
      std::numeric_limits<double>::lowest(),
      inf,
      -inf,
      std::numeric_limits<double>::quiet_NaN(),
      std::numeric_limits<double>::signaling_NaN(),
      FromBits(0xfff8000000000000ULL),
      FromBits(0x7ff0000000000001ULL),
      FromBits(0xffffffffffffffffULL),
  };
  for (double value : special) {
    EXPECT_EQ(Bits(RoundTrip(value)), Bits(value)) << ValueText(value);
  }
  std::mt19937_64 random(850);
  int nans = 0;
  for (int i = 0; i < 100000; ++i) {
    const double value = FromBits(random());
    if (std::isnan(value)) ++nans;
    ASSERT_EQ(Bits(RoundTrip(value)), Bits(value)) << ValueText(value);
  }
  EXPECT_GT(nans, 10);  // random bits hit NaN payloads too
}

TEST(XMLObjTest, NestedObjectsReadBackAtEveryDepth) {
  std::stringstream io;
  KvXML_850::XMLObj dictionary("SequenceDictionary", 1);
  KvXML_850::XMLObj settings("DictionarySettings", 2);
  KvXML_850::XMLObj table("HashtableSQPair", 2);
  KvXML_850::XMLObj pattern("NTSequence", 4);
  KvXML_850::XMLObj counter("SequenceCounter", 4);
  KvXML_850::XMLObj stats("StatsBucket", 5);
  dictionary.StartObj(io);
  dictionary.WriteSubElement(io, 1);
  settings.StartObj(io);
  settings.WriteSubElement(io, 8);
  settings.EndObj(io);
  table.StartObj(io);
  table.WriteSubElement(io, 1);
  pattern.StartObj(io);
  pattern.WriteSubElement(io, 6L);
  pattern.WriteSubElement(io, 7);
  pattern.EndObj(io);
  counter.StartObj(io);
  counter.WriteSubElement(io, 3);
  stats.StartObj(io);
  stats.WriteSubElement(io, 2.5);
  stats.EndObj(io);
  counter.EndObj(io);
  table.EndObj(io);
  dictionary.WriteSubElement(io, 0.25);
  dictionary.EndObj(io);
  EXPECT_EQ(io.str(),
            "<SequenceDictionary>\n"
            "  <int>1</int>\n"
            "  <DictionarySettings>\n"
            "    <int>8</int>\n"
            "  </DictionarySettings>\n"
            "  <HashtableSQPair>\n"
            "    <int>1</int>\n"
            "      <NTSequence>\n"
            "        <long>6</long>\n"
            "        <int>7</int>\n"
            "      </NTSequence>\n"
            "      <SequenceCounter>\n"
            "        <int>3</int>\n"
            "        <StatsBucket>\n"
            "          <double>2.5</double>\n"
            "        </StatsBucket>\n"
            "      </SequenceCounter>\n"
            "  </HashtableSQPair>\n"
            "  <double>0.25</double>\n"
            "</SequenceDictionary>\n");

  int i = 0;
  long l = 0;
  double d = 0;
  EXPECT_TRUE(dictionary.ParseStartObj(io));
  EXPECT_TRUE(dictionary.ParseValue(io, &i));
  EXPECT_EQ(i, 1);
  EXPECT_TRUE(settings.ParseStartObj(io));
  EXPECT_TRUE(settings.ParseValue(io, &i));
  EXPECT_EQ(i, 8);
  EXPECT_TRUE(settings.ParseEndObj(io));
  EXPECT_TRUE(table.ParseStartObj(io));
  EXPECT_TRUE(table.ParseValue(io, &i));
  EXPECT_EQ(i, 1);
  EXPECT_TRUE(pattern.ParseStartObj(io));
  EXPECT_TRUE(pattern.ParseValue(io, &l));
  EXPECT_EQ(l, 6);
  EXPECT_TRUE(pattern.ParseValue(io, &i));
  EXPECT_EQ(i, 7);
  EXPECT_TRUE(pattern.ParseEndObj(io));
  EXPECT_TRUE(counter.ParseStartObj(io));
  EXPECT_TRUE(counter.ParseValue(io, &i));
  EXPECT_EQ(i, 3);
  EXPECT_TRUE(stats.ParseStartObj(io));
  EXPECT_TRUE(stats.ParseValue(io, &d));
  EXPECT_EQ(d, 2.5);
  EXPECT_TRUE(stats.ParseEndObj(io));
  EXPECT_TRUE(counter.ParseEndObj(io));
  EXPECT_TRUE(table.ParseEndObj(io));
  EXPECT_TRUE(dictionary.ParseValue(io, &d));
  EXPECT_EQ(d, 0.25);
  EXPECT_TRUE(dictionary.ParseEndObj(io));
  EXPECT_TRUE(io.good());  // the final line break is left unread
}

TEST(XMLObjTest, ReadsThroughAFileStream) {
  const std::string path =
      testing::TempDir() + std::to_string(getpid()) + "_xmlobj_test.xml";
  KvXML_850::XMLObj obj("StatsBucket", 5);
  {
    std::ofstream out(path);
    obj.StartObj(out);
    obj.WriteSubElement(out, -0.0);
    obj.WriteSubElement(out, LONG_MIN);
    obj.EndObj(out);
  }
  std::ifstream in(path);
  double d = 1;
  long l = 0;
  EXPECT_TRUE(obj.ParseStartObj(in));
  EXPECT_TRUE(obj.ParseValue(in, &d));
  EXPECT_EQ(Bits(d), Bits(-0.0));
  EXPECT_TRUE(obj.ParseValue(in, &l));
  EXPECT_EQ(l, LONG_MIN);
  EXPECT_TRUE(obj.ParseEndObj(in));
  // Nothing but the line break is left: a further element is missing.
  EXPECT_FALSE(obj.ParseEndObj(in));
  EXPECT_TRUE(in.eof());
  std::remove(path.c_str());
}

TEST(XMLObjTest, WhiteSpaceBetweenElementsIsFree) {
  std::istringstream in("\r\n\t<A>  <int>1</int>\r\n<double>2</double></A>");
  KvXML_850::XMLObj obj("A", 3);
  int i = 0;
  double d = 0;
  EXPECT_TRUE(obj.ParseStartObj(in));
  EXPECT_TRUE(obj.ParseValue(in, &i));
  EXPECT_TRUE(obj.ParseValue(in, &d));
  EXPECT_TRUE(obj.ParseEndObj(in));
  EXPECT_EQ(i, 1);
  EXPECT_EQ(d, 2.0);
}

TEST(XMLObjTest, HandWrittenNumberFormsOfTheRightTypeAreRead) {
  int i = 0;
  double d = 0;
  EXPECT_TRUE(Parse("<int>007</int>", &i));
  EXPECT_EQ(i, 7);
  EXPECT_TRUE(Parse("<int>-0</int>", &i));
  EXPECT_EQ(i, 0);
  EXPECT_TRUE(Parse("<double>1e5</double>", &d));
  EXPECT_EQ(d, 100000.0);
  EXPECT_TRUE(Parse("<double>0.10</double>", &d));
  EXPECT_EQ(d, 0.1);
  EXPECT_TRUE(Parse("<double>-1.5E-3</double>", &d));
  EXPECT_EQ(d, -0.0015);
}

TEST(XMLObjTest, StartAndEndTagsMustMatchTheName) {
  const KvXML_850::XMLObj obj("NTSequence", 4);
  const std::vector<std::string> badStarts = {
      "",
      "   \n",
      "<NTSeq>",
      "<NTSequenceX>",
      "<ntsequence>",
      "NTSequence>",
      "< NTSequence>",
      "<NTSequence",
      "<NTSequence >",
      "</NTSequence>",
      "<PackedSequence>",
      "<int>1</int>",
  };
  for (const auto& text : badStarts) {
    std::istringstream in(text);
    EXPECT_FALSE(obj.ParseStartObj(in)) << text;
    EXPECT_TRUE(in.fail()) << text;
  }
  const std::vector<std::string> badEnds = {
      "",
      "<NTSequence>",
      "</NTSeq>",
      "</NTSequenceX>",
      "</NTSequence",
      "<int>1</int></NTSequence>",
  };
  for (const auto& text : badEnds) {
    std::istringstream in(text);
    EXPECT_FALSE(obj.ParseEndObj(in)) << text;
    EXPECT_TRUE(in.fail()) << text;
  }
}

TEST(XMLObjTest, ValueOfAnotherTypeIsRejected) {
  int i = 11;
  long l = 12;
  double d = 13;
  EXPECT_FALSE(Parse(ValueText(1L), &i));
  EXPECT_FALSE(Parse(ValueText(1.0), &i));
  EXPECT_FALSE(Parse(ValueText(1), &l));
  EXPECT_FALSE(Parse(ValueText(1.0), &l));
  EXPECT_FALSE(Parse(ValueText(1), &d));
  EXPECT_FALSE(Parse(ValueText(1L), &d));
  EXPECT_FALSE(Parse("<int>1.5</int>", &i));
  EXPECT_FALSE(Parse("<long>1e3</long>", &l));
  EXPECT_FALSE(Parse("<int>INF</int>", &i));
  EXPECT_FALSE(Parse("<double>1</int>", &d));
  EXPECT_EQ(i, 11);  // outputs are untouched by a failure
  EXPECT_EQ(l, 12);
  EXPECT_EQ(d, 13);
}

TEST(XMLObjTest, OutOfRangeNumbersAreRejected) {
  int i = 11;
  long l = 12;
  double d = 13;
  EXPECT_FALSE(Parse("<int>2147483648</int>", &i));
  EXPECT_FALSE(Parse("<int>-2147483649</int>", &i));
  EXPECT_FALSE(Parse("<long>9223372036854775808</long>", &l));
  EXPECT_FALSE(Parse("<long>-9223372036854775809</long>", &l));
  EXPECT_FALSE(Parse("<double>1e400</double>", &d));
  EXPECT_FALSE(Parse("<double>-1e400</double>", &d));
  EXPECT_EQ(i, 11);
  EXPECT_EQ(l, 12);
  EXPECT_EQ(d, 13);
}

TEST(XMLObjTest, GarbageAndForeignNumberFormsAreRejected) {
  const std::vector<std::string> badInts = {
      "<int></int>",      "<int>abc</int>",  "<int>+1</int>", "<int> 1</int>",
      "<int>1 </int>",    "<int>0x10</int>", "<int>1-</int>", "<int>-</int>",
      "<int>1,000</int>", "<INT>1</INT>",    "<int>1</INT>",  "<int>1<int>",
      "int>1</int>",      "<int>1</int",
  };
  for (const auto& text : badInts) {
    int i = 11;
    EXPECT_FALSE(Parse(text, &i)) << text;
    EXPECT_EQ(i, 11) << text;
  }
  const std::vector<std::string> badDoubles = {
      "<double></double>",
      "<double>inf</double>",
      "<double>-inf</double>",
      "<double>nan</double>",
      "<double>Infinity</double>",
      "<double>NAN</double>",
      "<double>.5</double>",
      "<double>-.5</double>",
      "<double>+1</double>",
      "<double>0x1p3</double>",
      "<double>1e</double>",
      "<double>--1</double>",
      "<double>NaN()</double>",
      "<double>NaN(0x7ff8)</double>",
      // a full payload form whose bits are not a NaN
      "<double>NaN(0x3ff0000000000000)</double>",
      "<double>NaN(0x7ff8zz0000000000)</double>",
      "<double>NaN(0x7ff80000000000001)</double>",
      "<double>NaN[0x7ff8000000000001]</double>",
      "<double>-NaN</double>",
  };
  for (const auto& text : badDoubles) {
    double d = 13;
    EXPECT_FALSE(Parse(text, &d)) << text;
    EXPECT_EQ(d, 13) << text;
  }
}

TEST(XMLObjTest, TruncatedValuesAreRejectedAtEveryLength) {
  const std::string whole = ValueText(-2.2250738585072014e-308);
  for (std::size_t n = 0; n < whole.size() - 1; ++n) {  // keep "</double>"
    double d = 13;
    std::istringstream in(whole.substr(0, n));
    EXPECT_FALSE(KvXML_850::XMLObj("X", 1).ParseValue(in, &d)) << n;
    EXPECT_TRUE(in.fail()) << n;
    EXPECT_EQ(d, 13) << n;
  }
}

TEST(XMLObjTest, OverlongValueTextIsRejectedWithoutReadingItAll) {
  std::istringstream in("<int>" + std::string(10000, '0') + "1</int>");
  int i = 11;
  EXPECT_FALSE(KvXML_850::XMLObj("X", 1).ParseValue(in, &i));
  EXPECT_EQ(i, 11);
  EXPECT_LT(in.rdbuf()->in_avail(), 10000);  // stopped early...
  EXPECT_GT(in.rdbuf()->in_avail(), 9000);   // ...after a few dozen
}

TEST(XMLObjTest, AFailureFailsTheStreamForLaterParses) {
  std::istringstream in("<int>x</int><int>1</int>");
  const KvXML_850::XMLObj obj("X", 1);
  int i = 11;
  EXPECT_FALSE(obj.ParseValue(in, &i));
  EXPECT_FALSE(obj.ParseValue(in, &i));
  EXPECT_EQ(i, 11);
  in.clear();  // a caller that clears the state reads on from where it was
  EXPECT_TRUE(obj.ParseValue(in, &i));
  EXPECT_EQ(i, 1);
}

TEST(XMLObjTest, StreamsThatCannotBeReadAreRejected) {
  const KvXML_850::XMLObj obj("X", 1);
  int i = 11;
  std::istringstream failed("<X><int>1</int>");
  failed.setstate(std::ios_base::failbit);
  EXPECT_FALSE(obj.ParseStartObj(failed));
  EXPECT_FALSE(obj.ParseValue(failed, &i));
  std::istream noBuffer(nullptr);
  EXPECT_FALSE(obj.ParseStartObj(noBuffer));
  EXPECT_FALSE(obj.ParseValue(noBuffer, &i));
  EXPECT_FALSE(obj.ParseEndObj(noBuffer));
  std::istringstream good("<int>1</int>");
  EXPECT_FALSE(obj.ParseValue(good, static_cast<int*>(nullptr)));
  EXPECT_EQ(i, 11);
}

TEST(XMLObjTest, WritersLeaveErrorsToTheStreamState) {
  std::ostringstream out;
  out.setstate(std::ios_base::badbit);
  KvXML_850::XMLObj obj("X", 1);
  obj.StartObj(out);
  obj.WriteSubElement(out, 1);
  obj.EndObj(out);
  EXPECT_TRUE(out.bad());
  EXPECT_EQ(out.str(), "");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
