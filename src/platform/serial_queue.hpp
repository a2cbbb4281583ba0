#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

#include "platform/thread_annotations.hpp"

namespace cardiolith::detail {

// A serial executor: one worker thread runs submitted tasks one at a time, in submission order.
// Destruction runs every task already submitted, then joins the worker; a queue must not be destroyed by
// one of its own tasks.
class SerialQueue {
 public:
  enum class Priority { normal, utility };

  // The worker thread carries `label` as its name (truncated to the system's 15 characters); utility
  // priority runs it at a lower scheduling priority than its creator.
  explicit SerialQueue(std::string label, Priority priority = Priority::normal);
  ~SerialQueue();
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  const std::string& label() const { return label_; }

  // Queues a task; exceptions it throws are swallowed after being logged at fault level.
  void async(std::function<void()> task);

  // Queues a task and returns its result, or its exception, through a future.
  template <class F>
  auto submit(F&& function) -> std::future<std::invoke_result_t<std::decay_t<F>>> {
    using Result = std::invoke_result_t<std::decay_t<F>>;
    auto task = std::make_shared<std::packaged_task<Result()>>(std::forward<F>(function));
    auto future = task->get_future();
    async([task] { (*task)(); });
    return future;
  }

  // True on the queue's own worker thread.
  bool isCurrent() const { return std::this_thread::get_id() == worker_.get_id(); }

 private:
  void run();

  std::string label_;
  Priority priority_;
  Mutex mutex_;
  std::condition_variable wake_;
  std::deque<std::function<void()>> tasks_ CARDIOLITH_GUARDED_BY(mutex_);
  bool stopping_ CARDIOLITH_GUARDED_BY(mutex_) = false;
  std::thread worker_;
};

}  // namespace cardiolith::detail
