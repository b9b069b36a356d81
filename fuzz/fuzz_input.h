// What both fuzz targets share: the input goes to a file of this process,
// since the readers take file streams, and the readers' failure messages go
// nowhere, since most inputs are meant to fail.
#ifndef SEQLATTICE_FUZZ_FUZZ_INPUT_H_
#define SEQLATTICE_FUZZ_FUZZ_INPUT_H_

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <ostream>
#include <streambuf>
#include <string>

#include "seqlattice/dictionary/sequencedictionary.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

class NullBuffer : public std::streambuf {
 protected:
  int overflow(int c) override { return c; }
  std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

inline void silenceMessages() {
  static NullBuffer nothing;
  std::cout.rdbuf(&nothing);
  std::cerr.rdbuf(&nothing);
}

// This process's input file, removed when the fuzzer exits.
class InputFile {
 public:
  InputFile()
      : path_(
            std::string(::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") +
            "/seqlattice_fuzz_" + std::to_string(::getpid())) {}
  ~InputFile() { std::remove(path_.c_str()); }

  const std::string& write(const std::uint8_t* data, std::size_t size) const {
    std::ofstream(path_, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data),
               static_cast<std::streamsize>(size));
    return path_;
  }

 private:
  std::string path_;
};

// Writes the input to this process's file and returns its path.
inline const std::string& fileWith(const std::uint8_t* data, std::size_t size) {
  static const InputFile file;
  return file.write(data, size);
}

// Saves a loaded dictionary in both formats, to nowhere: whatever a file
// loads must be writable again.
inline void saveToNowhere(const SequenceDictionary& dictionary) {
  NullBuffer nothing;
  std::ostream xml(&nothing);
  dictionary.writeObjectXML(xml);
  std::fstream binary;  // never opened: every write fails quietly
  dictionary.writeObject(binary);
}

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_FUZZ_FUZZ_INPUT_H_
