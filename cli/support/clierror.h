// CliError carries a message for the standard error stream and the exit code
// the tool ends with: 1 for bad input or a bad model, 2 for a usage error.
// Commands throw it; main prints "seqlattice: <message>" and exits.
#ifndef SEQLATTICE_CLI_SUPPORT_CLIERROR_H_
#define SEQLATTICE_CLI_SUPPORT_CLIERROR_H_

#include <stdexcept>
#include <string>

namespace seqlattice_cli {

constexpr int kExitOk = 0;
constexpr int kExitBadInput = 1;
constexpr int kExitUsage = 2;

class CliError : public std::runtime_error {
 public:
  CliError(int exitCode, const std::string& message)
      : std::runtime_error(message), exitCode_(exitCode) {}
  int exitCode() const { return exitCode_; }

 private:
  int exitCode_;
};

[[noreturn]] inline void failInput(const std::string& message) {
  throw CliError(kExitBadInput, message);
}

[[noreturn]] inline void failUsage(const std::string& message) {
  throw CliError(kExitUsage, message);
}

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_CLIERROR_H_
