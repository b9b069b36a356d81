// runOrderedTasks runs the tasks of one search level on worker threads and
// hands what they produce to the calling thread in task order, so that the
// consumer sees the same output, in the same order, however the workers are
// timed. The miner uses it twice: once for the one-item patterns' extensions
// and once for the subtrees below the two-item patterns.
//
// Each worker thread owns one Worker object, which needs
//   void setOutput(std::vector<int>* out, std::function<void()> full);
// the driver points it at the thread's output buffer before each task, and
// the worker calls full() whenever the buffer holds a chunk worth passing
// on (kChunkInts), so that a task's output streams to the consumer through
// an OutputQueue instead of piling up.
#ifndef SEQLATTICE_MINING_INTERNAL_ORDEREDTASKS_H_
#define SEQLATTICE_MINING_INTERNAL_ORDEREDTASKS_H_

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "seqlattice/mining/internal/outputqueue.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

// Task outputs pass to the consumer in chunks of about this many ints
// (1 MB) ...
constexpr std::size_t kChunkInts = std::size_t{1} << 18;
// ... and workers running ahead of the consumer hold at most about this many.
constexpr std::size_t kBufferedInts = std::size_t{4} << 20;

// Runs task(worker, k) for k = 0 .. n-1, one thread per element of workers,
// and calls consume(std::vector<int>& chunk) from the calling thread for the
// outputs, task by task, chunk by chunk as they fill. The first exception of
// a task or of consume stops the remaining tasks and is rethrown once every
// thread has ended.
template <class Worker, class Task, class Consume>
void runOrderedTasks(std::size_t n, std::vector<Worker>& workers,
                     const Task& task, const Consume& consume,
                     std::size_t bufferedInts = kBufferedInts) {
  OutputQueue queue(n, bufferedInts);
  std::atomic<std::size_t> next{0};
  std::mutex mutex;
  std::exception_ptr error;
  // Tasks are claimed in blocks that shrink as the list runs out: the big
  // tasks come first and go one by one, the many small ones at the end
  // share a claim.
  std::size_t share = workers.size() * 8;
  auto work = [&](Worker& worker) {
    std::vector<int> out;
    out.reserve(kChunkInts + 64);
    try {
      for (;;) {
        std::size_t first = next.load();
        std::size_t block = 0;
        do {
          if (first >= n) return;
          block = std::min<std::size_t>(
              std::max<std::size_t>((n - first) / share, 1), 256);
        } while (!next.compare_exchange_weak(first, first + block));
        for (std::size_t k = first; k < first + block; ++k) {
          worker.setOutput(&out,
                           [&queue, &out, k] { queue.put(k, out, false); });
          task(worker, k);
          queue.put(k, out, true);
        }
      }
    } catch (const OutputQueue::Stopped&) {
      // Another thread failed; its error is reported.
    } catch (...) {
      {
        std::lock_guard<std::mutex> lock(mutex);
        if (!error) error = std::current_exception();
      }
      queue.stop();
    }
  };
  std::vector<std::thread> threads;
  for (Worker& worker : workers) threads.emplace_back(work, std::ref(worker));
  auto joinAll = [&]() {
    for (std::thread& t : threads) t.join();
  };
  try {
    queue.drain(consume);
  } catch (...) {
    queue.stop();
    joinAll();
    throw;
  }
  joinAll();
  if (error) std::rethrow_exception(error);
}

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_INTERNAL_ORDEREDTASKS_H_
