// End-to-end tests of the commands that read a model: rules, predict,
// patterns, info, export dot and convert, on a model mined by the test.
#include <cstdlib>
#include <filesystem>
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
  EXPECT_EQ(output({"predict", "shop.model", "--history", "pot", "--rank",
                    "confidence"}),
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
                    "--format", "csv", "--rank", "confidence"}),
            "rank,item,confidence,support,cause\n"
            "1,pot,0.6,0.6,1.0\n"
            "2,tea,0.4,0.4,1.0\n");
}

TEST_F(CliQueryTest, PredictFromAnOrderOfUnknownItemsLooksFurtherBack) {
  // The last order matches nothing; the order before it predicts.
  test::CliRun result = run({"predict", "shop.model", "--history", "pot;soap",
                             "--rank", "confidence"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err,
            "seqlattice: predict: item \"soap\" is not in the model\n");
  EXPECT_EQ(result.out,
            "rank  item  confidence  support  cause\n"
            "   1  cups      0.6667   0.4000  1.0000\n");
}

TEST_F(CliQueryTest, PredictFromTheLastOrderOnly) {
  test::CliRun result = run({"predict", "shop.model", "--history", "pot;soap",
                             "--last-set-only", "--rank", "confidence"});
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
                    "--format", "csv", "--rank", "confidence"}),
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
            "max items per pattern      4\n"
            "patterns                   6\n"
            "patterns of 1 item         4\n"
            "patterns of 2 items        2\n"
            "lattice built              yes\n"
            "levels (nLevels)           5\n"
            "level sizes                2 11519 23039 23039 23039 23039 11519 "
            "11519\n"
            "higher level size          89\n"
            "sliding window             0.0000\n"
            "min gap                    0.0000\n"
            "max gap                    0.0000\n"
            "gap statistics             no\n");
}

