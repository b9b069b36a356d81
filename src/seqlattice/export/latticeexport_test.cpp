#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/export/export_test_util.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// The document, checked to be well-formed.
std::string Export(const SequenceDictionary& dictionary, double minSupport) {
  std::ostringstream out;
  EXPECT_TRUE(dictionary.ExportLatticeXML(out, minSupport).IsOK());
  test::ExpectWellFormed(out.str());
  return out.str();
}

// The "id" attributes of the Sequence elements, in document order.
std::vector<int> SequenceIds(const std::string& document) {
  std::vector<int> ids;
  const std::regex id("<Sequence id=\"([0-9]+)\"");
  for (std::sregex_iterator it(document.begin(), document.end(), id), end;
       it != end; ++it) {
    ids.push_back(std::stoi((*it)[1]));
  }
  return ids;
}

TEST(LatticeExportTest, SampleModelMatchesTheGoldenDocument) {
  const auto dictionary = test::SampleDictionary();
  const std::string document = Export(*dictionary, 0.1);
  EXPECT_EQ(document, test::ReadFile(test::DataPath("sample_lattice.xml")));
}

// The whole document of a dictionary holding only the empty pattern.
TEST(LatticeExportTest, LargestSequenceZeroGivesOneLevel) {
  SequenceDictionary dictionary(3);
  test::SetTotal(dictionary, 4);
  ASSERT_EQ(dictionary.LargestSequence(), 0);
  const std::string document = Export(dictionary, 0.0);
  EXPECT_EQ(
      document,
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!DOCTYPE SequentialAssociationLattice SYSTEM "
      "\"sequentiallattice.dtd\">\n"
      "<SequentialAssociationLattice version=\"1.2.1\">\n"
      "  <Header copyright=\"Copyright (c) 2026 The seqlattice authors\" "
      "description=\"Carma model for sequential association lattice\">\n"
      "    <Application name=\"Qorvane Sequential Association Component "
      "C++\" version=\"1.2.1\"/>\n"
      "  </Header>\n"
      "  <DataDictionary numberOfFields=\"1\">\n"
      "    <DataField name=\"item\" optype=\"categorical\"/>\n"
      "  </DataDictionary>\n"
      "  <SeqAssociationLattice>\n"
      "    <SeqInputStats numberOfTransactions=\"4\" minimumSupport=\"0\" "
      "maxSequenceSize=\"0\" numberOfItems=\"0\" numberOfSets=\"0\" "
      "numberOfSequences=\"1\"/>\n"
      "    <LatticeLevel level=\"0\" numberOfSequences=\"1\">\n"
      "      <Sequence id=\"1\" support=\"1\" occurrence=\"4\" "
      "numberOfSets=\"0\">\n"
      "        <SeqAdjacentList numberOfAdjacentItems=\"0\"/>\n"
      "      </Sequence>\n"
      "    </LatticeLevel>\n"
      "  </SeqAssociationLattice>\n"
      "</SequentialAssociationLattice>\n");
}

TEST(LatticeExportTest, PatternWithoutAdjacentItemsGetsAnEmptyList) {
  SequenceDictionary dictionary(3);
  test::SetTotal(dictionary, 4);
  test::addPattern(dictionary, {{5}}, 2);  // lattice not built: no sets at all
  const std::string document = Export(dictionary, 0.0);
  EXPECT_NE(document.find("      <Sequence id=\"2\" support=\"0.5\" "
                          "occurrence=\"2\" numberOfSets=\"1\">\n"
                          "        <ItemsetRef itemsetRef=\"1\"/>\n"
                          "        <SeqAdjacentList "
                          "numberOfAdjacentItems=\"0\"/>\n"
                          "      </Sequence>\n"),
            std::string::npos)
      << document;
  EXPECT_EQ(test::Occurrences(document,
                              "<SeqAdjacentList numberOfAdjacentItems=\"0\"/>"),
            2);
  EXPECT_EQ(test::Occurrences(document, "<AdjacentItem"), 0);

  ASSERT_TRUE(dictionary.buildLattice().IsOK());
  const std::string built = Export(dictionary, 0.0);
  EXPECT_NE(built.find("<SeqAdjacentList numberOfAdjacentItems=\"1\">\n"
                       "          <AdjacentItem itemRef=\"1\" "
                       "position=\"1\"/>\n"
                       "        </SeqAdjacentList>"),
            std::string::npos)
      << built;
  EXPECT_EQ(test::Occurrences(built,
                              "<SeqAdjacentList numberOfAdjacentItems=\"0\"/>"),
            1);
}

