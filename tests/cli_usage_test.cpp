// End-to-end tests of the command line itself: help, version and usage
// errors, which exit 2 before any file is read.
#include <string>
#include <vector>

#include "cli_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

class CliUsageTest : public test::CliTest {
 protected:
  // A usage error: exit 2, nothing on standard output, and the message.
  void expectUsageError(const std::vector<std::string>& args,
                        const std::string& message) {
    test::CliRun result = run(args);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "seqlattice: " + message +
                              "\nRun with --help for more information.\n");
  }
};

TEST_F(CliUsageTest, HelpListsTheCommands) {
  test::CliRun result = run({"--help"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err, "");
  for (const char* command :
       {"mine", "rules", "predict", "patterns", "export", "convert", "info"}) {
    EXPECT_NE(result.out.find("\n  " + std::string(command) + " "),
              std::string::npos)
        << command;
  }
}

TEST_F(CliUsageTest, EveryCommandHasHelpWithAnExample) {
  for (std::vector<std::string> command :
       std::vector<std::vector<std::string>>{{"mine"},
                                             {"rules"},
                                             {"predict"},
                                             {"patterns"},
                                             {"export"},
                                             {"export", "pmml"},
                                             {"export", "lattice"},
                                             {"export", "dot"},
                                             {"convert"},
                                             {"info"},
                                             {"report"}}) {
    command.push_back("--help");
    test::CliRun result = run(command);
    EXPECT_EQ(result.exitCode, 0) << command[0];
    EXPECT_NE(result.out.find("\nUsage: seqlattice " + command[0]),
              std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find("Example"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("  seqlattice " + command[0] + " "),
              std::string::npos)
        << result.out;
  }
}

TEST_F(CliUsageTest, Version) {
  test::CliRun result = run({"--version"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "seqlattice 0.1.0\n");
}

TEST_F(CliUsageTest, NoCommand) {
  expectUsageError({}, "A subcommand is required");
}

TEST_F(CliUsageTest, UnknownCommand) {
  expectUsageError(
      {"mind", "x"},
      "unknown command \"mind\" (commands: mine, rules, "
      "predict, patterns, export, convert, info, evaluate, report)");
}

TEST_F(CliUsageTest, MissingModel) {
  expectUsageError({"rules"}, "MODEL is required");
  expectUsageError({"info"}, "MODEL is required");
}

TEST_F(CliUsageTest, MineNeedsAnOutput) {
  expectUsageError({"mine", "orders.csv"},
                   "--output or --patterns-only is required");
}

TEST_F(CliUsageTest, BadMinSupport) {
  for (const char* value : {"0", "1.5", "-3", "abc", "3.5", ""}) {
    expectUsageError({"mine", "orders.csv", "-o", "m", "--min-support", value},
                     std::string("--min-support: expected a fraction of the "
                                 "customers (0 < F <= 1) or a count of "
                                 "customers (N >= 1), not \"") +
                         value + "\"");
  }
}

TEST_F(CliUsageTest, BadMaxItems) {
  expectUsageError({"mine", "orders.csv", "-o", "m", "--max-items", "0"},
                   "--max-items: Value 0 not in range 1 to 31");
}

TEST_F(CliUsageTest, BadDelimiter) {
  expectUsageError({"mine", "orders.csv", "-o", "m", "--delimiter", ";;"},
                   "--delimiter: expected one character other than a quote, "
                   "or \"tab\", not \";;\"");
}

TEST_F(CliUsageTest, BadFormats) {
  expectUsageError({"rules", "m", "--format", "xml"},
                   "--format: xml not in {table,csv,json}");
  expectUsageError({"mine", "orders.csv", "-o", "m", "--format", "json"},
                   "--format: json not in {csv,spmf,auto}");
}

TEST_F(CliUsageTest, BoundsAreFractions) {
  expectUsageError({"rules", "m", "--min-confidence", "2"},
                   "--min-confidence: Value 2 not in range 0.000000 to "
                   "1.000000");
  expectUsageError({"rules", "m", "--sort", "height"},
                   "--sort: height not in {support,confidence,cause,lift,"
                   "leverage,conviction}");
  // The PMML document orders rules by the library's measures only.
  expectUsageError({"export", "pmml", "m", "--sort", "lift"},
                   "--sort: lift not in {support,confidence,cause}");
  expectUsageError({"rules", "m", "--consequent", "a;b"},
                   "--consequent: one item set expected, items separated by "
                   "','");
  expectUsageError({"rules", "m", "--min-lift", "-1"},
                   "--min-lift: expected a number of at least 0, not \"-1\"");
}

TEST_F(CliUsageTest, PredictNeedsOneSource) {
  expectUsageError({"predict", "m"}, "--history or --input is required");
  expectUsageError({"predict", "m", "--history", "a", "--input", "f.csv"},
                   "--history excludes --input");
}

TEST_F(CliUsageTest, PredictCurrentHasNoLastSetOnly) {
  expectUsageError(
      {"predict", "m", "--history", "a", "--current", "--last-set-only"},
      "--current excludes --last-set-only");
}

TEST_F(CliUsageTest, BadItemSequences) {
  expectUsageError({"predict", "m", "--history", "a,,b"},
                   "--history: \"a,,b\": empty item (write item sets as "
                   "\"a,b;c\")");
  expectUsageError({"patterns", "m", "--contains", "a;;b"},
                   "--contains: \"a;;b\": empty item (write item sets as "
                   "\"a,b;c\")");
}

TEST_F(CliUsageTest, PatternQueriesAreNotEmpty) {
  expectUsageError({"patterns", "m", "--ending", " "},
                   "--ending: empty sequence");
}

TEST_F(CliUsageTest, OneQueryAtATime) {
  expectUsageError({"patterns", "m", "--contains", "a", "--ending", "b"},
                   "--contains excludes --ending");
}

TEST_F(CliUsageTest, ExportNeedsAFormat) {
  expectUsageError({"export", "m"},
                   "unknown command \"m\" (commands: pmml, lattice, dot)");
  expectUsageError({"export"}, "A subcommand is required");
  expectUsageError({"export", "svg", "m"},
                   "unknown command \"svg\" (commands: pmml, lattice, dot)");
}

TEST_F(CliUsageTest, ConvertNeedsTwoFiles) {
  expectUsageError({"convert", "a"}, "OUT is required");
  expectUsageError({"convert", "a", "b", "--to", "json"},
                   "--to: json not in {binary,xml}");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
