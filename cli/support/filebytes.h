// FileBytes: the whole content of a regular file in memory, for the model
// loader. The file is mapped and its pages brought in with one call where the
// system allows it: reading it into a buffer of our own cost a page fault
// for every 4 KiB, a zeroed page and a copy. Where mapping fails the file is
// read into an allocated buffer instead.
//
// The loader's own writes go to a temporary file renamed over the target
// (atomicfile.h), so a model is never shortened in place while mapped.
// Not thread-safe; owns the mapping or the buffer.
#ifndef SEQLATTICE_CLI_SUPPORT_FILEBYTES_H_
#define SEQLATTICE_CLI_SUPPORT_FILEBYTES_H_

#include <cstddef>
#include <istream>
#include <memory>
#include <string>

namespace seqlattice_cli {

class FileBytes {
 public:
  // The first `size` bytes of the file at path, open as `file` (read from
  // its start when the file cannot be mapped). Throws CliError "cannot read"
  // or "too large to load" as the loader words them.
  FileBytes(const std::string& path, std::istream& file, std::size_t size);
  ~FileBytes();
  FileBytes(const FileBytes&) = delete;
  FileBytes& operator=(const FileBytes&) = delete;

  const char* data() const { return data_; }

 private:
  const char* data_ = nullptr;
  void* mapped_ = nullptr;
  std::size_t size_ = 0;
  std::unique_ptr<char[]> buffer_;
};

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_FILEBYTES_H_
