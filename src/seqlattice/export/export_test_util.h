// Helpers shared by the export tests: a dictionary filled from patterns
// written as nested vectors ({{10, 20}, {30}} stands for (10 20)(30)), the
// small model that the golden documents describe, rules, and xmllint runs.
#ifndef SEQLATTICE_EXPORT_EXPORT_TEST_UTIL_H_
#define SEQLATTICE_EXPORT_EXPORT_TEST_UTIL_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/rules/seqassociationrule.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

inline SeqAssociationRule MakeRule(const Sets& antecedent,
                                   const Sets& consequent, int joinType = 1,
                                   double support = 0.5,
                                   double confidence = 0.5) {
  return SeqAssociationRule(MakeSequence(antecedent), MakeSequence(consequent),
                            support, confidence, 0.5, joinType);
}

// N, the count of the empty pattern.
inline void SetTotal(SequenceDictionary& dictionary, int n) {
  dictionary.getLevel0Descriptor()->setCount(n);
}

// The model the golden documents describe: N = 10 over the items 10, 20 and
// 30, with minimum support 0.2, time window 7 and gaps 1 and 30:
//   (10):6 (20):5 (30):4
//   (10 20):3 (10)(20):4 (10)(30):2 (20)(30):3
//   (10)(20)(30):2 (10 20)(30):2
inline std::unique_ptr<SequenceDictionary> SampleDictionary() {
  std::unique_ptr<SequenceDictionary> dictionary(new SequenceDictionary(5));
  SetTotal(*dictionary, 10);
  addPattern(*dictionary, {{10}}, 6);
  addPattern(*dictionary, {{20}}, 5);
  addPattern(*dictionary, {{30}}, 4);
  addPattern(*dictionary, {{10, 20}}, 3);
  addPattern(*dictionary, {{10}, {20}}, 4);
  addPattern(*dictionary, {{10}, {30}}, 2);
  addPattern(*dictionary, {{20}, {30}}, 3);
  addPattern(*dictionary, {{10}, {20}, {30}}, 2);
  addPattern(*dictionary, {{10, 20}, {30}}, 2);
  dictionary->reduceAll(2.0);  // removes nothing, sets minSupport 0.2
  dictionary->setSlidingWindow(7.0);
  dictionary->setMinGap(1.0);
  dictionary->setMaxGap(30.0);
  EXPECT_TRUE(dictionary->buildLattice().IsOK());
  return dictionary;
}

inline std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

inline std::string DataPath(const std::string& name) {
  return std::string(SEQLATTICE_SOURCE_DIR) + "/tests/data/export/" + name;
}

// Number of non-overlapping occurrences of needle in text.
inline int Occurrences(const std::string& text, const std::string& needle) {
  int n = 0;
  for (std::size_t at = text.find(needle); at != std::string::npos;
       at = text.find(needle, at + needle.size())) {
    ++n;
  }
  return n;
}

struct XmllintRun {
  int exitCode;
  std::string messages;  // stdout and stderr, the file's path as "DOC"
};

inline bool HaveXmllint() {
  return std::system("xmllint --version >/dev/null 2>&1") == 0;
}

// Runs "xmllint --noout <options> <file holding document>". The file gets a
// name of its own, since test processes run side by side.
inline XmllintRun RunXmllint(const std::string& document,
                             const std::string& options) {
  std::string path = testing::TempDir() + "seqlattice_export_XXXXXX";
  const int fd = mkstemp(path.data());
  if (fd < 0) return XmllintRun{-1, "cannot create a temporary file"};
  close(fd);
  {
    std::ofstream out(path, std::ios::binary);
    out << document;
  }
  const std::string command =
      "xmllint --noout " + options + " '" + path + "' 2>&1";
  XmllintRun run{-1, ""};
  if (FILE* pipe = popen(command.c_str(), "r")) {
    char buffer[4096];
    std::size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
      run.messages.append(buffer, n);
    }
    run.exitCode = pclose(pipe);
  }
  std::remove(path.c_str());
  for (std::size_t at = run.messages.find(path); at != std::string::npos;
       at = run.messages.find(path, at)) {
    run.messages.replace(at, path.size(), "DOC");
  }
  return run;
}

// Parses the document back; fails the test with xmllint's messages.
inline void ExpectWellFormed(const std::string& document) {
  ASSERT_TRUE(HaveXmllint()) << "xmllint (libxml2-utils) is not installed";
  const XmllintRun run = RunXmllint(document, "");
  EXPECT_EQ(run.exitCode, 0) << run.messages;
  EXPECT_EQ(run.messages, "");
}

// The PMML 3.2 schema: $SEQLATTICE_PMML_SCHEMA when set, otherwise
// shared/pmml/pmml-3-2.xsd beside the repository.
inline std::string SchemaPath() {
  if (const char* path = std::getenv("SEQLATTICE_PMML_SCHEMA")) return path;
  return std::string(SEQLATTICE_SOURCE_DIR) + "/../shared/pmml/pmml-3-2.xsd";
}

inline bool FileExists(const std::string& path) {
  return std::ifstream(path).good();
}

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_EXPORT_EXPORT_TEST_UTIL_H_
