#include "seqlattice/support/xmldocument.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {

namespace {

constexpr const char* kDeclaration =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

std::string Write(const KvXML_850::XMLDocType* docType,
                  const KvXML_850::XMLElement* root, bool indent = true) {
  std::ostringstream out;
  EXPECT_TRUE(KvXML_850::WriteTree(out, docType, root, indent));
  return out.str();
}

// The text of one number attribute as the writer spells it.
std::string NumberText(double value) {
  std::unique_ptr<KvXML_850::XMLElement> element(
      KvXML_850::XMLElement::Create("E"));
  element->AddAttribute("v", value);
  return element->GetAttributes().at(0).second;
}

TEST(XMLDocumentTest, WritesDeclarationDocTypeAndIndentedTree) {
  std::unique_ptr<KvXML_850::XMLDocType> docType(
      KvXML_850::XMLDocType::Create("PMML", "sequentialmodel.dtd", 0));
  std::unique_ptr<KvXML_850::XMLElement> root(
      KvXML_850::XMLElement::Create("PMML"));
  root->AddAttribute("version", "3.2");
  KvXML_850::XMLElement* header =
      root->AddChild(KvXML_850::XMLElement::Create("Header"));
  header->AddAttribute("copyright", "c");
  KvXML_850::XMLElement* application =
      header->AddChild(KvXML_850::XMLElement::Create("Application"));
  application->AddAttribute("name", "n");
  application->AddAttribute("version", "1.2.1");
  KvXML_850::XMLElement* dictionary =
      root->AddChild(KvXML_850::XMLElement::Create("DataDictionary"));
  dictionary->AddAttribute("numberOfFields", 3);
  root->AddChild(KvXML_850::XMLElement::Create("Empty"));
  EXPECT_EQ(Write(docType.get(), root.get()),
            std::string(kDeclaration) +
                "<!DOCTYPE PMML SYSTEM \"sequentialmodel.dtd\">\n"
                "<PMML version=\"3.2\">\n"
                "  <Header copyright=\"c\">\n"
                "    <Application name=\"n\" version=\"1.2.1\"/>\n"
                "  </Header>\n"
                "  <DataDictionary numberOfFields=\"3\"/>\n"
                "  <Empty/>\n"
                "</PMML>\n");
}

TEST(XMLDocumentTest, DeepNestingIndentsTwoSpacesPerLevel) {
  std::unique_ptr<KvXML_850::XMLElement> root(
      KvXML_850::XMLElement::Create("L0"));
  KvXML_850::XMLElement* at = root.get();
  for (int level = 1; level <= 4; ++level) {
    at = at->AddChild(
        KvXML_850::XMLElement::Create("L" + std::to_string(level)));
  }
  at->AddAttribute("level", 4);
  EXPECT_EQ(Write(nullptr, root.get()), std::string(kDeclaration) +
                                            "<L0>\n"
                                            "  <L1>\n"
                                            "    <L2>\n"
                                            "      <L3>\n"
                                            "        <L4 level=\"4\"/>\n"
                                            "      </L3>\n"
                                            "    </L2>\n"
                                            "  </L1>\n"
                                            "</L0>\n");
}

TEST(XMLDocumentTest, WithoutIndentTheTreeIsOneLine) {
  std::unique_ptr<KvXML_850::XMLDocType> docType(
      KvXML_850::XMLDocType::Create("A", "a.dtd", 0));
  std::unique_ptr<KvXML_850::XMLElement> root(
      KvXML_850::XMLElement::Create("A"));
  root->AddChild(KvXML_850::XMLElement::Create("B"))
      ->AddChild(KvXML_850::XMLElement::Create("C"));
  root->AddChild(KvXML_850::XMLElement::Create("D"))->AddAttribute("x", "1");
  EXPECT_EQ(Write(docType.get(), root.get(), false),
            std::string(kDeclaration) +
                "<!DOCTYPE A SYSTEM \"a.dtd\">\n"
                "<A><B><C/></B><D x=\"1\"/></A>\n");
}

TEST(XMLDocumentTest, AttributesKeepTheOrderOfAdding) {
  std::unique_ptr<KvXML_850::XMLElement> element(
      KvXML_850::XMLElement::Create("Sequence"));
  element->AddAttribute("id", 1);
  element->AddAttribute("support", 0.25);
  element->AddAttribute("occurrence", 2);
  element->AddAttribute("numberOfSets", 1);
  element->AddAttribute("a", "text");
  EXPECT_EQ(Write(nullptr, element.get()),
            std::string(kDeclaration) +
                "<Sequence id=\"1\" support=\"0.25\" occurrence=\"2\" "
                "numberOfSets=\"1\" a=\"text\"/>\n");
}

TEST(XMLDocumentTest, AddingANameAgainReplacesItsValueInPlace) {
  std::unique_ptr<KvXML_850::XMLElement> element(
      KvXML_850::XMLElement::Create("E"));
  element->AddAttribute("a", "1");
  element->AddAttribute("b", "2");
  element->AddAttribute("a", 3.5);
  EXPECT_EQ(Write(nullptr, element.get()),
            std::string(kDeclaration) + "<E a=\"3.5\" b=\"2\"/>\n");
}

TEST(XMLDocumentTest, AttributeValuesAreEscaped) {
  std::unique_ptr<KvXML_850::XMLElement> element(
      KvXML_850::XMLElement::Create("E"));
  element->AddAttribute("markup", "a&b<c>d\"e'f&amp;");
  element->AddAttribute("space", "tab\tline\nreturn\r end");
  element->AddAttribute("control", std::string("x\x01y\x1fz\0w", 7));
  element->AddAttribute("utf8", "caf\xC3\xA9 \xE2\x82\xAC");
  EXPECT_EQ(Write(nullptr, element.get()),
            std::string(kDeclaration) +
                "<E markup=\"a&amp;b&lt;c&gt;d&quot;e&apos;f&amp;amp;\" "
                "space=\"tab&#9;line&#10;return&#13; end\" "
                "control=\"x\xEF\xBF\xBDy\xEF\xBF\xBDz\xEF\xBF\xBDw\" "
                "utf8=\"caf\xC3\xA9 \xE2\x82\xAC\"/>\n");
}

// Output of a shell command and whether it exited with status 0.
bool RunCommand(const std::string& command, std::string* output) {
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return false;
  char buf[4096];
  for (std::size_t n; (n = fread(buf, 1, sizeof buf, pipe)) > 0;) {
    output->append(buf, n);
  }
  return pclose(pipe) == 0;
}

// An XML parser reads back every attribute value exactly as it was added.
TEST(XMLDocumentTest, AParserReadsTheEscapedValuesBack) {
  const std::vector<std::string> values = {
      "a&b<c>d\"e'f",
      "&amp;&lt;",
      "tab\tline\nreturn\r",
      "  two  spaces ",
      "caf\xC3\xA9",
      "]]>",
      "",
      "<!-- -->",
  };
  std::unique_ptr<KvXML_850::XMLDocType> docType(
      KvXML_850::XMLDocType::Create("R", "r.dtd", 0));
  std::unique_ptr<KvXML_850::XMLElement> root(
      KvXML_850::XMLElement::Create("R"));
  for (const auto& value : values) {
    root->AddChild(KvXML_850::XMLElement::Create("E"))
        ->AddAttribute("v", value);
  }
  const std::string path =
      testing::TempDir() + std::to_string(getpid()) + "_xmldocument_test.xml";
  {
    std::ofstream out(path);
    ASSERT_TRUE(KvXML_850::WriteTree(out, docType.get(), root.get(), true));
  }
  std::string errors;
  ASSERT_TRUE(RunCommand("xmllint --noout " + path + " 2>&1", &errors))
      << errors;
  EXPECT_EQ(errors, "");
  for (std::size_t k = 0; k < values.size(); ++k) {
    std::string read;
    ASSERT_TRUE(RunCommand("xmllint --xpath 'string(/R/E[" +
                               std::to_string(k + 1) + "]/@v)' " + path,
                           &read));
    EXPECT_EQ(read, values[k] + "\n") << k;  // xmllint ends with a newline
  }
  std::remove(path.c_str());
}

TEST(XMLDocumentTest, WholeNumbersWithoutDecimalPoint) {
  EXPECT_EQ(NumberText(3), "3");
  EXPECT_EQ(NumberText(0), "0");
  EXPECT_EQ(NumberText(-0.0), "0");
  EXPECT_EQ(NumberText(-7), "-7");
  EXPECT_EQ(NumberText(123456789), "123456789");
  EXPECT_EQ(NumberText(1e15), "1000000000000000");
  EXPECT_EQ(NumberText(9007199254740992.0), "9007199254740992");
  EXPECT_EQ(NumberText(-9007199254740992.0), "-9007199254740992");
}

TEST(XMLDocumentTest, OtherNumbersInShortestExactForm) {
  EXPECT_EQ(NumberText(0.25), "0.25");
  EXPECT_EQ(NumberText(1e-7), "1e-07");
  EXPECT_EQ(NumberText(0.1), "0.1");
  EXPECT_EQ(NumberText(-1.5), "-1.5");
  EXPECT_EQ(NumberText(2.0 / 3), "0.6666666666666666");
  EXPECT_EQ(NumberText(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(NumberText(5e-324), "5e-324");
  EXPECT_EQ(NumberText(1e300), "1e+300");
  // Whole numbers beyond 2^53 are not all exact integers in a double.
  EXPECT_EQ(NumberText(9007199254740994.0), "9007199254740994");
  EXPECT_EQ(NumberText(1e16), "1e+16");
  EXPECT_EQ(NumberText(std::numeric_limits<double>::max()),
            "1.7976931348623157e+308");
}

TEST(XMLDocumentTest, NonFiniteNumbers) {
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(NumberText(inf), "INF");
  EXPECT_EQ(NumberText(-inf), "-INF");
  EXPECT_EQ(NumberText(std::numeric_limits<double>::quiet_NaN()), "NaN");
  EXPECT_EQ(NumberText(-std::numeric_limits<double>::quiet_NaN()), "NaN");
}

TEST(XMLDocumentTest, NumbersReadBackExactly) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> unit(0, 1);
  for (int i = 0; i < 20000; ++i) {
    std::uint64_t bits = random();
    double value;
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value)) continue;
    for (double v : {value, unit(random), std::round(unit(random) * 1e6)}) {
      const std::string text = NumberText(v);
      ASSERT_EQ(std::strtod(text.c_str(), nullptr), v) << text;
    }
  }
}

