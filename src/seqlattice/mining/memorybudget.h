// How much memory the mining subsystem may use. Hosts pass a budget in bytes
// to the database (SequenceDatabase::setMemoryLimit) and to the miner
// (MinerOptions::memoryBudget); availableMemoryBytes() is the natural source
// of a default.
//
// The memory a process can still take is the least of three limits: what the
// machine has free (MemAvailable of /proc/meminfo), what the address-space
// limit (RLIMIT_AS, "ulimit -v") leaves beside the process's present size,
// and what its control group's limit (cgroup v2 memory.max, or v1
// memory.limit_in_bytes, as in a container) leaves beside the group's use.
#ifndef SEQLATTICE_MINING_MEMORYBUDGET_H_
#define SEQLATTICE_MINING_MEMORYBUDGET_H_

#include <cstddef>
#include <string>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

// The least of the three limits above that can be read, in bytes; 0 when
// none can be read.
std::size_t availableMemoryBytes();

// Parses a meminfo text ("MemAvailable:  1234 kB" line) into bytes; 0 when
// the line is missing.
std::size_t parseMemAvailable(const std::string& meminfo);

// What RLIMIT_AS leaves beside the process's virtual size (VmSize of
// /proc/self/status); 0 when there is no such limit or it cannot be read,
// and 1 when the process is already at or past it.
std::size_t addressSpaceLeftBytes();

// What a control group limit leaves, from the texts of its limit file
// ("max" or bytes) and usage file (bytes); 0 when there is no limit, 1 when
// the group is at or past it.
std::size_t cgroupLeftBytes(const std::string& limit, const std::string& usage);

// cgroupLeftBytes for this process's group, read under /sys/fs/cgroup.
std::size_t cgroupMemoryLeftBytes();

// "12 MB": bytes rounded up to whole mebibytes, for messages.
std::string formatMegabytes(std::size_t bytes);

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_MEMORYBUDGET_H_
