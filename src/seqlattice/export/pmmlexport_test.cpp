#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/export/export_test_util.h"
#include "seqlattice/store/hashpairseq.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// A written document must be well-formed.
void CheckWritten(const std::string& document) {
  if (!document.empty()) test::ExpectWellFormed(document);
}

// Every rule of the dictionary, best confidence first.
KvCommon_850::KvStatus ExportAll(const SequenceDictionary& dictionary,
                                 std::string& document, double minSupport = 0.0,
                                 char sortBy = 'C') {
  std::ostringstream out;
  const KvCommon_850::KvStatus status = dictionary.ExportRulesXML(
      out, minSupport, 1.0, 0.0, 1.0, 0.0, 1.0, 2, 1.5, sortBy, false);
  document = out.str();
  CheckWritten(document);
  return status;
}

// A dictionary whose rule extraction hands out fixed rules and a fixed
// status, so that the document can be checked for any rule list.
class FixedRulesDictionary : public SequenceDictionary {
 public:
  explicit FixedRulesDictionary(int nLevels) : SequenceDictionary(nLevels) {}

  KvCommon_850::KvStatus GetRules(std::vector<SeqAssociationRule>& rules,
                                  double, double, double, double, double,
                                  double, char, bool) const override {
    if (!status.IsOK()) return status;
    rules.insert(rules.end(), fixed.begin(), fixed.end());
    return status;
  }

  std::vector<SeqAssociationRule> fixed;
  KvCommon_850::KvStatus status;
};

// The PMML 3.2 schema's verdict: xmllint's messages, "" when valid.
std::string SchemaErrors(const std::string& document) {
  const test::XmllintRun run =
      test::RunXmllint(document, "--schema '" + test::SchemaPath() + "'");
  return run.exitCode == 0 ? "" : run.messages;
}

#define SKIP_WITHOUT_SCHEMA()                                                 \
  do {                                                                        \
    if (!test::HaveXmllint()) {                                               \
      GTEST_SKIP() << "xmllint (libxml2-utils) is not installed";             \
    }                                                                         \
    if (!test::FileExists(test::SchemaPath())) {                              \
      GTEST_SKIP() << "PMML 3.2 schema not found at " << test::SchemaPath()   \
                   << "; set SEQLATTICE_PMML_SCHEMA to its path to validate"; \
    }                                                                         \
  } while (false)

// The one place where the required document and the PMML 3.2 schema
// disagree (docs/pmml.md): a model without rules has no "Sequence", which
// the schema requires at least once.
const char kNoSequenceError[] =
    "DOC:17: element SequenceModel: Schemas validity error : Element "
    "'{http://www.dmg.org/PMML-3_2}SequenceModel': Missing child element(s). "
    "Expected is one of ( {http://www.dmg.org/PMML-3_2}ModelStats, "
    "{http://www.dmg.org/PMML-3_2}LocalTransformations, "
    "{http://www.dmg.org/PMML-3_2}Constraints, "
    "{http://www.dmg.org/PMML-3_2}Item, {http://www.dmg.org/PMML-3_2}Itemset, "
    "{http://www.dmg.org/PMML-3_2}SetPredicate, "
    "{http://www.dmg.org/PMML-3_2}Sequence ).\n"
    "DOC fails to validate\n";

TEST(PmmlExportTest, SampleModelMatchesTheGoldenDocument) {
  const auto dictionary = test::SampleDictionary();
  std::string document;
  EXPECT_TRUE(ExportAll(*dictionary, document).IsOK());
  EXPECT_EQ(document, test::ReadFile(test::DataPath("sample_model.xml")));
}

TEST(PmmlExportTest, ModelWithSeveralRulesIsValidPmml) {
  SKIP_WITHOUT_SCHEMA();
  const auto dictionary = test::SampleDictionary();
  std::string document;
  ASSERT_TRUE(ExportAll(*dictionary, document).IsOK());
  ASSERT_EQ(test::Occurrences(document, "<SequenceRule "), 5);
  EXPECT_EQ(SchemaErrors(document), "");
}

