// End-to-end tests of the commands whose library parts have not landed in
// this build: each says so plainly and exits 1, without touching any file.
#include "cli_test_util.h"

namespace {

using cli_test::CliRun;
using cli_test::CliTest;

TEST_F(CliTest, PendingCommandsSaySo) {
  for (const char* command : {"rules", "info"}) {
    CliRun result = run({command, "orders.model"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, std::string("seqlattice: ") + command +
                              ": not available in this build\n");
  }
  CliRun result = run({"export", "dot", "orders.model"});
  EXPECT_EQ(result.err, "seqlattice: export: not available in this build\n");
  EXPECT_TRUE(listWork().empty());
}

}  // namespace