TEST_F(CliQueryTest, DotGraph) {
  EXPECT_EQ(output({"export", "dot", "shop.model", "--top", "5"}),
            "digraph lattice {\n"
            "  rankdir=LR;\n"
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

// The recommender, by default: (pot)(cups) has count 2 of (pot)'s 3, smoothed
// with 2 customers of popularity (cups: 2 of 5), (2 + 0.8) / 5 = 0.56, half
// of the score: 0.28. Of the 3 customers with pot, ann and bob buy cups right
// after it: 2 / (3 + 2) = 0.4, the other half: 0.2. The history's items are
// left out (these customers never buy an item again); the most popular
// other items fill the list.
TEST_F(CliQueryTest, PredictRanksByTheRecommenderByDefault) {
  EXPECT_EQ(
      output({"predict", "shop.model", "--history", "pot", "--format", "csv"}),
      "rank,item,score,source,confidence,support,cause\n"
      "1,cups,0.48,lattice,0.6666666666666666,0.4,1.0\n"
      "2,tea,0.0,popular,0.4,0.4,1.0\n"
      "3,\"jam, red\",0.0,popular,0.4,0.4,1.0\n");
}

TEST_F(CliQueryTest, PredictExplainsEachItem) {
  EXPECT_EQ(output({"predict", "shop.model", "--history", "pot", "--explain",
                    "--top", "2", "--format", "csv"}),
            "rank,item,score,source,confidence,support,cause,pattern,count,"
            "pattern count,skipped sets,context customers,followers,next "
            "after,next count,run count,item count\n"
            "1,cups,0.48,lattice,0.6666666666666666,0.4,1.0,(pot),2,3,0,3,"
            "0.4,,0,0,2\n"
            "2,tea,0.0,popular,0.4,0.4,1.0,,0,0,0,0,0.0,,0,0,2\n");
}

TEST_F(CliQueryTest, PredictForOneCustomerOfAFile) {
  EXPECT_EQ(output({"predict", "shop.model", "--input", "shop.csv",
                    "--customer", "bob", "--top", "1", "--format", "csv"}),
            "customer,rank,item,score,source,confidence,support,cause\n"
            "bob,1,tea,0.0,popular,0.4,0.4,1.0\n");
  test::CliRun missing = run(
      {"predict", "shop.model", "--input", "shop.csv", "--customer", "zed"});
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_EQ(missing.err, "seqlattice: predict: no customer \"zed\"\n");
}

// After pot;cups nothing follows in the lattice; in the sequences, the
// context {pot, cups} (2 customers, nothing after it) and, with an item left
// out, {pot} (cups 2 of 3 + 2) and {cups} (nothing) average to 0.4 / 3, half
// of the score. Only the history's items: cups, then pot as popular.
TEST_F(CliQueryTest, NewOnlyAndRepeatOnly) {
  EXPECT_EQ(output({"predict", "shop.model", "--history", "pot;cups",
                    "--repeat-only", "--format", "csv"}),
            "rank,item,score,source,confidence,support,cause\n"
            "1,cups,0.06666666666666667,sequences,0.0,0.0,0.0\n"
            "2,pot,0.0,popular,0.6,0.6,1.0\n");
  EXPECT_EQ(output({"predict", "shop.model", "--history", "pot", "--new-only",
                    "--top", "1", "--format", "csv"}),
            "rank,item,score,source,confidence,support,cause\n"
            "1,cups,0.48,lattice,0.6666666666666666,0.4,1.0\n");
}

// The similar customers' counts alone: ann, bob and cid hold pot; after it
// ann and bob have cups, each counting 1 / 3 (cid has nothing after it).
// The lattice is not asked; pot is left out (no customer repeats an item).
TEST_F(CliQueryTest, PredictFromTheSimilarCustomersCounts) {
  EXPECT_EQ(output({"predict", "shop.model", "--history", "pot",
                    "--sequence-evidence", "similar", "--sequence-weight", "1",
                    "--top", "2", "--format", "csv"}),
            "rank,item,score,source,confidence,support,cause\n"
            "1,cups,0.6666666666666666,sequences,0.0,0.0,0.0\n"
            "2,tea,0.0,popular,0.4,0.4,1.0\n");
  EXPECT_EQ(run({"predict", "shop.model", "--history", "pot",
                 "--sequence-evidence", "most"})
                .exitCode,
            2);
}

// bench/prediction/run.sh on a folder of two folds: one line of ranked items
// per test row, an empty window answered by the most popular items. Mining
// keeps items of at least 2 customers; the window's own items are left out
// (no customer repeats an item).
TEST_F(CliQueryTest, PredictionBenchmarkScriptOnTwoFolds) {
  std::filesystem::create_directory(path("folds"));
  const std::string header = "#seq_index\twindow\tconsequent\tfull_prefix\n";
  writeFile("folds/fold0.train.spmf",
            "1 -1 2 -1 3 -1 -2\n1 -1 2 -1 3 -1 -2\n4 -1 5 -1 -2\n");
  writeFile("folds/fold0.test.tsv", header + "0\t1 2\t3\t1 2\n1\t\t\t4\n");
  writeFile("folds/fold1.train.spmf",
            "4 -1 5 -1 -2\n4 -1 5 -1 -2\n1 -1 2 -1 -2\n");
  writeFile("folds/fold1.test.tsv", header + "2\t4\t5\t4\n");
  const std::string command =
      "SEQLATTICE=" + test::shellQuoted(SEQLATTICE_CLI) + " sh " +
      test::shellQuoted(std::string(SEQLATTICE_SOURCE_DIR) +
                        "/bench/prediction/run.sh") +
      " " + test::shellQuoted(path("folds")) + " " +
      test::shellQuoted(path("out")) + " > /dev/null";
  ASSERT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(readFile("out/fold0.pred"), "3\n3 2 1\n");
  EXPECT_EQ(readFile("out/fold1.pred"), "5\n");
}

// evaluate on four customers, two folds, the last order held out.
// Fold 0 tests c0 (holds out 3) and c2 (4); the model sees c0 and c2 without
// their last order. The recommender and the confidence order give [3]
// (c0: rank 1, c2: miss); the most popular items are [2, 1, 3] (c0: rank 3).
// Fold 1 tests c1 and c3 (both 3): 3 and 4 tie everywhere, the larger code
// first, [4, 3] (rank 2); the most popular [2, 1, 4, 3] (rank 4). Popular
// mrr: (1/3 + 1/4 + 1/4) / 4, summed in that order.
TEST_F(CliQueryTest, EvaluateHitRatesOnATinyLog) {
  writeFile("tiny.csv",
            "customer,time,item\n"
            "c0,1,1\nc0,2,2\nc0,3,3\n"
            "c1,1,1\nc1,2,2\nc1,3,3\n"
            "c2,1,1\nc2,2,2\nc2,3,4\n"
            "c3,1,1\nc3,2,2\nc3,3,3\n");
  EXPECT_EQ(output({"evaluate", "tiny.csv", "--min-support", "1", "--max-items",
                    "3", "--folds", "2", "--format", "csv"}),
            "method,customers,hit@1,hit@5,hit@10,mrr,coverage\n"
            "recommender,4,0.25,0.75,0.75,0.5,1.0\n"
            "confidence,4,0.25,0.75,0.75,0.5,1.0\n"
            "popular,4,0.0,0.75,0.75,0.20833333333333331,1.0\n");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
