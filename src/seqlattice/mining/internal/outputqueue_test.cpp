#include "seqlattice/mining/internal/outputqueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {
namespace {

std::vector<int> chunk(std::initializer_list<int> values) { return values; }

TEST(OutputQueueTest, HandsChunksOverInTaskOrder) {
  OutputQueue queue(3, 100);
  std::vector<int> c = chunk({20, 21});
  queue.put(2, c, true);
  EXPECT_TRUE(c.empty());
  c = chunk({10});
  queue.put(1, c, false);
  c = chunk({11});
  queue.put(1, c, true);
  c = chunk({0});
  queue.put(0, c, false);
  c.clear();
  queue.put(0, c, true);  // finishes task 0 without more output
  std::vector<int> seen;
  queue.drain([&seen](std::vector<int>& got) {
    seen.insert(seen.end(), got.begin(), got.end());
  });
  EXPECT_EQ(seen, (std::vector<int>{0, 10, 11, 20, 21}));
}

// Task 1 runs ahead of task 0 with a limit of 4 ints: its second chunk waits
// until the consumer has reached task 1, and everything still arrives in
// order.
TEST(OutputQueueTest, AWorkerAheadOfTheConsumerWaitsForRoom) {
  OutputQueue queue(2, 4);
  std::atomic<bool> secondPut{false};
  std::thread ahead([&] {
    std::vector<int> c = chunk({10, 11, 12, 13});
    queue.put(1, c, false);
    c = chunk({14});
    queue.put(1, c, true);
    secondPut = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_FALSE(secondPut);
  std::vector<int> seen;
  std::thread head([&] {
    std::vector<int> c = chunk({0});
    queue.put(0, c, true);
  });
  queue.drain([&seen](std::vector<int>& got) {
    seen.insert(seen.end(), got.begin(), got.end());
  });
  head.join();
  ahead.join();
  EXPECT_TRUE(secondPut);
  EXPECT_EQ(seen, (std::vector<int>{0, 10, 11, 12, 13, 14}));
}

// A head task producing faster than the consumer takes its chunks waits once
// its own untaken chunks reach the limit (4 ints), so they never pile up.
TEST(OutputQueueTest, TheHeadWaitsForASlowConsumer) {
  OutputQueue queue(1, 4);
  std::atomic<int> put{0};
  std::thread worker([&] {
    for (int i = 0; i < 6; ++i) {
      std::vector<int> c = chunk({i, i});
      queue.put(0, c, i == 5);
      ++put;
    }
  });
  // Unconsumed: two chunks of two ints reach the limit and the third waits.
  while (put.load() < 2) std::this_thread::yield();
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_EQ(put.load(), 2);
  std::vector<int> seen;
  queue.drain([&seen](std::vector<int>& got) {
    seen.insert(seen.end(), got.begin(), got.end());
  });
  worker.join();
  EXPECT_EQ(seen, (std::vector<int>{0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5}));
}

TEST(OutputQueueTest, StopReleasesABlockedWorkerAndTheConsumer) {
  OutputQueue queue(2, 1);
  std::atomic<bool> stopped{false};
  std::thread ahead([&] {
    std::vector<int> c = chunk({10});
    queue.put(1, c, false);
    c = chunk({11});
    try {
      queue.put(1, c, false);
    } catch (const OutputQueue::Stopped&) {
      stopped = true;
    }
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  queue.stop();
  ahead.join();
  EXPECT_TRUE(stopped);
  int chunks = 0;
  queue.drain([&chunks](std::vector<int>&) { ++chunks; });
  EXPECT_EQ(chunks, 0);
}

}  // namespace
}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