// (1)(2 3) yields the rule (1) => (2 3).
std::unique_ptr<SequenceDictionary> WideConsequentDictionary() {
  std::unique_ptr<SequenceDictionary> dictionary(new SequenceDictionary(4));
  test::SetTotal(*dictionary, 8);
  test::addPattern(*dictionary, {{1}}, 6);
  test::addPattern(*dictionary, {{2}}, 5);
  test::addPattern(*dictionary, {{3}}, 5);
  test::addPattern(*dictionary, {{1}, {2}}, 4);
  test::addPattern(*dictionary, {{1}, {3}}, 4);
  test::addPattern(*dictionary, {{2, 3}}, 4);
  test::addPattern(*dictionary, {{1}, {2, 3}}, 3);
  EXPECT_TRUE(dictionary->buildLattice().IsOK());
  return dictionary;
}

TEST(PmmlExportTest, RulesWithSeveralItemsInTheLastSetAreValidPmml) {
  const auto dictionary = WideConsequentDictionary();
  std::string document;
  ASSERT_TRUE(ExportAll(*dictionary, document).IsOK());
  // The consequent (2 3) is declared as a set of two items and referred to.
  EXPECT_NE(document.find("<Itemset id=\"3\" numberOfItems=\"2\">\n"
                          "      <ItemRef itemRef=\"2\"/>\n"
                          "      <ItemRef itemRef=\"3\"/>\n"
                          "    </Itemset>"),
            std::string::npos)
      << document;
  EXPECT_NE(document.find("<Sequence id=\"6\" numberOfSets=\"1\" "
                          "occurrence=\"4\" support=\"0.5\">\n"
                          "      <SetReference setId=\"3\"/>\n"),
            std::string::npos)
      << document;
  EXPECT_NE(document.find("<SequenceRule id=\"3\" support=\"0.375\" "
                          "numberOfSets=\"2\" occurrence=\"3\" "
                          "confidence=\"0.5\">\n"
                          "      <AntecedentSequence>\n"
                          "        <SequenceReference seqId=\"1\"/>\n"
                          "      </AntecedentSequence>\n"
                          "      <Delimiter delimiter=\"acrossTimeWindows\" "
                          "gap=\"unknown\"/>\n"
                          "      <ConsequentSequence>\n"
                          "        <SequenceReference seqId=\"6\"/>\n"
                          "      </ConsequentSequence>\n"
                          "    </SequenceRule>"),
            std::string::npos)
      << document;
  SKIP_WITHOUT_SCHEMA();
  EXPECT_EQ(SchemaErrors(document), "");
}

