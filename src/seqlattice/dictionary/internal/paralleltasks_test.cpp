#include "seqlattice/dictionary/internal/paralleltasks.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {

namespace {

TEST(ParallelTasksTest, RunsEveryTaskOnce) {
  std::vector<std::atomic<int>> runs(1000);
  dictionary_internal::runTasks(runs.size(), 4,
                                [&](std::size_t k) { ++runs[k]; });
  for (std::size_t k = 0; k < runs.size(); ++k) EXPECT_EQ(runs[k], 1) << k;
}

TEST(ParallelTasksTest, OneThreadRunsTheTasksInOrderOnTheCaller) {
  std::vector<std::size_t> order;
  const std::thread::id caller = std::this_thread::get_id();
  bool elsewhere = false;
  dictionary_internal::runTasks(5, 1, [&](std::size_t k) {
    order.push_back(k);
    elsewhere |= std::this_thread::get_id() != caller;
  });
  EXPECT_EQ(order, (std::vector<std::size_t>{0, 1, 2, 3, 4}));
  EXPECT_FALSE(elsewhere);
}

TEST(ParallelTasksTest, NoTasksRunNothing) {
  int runs = 0;
  dictionary_internal::runTasks(0, 4, [&](std::size_t) { ++runs; });
  EXPECT_EQ(runs, 0);
}

TEST(ParallelTasksTest, ATaskThrowingIsRethrownAfterTheOthersEnd) {
  std::atomic<int> done{0};
  try {
    dictionary_internal::runTasks(8, 3, [&](std::size_t k) {
      if (k == 2) throw std::runtime_error("task 2");
      ++done;
    });
    FAIL() << "nothing thrown";
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ(e.what(), "task 2");
  }
  // Tasks 0 and 1 were claimed before task 2 on every schedule.
  EXPECT_GE(done.load(), 2);
  EXPECT_LE(done.load(), 7);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
