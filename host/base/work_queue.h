#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <utility>

namespace quillo::host {

/// Hands work from one thread to another, in order.
template <typename Work>
class WorkQueue {
 public:
  /// Add waits while `limit` pieces of work are not yet taken; 0: it never waits.
  explicit WorkQueue(size_t limit) : limit_(limit) {}

  void Add(Work work) {
    std::unique_lock lock(mutex_);
    taken_.wait(lock, [this] { return limit_ == 0 || queue_.size() < limit_; });
    queue_.push_back(std::move(work));
    added_.notify_one();
  }

  /// Waits for work.
  Work Take() {
    std::unique_lock lock(mutex_);
    added_.wait(lock, [this] { return !queue_.empty(); });
    Work work = std::move(queue_.front());
    queue_.pop_front();
    taken_.notify_one();
    return work;
  }

 private:
  const size_t limit_;
  std::mutex mutex_;
  std::condition_variable added_, taken_;
  std::deque<Work> queue_;
};

}  // namespace quillo::host
