// End-to-end tests of the commands that read a model: rules, predict,
// patterns, info, export dot and convert, on a model mined by the test.
#include <string>

#include "cli_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

class CliQueryTest : public test::CliTest {
 protected:
  // Mines the model "shop.model" at a minimum count of 2 from five customers
  // with labelled products.
  void SetUp() override {
    test::CliTest::SetUp();
    writeFile("shop.csv",
              "customer,time,item\n"
              "ann,2024-01-01,pot\n"
              "ann,2024-01-01,tea\n"
              "ann,2024-02-01,cups\n"
              "bob,2024-01-05,pot\n"
              "bob,2024-03-01,cups\n"
              "cid,2024-01-02,tea\n"
              "cid,2024-01-09,pot\n"
              "dan,2024-01-02,\"jam, red\"\n"
              "dan,2024-01-04,\"jam, red\"\n"
              "eve,2024-01-03,\"jam, red\"\n"
              "eve,2024-01-06,\"jam, red\"\n");
    test::CliRun mined =
        run({"mine", "shop.csv", "-o", "shop.model", "--min-support", "2"});
    ASSERT_EQ(mined.exitCode, 0) << mined.err;
  }

  // A successful run's standard output; nothing on standard error.
  std::string output(const std::vector<std::string>& args) {
    test::CliRun result = run(args);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.err, "");
    return result.out;
  }
};

// The measures worked by hand: N = 5; jam by 2 customers, both buying it
// again; pot by 3, cups by 2, both after a pot. (jam) => (jam): support 2/5,
// confidence 1, cause 1, lift 1 / (2/5) = 2.5, leverage 0.4 - 0.4 * 0.4 =
// 0.24, conviction infinite. (pot) => (cups): support 0.4, confidence 2/3,
// cause 1, lift (2/3) / 0.4 = 5/3, leverage 0.4 - 0.6 * 0.4 = 0.16,
// conviction (1 - 0.4) / (1 - 2/3) = 1.8.
TEST_F(CliQueryTest, Rules) {
  EXPECT_EQ(output({"rules", "shop.model"}),
            "rank  antecedent  consequent  support  confidence  cause   "
            "lift    leverage  conviction\n"
            "   1  (jam, red)  (jam, red)   0.4000      1.0000  1.0000  "
            "2.5000    0.2400         inf\n"
            "   2  (pot)       (cups)       0.4000      0.6667  1.0000  "
            "1.6667    0.1600      1.8000\n");
}

TEST_F(CliQueryTest, RulesSortedFilteredAndCut) {
  EXPECT_EQ(output({"rules", "shop.model", "--max-confidence", "0.9"}),
            "rank  antecedent  consequent  support  confidence  cause   "
            "lift    leverage  conviction\n"
            "   1  (pot)       (cups)       0.4000      0.6667  1.0000  "
            "1.6667    0.1600      1.8000\n");
  EXPECT_EQ(output({"rules", "shop.model", "--sort", "cause", "--top", "1",
                    "--format", "csv"}),
            std::string(test::kRulesCsvHeader) +
                "1,\"(jam, red)\",\"(jam, red)\",0.4,1.0,1.0,2.5,0.24,inf\n");
}

TEST_F(CliQueryTest, RulesByTheToolsMeasures) {
  const std::string header = test::kRulesCsvHeader;
  const std::string potCups =
      "(pot),(cups),0.4,0.6666666666666666,1.0,1.6666666666666665,"
      "0.16000000000000003,1.7999999999999998\n";
  const std::string jamJam =
      "\"(jam, red)\",\"(jam, red)\",0.4,1.0,1.0,2.5,"
      "0.24,inf\n";
  EXPECT_EQ(
      output({"rules", "shop.model", "--sort", "lift", "--format", "csv"}),
      header + "1," + jamJam + "2," + potCups);
  EXPECT_EQ(
      output({"rules", "shop.model", "--min-lift", "2", "--format", "csv"}),
      header + "1," + jamJam);
  EXPECT_EQ(output({"rules", "shop.model", "--consequent", "cups", "--format",
                    "csv"}),
            header + "1," + potCups);
  EXPECT_EQ(output({"rules", "shop.model", "--antecedent-has", "pot",
                    "--format", "csv"}),
            header + "1," + potCups);
  EXPECT_EQ(output({"rules", "shop.model", "--antecedent-has", "pot,tea",
                    "--format", "csv"}),
            header);
}

