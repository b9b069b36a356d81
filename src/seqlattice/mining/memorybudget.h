// How much memory the mining subsystem may use. Hosts pass a budget in bytes
// to the database (SequenceDatabase::setMemoryLimit) and to the miner
// (MinerOptions::memoryBudget); availableMemoryBytes() is the natural source
// of a default.
#ifndef SEQLATTICE_MINING_MEMORYBUDGET_H_
#define SEQLATTICE_MINING_MEMORYBUDGET_H_

#include <cstddef>
#include <string>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

// MemAvailable of /proc/meminfo in bytes, or 0 when it cannot be read.
std::size_t availableMemoryBytes();

// Parses a meminfo text ("MemAvailable:  1234 kB" line) into bytes; 0 when
// the line is missing.
std::size_t parseMemAvailable(const std::string& meminfo);

// "12 MB": bytes rounded up to whole mebibytes, for messages.
std::string formatMegabytes(std::size_t bytes);

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_MEMORYBUDGET_H_
