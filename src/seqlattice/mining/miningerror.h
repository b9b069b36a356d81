// MiningError is the one exception type of the mining subsystem: a database
// that breaks the builder's rules, a malformed input line, or a database or
// search that would not fit in the memory budget. what() is a complete,
// human-readable message; readers prefix it with "file:line: ".
#ifndef SEQLATTICE_MINING_MININGERROR_H_
#define SEQLATTICE_MINING_MININGERROR_H_

#include <stdexcept>
#include <string>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

class MiningError : public std::runtime_error {
 public:
  explicit MiningError(const std::string& message)
      : std::runtime_error(message) {}
};

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_MININGERROR_H_
