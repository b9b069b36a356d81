// End-to-end tests of mining under time constraints: the options and their
// errors, the gap statistics that "rules" and "info" show, the round trip of
// a constrained model through both object formats, and models mined without
// constraints staying byte for byte as they were.
#include <fstream>
#include <sstream>
#include <string>

#include "cli_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Three customers buy a then b: 4, 50 and 2 days later.
constexpr char kDatedOrders[] =
    "customer,time,item\n"
    "c1,2024-01-01,a\n"
    "c1,2024-01-05,b\n"
    "c2,2024-01-01,a\n"
    "c2,2024-02-20,b\n"
    "c3,2024-01-01,a\n"
    "c3,2024-01-03,b\n";

class CliTimeTest : public test::CliTest {
 protected:
  void SetUp() override {
    test::CliTest::SetUp();
    writeFile("dated.csv", kDatedOrders);
    writeFile("orders.csv", test::kOrders);
  }
  void expectUsage(const std::vector<std::string>& args,
                   const std::string& message) {
    test::CliRun result = run(args);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "seqlattice: " + message +
                              "\nRun with --help for more information.\n");
    EXPECT_EQ(listWork(),
              (std::vector<std::string>{"dated.csv", "orders.csv"}));
  }
  std::string output(const std::vector<std::string>& args) {
    test::CliRun result = run(args);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    return result.out;
  }
};

TEST_F(CliTimeTest, DurationErrors) {
  expectUsage({"mine", "dated.csv", "-o", "m", "--max-gap", "3x"},
              "--max-gap 3x: unknown unit 'x'");
  expectUsage({"mine", "dated.csv", "-o", "m", "--window", "3"},
              "--window 3: the log's times are dates: give a unit (s, m, h, "
              "d or w), such as 30d");
  expectUsage({"mine", "orders.csv", "-o", "m", "--min-gap", "2d"},
              "--min-gap 2d: the log's times are plain numbers, not dates: "
              "give a plain number");
  expectUsage({"mine", "orders.csv", "-o", "m", "--max-span", "0"},
              "--max-span 0: expected a duration above 0");
  expectUsage({"mine", "orders.csv", "-o", "m", "--max-gap", "-1"},
              "--max-gap -1: expected a duration of 0 or more");
  expectUsage({"mine", "orders.csv", "-o", "m", "--max-gap", "soon"},
              "--max-gap soon: expected a duration such as 30d, 12h or 90m "
              "(or a number for a log of plain times)");
}

TEST_F(CliTimeTest, RulesShowTheTimeToTheConsequentInDays) {
  output({"mine", "dated.csv", "-o", "all.model", "--min-support", "2",
          "--gap-stats"});
  EXPECT_EQ(output({"rules", "all.model", "--format", "csv"}),
            "rank,antecedent,consequent,support,confidence,cause,lift,"
            "leverage,conviction,mean gap,min gap,max gap\n"
            "1,(a),(b),1.0,1.0,1.0,1.0,0.0,inf,18.666666666666668,2.0,50.0\n");
  // Within 30 days: the customer of 50 days no longer counts.
  output({"mine", "dated.csv", "-o", "month.model", "--min-support", "2",
          "--max-gap", "30d"});
  EXPECT_EQ(output({"rules", "month.model"}),
            "rank  antecedent  consequent  support  confidence  cause   lift "
            "   leverage  conviction  mean gap  min gap  max gap\n"
            "   1  (a)         (b)          0.6667      0.6667  0.6667  "
            "0.6667   -0.3333      0.0000    3.0000   2.0000   4.0000\n");
  EXPECT_EQ(output({"rules", "month.model", "--format", "json"}),
            "[\n  {\n    \"rank\": 1,\n    \"antecedent\": [\n      [\n"
            "        \"a\"\n      ]\n    ],\n    \"consequent\": [\n      [\n"
            "        \"b\"\n      ]\n    ],\n    \"support\": "
            "0.6666666666666666,\n    \"confidence\": 0.6666666666666666,\n"
            "    \"cause\": 0.6666666666666666,\n    \"lift\": "
            "0.6666666666666666,\n    \"leverage\": -0.33333333333333337,\n"
            "    \"conviction\": 0.0,\n    \"mean gap\": 3.0,\n"
            "    \"min gap\": 2.0,\n    \"max gap\": 4.0\n  }\n]\n");
}

