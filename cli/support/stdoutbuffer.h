// The stream buffer the tool puts under std::cout: it writes to the standard
// output descriptor itself and keeps the reason (errno) of the first write
// that fails, so that a full disk or a closed pipe is reported with its cause
// even when it happened long before the command ended. After a failure it
// takes and drops everything, and std::cout turns bad. Not thread-safe; one
// per process.
#ifndef SEQLATTICE_CLI_SUPPORT_STDOUTBUFFER_H_
#define SEQLATTICE_CLI_SUPPORT_STDOUTBUFFER_H_

#include <streambuf>
#include <vector>

namespace seqlattice_cli {

class StdoutBuffer : public std::streambuf {
 public:
  explicit StdoutBuffer(int fd);
  ~StdoutBuffer() override;
  StdoutBuffer(const StdoutBuffer&) = delete;
  StdoutBuffer& operator=(const StdoutBuffer&) = delete;

  // errno of the first failed write; 0 while none failed.
  int error() const { return error_; }

 protected:
  int overflow(int c) override;
  int sync() override;

 private:
  bool drain();

  int fd_;
  int error_ = 0;
  std::vector<char> buffer_;
};

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_STDOUTBUFFER_H_
