// runTasks runs independent tasks on a few threads: the dictionary's bulk
// operations use it for work split by level, where each level's part touches
// nothing another level's part touches.
//
// Not part of the public interface.
#ifndef SEQLATTICE_DICTIONARY_INTERNAL_PARALLELTASKS_H_
#define SEQLATTICE_DICTIONARY_INTERNAL_PARALLELTASKS_H_

#include <atomic>
#include <cstddef>
#include <exception>
#include <list>
#include <mutex>
#include <thread>

namespace SEQUENCE_NAMESPACE_800 {
namespace dictionary_internal {

// Runs task(k) for k = 0 .. n-1 on at most `threads` threads, the calling
// thread among them, each thread claiming the next task not yet claimed: give
// the tasks largest first and the threads end at about the same time. When a
// thread cannot be started, those running do its share. Once every thread
// has ended, the first exception a task threw is rethrown; the tasks not yet
// claimed by then are not run.
template <class Task>
void runTasks(std::size_t n, unsigned threads, const Task& task) {
  std::atomic<std::size_t> next{0};
  std::atomic<bool> failed{false};
  std::mutex mutex;
  std::exception_ptr error;
  auto work = [&] {
    for (std::size_t k = next++; k < n && !failed; k = next++) {
      try {
        task(k);
      } catch (...) {
        std::lock_guard<std::mutex> lock(mutex);
        if (!error) error = std::current_exception();
        failed = true;
      }
    }
  };
  const std::size_t helping =
      (threads < n ? threads : n) - (n > 0 && threads > 0);
  std::list<std::thread> helpers;
  try {
    for (std::size_t k = 0; k < helping; ++k) helpers.emplace_back(work);
  } catch (...) {
    // Fewer threads do the same work.
  }
  work();
  for (std::thread& helper : helpers) helper.join();
  if (error) std::rethrow_exception(error);
}

}  // namespace dictionary_internal
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_DICTIONARY_INTERNAL_PARALLELTASKS_H_