TEST(LatticeExportTest, SequenceIdsRunOnAcrossLevels) {
  const auto dictionary = test::SampleDictionary();
  const std::string document = Export(*dictionary, 0.0);
  EXPECT_EQ(SequenceIds(document),
            (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
  // The first pattern of level 1 follows the only one of level 0.
  EXPECT_NE(document.find("<LatticeLevel level=\"1\" "
                          "numberOfSequences=\"3\">\n      <Sequence id=\"2\""),
            std::string::npos);
  EXPECT_NE(document.find("<LatticeLevel level=\"3\" "
                          "numberOfSequences=\"2\">\n      <Sequence id=\"9\""),
            std::string::npos);
}

TEST(LatticeExportTest, MinimumSupportIsTheLargerOfDictionaryAndArgument) {
  SequenceDictionary dictionary(3);
  test::SetTotal(dictionary, 10);
  test::addPattern(dictionary, {{1}}, 5);
  dictionary.reduceAll(3.0);  // minSupport 0.3
  EXPECT_NE(Export(dictionary, 0.1).find("minimumSupport=\"0.3\""),
            std::string::npos);
  EXPECT_NE(Export(dictionary, 0.5).find("minimumSupport=\"0.5\""),
            std::string::npos);
}

// Levels behind the first empty one are not part of the lattice.
TEST(LatticeExportTest, LevelsStopAtTheFirstEmptyLevel) {
  SequenceDictionary dictionary(5);
  test::SetTotal(dictionary, 4);
  test::addPattern(dictionary, {{1}}, 3);
  test::addPattern(dictionary, {{1}, {2}, {3}}, 2);  // level 2 is empty
  const std::string document = Export(dictionary, 0.0);
  EXPECT_EQ(test::Occurrences(document, "<LatticeLevel"), 2);
  EXPECT_NE(document.find("maxSequenceSize=\"1\""), std::string::npos);
  EXPECT_NE(document.find("numberOfSequences=\"2\"/>"), std::string::npos);
}

// A set that is not a stored one-set pattern has no number.
TEST(LatticeExportTest, SetOfAPrunedPatternIsReferredToAsMinusOne) {
  SequenceDictionary dictionary(4);
  test::SetTotal(dictionary, 4);
  test::addPattern(dictionary, {{1}}, 3);
  test::addPattern(dictionary, {{1}, {2}}, 2);
  const std::string document = Export(dictionary, 0.0);
  EXPECT_NE(document.find("<ItemsetRef itemsetRef=\"1\"/>\n"
                          "        <ItemsetRef itemsetRef=\"-1\"/>"),
            std::string::npos)
      << document;
}

TEST(LatticeExportTest, MissingEmptyPatternWritesNothing) {
  SequenceDictionary dictionary(3);
  test::addPattern(dictionary, {{1}}, 3);
  dictionary.getLevel(0)->clear();
  std::ostringstream out;
  const auto status = dictionary.ExportLatticeXML(out, 0.0);
  EXPECT_EQ(status.GetCode(), KvCommon_850::kStatusFailure);
  EXPECT_EQ(out.str(), "");
}

TEST(LatticeExportTest, PatternWithoutCounterWritesNothing) {
  SequenceDictionary dictionary(3);
  test::SetTotal(dictionary, 4);
  int one[] = {1, 7};
  dictionary.getLevel(1)->put(new NTSequence(one), nullptr);
  std::ostringstream out;
  EXPECT_EQ(dictionary.ExportLatticeXML(out, 0.0).GetCode(),
            KvCommon_850::kStatusFailure);
  EXPECT_EQ(out.str(), "");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
