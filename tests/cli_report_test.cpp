// End-to-end tests of "report" (the HTML model report) and of "export dot"'s
// rules graph, on a small model whose one label would end a script element
// if it were written unescaped. The page's behaviour in a browser is tested
// by tests/browser/.
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "cli_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

constexpr char kHostile[] = "</script><b>";

class CliReportTest : public test::CliTest {
 protected:
  // Five customers: pot then cups twice, tea and pot, and two who bought
  // kHostile twice.
  void SetUp() override {
    test::CliTest::SetUp();
    writeFile("shop.csv",
              "customer,time,item\n"
              "ann,1,pot\n"
              "ann,1,tea\n"
              "ann,2,cups\n"
              "bob,1,pot\n"
              "bob,3,cups\n"
              "cid,1,tea\n"
              "cid,2,pot\n"
              "dan,1,</script><b>\n"
              "dan,2,</script><b>\n"
              "eve,1,</script><b>\n"
              "eve,4,</script><b>\n");
    test::CliRun mined =
        run({"mine", "shop.csv", "-o", "shop.model", "--min-support", "2"});
    ASSERT_EQ(mined.exitCode, 0) << mined.err;
  }

  // The JSON document the page embeds.
  static nlohmann::json pageData(const std::string& page) {
    const std::string open =
        "<script type=\"application/json\" id=\"report-data\">";
    const std::size_t begin = page.find(open);
    if (begin == std::string::npos) return nullptr;
    const std::size_t end = page.find("</script>", begin);
    return nlohmann::json::parse(
        page.substr(begin + open.size(), end - begin - open.size()));
  }
};

TEST_F(CliReportTest, ThePageHoldsStyleScriptAndDataAndFetchesNothing) {
  EXPECT_EQ(output({"report", "shop.model", "-o", "shop.html"}), "");
  const std::string page = readFile("shop.html");
  EXPECT_EQ(page.rfind("<!DOCTYPE html>\n", 0), 0u);
  EXPECT_NE(page.find("<title>shop.model · model report</title>"),
            std::string::npos);
  EXPECT_NE(page.find("<style>/* The model report's style"), std::string::npos);
  EXPECT_NE(page.find("<script>// The model report's behaviour"),
            std::string::npos);
  EXPECT_EQ(page.find("{{"), std::string::npos);
  // Nothing loaded from elsewhere: no source, stylesheet or import.
  EXPECT_EQ(page.find(" src="), std::string::npos);
  EXPECT_EQ(page.find("<link"), std::string::npos);
  EXPECT_EQ(page.find("url("), std::string::npos);
  EXPECT_EQ(page.find("@import"), std::string::npos);
  // The label is data: it neither ends the script element nor adds a tag.
  EXPECT_EQ(page.find(kHostile), std::string::npos);
  EXPECT_EQ(page.rfind("</html>\n"), page.size() - 8);
}

TEST_F(CliReportTest, TheDataAreWhatInfoPatternsAndRulesShow) {
  const nlohmann::json data =
      pageData(output({"report", "shop.model", "--top-items", "2"}));
  EXPECT_EQ(data["title"], "shop.model");
  EXPECT_EQ(data["items"], nlohmann::json({"pot", kHostile, "cups"}));
  // pot by 3 customers, then the label and cups by 2 (ties by text).
  EXPECT_EQ(data["frequent"], nlohmann::json::parse("[[0,3,0.6],[1,2,0.4]]"));
  EXPECT_EQ(data["summary"][3], nlohmann::json::parse("[\"customers (N)\",5]"));
  EXPECT_EQ(data["rules"]["total"], 2);
  // Antecedent, consequent, support, confidence, cause, lift, time.
  EXPECT_EQ(data["rules"]["rows"],
            nlohmann::json::parse("[[[[1]],[[1]],0.4,1.0,1.0,2.5,null],"
                                  "[[[0]],[[2]],0.4,0.6667,1.0,1.6667,null]]"));
  EXPECT_EQ(data["hasTime"], false);
}

TEST_F(CliReportTest, TopBoundsTheRulesInThePage) {
  const nlohmann::json data = pageData(
      output({"report", "shop.model", "--top", "1", "--sort", "lift"}));
  EXPECT_EQ(data["rules"]["total"], 2);
  EXPECT_EQ(data["rules"]["rows"].size(), 1u);
  EXPECT_EQ(data["rules"]["rows"][0][5], 2.5);
}

