// Runs the seqlattice executable for end-to-end tests: each test gets a fresh
// working directory for its input and output files, and run() returns the
// exit code and everything written to standard output and standard error.
#ifndef SEQLATTICE_TESTS_CLI_TEST_UTIL_H_
#define SEQLATTICE_TESTS_CLI_TEST_UTIL_H_

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// A purchase log in CSV, the shared input of the mining and export tests:
// four customers, a then b for two of them, a and c together once, b alone.
inline constexpr char kOrders[] =
    "customer,time,item\n"
    "c1,1,a\n"
    "c1,2,b\n"
    "c2,1,a\n"
    "c2,3,b\n"
    "c3,1,a\n"
    "c3,1,c\n"
    "c4,2,b\n";

// The header line of "rules --format csv".
inline constexpr char kRulesCsvHeader[] =
    "rank,antecedent,consequent,support,confidence,cause,lift,leverage,"
    "conviction\n";

struct CliRun {
  int exitCode;
  std::string out;
  std::string err;
};

inline std::string shellQuoted(const std::string& text) {
  std::string quoted = "'";
  for (char c : text) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

class CliTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = ::testing::TempDir() + "seqlattice_cli_XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    root_ = name.data();
    std::filesystem::create_directory(root_ / "work");
  }

  void TearDown() override { std::filesystem::remove_all(root_); }

  // A file's path in the working directory of the runs.
  std::string path(const std::string& name) const {
    return (root_ / "work" / name).string();
  }

  void writeFile(const std::string& name, const std::string& content) const {
    std::ofstream out(path(name), std::ios::binary);
    out << content;
  }

  std::string readFile(const std::string& name) const {
    std::ifstream in(path(name), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }

  // The names in the working directory, sorted.
  std::vector<std::string> listWork() const {
    std::vector<std::string> names;
    for (const auto& entry :
         std::filesystem::directory_iterator(root_ / "work")) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  // Runs the tool with args in the working directory.
  CliRun run(const std::vector<std::string>& args) const {
    std::string command = "cd " + shellQuoted((root_ / "work").string()) +
                          " && " + shellQuoted(SEQLATTICE_CLI);
    for (const std::string& arg : args) command += " " + shellQuoted(arg);
    std::string out = (root_ / "stdout").string();
    std::string err = (root_ / "stderr").string();
    command +=
        " >" + shellQuoted(out) + " 2>" + shellQuoted(err) + " </dev/null";
    int status = std::system(command.c_str());
    CliRun result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.out = slurp(out);
    result.err = slurp(err);
    return result;
  }

  // A successful run's standard output; nothing on standard error.
  std::string output(const std::vector<std::string>& args) const {
    CliRun result = run(args);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.err, "");
    return result.out;
  }

 private:
  static std::string slurp(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }

  std::filesystem::path root_;
};

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_TESTS_CLI_TEST_UTIL_H_
