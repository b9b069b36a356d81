// End-to-end tests of "seqlattice export pmml" and "export lattice": the
// documents come from the library's exports, the tool adds the rule bounds,
// the transaction statistics it kept in the model and atomic output files.
#include <string>

#include "cli_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

class CliExportTest : public test::CliTest {
 protected:
  void SetUp() override {
    test::CliTest::SetUp();
    writeFile("orders.csv", test::kOrders);
    test::CliRun mined =
        run({"mine", "orders.csv", "-o", "m.model", "--min-support", "2"});
    ASSERT_EQ(mined.exitCode, 0) << mined.err;
  }

  bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
  }
};

TEST_F(CliExportTest, PmmlStatesTheRulesAndTheTransactionStatistics) {
  test::CliRun result = run({"export", "pmml", "m.model"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<!DOCTYPE PMML SYSTEM \"sequentialmodel.dtd\">\n",
                             0),
            0u);
  EXPECT_TRUE(
      contains(result.out,
               "numberOfTransactions=\"4\" "
               "maxNumberOfItemsPerTransaction=\"2\" "
               "avgNumberOfItemsPerTransaction=\"1.1666666666666667\""));
  EXPECT_TRUE(contains(result.out, "name=\"minimumSupport\" value=\"0.5\""));
  EXPECT_TRUE(contains(result.out, "name=\"numberOfRules\" value=\"1\""));
  EXPECT_TRUE(contains(result.out,
                       "<SequenceRule id=\"1\" support=\"0.5\" "
                       "numberOfSets=\"2\" occurrence=\"2\" "
                       "confidence=\"0.6666666666666666\">"));
}

TEST_F(CliExportTest, PmmlRuleBounds) {
  test::CliRun result = run(
      {"export", "pmml", "m.model", "--min-confidence", "0.9", "-o", "m.pmml"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, "");
  std::string pmml = readFile("m.pmml");
  EXPECT_TRUE(contains(pmml, "name=\"minimumConfidence\" value=\"0.9\""));
  EXPECT_TRUE(contains(pmml, "name=\"numberOfRules\" value=\"0\""));
  EXPECT_FALSE(contains(pmml, "<SequenceRule"));
}

TEST_F(CliExportTest, LatticeDocument) {
  test::CliRun result = run({"export", "lattice", "m.model", "-o", "m.xml"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  std::string lattice = readFile("m.xml");
  EXPECT_TRUE(contains(lattice,
                       "<!DOCTYPE SequentialAssociationLattice SYSTEM "
                       "\"sequentiallattice.dtd\">"));
  EXPECT_TRUE(contains(lattice,
                       "<SeqInputStats numberOfTransactions=\"4\" "
                       "minimumSupport=\"0.5\" maxSequenceSize=\"2\""));
  EXPECT_TRUE(contains(lattice,
                       "<LatticeLevel level=\"2\" "
                       "numberOfSequences=\"1\">"));
}

TEST_F(CliExportTest, AFailedExportLeavesTheOutputAlone) {
  writeFile("m.pmml", "the old document");
  test::CliRun result = run({"export", "pmml", "orders.csv", "-o", "m.pmml"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "seqlattice: orders.csv: not a seqlattice model file (no end "
            "mark)\n");
  EXPECT_EQ(readFile("m.pmml"), "the old document");
  EXPECT_EQ(listWork(),
            (std::vector<std::string>{"m.model", "m.pmml", "orders.csv"}));
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
