// The memory budget's sources: the control group's limit against its use,
// and the address-space limit against the process's size.
#include "seqlattice/mining/memorybudget.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

namespace SEQUENCE_NAMESPACE_800 {

TEST(MemoryBudgetTest, ACgroupLimitLeavesWhatItsGroupDoesNotUse) {
  EXPECT_EQ(mining::cgroupLeftBytes("1000\n", "400\n"), 600u);
  EXPECT_EQ(mining::cgroupLeftBytes("1000\n", "1500\n"), 1u);
  EXPECT_EQ(mining::cgroupLeftBytes("max\n", "400\n"), 0u);
  EXPECT_EQ(mining::cgroupLeftBytes("9223372036854771712\n", "400\n"), 0u);
  EXPECT_EQ(mining::cgroupLeftBytes("", ""), 0u);
}

TEST(MemoryBudgetTest, AnAddressSpaceLimitBoundsTheBudget) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer's shadow memory does not run under RLIMIT_AS";
#else
  // In a child, since the limit cannot be raised again.
  pid_t child = fork();
  if (child == 0) {
    std::ifstream in("/proc/self/status");
    std::stringstream text;
    text << in.rdbuf();
    std::string line;
    std::size_t vmSize = 0;
    while (std::getline(text, line)) {
      if (line.rfind("VmSize:", 0) == 0) vmSize = std::stoul(line.substr(7));
    }
    const std::size_t room = std::size_t{256} << 20;
    struct rlimit limit;
    limit.rlim_cur = limit.rlim_max = vmSize * 1024 + room;
    if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(2);
    const std::size_t left = mining::addressSpaceLeftBytes();
    // Measured a moment later, when the allocator may have given a page
    // back, so it is held to the limit rather than to left.
    const std::size_t available = mining::availableMemoryBytes();
    _exit(left > room / 2 && left <= room && available <= room ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
#endif
}

TEST(MemoryBudgetTest, NoAddressSpaceLimitIsNoBound) {
  struct rlimit limit;
  ASSERT_EQ(getrlimit(RLIMIT_AS, &limit), 0);
  if (limit.rlim_cur != RLIM_INFINITY) GTEST_SKIP() << "ulimit -v is set";
  EXPECT_EQ(mining::addressSpaceLeftBytes(), 0u);
}

}  // namespace SEQUENCE_NAMESPACE_800