TEST(PmmlExportTest, ModelWithoutRulesKeepsEverythingButRules) {
  SequenceDictionary dictionary(3);
  test::SetTotal(dictionary, 5);
  test::addPattern(dictionary, {{1}}, 4);
  dictionary.setSlidingWindow(2.5);
  std::string document;
  ASSERT_TRUE(ExportAll(dictionary, document).IsOK());
  EXPECT_EQ(
      document,
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!DOCTYPE PMML SYSTEM \"sequentialmodel.dtd\">\n"
      "<PMML version=\"3.2\" xmlns=\"http://www.dmg.org/PMML-3_2\" "
      "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
      "xsi:schemaLocation=\"http://www.dmg.org/PMML-3_2 pmml-3-2.xsd\">\n"
      "  <Header copyright=\"Copyright (c) 2026 The seqlattice authors\" "
      "description=\"Carma model for sequential association rules\">\n"
      "    <Application name=\"Qorvane Sequential Association Component "
      "C++\" version=\"1.2.1\"/>\n"
      "  </Header>\n"
      "  <DataDictionary numberOfFields=\"3\">\n"
      "    <DataField name=\"customer\" optype=\"categorical\" "
      "dataType=\"string\"/>\n"
      "    <DataField name=\"time\" optype=\"categorical\" "
      "dataType=\"string\"/>\n"
      "    <DataField name=\"item\" optype=\"categorical\" "
      "dataType=\"string\"/>\n"
      "  </DataDictionary>\n"
      "  <TransformationDictionary>\n"
      "    <DerivedField name=\"transaction\" optype=\"categorical\" "
      "dataType=\"string\">\n"
      "      <Aggregate field=\"item\" function=\"multiset\" "
      "groupField=\"customer\"/>\n"
      "    </DerivedField>\n"
      "  </TransformationDictionary>\n"
      "  <SequenceModel modelName=\"Carma model for sequential association\" "
      "functionName=\"sequences\" algorithmName=\"Carma\" "
      "numberOfTransactions=\"5\" maxNumberOfItemsPerTransaction=\"2\" "
      "avgNumberOfItemsPerTransaction=\"1.5\">\n"
      "    <Extension extender=\"seqlattice.org\" name=\"minimumSupport\" "
      "value=\"0\"/>\n"
      "    <Extension extender=\"seqlattice.org\" name=\"minimumConfidence\" "
      "value=\"0\"/>\n"
      "    <Extension extender=\"seqlattice.org\" name=\"numberOfItems\" "
      "value=\"0\"/>\n"
      "    <Extension extender=\"seqlattice.org\" name=\"numberOfSets\" "
      "value=\"0\"/>\n"
      "    <Extension extender=\"seqlattice.org\" name=\"numberOfSequences\" "
      "value=\"0\"/>\n"
      "    <Extension extender=\"seqlattice.org\" name=\"numberOfRules\" "
      "value=\"0\"/>\n"
      "    <Extension extender=\"seqlattice.org\" name=\"timeWindowWidth\" "
      "value=\"2.5\"/>\n"
      "    <Extension extender=\"seqlattice.org\" name=\"minimumTime\" "
      "value=\"0\"/>\n"
      "    <Extension extender=\"seqlattice.org\" name=\"maximumTime\" "
      "value=\"0\"/>\n"
      "    <MiningSchema>\n"
      "      <MiningField name=\"item\" usageType=\"active\"/>\n"
      "      <MiningField name=\"transaction\" usageType=\"active\"/>\n"
      "      <MiningField name=\"time\" usageType=\"active\"/>\n"
      "      <MiningField name=\"customer\" usageType=\"supplementary\"/>\n"
      "    </MiningSchema>\n"
      "  </SequenceModel>\n"
      "</PMML>\n");
  SKIP_WITHOUT_SCHEMA();
  EXPECT_EQ(SchemaErrors(document), kNoSequenceError);
}

TEST(PmmlExportTest, MinimumSupportIsTheLargerOfDictionaryAndArgument) {
  SequenceDictionary dictionary(3);
  test::SetTotal(dictionary, 10);
  test::addPattern(dictionary, {{1}}, 5);
  dictionary.reduceAll(3.0);  // minSupport 0.3
  const std::string extension =
      "<Extension extender=\"seqlattice.org\" name=\"minimumSupport\" "
      "value=\"";
  std::string document;
  ASSERT_TRUE(ExportAll(dictionary, document, 0.1).IsOK());
  EXPECT_NE(document.find(extension + "0.3\"/>"), std::string::npos);
  ASSERT_TRUE(ExportAll(dictionary, document, 0.5).IsOK());
  EXPECT_NE(document.find(extension + "0.5\"/>"), std::string::npos);
}

TEST(PmmlExportTest, RulesWithTheSameAntecedentReferToOneSequence) {
  const auto dictionary = test::SampleDictionary();
  std::string document;
  ASSERT_TRUE(ExportAll(*dictionary, document).IsOK());
  // (10) => (20) and (10) => (30); (10) is sequence 1.
  EXPECT_EQ(test::Occurrences(document,
                              "<AntecedentSequence>\n"
                              "        <SequenceReference seqId=\"1\"/>"),
            2);
}

TEST(PmmlExportTest, CancelledExtractionWritesNothing) {
  const auto dictionary = test::SampleDictionary();
  dictionary->setCancel();
  std::string document;
  EXPECT_EQ(ExportAll(*dictionary, document).GetCode(),
            KvCommon_850::kStatusCancelled);
  EXPECT_EQ(document, "");
}

TEST(PmmlExportTest, FailedExtractionStatusIsReturnedUnchanged) {
  FixedRulesDictionary dictionary(3);
  dictionary.status =
      KvCommon_850::KvStatus(KvCommon_850::kStatusFailure, false);
  std::string document;
  const KvCommon_850::KvStatus status = ExportAll(dictionary, document);
  EXPECT_FALSE(status.IsOK());
  EXPECT_EQ(status.GetCode(), KvCommon_850::kStatusFailure);
  EXPECT_EQ(document, "");
}

