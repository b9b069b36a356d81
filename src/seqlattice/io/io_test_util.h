// Helpers shared by the persistence tests: hand-made binary records, scratch
// files, saving and loading whole dictionaries, and descriptions of stored
// entries that compare patterns, counters, adjacency sets and statistics.
#ifndef SEQLATTICE_IO_IO_TEST_UTIL_H_
#define SEQLATTICE_IO_IO_TEST_UTIL_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/store/statsbucket.h"
#include "seqlattice/support/seqexceptions.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// Builds binary records byte by byte, in host order.
class Bytes {
 public:
  Bytes& text(const char* s, std::size_t n) {
    bytes_.append(s, n);
    return *this;
  }
  template <typename T>
  Bytes& raw(T value) {
    bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
    return *this;
  }
  Bytes& append(const Bytes& more) {
    bytes_ += more.bytes_;
    return *this;
  }
  Bytes& i32(int v) { return raw(v); }
  Bytes& i64(long v) { return raw(v); }
  Bytes& f64(double v) { return raw(v); }
  const std::string& str() const { return bytes_; }

 private:
  std::string bytes_;
};

// Settings with small tables, so that tests build dictionaries cheaply.
inline SeqDictionarySettings smallSettings(int nLevels) {
  SeqDictionarySettings s;
  s.level0Size = 2;
  s.level1Size = 3;
  s.level2Size = 5;
  s.level3Size = 7;
  s.level4Size = 11;
  s.level5Size = 13;
  s.level6Size = 17;
  s.level7Size = 19;
  s.higherLevelSize = 23;
  s.nLevels = nLevels;
  return s;
}

// The settings record: tag, then the sizes with nLevels before
// higherLevelSize.
inline Bytes& appendSettings(Bytes& bytes, const SeqDictionarySettings& s) {
  bytes.text("DS", 2);
  for (int v : {s.level0Size, s.level1Size, s.level2Size, s.level3Size,
                s.level4Size, s.level5Size, s.level6Size, s.level7Size,
                s.nLevels, s.higherLevelSize}) {
    bytes.i32(v);
  }
  return bytes;
}

