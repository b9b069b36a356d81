#include "seqlattice/mining/memorybudget.h"

#include <sys/resource.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

namespace {

std::string fileText(const std::string& path) {
  std::ifstream in(path);
  if (!in) return "";
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// The number at the start of text; false when it is not one.
bool parseBytes(const std::string& text, std::size_t* bytes) {
  std::istringstream in(text);
  unsigned long long value = 0;
  if (!(in >> value)) return false;
  *bytes = static_cast<std::size_t>(value);
  return true;
}

// The value of "key:  N kB" in a /proc status or meminfo text, in bytes.
std::size_t kilobyteField(const std::string& text, const std::string& key) {
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) {
    if (line.compare(0, key.size(), key) != 0) continue;
    std::istringstream fields(line.substr(key.size()));
    std::size_t value = 0;
    std::string unit;
    if (!(fields >> value)) return 0;
    fields >> unit;
    return unit == "kB" ? value * 1024 : value;
  }
  return 0;
}

// The smaller of two byte counts where 0 stands for "unknown".
std::size_t leastKnown(std::size_t a, std::size_t b) {
  if (a == 0) return b;
  return b == 0 ? a : std::min(a, b);
}

// Some bytes left, or 1 when nothing is: 0 means "no limit" to the callers.
std::size_t leftOf(std::size_t limit, std::size_t used) {
  return limit > used ? limit - used : 1;
}

// The limit and usage files that may hold this process's control group
// limit: the cgroup v2 group named by /proc/self/cgroup ("0::/path") and the
// v1 memory controller's ("N:memory:/path"), each where the system mounts
// them and at the mount's root (a container sees its own group there).
std::vector<std::pair<std::string, std::string>> cgroupLimitFiles() {
  std::vector<std::pair<std::string, std::string>> files;
  auto v2 = [&](const std::string& directory) {
    files.emplace_back(directory + "/memory.max",
                       directory + "/memory.current");
  };
  auto v1 = [&](const std::string& directory) {
    files.emplace_back(directory + "/memory.limit_in_bytes",
                       directory + "/memory.usage_in_bytes");
  };
  v2("/sys/fs/cgroup");
  v2("/sys/fs/cgroup/unified");
  v1("/sys/fs/cgroup/memory");
  std::istringstream in(fileText("/proc/self/cgroup"));
  std::string line;
  while (std::getline(in, line)) {
    std::string::size_type memory = line.find(":memory:");
    if (line.rfind("0::", 0) == 0 && line.size() > 4) {
      v2("/sys/fs/cgroup" + line.substr(3));
      v2("/sys/fs/cgroup/unified" + line.substr(3));
    } else if (memory != std::string::npos && line.size() > memory + 9) {
      v1("/sys/fs/cgroup/memory" + line.substr(memory + 8));
    }
  }
  return files;
}

}  // namespace

std::size_t parseMemAvailable(const std::string& meminfo) {
  return kilobyteField(meminfo, "MemAvailable:");
}

std::size_t addressSpaceLeftBytes() {
  struct rlimit limit;
  if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
    return 0;
  }
  std::size_t size = kilobyteField(fileText("/proc/self/status"), "VmSize:");
  return leftOf(static_cast<std::size_t>(limit.rlim_cur), size);
}

std::size_t cgroupLeftBytes(const std::string& limit,
                            const std::string& usage) {
  std::size_t limitBytes = 0;
  std::size_t usedBytes = 0;
  // v1 states "no limit" as a huge number rather than "max".
  if (!parseBytes(limit, &limitBytes) || limitBytes >= (std::size_t{1} << 62)) {
    return 0;
  }
  parseBytes(usage, &usedBytes);
  return leftOf(limitBytes, usedBytes);
}

std::size_t cgroupMemoryLeftBytes() {
  std::size_t least = 0;
  for (const auto& [limit, usage] : cgroupLimitFiles()) {
    least =
        leastKnown(least, cgroupLeftBytes(fileText(limit), fileText(usage)));
  }
  return least;
}

std::size_t availableMemoryBytes() {
  std::size_t least = parseMemAvailable(fileText("/proc/meminfo"));
  least = leastKnown(least, addressSpaceLeftBytes());
  return leastKnown(least, cgroupMemoryLeftBytes());
}

std::string formatMegabytes(std::size_t bytes) {
  return std::to_string((bytes + (std::size_t{1} << 20) - 1) >> 20) + " MB";
}

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