TEST(PmmlExportTest, UnknownSortLetterGivesAModelWithoutRules) {
  const auto dictionary = test::SampleDictionary();
  std::string document;
  EXPECT_TRUE(ExportAll(*dictionary, document, 0.0, 'X').IsOK());
  EXPECT_NE(document.find("name=\"numberOfRules\" value=\"0\"/>"),
            std::string::npos);
  EXPECT_EQ(test::Occurrences(document, "<SequenceRule"), 0);
}

TEST(PmmlExportTest, HostFiguresAreWrittenAsGiven) {
  const auto dictionary = test::SampleDictionary();
  std::ostringstream out;
  ASSERT_TRUE(dictionary
                  ->ExportRulesXML(out, 0.0, 1.0, 0.25, 1.0, 0.0, 1.0, 17, 2.25,
                                   'S', false)
                  .IsOK());
  const std::string document = out.str();
  CheckWritten(document);
  EXPECT_NE(document.find("numberOfTransactions=\"10\" "
                          "maxNumberOfItemsPerTransaction=\"17\" "
                          "avgNumberOfItemsPerTransaction=\"2.25\">"),
            std::string::npos);
  EXPECT_NE(document.find("name=\"minimumConfidence\" value=\"0.25\"/>"),
            std::string::npos);
}

// A current join makes adjacent sets, yet every delimiter still says
// "acrossTimeWindows" with an unknown gap.
TEST(PmmlExportTest, CurrentJoinRulesStillUseAcrossTimeWindows) {
  FixedRulesDictionary dictionary(4);
  test::SetTotal(dictionary, 4);
  test::addPattern(dictionary, {{1}}, 4);
  test::addPattern(dictionary, {{2}}, 3);
  test::addPattern(dictionary, {{1, 2}}, 2);
  dictionary.fixed.push_back(test::MakeRule({{1}}, {{2}}, 0, 0.5, 0.5));
  std::string document;
  ASSERT_TRUE(ExportAll(dictionary, document).IsOK());
  EXPECT_NE(document.find("<SequenceRule id=\"1\" support=\"0.5\" "
                          "numberOfSets=\"1\" occurrence=\"2\" "
                          "confidence=\"0.5\">"),
            std::string::npos)
      << document;
  EXPECT_EQ(test::Occurrences(document,
                              "delimiter=\"acrossTimeWindows\" "
                              "gap=\"unknown\""),
            1);
  EXPECT_EQ(test::Occurrences(document, "sameTimeWindow"), 0);
  // (1), (1 2) and (2) are all declared: the sides' own sets too.
  EXPECT_EQ(test::Occurrences(document, "<Itemset "), 3);
}

TEST(PmmlExportTest, RuleWithoutCounterWritesNothing) {
  FixedRulesDictionary dictionary(4);
  test::SetTotal(dictionary, 4);
  test::addPattern(dictionary, {{1}}, 4);
  dictionary.fixed.push_back(test::MakeRule({{1}}, {{9}}));
  std::string document;
  EXPECT_EQ(ExportAll(dictionary, document).GetCode(),
            KvCommon_850::kStatusFailure);
  EXPECT_EQ(document, "");
}

// A current join needs two non-empty sides.
TEST(PmmlExportTest, CurrentJoinWithAnEmptySideWritesNothing) {
  FixedRulesDictionary dictionary(3);
  test::SetTotal(dictionary, 4);
  test::addPattern(dictionary, {{1}}, 4);
  dictionary.fixed.push_back(test::MakeRule({}, {{1}}, 0));
  std::string document;
  EXPECT_EQ(ExportAll(dictionary, document).GetCode(),
            KvCommon_850::kStatusFailure);
  EXPECT_EQ(document, "");
}

TEST(PmmlExportTest, MissingEmptyPatternWritesNothing) {
  FixedRulesDictionary dictionary(3);
  dictionary.getLevel(0)->clear();
  std::string document;
  EXPECT_EQ(ExportAll(dictionary, document).GetCode(),
            KvCommon_850::kStatusFailure);
  EXPECT_EQ(document, "");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
