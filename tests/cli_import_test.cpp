// End-to-end tests of forgiving log import: --skip-invalid, --time-format,
// and SPMF files whose items are labelled by "@ITEM" lines.
#include <string>
#include <vector>

#include "cli_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

class CliImportTest : public test::CliTest {
 protected:
  // Runs a mine of log.csv with the extra args; it must fail with exitCode
  // and print message on standard error.
  void expectMineError(const std::vector<std::string>& extra, int exitCode,
                       const std::string& message) {
    std::vector<std::string> args = {"mine", "log.csv", "-o", "log.model"};
    args.insert(args.end(), extra.begin(), extra.end());
    test::CliRun result = run(args);
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_EQ(result.err, message);
  }
};

// The first line of the output that starts with field.
std::string lineOf(const std::string& out, const std::string& field) {
  std::size_t at = out.find("\n" + field);
  if (at == std::string::npos) return "";
  std::size_t end = out.find('\n', at + 1);
  return out.substr(at + 1, end - at - 1);
}

TEST_F(CliImportTest, SkipInvalidDropsAndReportsBadRows) {
  writeFile("log.csv",
            "customer,time,item\n"
            "ann,1,tea\n"
            ",2,pot\n"
            "ann,soon,pot\n"
            "ann,3,cups\n"
            "bob,1,tea\n"
            "bob,2,cups\n");
  expectMineError({}, 1, "seqlattice: log.csv:3: empty customer\n");

  test::CliRun result = run({"mine", "log.csv", "-o", "log.model",
                             "--min-support", "2", "--skip-invalid"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.err,
            "seqlattice: log.csv: skipped 2 invalid rows: 1 blank customer "
            "(line 3), 1 bad time (line 4)\n");
  EXPECT_EQ(lineOf(result.out, "skipped rows"),
            "skipped rows  2: 1 blank customer (line 3), 1 bad time (line 4)");
  EXPECT_EQ(lineOf(result.out, "customers"), "customers     2");
  EXPECT_EQ(lineOf(result.out, "transactions"), "transactions  4");
}

TEST_F(CliImportTest, TimeFormatReadsUsDates) {
  writeFile("log.csv",
            "customer,time,item\n"
            "ann,12/1/2010 8:26,tea\n"
            "ann,12/1/2010 8:26,pot\n"
            "ann,1/3/2011 10:00,cups\n"
            "bob,12/24/2010 17:05,pot\n"
            "bob,1/2/2011 9:00,cups\n");
  expectMineError({}, 1,
                  "seqlattice: log.csv:2: bad time \"12/1/2010 8:26\": "
                  "expected a number or an ISO-8601 date\n");
  test::CliRun result =
      run({"mine", "log.csv", "-o", "log.model", "--min-support", "2",
           "--time-format", "%m/%d/%Y %H:%M"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(lineOf(result.out, "transactions"), "transactions  4");
  test::CliRun rules = run({"rules", "log.model", "--format", "csv"});
  EXPECT_EQ(rules.out, std::string(test::kRulesCsvHeader) +
                           "1,(pot),(cups),1.0,1.0,1.0,1.0,0.0,inf\n");
}

TEST_F(CliImportTest, TimeFormatMismatchNamesFileAndLine) {
  writeFile("log.csv", "customer,time,item\nann,01-12-2010,tea\n");
  expectMineError({"--time-format", "%m/%d/%Y"}, 1,
                  "seqlattice: log.csv:2: bad time \"01-12-2010\": does not "
                  "match the format \"%m/%d/%Y\"\n");
  expectMineError({"--time-format", "%Y-%j"}, 2,
                  "seqlattice: --time-format: unknown directive %j (known: %Y "
                  "%y %m %b %d %H %M %S %%)\nRun with --help for more "
                  "information.\n");
}

TEST_F(CliImportTest, SpmfItemLabelsNameTheRules) {
  writeFile("shop.txt",
            "\xEF\xBB\xBF@CONVERTED_FROM_TEXT\n"
            "@ITEM=1=whole milk\n"
            "@ITEM=2=rolls\n"
            "1 -1 2 -1 -2\n"
            "1 -1 2 -1 -2\n"
            "2 -1 -2\n");
  test::CliRun mined =
      run({"mine", "shop.txt", "-o", "shop.model", "--min-support", "2"});
  EXPECT_EQ(mined.exitCode, 0) << mined.err;
  test::CliRun rules = run({"rules", "shop.model", "--format", "csv"});
  EXPECT_EQ(
      rules.out,
      std::string(test::kRulesCsvHeader) +
          "1,(whole milk),(rolls),0.6666666666666666,1.0,0.6666666666666666,"
          "1.0,0.0,inf\n");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