// A model mined with gap statistics shows the times between its item sets as
// the rules' time to consequent (pot then cups: 1 apart for ann, 2 for bob);
// one without (above) has no such column.
TEST_F(CliReportTest, TheTimeToConsequentComesFromThePatternsGapStatistics) {
  test::CliRun mined = run({"mine", "shop.csv", "-o", "gaps.model",
                            "--min-support", "2", "--gap-stats"});
  ASSERT_EQ(mined.exitCode, 0) << mined.err;
  const nlohmann::json data = pageData(output({"report", "gaps.model"}));
  EXPECT_EQ(data["hasTime"], true);
  EXPECT_EQ(data["timeUnit"], "");
  std::map<std::string, nlohmann::json> timeTo;
  for (const auto& row : data["rules"]["rows"]) {
    timeTo[data["items"][row[1][0][0].get<int>()].get<std::string>()] = row[6];
  }
  EXPECT_EQ(timeTo["cups"], nlohmann::json::parse("[1.5,1,2]"));
  EXPECT_EQ(timeTo[kHostile], nlohmann::json::parse("[2,1,3]"));
}

TEST_F(CliReportTest, RulesGraph) {
  EXPECT_EQ(output({"export", "dot", "shop.model", "--rules"}),
            "digraph rules {\n"
            "  graph [rankdir=LR, size=\"7.5,10\", fontname=\"Helvetica\", "
            "labelloc=t, label=\"Rules of highest lift: 2 of 2\"];\n"
            "  node [shape=box, style=rounded, fontname=\"Helvetica\"];\n"
            "  edge [fontname=\"Helvetica\", fontsize=10, color=\"#1f5fa8\", "
            "labeldistance=2.5];\n"
            "  n1 [label=\"(</script><b>)\"];\n"
            "  n1 -> n1 [penwidth=6.00, label=\"2.50\"];\n"
            "  n2 [label=\"(pot)\"];\n"
            "  n3 [label=\"(cups)\"];\n"
            "  n2 -> n3 [penwidth=1.00, label=\"1.67\"];\n"
            "}\n");
}

TEST_F(CliReportTest, RulesGraphAroundAnItem) {
  EXPECT_EQ(
      output({"export", "dot", "shop.model", "--around", "cups", "--measure",
              "confidence"}),
      "digraph rules {\n"
      "  graph [rankdir=LR, size=\"7.5,10\", fontname=\"Helvetica\", "
      "labelloc=t, label=\"1 rule leads to cups, 0 follow it; the strongest "
      "by confidence\"];\n"
      "  node [shape=box, style=rounded, fontname=\"Helvetica\"];\n"
      "  edge [fontname=\"Helvetica\", fontsize=10, color=\"#1f5fa8\", "
      "labeldistance=2.5];\n"
      "  n1 [label=\"(pot)\"];\n"
      "  n2 [label=\"(cups)\", style=\"rounded,filled\", "
      "fillcolor=\"#0b4f8a\", fontcolor=white];\n"
      "  n1 -> n2 [penwidth=3.00, taillabel=\"0.67\"];\n"
      "}\n");
}

TEST_F(CliReportTest, RulesGraphTopAndMeasure) {
  const std::string graph = output({"export", "dot", "shop.model", "--rules",
                                    "--top", "1", "--measure", "support"});
  EXPECT_NE(graph.find("label=\"Rules of highest support: 1 of 2\""),
            std::string::npos)
      << graph;
  EXPECT_NE(graph.find("  n1 -> n1 [penwidth=3.00, label=\"0.40\"];\n}\n"),
            std::string::npos)
      << graph;
  test::CliRun result =
      run({"export", "dot", "shop.model", "--rules", "--measure", "leverage"});
  EXPECT_EQ(result.exitCode, 2);
}

TEST_F(CliReportTest, RulesGraphAroundAnUnknownItemIsAnError) {
  test::CliRun result =
      run({"export", "dot", "shop.model", "--around", "kettle"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "seqlattice: export: the model has no item \"kettle\"\n");
}

TEST_F(CliReportTest, ReportOfAMissingModelIsAnError) {
  test::CliRun result = run({"report", "none.model", "-o", "none.html"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "seqlattice: none.model: cannot open: No such file or directory\n");
  EXPECT_EQ(listWork(), (std::vector<std::string>{"shop.csv", "shop.model"}));
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
