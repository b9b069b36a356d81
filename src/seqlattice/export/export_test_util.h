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

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/rules/seqassociationrule.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace export_test {

using Sets = std::vector<std::vector<int>>;
using SEQUENCE_NAMESPACE_800::SeqAssociationRule;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;
using SEQUENCE_NAMESPACE_800::TimedItemSet;

// A Sequence whose set k has the time k + 1 (times must not matter).
inline Sequence MakeSequence(const Sets& sets) {
  Sequence sequence;
  for (std::size_t k = 0; k < sets.size(); ++k) {
    TimedItemSet set(static_cast<int>(sets[k].size()),
                     static_cast<double>(k + 1));
    for (int item : sets[k]) set.AddItem(item);
    sequence.AddTimedItemSet(&set);
  }
  return sequence;
}

inline SeqAssociationRule MakeRule(const Sets& antecedent,
                                   const Sets& consequent, int joinType = 1,
                                   double support = 0.5,
                                   double confidence = 0.5) {
  return SeqAssociationRule(MakeSequence(antecedent), MakeSequence(consequent),
                            support, confidence, 0.5, joinType);
}

// Stores the pattern with the given count.
inline void AddPattern(SequenceDictionary& dictionary, const Sets& sets,
                       int count) {
  std::vector<std::vector<int>> rows;
  std::vector<int*> pointers;
  for (const std::vector<int>& set : sets) {
    std::vector<int> row(1, static_cast<int>(set.size()));
    row.insert(row.end(), set.begin(), set.end());
    rows.push_back(row);
  }
  for (std::vector<int>& row : rows) pointers.push_back(row.data());
  SequenceCounter counter(0, count, nullptr);
  dictionary.addSequence(pointers.data(), static_cast<int>(rows.size()),
                         &counter);
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
  AddPattern(*dictionary, {{10}}, 6);
  AddPattern(*dictionary, {{20}}, 5);
  AddPattern(*dictionary, {{30}}, 4);
  AddPattern(*dictionary, {{10, 20}}, 3);
  AddPattern(*dictionary, {{10}, {20}}, 4);
  AddPattern(*dictionary, {{10}, {30}}, 2);
  AddPattern(*dictionary, {{20}, {30}}, 3);
  AddPattern(*dictionary, {{10}, {20}, {30}}, 2);
  AddPattern(*dictionary, {{10, 20}, {30}}, 2);
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

}  // namespace export_test

#endif  // SEQLATTICE_EXPORT_EXPORT_TEST_UTIL_H_
