#include "seqlattice/mining/memorybudget.h"

#include <fstream>
#include <sstream>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

std::size_t parseMemAvailable(const std::string& meminfo) {
  std::istringstream in(meminfo);
  std::string key;
  std::size_t value = 0;
  std::string unit;
  while (in >> key >> value) {
    std::getline(in, unit);
    if (key == "MemAvailable:") {
      return unit.find("kB") != std::string::npos ? value * 1024 : value;
    }
  }
  return 0;
}

std::size_t availableMemoryBytes() {
  std::ifstream in("/proc/meminfo");
  if (!in) return 0;
  std::stringstream text;
  text << in.rdbuf();
  return parseMemAvailable(text.str());
}

std::string formatMegabytes(std::size_t bytes) {
  return std::to_string((bytes + (std::size_t{1} << 20) - 1) >> 20) + " MB";
}

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
