// End-to-end tests of "seqlattice mine": the summary, the inputs it reads,
// and its errors (exit 1, a message naming file and line, no model written).
#include <regex>
#include <string>

#include "cli_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// The summary without its last line, the time taken.
std::string withoutTime(const std::string& out) {
  return std::regex_replace(out, std::regex("time +[0-9]+\\.[0-9]{2} s\n$"),
                            "");
}

class CliMineTest : public test::CliTest {
 protected:
  void expectBadInput(const test::CliRun& result, const std::string& message) {
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "seqlattice: " + message + "\n");
  }
};

TEST_F(CliMineTest, SummaryOfACsvLog) {
  writeFile("orders.csv", test::kOrders);
  test::CliRun result =
      run({"mine", "orders.csv", "-o", "orders.model", "--min-support", "2"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(withoutTime(result.out),
            "input         orders.csv (csv)\n"
            "customers     4\n"
            "transactions  6\n"
            "items         3 distinct, 7 occurrences, at most 2 per "
            "transaction\n"
            "min support   2 = 2 customers\n"
            "patterns      3 of at most 4 items\n"
            "  1 item      2\n"
            "  2 items     1\n"
            "model         orders.model (binary)\n");
  EXPECT_NE(withoutTime(result.out), result.out);
  EXPECT_EQ(listWork(),
            (std::vector<std::string>{"orders.csv", "orders.model"}));
}

TEST_F(CliMineTest, FractionalSupportAndMaxItems) {
  writeFile("orders.csv", test::kOrders);
  test::CliRun result = run({"mine", "orders.csv", "-o", "m", "--min-support",
                             "0.75", "--max-items", "1"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(withoutTime(result.out),
            "input         orders.csv (csv)\n"
            "customers     4\n"
            "transactions  6\n"
            "items         3 distinct, 7 occurrences, at most 2 per "
            "transaction\n"
            "min support   0.75 = 3 customers\n"
            "patterns      2 of at most 1 items\n"
            "  1 item      2\n"
            "model         m (binary)\n");
}

TEST_F(CliMineTest, TabSeparatedWithOtherColumnNames) {
  writeFile("log.tsv",
            "when\tproduct\tclient\n"
            "2024-01-02\tjam\tx\n"
            "2024-01-01\ttea\tx\n"
            "2024-01-05\tjam\ty\n"
            "2024-01-03\ttea\ty\n");
  test::CliRun result =
      run({"mine", "log.tsv", "-o", "log.model", "--customer", "client",
           "--time", "when", "--item", "product", "--min-support", "1.0"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(withoutTime(result.out),
            "input         log.tsv (csv)\n"
            "customers     2\n"
            "transactions  4\n"
            "items         2 distinct, 4 occurrences, at most 1 per "
            "transaction\n"
            "min support   1.0 = 2 customers\n"
            "patterns      3 of at most 4 items\n"
            "  1 item      2\n"
            "  2 items     1\n"
            "model         log.model (binary)\n");
}

TEST_F(CliMineTest, SpmfInput) {
  writeFile("seq.txt",
            "1 -1 2 3 -1 -2\n"
            "1 -1 3 -1 -2\n"
            "2 -1 -2\n");
  test::CliRun result = run(
      {"mine", "seq.txt", "-o", "seq.model", "--min-support", "2", "--xml"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(withoutTime(result.out),
            "input         seq.txt (spmf)\n"
            "customers     3\n"
            "transactions  5\n"
            "items         3 distinct, 6 occurrences, at most 2 per "
            "transaction\n"
            "min support   2 = 2 customers\n"
            "patterns      4 of at most 4 items\n"
            "  1 item      3\n"
            "  2 items     1\n"
            "model         seq.model (xml)\n");
  EXPECT_EQ(readFile("seq.model").rfind("<", 0), 0u);
}

// 5,000 customers over a ring of 5,000 items: customer k holds (k) (k+1)
// (k+2), so each item is held by 3 customers and each pair (k)(k+1) by 2.
std::string ringOfItems() {
  std::string text;
  for (int k = 0; k < 5000; ++k) {
    text += std::to_string(k) + " -1 " + std::to_string((k + 1) % 5000) +
            " -1 " + std::to_string((k + 2) % 5000) + " -1 -2\n";
  }
  return text;
}

TEST_F(CliMineTest, ALogOfManyItemsGetsALargerBudgetOfPairs) {
  writeFile("ring.txt", ringOfItems());
  // The summary for a budget and a largest pattern size.
  auto summary = [](const std::string& budget, const std::string& items) {
    return "input         ring.txt (spmf)\n"
           "customers     5000\n"
           "transactions  15000\n"
           "items         5000 distinct, 15000 occurrences, at most 1 per "
           "transaction\n"
           "min support   at most " +
           budget +
           " patterns: 2 = 2 customers\n"
           "patterns      10000 of at most " +
           items +
           " items\n"
           "  1 item      5000\n"
           "  2 items     5000\n"
           "model         ring.model (binary)\n";
  };
  test::CliRun result = run({"mine", "ring.txt", "-o", "ring.model"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(withoutTime(result.out), summary("1000000", "2"));
  // A budget given is kept, with the longer patterns.
  result =
      run({"mine", "ring.txt", "-o", "ring.model", "--max-patterns", "300000"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(withoutTime(result.out), summary("300000", "4"));
  // So is a largest pattern size given, even the default one.
  result = run({"mine", "ring.txt", "-o", "ring.model", "--max-items", "4"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(withoutTime(result.out), summary("300000", "4"));
}

TEST_F(CliMineTest, BadRowNamesFileAndLine) {
  writeFile("orders.csv", std::string(test::kOrders) + "c5,4\n");
  expectBadInput(run({"mine", "orders.csv", "-o", "orders.model"}),
                 "orders.csv:9: expected 3 columns, found 2");
  EXPECT_EQ(listWork(), (std::vector<std::string>{"orders.csv"}));
}

TEST_F(CliMineTest, BadInputLeavesAnExistingModelAlone) {
  writeFile("orders.csv", "customer,time,item\nc1,yesterday,a\n");
  writeFile("orders.model", "the old model");
  expectBadInput(run({"mine", "orders.csv", "-o", "orders.model"}),
                 "orders.csv:2: bad time \"yesterday\": expected a number or "
                 "an ISO-8601 date");
  EXPECT_EQ(readFile("orders.model"), "the old model");
  EXPECT_EQ(listWork(),
            (std::vector<std::string>{"orders.csv", "orders.model"}));
}

TEST_F(CliMineTest, MissingColumn) {
  writeFile("orders.csv", "client,time,item\nc1,1,a\n");
  expectBadInput(run({"mine", "orders.csv", "-o", "m"}),
                 "orders.csv:1: no column \"customer\" in the header "
                 "(columns: \"client\", \"time\", \"item\")");
}

TEST_F(CliMineTest, QuotedFieldsAndCrlf) {
  writeFile("orders.csv",
            "customer,time,item\r\n"
            "\"c, 1\",1,\"tea \"\"green\"\"\"\r\n"
            "\r\n"
            "\"c, 1\",2,\"tea \"\"green\"\"\"\r\n");
  test::CliRun result =
      run({"mine", "orders.csv", "-o", "m", "--min-support", "1"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_NE(result.out.find("customers     1\n"), std::string::npos);
  EXPECT_NE(result.out.find("  2 items     1\n"), std::string::npos);
}

TEST_F(CliMineTest, MissingInput) {
  expectBadInput(run({"mine", "nope.csv", "-o", "m"}),
                 "nope.csv: cannot open: No such file or directory");
  expectBadInput(run({"mine", "nope.txt", "-o", "m"}),
                 "nope.txt: cannot open file");
}

TEST_F(CliMineTest, BadSpmfLine) {
  writeFile("seq.txt", "1 -1 -2\n1 x -2\n");
  test::CliRun result = run({"mine", "seq.txt", "-o", "m"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err.rfind("seqlattice: seq.txt:2: ", 0), 0u) << result.err;
  EXPECT_EQ(listWork(), (std::vector<std::string>{"seq.txt"}));
}

TEST_F(CliMineTest, UnwritableOutput) {
  writeFile("orders.csv", test::kOrders);
  expectBadInput(run({"mine", "orders.csv", "-o", "no/such/dir/m"}),
                 "no/such/dir/m: cannot write: No such file or directory");
}

TEST_F(CliMineTest, EmptyLog) {
  writeFile("orders.csv", "customer,time,item\n\n");
  expectBadInput(run({"mine", "orders.csv", "-o", "m"}),
                 "orders.csv: no data rows after the header");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
