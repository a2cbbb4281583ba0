#include "analytics/drainable_queue.hpp"

#include <utility>

namespace cardiolith::detail {

DrainableQueue::DrainableQueue(std::string label, SerialQueue::Priority priority)
    : queue_(std::move(label), priority) {}

void DrainableQueue::async(std::function<void()> task) {
  {
    std::lock_guard lock(mutex_);
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
  std::unique_lock lock(mutex_);
  idle_.wait(lock, [this] { return pending_ == 0; });
}

void DrainableQueue::finishOne() {
  std::lock_guard lock(mutex_);
  if (--pending_ == 0) idle_.notify_all();
}

}  // namespace cardiolith::detail
