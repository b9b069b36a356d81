// MiningError is the one exception type of the mining subsystem: a database
// built against the builder's rules, options the miner cannot use, or a
// database, search or model that would not fit in the memory budget. what()
// is a complete, human-readable message. Text that breaks a file's format is
// the input subsystem's InputError, never a MiningError.
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
