// mine --patterns-only: the frequent patterns streamed to a file instead of a
// model, in SPMF's output form or as JSON lines.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "cli_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

using Counts = std::map<std::string, long>;

// A pattern's item sets as text, "a,b;c"; numeric items as their digits.
std::string patternText(const nlohmann::json& sets) {
  std::string text;
  for (const auto& set : sets) {
    if (!text.empty()) text += ";";
    std::string items;
    for (const auto& item : set) {
      if (!items.empty()) items += ",";
      items += item.is_string() ? item.get<std::string>() : item.dump();
    }
    text += items;
  }
  return text;
}

// Pattern text to count, from --patterns-only JSON lines.
Counts countsOfLines(const std::string& lines) {
  Counts counts;
  std::istringstream in(lines);
  std::string line;
  while (std::getline(in, line)) {
    nlohmann::json record = nlohmann::json::parse(line);
    counts[patternText(record["sequence"])] = record["freq"].get<long>();
  }
  return counts;
}

// The same, from `patterns --format json` of a model.
Counts countsOfModel(const std::string& json) {
  Counts counts;
  for (const auto& record : nlohmann::json::parse(json)) {
    counts[patternText(record["pattern"])] = record["count"].get<long>();
  }
  return counts;
}

class PatternsOnlyTest : public test::CliTest {
 protected:
  // Mines `input` both ways and checks that the streamed patterns are the
  // model's, pattern for pattern and count for count.
  void expectSameAsModel(const std::string& input,
                         const std::string& minSupport) {
    test::CliRun streamed = run({"mine", input, "--min-support", minSupport,
                                 "--patterns-only", "p.jsonl"});
    ASSERT_EQ(streamed.exitCode, 0) << streamed.err;
    test::CliRun mined =
        run({"mine", input, "--min-support", minSupport, "-o", "m.model"});
    ASSERT_EQ(mined.exitCode, 0) << mined.err;
    test::CliRun listed = run({"patterns", "m.model", "--format", "json"});
    ASSERT_EQ(listed.exitCode, 0) << listed.err;
    Counts fromModel = countsOfModel(listed.out);
    EXPECT_FALSE(fromModel.empty());
    EXPECT_EQ(countsOfLines(readFile("p.jsonl")), fromModel);
  }
};

constexpr char kSmall[] =
    "1 -1 2 -1 -2\n"
    "1 -1 2 -1 -2\n"
    "2 -1 1 -1 -2\n";

TEST_F(PatternsOnlyTest, SpmfLinesCarryItemsSetsAndSupport) {
  writeFile("small.txt", kSmall);
  test::CliRun result = run({"mine", "small.txt", "--min-support", "2",
                             "--patterns-only", "small.patterns"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(readFile("small.patterns"),
            "1 -1 #SUP: 3\n"
            "2 -1 #SUP: 3\n"
            "1 -1 2 -1 #SUP: 2\n");
  EXPECT_NE(result.out.find("pattern file  small.patterns (spmf)\n"),
            std::string::npos);
  EXPECT_NE(result.out.find("patterns      3 of at most 9 items\n"),
            std::string::npos);
  // No model, and no temporary file, is left beside the patterns.
  EXPECT_EQ(listWork(),
            (std::vector<std::string>{"small.patterns", "small.txt"}));
}

TEST_F(PatternsOnlyTest, JsonLinesByExtensionOrOption) {
  writeFile("small.txt", kSmall);
  ASSERT_EQ(run({"mine", "small.txt", "--min-support", "2", "--patterns-only",
                 "small.jsonl"})
                .exitCode,
            0);
  const std::string expected =
      "{\"sequence\":[[1]],\"freq\":3}\n"
      "{\"sequence\":[[2]],\"freq\":3}\n"
      "{\"sequence\":[[1],[2]],\"freq\":2}\n";
  EXPECT_EQ(readFile("small.jsonl"), expected);
  ASSERT_EQ(run({"mine", "small.txt", "--min-support", "2", "--patterns-only",
                 "small.out", "--patterns-format", "json"})
                .exitCode,
            0);
  EXPECT_EQ(readFile("small.out"), expected);
}

TEST_F(PatternsOnlyTest, TextLabelsAreDeclaredInSpmfAndQuotedInJson) {
  writeFile("orders.csv",
            "customer,time,item\n"
            "c1,1,tea\nc1,2,\"cup, large\"\n"
            "c2,1,tea\nc2,2,\"cup, large\"\n");
  ASSERT_EQ(run({"mine", "orders.csv", "--min-support", "2", "--patterns-only",
                 "p.txt"})
                .exitCode,
            0);
  EXPECT_EQ(readFile("p.txt"),
            "@CONVERTED_FROM_TEXT\n"
            "@ITEM=0=cup, large\n"
            "@ITEM=1=tea\n"
            "0 -1 #SUP: 2\n"
            "1 -1 #SUP: 2\n"
            "1 -1 0 -1 #SUP: 2\n");
  ASSERT_EQ(run({"mine", "orders.csv", "--min-support", "2", "--patterns-only",
                 "p.json"})
                .exitCode,
            0);
  EXPECT_EQ(readFile("p.json"),
            "{\"sequence\":[[\"cup, large\"]],\"freq\":2}\n"
            "{\"sequence\":[[\"tea\"]],\"freq\":2}\n"
            "{\"sequence\":[[\"tea\"],[\"cup, large\"]],\"freq\":2}\n");
}

TEST_F(PatternsOnlyTest, NeedsOneOutputAndNoModelOptions) {
  writeFile("small.txt", kSmall);
  test::CliRun none = run({"mine", "small.txt"});
  EXPECT_EQ(none.exitCode, 2);
  EXPECT_NE(none.err.find("--output or --patterns-only is required"),
            std::string::npos);
  test::CliRun both =
      run({"mine", "small.txt", "-o", "m.model", "--patterns-only", "p.txt"});
  EXPECT_EQ(both.exitCode, 2);
  EXPECT_EQ(
      run({"mine", "small.txt", "--patterns-only", "p.txt", "--xml"}).exitCode,
      2);
  EXPECT_EQ(
      run({"mine", "small.txt", "-o", "m.model", "--patterns-format", "json"})
          .exitCode,
      2);
  EXPECT_EQ(listWork(), (std::vector<std::string>{"small.txt"}));
}

TEST_F(PatternsOnlyTest, SameCountsAsTheModelOnTheSample) {
  expectSameAsModel(
      std::string(SEQLATTICE_SOURCE_DIR) + "/data/sample/orders.csv", "0.03");
}

TEST_F(PatternsOnlyTest, SameCountsAsTheModelOnAPublicDatabase) {
  std::filesystem::path sign =
      std::filesystem::path(SEQLATTICE_SOURCE_DIR) / "../shared/data/SIGN.txt";
  if (!std::filesystem::exists(sign)) {
    GTEST_SKIP() << "../shared/data/SIGN.txt is absent beside the repository";
  }
  expectSameAsModel(sign.string(), "0.3");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
