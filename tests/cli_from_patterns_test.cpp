// mine --from-patterns: a model built from a pattern file (this tool's
// --patterns-only output, or JSON lines of another miner) rather than mined.
#include <gtest/gtest.h>

#include <string>

#include "cli_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

class FromPatternsTest : public test::CliTest {
 protected:
  // Mines kOrders into m.model and into a pattern file of `name`, builds
  // f.model from the file and expects both models to list the same patterns
  // and rules.
  void expectSameModel(const std::string& name) {
    writeFile("orders.csv", test::kOrders);
    ASSERT_EQ(run({"mine", "orders.csv", "--min-support", "1", "-o", "m.model"})
                  .exitCode,
              0);
    test::CliRun streamed = run(
        {"mine", "orders.csv", "--min-support", "1", "--patterns-only", name});
    ASSERT_EQ(streamed.exitCode, 0) << streamed.err;
    test::CliRun built = run(
        {"mine", "--from-patterns", name, "--customers", "4", "-o", "f.model"});
    ASSERT_EQ(built.exitCode, 0) << built.err;
    EXPECT_NE(built.out.find("patterns      5 of at most 4 items\n"),
              std::string::npos)
        << built.out;
    for (const char* command : {"patterns", "rules"}) {
      test::CliRun mined = run({command, "m.model", "--format", "csv"});
      test::CliRun fromFile = run({command, "f.model", "--format", "csv"});
      ASSERT_EQ(mined.exitCode, 0) << mined.err;
      ASSERT_EQ(fromFile.exitCode, 0) << fromFile.err;
      EXPECT_EQ(fromFile.out, mined.out) << command;
    }
  }
};

TEST_F(FromPatternsTest, SpmfPatternFileGivesTheMinedModel) {
  expectSameModel("p.txt");
  EXPECT_EQ(readFile("p.txt").substr(0, 21), "@CONVERTED_FROM_TEXT\n");
}

TEST_F(FromPatternsTest, JsonLinesGiveTheMinedModel) {
  expectSameModel("p.jsonl");
  EXPECT_EQ(readFile("p.jsonl").substr(0, 1), "{");
}

// Lines as a distributed PrefixSpan writes them: keys in its order, item
// sets of integers.
TEST_F(FromPatternsTest, ReadsPrefixSpanJsonLines) {
  writeFile("part-00000.json",
            "{\"sequence\":[[1]],\"freq\":3}\n"
            "{\"sequence\":[[2]],\"freq\":3}\n"
            "{\"sequence\":[[1],[2]],\"freq\":2}\n"
            "{\"sequence\":[[1,2]],\"freq\":1}\n");
  test::CliRun built =
      run({"mine", "--from-patterns", "part-00000.json", "--customers", "4",
           "--min-support", "2", "-o", "s.model"});
  ASSERT_EQ(built.exitCode, 0) << built.err;
  EXPECT_NE(built.out.find("min support   2 customers\n"), std::string::npos)
      << built.out;
  EXPECT_NE(built.out.find("left out      1 of 4 patterns"), std::string::npos)
      << built.out;
  test::CliRun rules = run({"rules", "s.model", "--format", "csv"});
  ASSERT_EQ(rules.exitCode, 0) << rules.err;
  EXPECT_EQ(rules.out, std::string(test::kRulesCsvHeader) +
                           "1,(1),(2),0.5,0.6666666666666666,"
                           "0.6666666666666666,0.8888888888888888,-0.0625,"
                           "0.7499999999999999\n");
}

TEST_F(FromPatternsTest, RefusesBadFilesWithTheirLine) {
  writeFile("bad.txt", "1 -1 #SUP: 3\n1 -1 2 #SUP: 2\n");
  test::CliRun bad = run({"mine", "--from-patterns", "bad.txt", "--customers",
                          "4", "-o", "x.model"});
  EXPECT_EQ(bad.exitCode, 1);
  EXPECT_EQ(bad.err, "seqlattice: bad.txt:2: expected -1 before #SUP:\n");
  writeFile("open.txt", "1 -1 #SUP: 3\n1 -1 2 -1 #SUP: 2\n");
  test::CliRun open = run({"mine", "--from-patterns", "open.txt", "--customers",
                           "4", "-o", "x.model"});
  EXPECT_EQ(open.exitCode, 1);
  EXPECT_EQ(open.err,
            "seqlattice: open.txt: pattern <1, 2> is given without its "
            "sub-pattern <2>\n");
  test::CliRun many = run({"mine", "--from-patterns", "open.txt", "--customers",
                           "2", "-o", "x.model"});
  EXPECT_EQ(many.exitCode, 1);
  EXPECT_EQ(many.err,
            "seqlattice: open.txt: pattern <1> is counted in 3 "
            "customers, more than the 2 of --customers\n");
  test::CliRun noCount =
      run({"mine", "--from-patterns", "open.txt", "-o", "x.model"});
  EXPECT_EQ(noCount.exitCode, 2);
  EXPECT_NE(noCount.err.find("--customers"), std::string::npos) << noCount.err;
  EXPECT_EQ(listWork(), (std::vector<std::string>{"bad.txt", "open.txt"}));
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
