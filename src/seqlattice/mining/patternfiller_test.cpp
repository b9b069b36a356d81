#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/mining_test_util.h"
#include "seqlattice/mining/miningerror.h"
#include "seqlattice/mining/patternorder.h"
#include "seqlattice/mining/patternrecords.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace {

// The saved binary record and XML element of dictionary.
std::string savedBytes(const SequenceDictionary& dictionary) {
  std::string path =
      testing::TempDir() + std::to_string(getpid()) + "_patternfiller_test.bin";
  {
    std::fstream out(path, std::ios::out | std::ios::binary | std::ios::trunc);
    dictionary.writeObject(out);
  }
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  std::ostringstream xml;
  dictionary.writeObjectXML(xml);
  return bytes.str() + xml.str();
}

std::vector<test::Customer> drawCustomers(unsigned seed) {
  std::mt19937 random(seed);
  auto draw = [&random](int lo, int hi) {
    return std::uniform_int_distribution<int>(lo, hi)(random);
  };
  std::vector<test::Customer> customers(static_cast<std::size_t>(draw(20, 80)));
  for (test::Customer& customer : customers) {
    for (int t = draw(1, 7); t > 0; --t) {
      std::set<int> set;
      for (int k = draw(1, 3); k > 0; --k) set.insert(draw(0, 9) * 3 - 5);
      customer.emplace_back(set.begin(), set.end());
    }
  }
  return customers;
}

// The records of records' patterns reversed, so that nothing of the
// miner's order is left to the builder.
std::vector<int> reversedRecords(const std::vector<int>& records) {
  std::vector<std::size_t> starts = recordStarts(records);
  std::vector<int> reversed;
  for (std::size_t k = starts.size(); k-- > 0;) {
    std::size_t end = k + 1 < starts.size() ? starts[k + 1] : records.size();
    reversed.insert(reversed.end(), records.begin() + starts[k],
                    records.begin() + end);
  }
  return reversed;
}

// A dictionary built from the miner's own patterns and counts, handed over
// in reverse, is saved to the same bytes as the mined one.
TEST(PatternFillerTest, BuildsTheMinedDictionaryByteForByte) {
  long patterns = 0;
  for (unsigned seed = 1; seed <= 40; ++seed) {
    SequenceDatabase db = test::makeDatabase(drawCustomers(seed));
    MinerOptions options;
    options.minSupport = MinSupport::count(1 + seed % 4);
    options.maxItems = 4;
    options.threads = 1 + seed % 2;
    SequenceDictionary mined(5);
    MiningSummary minedSummary = mineIntoDictionary(db, options, mined);
    PatternRecords records;
    SequenceMiner(options).mine(db, records);
    SequenceDictionary built(5);
    MiningSummary builtSummary =
        fillFromRecords(reversedRecords(records.records()),
                        static_cast<long>(db.customerCount()), 4, built);
    // Compared whole rather than with ASSERT_EQ: on a mismatch the test's
    // line-by-line diff of two large documents would take gigabytes.
    ASSERT_TRUE(savedBytes(built) == savedBytes(mined)) << "seed " << seed;
    EXPECT_EQ(builtSummary.patterns, minedSummary.patterns);
    EXPECT_EQ(builtSummary.patternsPerSize, minedSummary.patternsPerSize);
    EXPECT_EQ(builtSummary.customers, static_cast<long>(db.customerCount()));
    patterns += builtSummary.patterns;
  }
  EXPECT_GT(patterns, 5000);
}

TEST(PatternFillerTest, OrdersAsTheMinerReports) {
  SequenceDatabase db = test::makeDatabase(
      {{{1, 2}, {3}}, {{1}, {3}}, {{2}}, {{1, 2}, {3}, {1}}});
  MinerOptions options;
  options.minSupport = MinSupport::count(1);
  options.maxItems = 3;
  PatternRecords records;
  SequenceMiner(options).mine(db, records);
  const std::vector<int>& mined = records.records();
  std::vector<int> reversed = reversedRecords(mined);
  std::vector<std::string> expected, ordered;
  for (std::size_t at : recordStarts(mined)) {
    expected.push_back(recordText(mined, at));
  }
  for (std::size_t at : minerReportOrder(reversed)) {
    ordered.push_back(recordText(reversed, at));
  }
  EXPECT_EQ(ordered, expected);
  EXPECT_EQ(expected.front(), "<1>");
  EXPECT_EQ(expected[3], "<1, 1>");
}

TEST(PatternFillerTest, RefusesPatternsThatAreNotClosed) {
  SequenceDictionary dictionary(4);
  // <1>, <2>, <1, 2>, <2, 1> and <2, 1, 2>, which lacks <2, 2>.
  std::vector<int> records{5, 0, 1, 1, 1,        //
                           5, 0, 1, 1, 2,        //
                           4, 0, 2, 1, 1, 1, 2,  //
                           4, 0, 2, 1, 2, 1, 1,  //
                           3, 0, 3, 1, 2, 1, 1, 1, 2};
  try {
    fillFromRecords(records, 10, 3, dictionary);
    FAIL() << "no error";
  } catch (const MiningError& e) {
    EXPECT_EQ(std::string(e.what()),
              "pattern <2, 1, 2> is given without its sub-pattern <2, 2>");
  }
  SequenceDictionary other(4);
  std::vector<int> noPrefix{5, 0, 1, 1, 2, 4, 0, 2, 1, 1, 1, 2};
  try {
    fillFromRecords(noPrefix, 10, 3, other);
    FAIL() << "no error";
  } catch (const MiningError& e) {
    EXPECT_EQ(std::string(e.what()),
              "pattern <1, 2> is given without its prefix, which every "
              "pattern it is frequent with holds");
  }
  SequenceDictionary twice(4);
  EXPECT_THROW(fillFromRecords({5, 0, 1, 1, 1, 6, 0, 1, 1, 1}, 10, 3, twice),
               MiningError);
  SequenceDictionary small(4);
  EXPECT_THROW(fillFromRecords({5, 0, 1, 1, 1}, 10, 4, small), MiningError);
}

}  // namespace
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