// A file in memory (/dev/shm) where the machine offers it, else under the
// test's temporary directory; removed with the object. The corruption tests
// write thousands of them.
class ScratchFile {
 public:
  ScratchFile() {
    static std::atomic<int> next{0};
    static const std::string directory =
        ::access("/dev/shm", W_OK) == 0 ? "/dev/shm/" : ::testing::TempDir();
    path_ = directory + "seqlattice_io_" + std::to_string(::getpid()) + "_" +
            std::to_string(next++);
  }
  ~ScratchFile() { std::remove(path_.c_str()); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  const std::string& path() const { return path_; }
  void write(const std::string& bytes) const {
    std::ofstream(path_, std::ios::binary | std::ios::trunc)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  std::string read() const {
    std::ifstream in(path_, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
  }
  // Read-write binary stream over the file, as hosts open it for a save
  // (truncate) or a load.
  std::fstream openBinary(bool truncate) const {
    std::ios::openmode mode = std::ios::in | std::ios::out | std::ios::binary;
    if (truncate) mode |= std::ios::trunc;
    return std::fstream(path_, mode);
  }
  std::ifstream openText() const { return std::ifstream(path_); }

 private:
  std::string path_;
};

// What std::cout and std::cerr received while an action ran.
struct Printed {
  std::string out;
  std::string err;
};

template <typename Action>
Printed capturePrinted(Action action) {
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  action();
  Printed printed;
  printed.out = ::testing::internal::GetCapturedStdout();
  printed.err = ::testing::internal::GetCapturedStderr();
  return printed;
}

// Runs an action that must throw a new IOException; deletes it and returns
// what was printed.
template <typename Action>
Printed expectIOException(Action action) {
  bool thrown = false;
  Printed printed = capturePrinted([&] {
    try {
      action();
    } catch (SeqExceptions::IOException* e) {
      thrown = true;
      delete e;
    }
  });
  EXPECT_TRUE(thrown) << "no IOException* was thrown";
  return printed;
}

// A stream buffer that takes everything and keeps nothing.
class NullBuffer : public std::streambuf {
 protected:
  int overflow(int c) override { return c; }
  std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

// Sends std::cout and std::cerr nowhere while alive (for loops over
// thousands of corrupt files, whose messages are not the point).
class QuietStreams {
 public:
  QuietStreams()
      : out_(std::cout.rdbuf(nullptr)), err_(std::cerr.rdbuf(nullptr)) {}
  ~QuietStreams() {
    std::cout.clear();
    std::cerr.clear();
    std::cout.rdbuf(out_);
    std::cerr.rdbuf(err_);
  }
  QuietStreams(const QuietStreams&) = delete;
  QuietStreams& operator=(const QuietStreams&) = delete;

 private:
  std::streambuf* out_;
  std::streambuf* err_;
};

// The binary record an object writes, and the count it returns.
struct Written {
  std::string bytes;
  long count;
};

template <typename Object>
Written writeBinary(const Object& object) {
  ScratchFile file;
  long count;
  {
    std::fstream out = file.openBinary(true);
    count = object.writeObject(out);
  }
  return {file.read(), count};
}

// Reads a binary record from the bytes into the object; returns the count
// and, in *consumed when given, how many bytes the reader took.
template <typename Object>
long readBinary(const std::string& bytes, Object& object,
                long* consumed = nullptr) {
  ScratchFile file;
  file.write(bytes);
  std::fstream in = file.openBinary(false);
  const long count = object.readObject(in);
  if (consumed != nullptr) {
    in.clear();
    *consumed = static_cast<long>(in.tellg());
  }
  return count;
}

// Reads an XML element from the text into the object; returns the count.
template <typename Object>
long readXML(const std::string& text, Object& object) {
  ScratchFile file;
  file.write(text);
  std::ifstream in = file.openText();
  return object.readObjectXML(in);
}

inline std::string saveBinary(const SequenceDictionary& dictionary) {
  return writeBinary(dictionary).bytes;
}

inline std::string saveXML(const SequenceDictionary& dictionary) {
  std::ostringstream out;
  dictionary.writeObjectXML(out);
  return out.str();
}

// How a load ended.
enum class Outcome { kLoaded, kZero, kIOException };

inline Outcome loadBinary(const ScratchFile& file,
                          SequenceDictionary& dictionary) {
  std::fstream in = file.openBinary(false);
  try {
    dictionary.readObject(in);
    return Outcome::kLoaded;
  } catch (SeqExceptions::IOException* e) {
    delete e;
    return Outcome::kIOException;
  }
}

inline Outcome loadXML(const ScratchFile& file, SequenceDictionary& dictionary,
                       const char* version = nullptr) {
  std::ifstream in = file.openText();
  try {
    const long read = version == nullptr
                          ? dictionary.readObjectXML(in)
                          : dictionary.readObjectXML(in, version);
    return read == 0 ? Outcome::kZero : Outcome::kLoaded;
  } catch (SeqExceptions::IOException* e) {
    delete e;
    return Outcome::kIOException;
  }
}

inline std::string bitsOf(double v) {
  std::uint64_t bits;
  std::memcpy(&bits, &v, sizeof bits);
  return std::to_string(bits);
}

// Everything a stored pattern is: hash, word, sizes and items.
inline std::string describe(const NTSequence& key) {
  std::ostringstream text;
  key.display(text);
  text << "size " << key.size() << " sets " << key.getNSets();
  return text.str();
}

// Everything a counter is: its three numbers, its adjacency set (or that it
// has none) and its statistics bucket (or that it has none), doubles by bits.
inline std::string describe(const SequenceCounter* counter) {
  if (counter == nullptr) return "no counter";
  std::ostringstream text;
  text << counter->getCount() << " " << counter->getOrdinalOfEntry() << " "
       << counter->getMaxMissed();
  // A saved empty set comes back as none: both read "no pairs".
  if (counter->getAdjacentItems() == nullptr ||
      counter->getAdjacentItems()->empty()) {
    text << " no pairs";
  } else {
    text << " pairs";
    for (const auto& pair : *counter->getAdjacentItems()) {
      text << " " << pair.first << "/" << pair.second;
    }
  }
  if (const StatsBucket* bucket = counter->getStatsBucket()) {
    text << " stats " << bitsOf(bucket->GetNOfGaps()) << " "
         << bitsOf(bucket->GetSumOfGaps()) << " "
         << bitsOf(bucket->GetMinOfGaps()) << " "
         << bitsOf(bucket->GetMaxOfGaps());
  } else {
    text << " no stats";
  }
  return text.str();
}

// The entries of a table in iteration order.
inline std::vector<std::string> describe(const HashtableSQPair& table) {
  std::vector<std::string> entries;
  for (const ISQCPair& pair : table) {
    entries.push_back(describe(*pair.key) + " | " + describe(pair.value));
  }
  return entries;
}

// The keys of `saved`, in the order a load gives them: inserted one by one,
// in saved order, into a fresh table of the given capacity.
inline std::vector<std::string> loadOrder(const HashtableSQPair& saved,
                                          int capacity) {
  HashtableSQPair fresh(capacity);
  for (const ISQCPair& pair : saved) {
    fresh.putOverwrite(new NTSequence(*pair.key), nullptr);
  }
  std::vector<std::string> keys;
  for (const ISQCPair& pair : fresh) keys.push_back(describe(*pair.key));
  return keys;
}

inline std::vector<std::string> keysOf(const HashtableSQPair& table) {
  std::vector<std::string> keys;
  for (const ISQCPair& pair : table) keys.push_back(describe(*pair.key));
  return keys;
}

inline void expectSameSettings(const SeqDictionarySettings& a,
                               const SeqDictionarySettings& b) {
  EXPECT_EQ(a.level0Size, b.level0Size);
  EXPECT_EQ(a.level1Size, b.level1Size);
  EXPECT_EQ(a.level2Size, b.level2Size);
  EXPECT_EQ(a.level3Size, b.level3Size);
  EXPECT_EQ(a.level4Size, b.level4Size);
  EXPECT_EQ(a.level5Size, b.level5Size);
  EXPECT_EQ(a.level6Size, b.level6Size);
  EXPECT_EQ(a.level7Size, b.level7Size);
  EXPECT_EQ(a.higherLevelSize, b.higherLevelSize);
  EXPECT_EQ(a.nLevels, b.nLevels);
}

// Compares a loaded dictionary with the one that was saved: settings, flags,
// doubles, and levels 0 .. levels-1 entry by entry. A load re-inserts the
// entries in saved order, so each loaded table iterates as loadOrder says;
// entries are compared in that order.
inline void expectLoadedAs(const SequenceDictionary& saved,
                           const SequenceDictionary& loaded, int levels) {
  expectSameSettings(saved.getSettings(), loaded.getSettings());
  EXPECT_EQ(saved.getNLevels(), loaded.getNLevels());
  EXPECT_EQ(saved.isLatticeBuilt(), loaded.isLatticeBuilt());
  EXPECT_EQ(bitsOf(saved.getMinSupport()), bitsOf(loaded.getMinSupport()));
  EXPECT_EQ(bitsOf(saved.getSlidingWindow()),
            bitsOf(loaded.getSlidingWindow()));
  EXPECT_EQ(bitsOf(saved.getMinGap()), bitsOf(loaded.getMinGap()));
  EXPECT_EQ(bitsOf(saved.getMaxGap()), bitsOf(loaded.getMaxGap()));
  for (int k = 0; k < levels; ++k) {
    const HashtableSQPair& from = *saved.getLevel(k);
    const HashtableSQPair& to = *loaded.getLevel(k);
    EXPECT_EQ(loadOrder(from, saved.getTableSize(k)), keysOf(to))
        << "level " << k;
    std::vector<std::string> expected;
    for (const ISQCPair& pair : to) {
      const ISQCPair* original = from.get(pair.key);
      ASSERT_NE(original, nullptr) << describe(*pair.key);
      expected.push_back(describe(*original->key) + " | " +
                         describe(original->value));
    }
    EXPECT_EQ(expected, describe(to)) << "level " << k;
    EXPECT_EQ(from.getCount(), to.getCount()) << "level " << k;
  }
}

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_IO_IO_TEST_UTIL_H_
