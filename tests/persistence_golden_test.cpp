// A small dictionary saved in both formats must give the files kept in
// tests/data byte for byte, and those files must load back into it.
// Run with SEQLATTICE_UPDATE_GOLDEN=1 to rewrite the files after a
// deliberate format change.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>

#include "seqlattice/dictionary/dictionary_test_util.h"
#include "seqlattice/io/io_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

const std::string kDataDir =
    std::string(SEQLATTICE_SOURCE_DIR) + "/tests/data/";

// Four levels, N = 6, adjacency sets on the patterns that extend to others,
// statistics on one counter, and all four doubles set.
std::unique_ptr<SequenceDictionary> goldenDictionary() {
  auto dictionary =
      std::make_unique<SequenceDictionary>(test::smallSettings(4));
  for (int i = 0; i < 6; ++i) dictionary->incrementCount(nullptr, 0);
  test::addPattern(*dictionary, {{1}}, 5, 1);
  test::addPattern(*dictionary, {{2}}, 4, 2);
  test::addPattern(*dictionary, {{3}}, 3, 4);
  test::addPattern(*dictionary, {{1, 2}}, 2, 3, 1);
  test::addPattern(*dictionary, {{1}, {2}}, 3, 5);
  test::addPattern(*dictionary, {{2}, {3}}, 3, 6);
  test::addPattern(*dictionary, {{1}, {2}, {3}}, 2, 7, 2);
  test::counterOf(*dictionary, {{1}})->addAdjacentItem(2, 0);
  test::counterOf(*dictionary, {{1}})->addAdjacentItem(2, 1);
  test::counterOf(*dictionary, {{2}})->addAdjacentItem(1, 0);
  test::counterOf(*dictionary, {{2}})->addAdjacentItem(1, 1);
  test::counterOf(*dictionary, {{2}})->addAdjacentItem(3, 1);
  test::counterOf(*dictionary, {{1}, {2}})->addAdjacentItem(3, 3);
  test::counterOf(*dictionary, {{2}, {3}})->addAdjacentItem(1, 1);
  auto* bucket = new StatsBucket();
  bucket->InitialGap(1.5);
  bucket->UpdateGap(0.25);
  bucket->UpdateGap(4.0);
  test::counterOf(*dictionary, {{1}, {2}})->setStatsBucket(bucket);
  dictionary->reduceAll(2.0);  // removes nothing; minSupport = 2 / 6
  dictionary->setSlidingWindow(30.0);
  dictionary->setMinGap(0.5);
  dictionary->setMaxGap(7.25);
  return dictionary;
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  EXPECT_TRUE(in.good()) << path;
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// Saves the golden dictionary with `save` and compares it with the file;
// then loads the file with `load` and compares the result with the
// dictionary.
template <typename Save, typename Load>
void expectGoldenFile(const std::string& name, Save save, Load load) {
  const std::unique_ptr<SequenceDictionary> dictionary = goldenDictionary();
  const std::string path = kDataDir + name;
  if (std::getenv("SEQLATTICE_UPDATE_GOLDEN") != nullptr) {
    std::ofstream(path, std::ios::binary) << save(*dictionary);
  }
  const std::string golden = readFile(path);
  EXPECT_EQ(save(*dictionary), golden) << name;

  test::ScratchFile file;
  file.write(golden);
  SequenceDictionary loaded;
  ASSERT_EQ(load(file, loaded), test::Outcome::kLoaded);
  test::expectLoadedAs(*dictionary, loaded, 4);
}

TEST(PersistenceGoldenTest, BinaryFileMatchesAndLoads) {
  expectGoldenFile("small_dictionary.bin", test::saveBinary, test::loadBinary);
}

TEST(PersistenceGoldenTest, XMLFileMatchesAndLoads) {
  expectGoldenFile(
      "small_dictionary.xml", test::saveXML,
      [](const test::ScratchFile& file, SequenceDictionary& loaded) {
        return test::loadXML(file, loaded);
      });
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
