#include "seqlattice/mining/internal/orderedtasks.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {
namespace {

// A worker as runOrderedTasks drives it: task k writes k + 1 values, k*100,
// k*100 + 1, ..., passing each on as a chunk of its own.
class CountingWorker {
 public:
  void setOutput(std::vector<int>* out, std::function<void()> full) {
    out_ = out;
    full_ = std::move(full);
  }
  void run(std::size_t k) {
    // Later tasks finish first, so that order comes from the driver.
    std::this_thread::sleep_for(std::chrono::microseconds(50 * (20 - k % 20)));
    for (std::size_t v = 0; v <= k; ++v) {
      out_->push_back(static_cast<int>(k * 100 + v));
      full_();
    }
  }

 private:
  std::vector<int>* out_ = nullptr;
  std::function<void()> full_;
};

std::vector<int> expectedOutput(std::size_t tasks) {
  std::vector<int> values;
  for (std::size_t k = 0; k < tasks; ++k) {
    for (std::size_t v = 0; v <= k; ++v) {
      values.push_back(static_cast<int>(k * 100 + v));
    }
  }
  return values;
}

TEST(OrderedTasksTest, OutputsArriveInTaskOrder) {
  for (std::size_t threads : {1, 2, 4}) {
    std::vector<CountingWorker> workers(threads);
    std::vector<int> seen;
    runOrderedTasks(
        40, workers, [](CountingWorker& w, std::size_t k) { w.run(k); },
        [&seen](std::vector<int>& chunk) {
          seen.insert(seen.end(), chunk.begin(), chunk.end());
        },
        8);
    EXPECT_EQ(seen, expectedOutput(40)) << threads << " threads";
  }
}

TEST(OrderedTasksTest, NoTasks) {
  std::vector<CountingWorker> workers(2);
  int chunks = 0;
  runOrderedTasks(
      0, workers, [](CountingWorker& w, std::size_t k) { w.run(k); },
      [&chunks](std::vector<int>&) { ++chunks; });
  EXPECT_EQ(chunks, 0);
}

TEST(OrderedTasksTest, ATaskErrorStopsTheRunAndIsRethrown) {
  std::vector<CountingWorker> workers(2);
  try {
    runOrderedTasks(
        100, workers,
        [](CountingWorker& w, std::size_t k) {
          if (k == 7) throw std::runtime_error("task 7 failed");
          w.run(k);
        },
        [](std::vector<int>&) {}, 4);
    FAIL() << "no error";
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ(e.what(), "task 7 failed");
  }
}

TEST(OrderedTasksTest, AConsumerErrorStopsTheWorkersAndIsRethrown) {
  std::vector<CountingWorker> workers(2);
  std::vector<int> seen;
  try {
    runOrderedTasks(
        100, workers, [](CountingWorker& w, std::size_t k) { w.run(k); },
        [&seen](std::vector<int>& chunk) {
          if (chunk.front() == 300) throw std::runtime_error("sink full");
          seen.insert(seen.end(), chunk.begin(), chunk.end());
        },
        4);
    FAIL() << "no error";
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ(e.what(), "sink full");
  }
  EXPECT_EQ(seen, expectedOutput(3));
}

}  // namespace
}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
