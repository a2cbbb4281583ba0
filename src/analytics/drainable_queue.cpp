#include "analytics/drainable_queue.hpp"

#include <utility>

namespace cardiolith::detail {

DrainableQueue::DrainableQueue(std::string label, SerialQueue::Priority priority)
    : queue_(std::move(label), priority) {}

void DrainableQueue::async(std::function<void()> task) {
  {
    MutexLock lock(mutex_);
    ++pending_;
  }
  try {
    queue_.async([this, task = std::move(task)] {
      // Counted as finished even when the task throws (the serial queue logs and swallows that).
      struct FinishOnExit {
        DrainableQueue& queue;
        ~FinishOnExit() { queue.finishOne(); }
      } finish{*this};
      task();
    });
  } catch (...) {
    finishOne();
    throw;
  }
}

void DrainableQueue::drain() {
  if (queue_.isCurrent()) return;
  MutexLock lock(mutex_);
  while (pending_ != 0) lock.wait(idle_);
}

void DrainableQueue::finishOne() {
  MutexLock lock(mutex_);
  if (--pending_ == 0) idle_.notify_all();
}

}  // namespace cardiolith::detail
