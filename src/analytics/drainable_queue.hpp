#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <string>

#include "platform/serial_queue.hpp"
#include "platform/thread_annotations.hpp"

namespace cardiolith::detail {

// A serial queue whose outstanding work can be waited for. Used where work queued before a normal process
// exit must still run although the queue itself is never destroyed.
class DrainableQueue {
 public:
  DrainableQueue(std::string label, SerialQueue::Priority priority);

  // Queues a task behind every task queued before it.
  void async(std::function<void()> task);

  // Blocks until every task queued so far has finished, including tasks that those tasks queue in turn.
  // On the queue's own thread it returns at once: the queue cannot wait for itself.
  void drain();

 private:
  void finishOne();

  Mutex mutex_;
  std::condition_variable idle_;
  std::size_t pending_ CARDIOLITH_GUARDED_BY(mutex_) = 0;
  // Last, so that it is destroyed (and runs its remaining tasks) while the counter above still exists.
  SerialQueue queue_;
};

}  // namespace cardiolith::detail
