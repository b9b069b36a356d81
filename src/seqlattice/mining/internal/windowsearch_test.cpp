// The bitmap search under a window: when it applies, and that it finds what
// the general search does (the general one is checked against a brute-force
// reading of the definitions), pattern for pattern and in the same order,
// on customers of up to 64 transactions and just past that.
#include "seqlattice/mining/internal/windowsearch.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "seqlattice/mining/internal/timeddatabase.h"
#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/mining_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// Every record the miner passes on, in order, one line each.
class RecordingSink : public mining::PatternSink, public mining::GapSink {
 public:
  void addGaps(long n, double sum, double min, double max) override {
    std::ostringstream os;
    os.precision(17);
    os << " gaps " << n << " " << sum << " " << min << " " << max;
    gaps_ = os.str();
  }
  void addPattern(int** sets, int nSets, long count,
                  long firstCustomer) override {
    std::ostringstream os;
    for (int k = 0; k < nSets; ++k) {
      os << "(";
      for (int i = 1; i <= sets[k][0]; ++i) os << " " << sets[k][i];
      os << " )";
    }
    os << " count " << count << " first " << firstCustomer << gaps_;
    gaps_.clear();
    lines.push_back(os.str());
  }
  std::vector<std::string> lines;

 private:
  std::string gaps_;
};

std::vector<std::string> mineLines(const std::vector<TimedCustomer>& db,
                                   const mining::MinerOptions& options) {
  RecordingSink sink;
  mining::SequenceMiner(options).mine(makeTimedDatabase(db), sink, &sink);
  return sink.lines;
}

// One customer of n transactions at times 0, 1, ..., each holding item 1.
std::vector<TimedCustomer> oneCustomer(int n) {
  TimedCustomer c;
  for (int t = 0; t < n; ++t) c.push_back(Timed{static_cast<double>(t), {1}});
  return {c};
}

bool applies(const std::vector<TimedCustomer>& customers,
             const mining::TimeConstraints& time) {
  const mining::internal::TimedDatabase db =
      mining::internal::buildTimedDatabase(makeTimedDatabase(customers), 1);
  return mining::internal::windowSearchApplies(db, time);
}

}  // namespace test

TEST(WindowSearchTest, AppliesToAWindowAloneUpTo64Transactions) {
  mining::TimeConstraints window;
  window.window = 1;
  EXPECT_TRUE(test::applies(test::oneCustomer(64), window));
  EXPECT_FALSE(test::applies(test::oneCustomer(65), window));
  mining::TimeConstraints none;
  EXPECT_FALSE(test::applies(test::oneCustomer(3), none));
  for (int limit = 0; limit < 3; ++limit) {
    mining::TimeConstraints t = window;
    if (limit == 0) t.minGap = 1;
    if (limit == 1) t.maxGap = 5;
    if (limit == 2) t.maxSpan = 5;
    EXPECT_FALSE(test::applies(test::oneCustomer(3), t)) << limit;
  }
}

// Item 3 in the first 62 transactions, item 1 in the 63rd, item 2 in the
// 64th, one time unit apart: positions 61 to 63 end a word.
TEST(WindowSearchTest, FindsSetsAtTheLastPositions) {
  test::TimedCustomer c;
  for (int t = 0; t < 64; ++t) {
    c.push_back(test::Timed{static_cast<double>(t), {t < 62 ? 3 : t - 61}});
  }
  mining::MinerOptions options;
  options.maxItems = 2;
  options.gapStatistics = true;
  options.time.window = 1;
  std::vector<std::string> lines = {"( 1 ) count 1 first 0",
                                    "( 1 2 ) count 1 first 0",
                                    "( 1 3 ) count 1 first 0",
                                    "( 1 )( 2 ) count 1 first 0 gaps 1 1 1 1",
                                    "( 2 ) count 1 first 0",
                                    "( 3 ) count 1 first 0",
                                    "( 3 )( 1 ) count 1 first 0 gaps 1 1 1 1",
                                    "( 3 )( 2 ) count 1 first 0 gaps 1 2 2 2",
                                    "( 3 )( 3 ) count 1 first 0 gaps 1 1 1 1"};
  EXPECT_EQ(test::mineLines({c}, options), lines);
  // A window just short of the step: each set stays in one transaction, and
  // the two sets joining neighbours go.
  options.time.window = 0.5;
  lines.erase(lines.begin() + 1, lines.begin() + 3);
  EXPECT_EQ(test::mineLines({c}, options), lines);
}

// Random databases with customers of up to 65 transactions at uneven times,
// under windows that land on the differences of the times exactly: the
// bitmap search (a window alone) against the general one (the same window
// with a maximum span no occurrence reaches, which it alone handles).
TEST(WindowSearchTest, AgreesWithTheGeneralSearch) {
  std::mt19937 random(20261125);
  const int kAlphabet = 5;
  long records = 0;
  for (int d = 0; d < 60; ++d) {
    std::vector<test::TimedCustomer> customers(2 + random() % 5);
    const int longest = d % 3 == 0 ? 65 : d % 3 == 1 ? 64 : 12;
    for (std::size_t k = 0; k < customers.size(); ++k) {
      const int n = k == 0 ? longest : 1 + static_cast<int>(random() % longest);
      double time = 0.25 * static_cast<double>(random() % 4);
      for (int t = 0; t < n; ++t) {
        test::Timed s{time, {}};
        for (int x = 1; x <= kAlphabet; ++x) {
          if (random() % 4 == 0) s.items.push_back(x);
        }
        if (s.items.empty()) s.items.push_back(1 + random() % kAlphabet);
        customers[k].push_back(s);
        time += 0.25 * static_cast<double>(1 + random() % 7);
      }
    }
    mining::MinerOptions options;
    options.maxItems = 2 + static_cast<int>(random() % 3);
    options.threads = 1 + d % 2;
    options.gapStatistics = d % 4 != 3;
    options.minSupport =
        mining::MinSupport::count(1 + static_cast<long>(random() % 2));
    options.time.window = 0.25 * static_cast<double>(1 + random() % 8);
    const std::vector<std::string> bitmaps =
        test::mineLines(customers, options);
    options.time.maxSpan = 1e300;
    const std::vector<std::string> general =
        test::mineLines(customers, options);
    ASSERT_EQ(bitmaps, general)
        << "database " << d << " window " << options.time.window;
    records += static_cast<long>(general.size());
  }
  EXPECT_GT(records, 10000);
}

}  // namespace SEQUENCE_NAMESPACE_800