TEST_F(CliTimeTest, InfoShowsTheLimitsAndTheGapStatistics) {
  output({"mine", "orders.csv", "-o", "o.model", "--min-support", "1",
          "--max-gap", "2", "--min-gap", "1", "--window", "0.5", "--max-span",
          "7"});
  std::string info = output({"info", "o.model"});
  EXPECT_NE(info.find("sliding window             0.5000\n"
                      "min gap                    1.0000\n"
                      "max gap                    2.0000\n"
                      "max span                   7.0000\n"
                      "times                      numbers\n"
                      "gap statistics             yes\n"),
            std::string::npos)
      << info;
  output({"mine", "orders.csv", "-o", "plain.model", "--min-support", "1"});
  EXPECT_NE(
      output({"info", "plain.model"}).find("gap statistics             no"),
      std::string::npos);
}

TEST_F(CliTimeTest, ConstrainedModelSurvivesBothObjectFormats) {
  output({"mine", "dated.csv", "-o", "b.model", "--min-support", "1",
          "--max-gap", "30d", "--max-span", "2w", "--window", "1h"});
  output({"convert", "b.model", "x.model"});
  output({"convert", "x.model", "back.model"});
  EXPECT_EQ(readFile("back.model"), readFile("b.model"));
  const std::string rules = output({"rules", "b.model", "--format", "csv"});
  EXPECT_EQ(output({"rules", "x.model", "--format", "csv"}), rules);
  EXPECT_EQ(rules,
            "rank,antecedent,consequent,support,confidence,cause,lift,"
            "leverage,conviction,mean gap,min gap,max gap\n"
            "1,(a),(b),0.6666666666666666,0.6666666666666666,"
            "0.6666666666666666,0.6666666666666666,-0.33333333333333337,0.0,"
            "3.0,2.0,4.0\n");
  std::string info = output({"info", "x.model"});
  EXPECT_NE(info.find("sliding window             3600.0000\n"
                      "min gap                    0.0000\n"
                      "max gap                    2592000.0000\n"
                      "max span                   1209600.0000\n"
                      "times                      dates (limits in seconds)\n"
                      "gap statistics             yes\n"),
            std::string::npos)
      << info;
}

// A model file of tests/data/unconstrained, written by the release before the
// time constraints existed.
std::string goldenModel(const std::string& name) {
  std::ifstream in(
      std::string(SEQLATTICE_SOURCE_DIR) + "/tests/data/unconstrained/" + name,
      std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

TEST_F(CliTimeTest, ModelsWithoutConstraintsKeepTheirBytes) {
  std::ifstream small(
      std::string(SEQLATTICE_SOURCE_DIR) + "/tests/data/mining/small.txt",
      std::ios::binary);
  std::ostringstream spmf;
  spmf << small.rdbuf();
  writeFile("small.txt", spmf.str());
  output({"mine", "orders.csv", "-o", "orders.model", "--min-support", "1"});
  output({"mine", "orders.csv", "-o", "orders.xml", "--xml", "--min-support",
          "1"});
  output({"mine", "small.txt", "--format", "spmf", "-o", "small.model",
          "--min-support", "2"});
  for (const char* name : {"orders.model", "orders.xml", "small.model"}) {
    const std::string golden = goldenModel(name);
    ASSERT_FALSE(golden.empty()) << name;
    EXPECT_TRUE(readFile(name) == golden) << name << " changed";
  }
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