TEST_F(CliQueryTest, RulesFilterOnAnUnknownItemMatchesNothing) {
  test::CliRun result =
      run({"rules", "shop.model", "--consequent", "milk", "--format", "csv"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, test::kRulesCsvHeader);
  EXPECT_EQ(result.err,
            "seqlattice: rules: item \"milk\" is not in the model\n");
}

TEST_F(CliQueryTest, RulesAsJson) {
  EXPECT_EQ(output({"rules", "shop.model", "--top", "1", "--format", "json"}),
            "[\n"
            "  {\n"
            "    \"rank\": 1,\n"
            "    \"antecedent\": [\n"
            "      [\n"
            "        \"jam, red\"\n"
            "      ]\n"
            "    ],\n"
            "    \"consequent\": [\n"
            "      [\n"
            "        \"jam, red\"\n"
            "      ]\n"
            "    ],\n"
            "    \"support\": 0.4,\n"
            "    \"confidence\": 1.0,\n"
            "    \"cause\": 1.0,\n"
            "    \"lift\": 2.5,\n"
            "    \"leverage\": 0.24,\n"
            "    \"conviction\": null\n"
            "  }\n"
            "]\n");
}

TEST_F(CliQueryTest, PredictTheNextOrder) {
  EXPECT_EQ(output({"predict", "shop.model", "--history", "pot"}),
            "rank  item  confidence  support  cause\n"
            "   1  cups      0.6667   0.4000  1.0000\n");
}

TEST_F(CliQueryTest, PredictTheCurrentOrder) {
  EXPECT_EQ(
      output({"predict", "shop.model", "--history", "cups;pot", "--current"}),
      "rank  item  confidence  support  cause\n");
}

TEST_F(CliQueryTest, PredictForANewCustomerGivesTheMostFrequentItems) {
  // Equal shares put the larger item code first: tea (3) before jam (1).
  EXPECT_EQ(output({"predict", "shop.model", "--history", "", "--top", "2",
                    "--format", "csv"}),
            "rank,item,confidence,support,cause\n"
            "1,pot,0.6,0.6,1.0\n"
            "2,tea,0.4,0.4,1.0\n");
}

TEST_F(CliQueryTest, PredictFromAnOrderOfUnknownItemsLooksFurtherBack) {
  // The last order matches nothing; the order before it predicts.
  test::CliRun result = run({"predict", "shop.model", "--history", "pot;soap"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err,
            "seqlattice: predict: item \"soap\" is not in the model\n");
  EXPECT_EQ(result.out,
            "rank  item  confidence  support  cause\n"
            "   1  cups      0.6667   0.4000  1.0000\n");
}

TEST_F(CliQueryTest, PredictFromTheLastOrderOnly) {
  test::CliRun result = run(
      {"predict", "shop.model", "--history", "pot;soap", "--last-set-only"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "rank  item  confidence  support  cause\n");
}

TEST_F(CliQueryTest, PredictForEveryCustomerOfAFile) {
  writeFile("recent.csv",
            "customer,time,item\n"
            "zoe,5,pot\n"
            "yan,1,\"jam, red\"\n"
            "yan,2,soap\n");
  EXPECT_EQ(output({"predict", "shop.model", "--input", "recent.csv",
                    "--format", "csv"}),
            "customer,rank,item,confidence,support,cause\n"
            "zoe,1,cups,0.6666666666666666,0.4,1.0\n"
            "yan,1,\"jam, red\",1.0,0.4,1.0\n");
}

TEST_F(CliQueryTest, PredictBatchReportsBadRows) {
  writeFile("recent.csv", "customer,time,item\nzoe,5\n");
  test::CliRun result = run({"predict", "shop.model", "--input", "recent.csv"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "seqlattice: recent.csv:2: expected 3 columns, found 2\n");
}

TEST_F(CliQueryTest, AllPatternsMostFrequentFirst) {
  EXPECT_EQ(output({"patterns", "shop.model"}),
            "pattern                items  count  support\n"
            "(pot)                      1      3   0.6000\n"
            "(cups)                     1      2   0.4000\n"
            "(jam, red)                 1      2   0.4000\n"
            "(tea)                      1      2   0.4000\n"
            "(jam, red) (jam, red)      2      2   0.4000\n"
            "(pot) (cups)               2      2   0.4000\n");
}

TEST_F(CliQueryTest, PatternQueries) {
  EXPECT_EQ(output({"patterns", "shop.model", "--contains", "cups"}),
            "pattern       items  count  support\n"
            "(cups)            1      2   0.4000\n"
            "(pot) (cups)      2      2   0.4000\n");
  EXPECT_EQ(output({"patterns", "shop.model", "--beginning", "cups"}),
            "pattern  items  count  support\n"
            "(cups)       1      2   0.4000\n");
  EXPECT_EQ(
      output({"patterns", "shop.model", "--ending", "cups", "--size", "2"}),
      "pattern       items  count  support\n"
      "(pot) (cups)      2      2   0.4000\n");
  EXPECT_EQ(output({"patterns", "shop.model", "--maximal", "--min-count", "3"}),
            "pattern  items  count  support\n");
  EXPECT_EQ(output({"patterns", "shop.model", "--maximal", "--format", "csv"}),
            "pattern,items,count,support\n"
            "(tea),1,2,0.4\n"
            "\"(jam, red) (jam, red)\",2,2,0.4\n"
            "(pot) (cups),2,2,0.4\n");
}

TEST_F(CliQueryTest, Info) {
  EXPECT_EQ(output({"info", "shop.model"}),
            "model                      shop.model\n"
            "format                     binary\n"
            "input                      shop.csv\n"
            "input format               csv\n"
            "customers (N)              5\n"
            "transactions               10\n"
            "item occurrences           11\n"
            "max items per transaction  2\n"
            "avg items per transaction  1.1000\n"
            "labelled items             4\n"
            "min support (as given)     2\n"
            "min count                  2\n"
            "min support (dictionary)   0.4000\n"
            "max items per pattern      9\n"
            "patterns                   6\n"
            "patterns of 1 item         4\n"
            "patterns of 2 items        2\n"
            "lattice built              yes\n"
            "levels (nLevels)           10\n"
            "level sizes                2 11519 23039 23039 23039 23039 11519 "
            "11519\n"
            "higher level size          89\n"
            "sliding window             0.0000\n"
            "min gap                    0.0000\n"
            "max gap                    0.0000\n");
}

TEST_F(CliQueryTest, DotGraph) {
  EXPECT_EQ(output({"export", "dot", "shop.model", "--top", "5"}),
            "digraph lattice {\n"
            "  node [shape=box, fontname=\"Helvetica\"];\n"
            "  p1 [label=\"(pot)\\n3\"];\n"
            "  p2 [label=\"(cups)\\n2\"];\n"
            "  p3 [label=\"(jam, red)\\n2\"];\n"
            "  p4 [label=\"(tea)\\n2\"];\n"
            "  p5 [label=\"(jam, red) (jam, red)\\n2\"];\n"
            "  p3 -> p5;\n"
            "}\n");
}

TEST_F(CliQueryTest, DotGraphToAFile) {
  EXPECT_EQ(output({"export", "dot", "shop.model", "-o", "shop.dot"}), "");
  EXPECT_EQ(readFile("shop.dot").rfind("digraph lattice {\n", 0), 0u);
}

TEST_F(CliQueryTest, ConvertRoundTrip) {
  EXPECT_EQ(output({"convert", "shop.model", "shop.xml"}), "");
  EXPECT_EQ(readFile("shop.xml").rfind("<", 0), 0u);
  EXPECT_NE(
      output({"info", "shop.xml"}).find("format                     xml\n"),
      std::string::npos);
  EXPECT_EQ(output({"rules", "shop.xml"}), output({"rules", "shop.model"}));
  EXPECT_EQ(output({"convert", "shop.xml", "back.model"}), "");
  EXPECT_EQ(readFile("back.model"), readFile("shop.model"));
  EXPECT_EQ(output({"convert", "shop.model", "same.model", "--to", "binary"}),
            "");
  EXPECT_EQ(readFile("same.model"), readFile("shop.model"));
}

TEST_F(CliQueryTest, ModelErrors) {
  auto expectError = [&](const std::string& file, const std::string& message) {
    test::CliRun result = run({"rules", file});
    EXPECT_EQ(result.exitCode, 1) << file;
    EXPECT_EQ(result.out, "") << file;
    EXPECT_EQ(result.err, "seqlattice: " + file + ": " + message + "\n");
  };
  expectError("nope.model", "cannot open: No such file or directory");
  writeFile("short.model", "SQL");
  expectError("short.model", "not a seqlattice model file (too short)");
  expectError("shop.csv", "not a seqlattice model file (no end mark)");
  std::string model = readFile("shop.model");
  writeFile("cut.model", model.substr(0, model.size() - 1));
  expectError("cut.model", "not a seqlattice model file (no end mark)");
  std::string flipped = model;
  flipped[40] = static_cast<char>(flipped[40] ^ 0x10);
  writeFile("flipped.model", flipped);
  expectError("flipped.model", "damaged dictionary record (checksum mismatch)");
}

TEST_F(CliQueryTest, ConvertLeavesNoFileOnError) {
  test::CliRun result = run({"convert", "nope.model", "out.model"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(listWork(), (std::vector<std::string>{"shop.csv", "shop.model"}));
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