TEST(XMLDocumentTest, DocTypeQuotesTheSystemIdentifier) {
  std::unique_ptr<KvXML_850::XMLDocType> plain(
      KvXML_850::XMLDocType::Create("R", "r.dtd", 0));
  EXPECT_EQ(plain->GetRootName(), "R");
  EXPECT_EQ(plain->GetSystemId(), "r.dtd");
  std::unique_ptr<KvXML_850::XMLDocType> quoted(
      KvXML_850::XMLDocType::Create("R", "a\"b", 0));
  std::unique_ptr<KvXML_850::XMLDocType> both(
      KvXML_850::XMLDocType::Create("R", "a\"b'c", 0));
  EXPECT_EQ(Write(quoted.get(), nullptr),
            std::string(kDeclaration) + "<!DOCTYPE R SYSTEM 'a\"b'>\n");
  EXPECT_EQ(Write(both.get(), nullptr),
            std::string(kDeclaration) + "<!DOCTYPE R SYSTEM \"a%22b'c\">\n");
}

TEST(XMLDocumentTest, WithoutDocTypeOrRoot) {
  EXPECT_EQ(Write(nullptr, nullptr), kDeclaration);
  EXPECT_EQ(Write(nullptr, nullptr, false), kDeclaration);
}

TEST(XMLDocumentTest, AddChildAdoptsAndReturnsTheChild) {
  std::unique_ptr<KvXML_850::XMLElement> root(
      KvXML_850::XMLElement::Create("R"));
  KvXML_850::XMLElement* child = KvXML_850::XMLElement::Create("C");
  EXPECT_EQ(root->AddChild(child), child);
  EXPECT_EQ(root->AddChild(nullptr), nullptr);
  ASSERT_EQ(root->GetChildren().size(), 1u);
  EXPECT_EQ(root->GetChildren()[0].get(), child);
  EXPECT_EQ(child->GetName(), "C");
  // Deleting the root releases the child: the leak checker sees to that.
}

TEST(XMLDocumentTest, LargeTreeIsWrittenWhole) {
  std::unique_ptr<KvXML_850::XMLElement> root(
      KvXML_850::XMLElement::Create("R"));
  std::string expected = std::string(kDeclaration) + "<R>\n";
  for (int i = 0; i < 5000; ++i) {
    KvXML_850::XMLElement* item =
        root->AddChild(KvXML_850::XMLElement::Create("Item"));
    item->AddAttribute("id", i);
    item->AddAttribute("value", i * 0.5);
    expected += "  <Item id=\"" + std::to_string(i) + "\" value=\"" +
                NumberText(i * 0.5) + "\"/>\n";
  }
  expected += "</R>\n";
  EXPECT_EQ(Write(nullptr, root.get()), expected);
}

TEST(XMLDocumentTest, ReportsAStreamThatFailed) {
  std::unique_ptr<KvXML_850::XMLElement> root(
      KvXML_850::XMLElement::Create("R"));
  std::ostringstream out;
  out.setstate(std::ios_base::badbit);
  EXPECT_FALSE(KvXML_850::WriteTree(out, nullptr, root.get(), true));
  EXPECT_EQ(out.str(), "");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
