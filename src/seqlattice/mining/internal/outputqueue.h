// OutputQueue hands what tasks running on worker threads produce to one
// consuming thread, in task order, so that the consumer sees the same
// sequence whatever the timing of the workers.
//
// Outputs travel in chunks of ints as they fill, not as whole task outputs:
// the task the consumer is waiting for (the head) streams straight through,
// while a worker running ahead of it blocks in put() once the chunks held for
// later tasks reach the limit. The head's worker blocks too, but only on its
// own chunks that the consumer has not taken yet: a consumer slower than the
// search (a sink writing a file) then paces the search instead of letting the
// head's output pile up. The memory held for outputs therefore stays near
// twice the limit (plus one chunk per worker) however much one task produces.
//
// No deadlock: tasks are claimed in ascending order and each worker runs its
// claims in order, so the head task is either finished or being run by a
// worker that waits, if at all, for the consumer to take the head's own
// chunks, which the consumer is always ready to do.
//
// Thread-safe; one consumer calls drain(), any number of workers call put().
#ifndef SEQLATTICE_MINING_INTERNAL_OUTPUTQUEUE_H_
#define SEQLATTICE_MINING_INTERNAL_OUTPUTQUEUE_H_

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <utility>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

class OutputQueue {
 public:
  // Thrown by put() in a worker once the run was stopped, so that the task
  // unwinds; workers catch it and end.
  struct Stopped {};

  OutputQueue(std::size_t tasks, std::size_t limitInts)
      : chunks_(tasks), done_(tasks, 0), limit_(limitInts) {}

  OutputQueue(const OutputQueue&) = delete;
  OutputQueue& operator=(const OutputQueue&) = delete;

  // Worker side: appends chunk to the output of task (chunk is left empty);
  // `last` marks the task finished (chunk may then be empty). Blocks while
  // task is not the head and the buffered chunks reach the limit.
  void put(std::size_t task, std::vector<int>& chunk, bool last) {
    std::unique_lock<std::mutex> lock(mutex_);
    room_.wait(lock, [&] {
      return stopped_ ||
             (task == head_ ? pending(task) < limit_ : buffered_ < limit_);
    });
    if (stopped_) throw Stopped();
    if (!chunk.empty()) {
      buffered_ += chunk.size();
      chunks_[task].push_back(std::move(chunk));
      chunk.clear();
    }
    if (last) done_[task] = 1;
    ready_.notify_all();
  }

  // Ends the run early: drain() returns and blocked or later put() calls
  // throw Stopped.
  void stop() {
    std::lock_guard<std::mutex> lock(mutex_);
    stopped_ = true;
    ready_.notify_all();
    room_.notify_all();
  }

  // Consumer side: calls consume(std::vector<int>&) for every chunk, task by
  // task, until every task is finished or the run is stopped. An exception
  // of consume passes to the caller, who stops the run.
  template <class Consume>
  void drain(const Consume& consume) {
    for (std::size_t task = 0; task < chunks_.size(); ++task) {
      bool finished = false;
      while (!finished) {
        std::vector<std::vector<int>> taken;
        {
          std::unique_lock<std::mutex> lock(mutex_);
          if (head_ != task) {
            head_ = task;
            room_.notify_all();
          }
          ready_.wait(lock, [&] {
            return stopped_ || !chunks_[task].empty() || done_[task];
          });
          if (stopped_) return;
          taken.swap(chunks_[task]);
          finished = done_[task] != 0;
          for (const std::vector<int>& chunk : taken) buffered_ -= chunk.size();
          room_.notify_all();
        }
        for (std::vector<int>& chunk : taken) consume(chunk);
      }
    }
  }

 private:
  // Ints held for task; the caller holds the mutex.
  std::size_t pending(std::size_t task) const {
    std::size_t ints = 0;
    for (const std::vector<int>& chunk : chunks_[task]) ints += chunk.size();
    return ints;
  }

  std::mutex mutex_;
  std::condition_variable ready_;  // a chunk arrived or a task finished
  std::condition_variable room_;   // chunks were taken or the head moved
  // Per task; an empty vector allocates nothing, and there may be a task
  // for each of millions of two-item patterns.
  std::vector<std::vector<std::vector<int>>> chunks_;
  std::vector<char> done_;
  std::size_t head_ = 0;
  std::size_t buffered_ = 0;
  const std::size_t limit_;
  bool stopped_ = false;
};

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_MINING_INTERNAL_OUTPUTQUEUE_H_
