#include "platform/serial_queue.hpp"

#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <string>

#include "cardiolith/platform/logger.hpp"

namespace cardiolith::detail {
namespace {

// Linux thread names hold at most 15 characters.
void nameCurrentThread(const std::string& label) {
  ::pthread_setname_np(::pthread_self(), label.substr(0, 15).c_str());
}

// Utility work yields to the interactive threads: a nice value a few steps above the creator's. On Linux
// the nice value of a thread is per thread (setpriority on its thread id).
void lowerCurrentThreadPriority(int creatorNice) {
  const auto tid = static_cast<id_t>(::syscall(SYS_gettid));
  ::setpriority(PRIO_PROCESS, tid, creatorNice + 4);
}

}  // namespace

SerialQueue::SerialQueue(std::string label, Priority priority)
    : label_(std::move(label)), priority_(priority) {
  errno = 0;
  const int creatorNice = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid)));
  worker_ = std::thread([this, creatorNice] {
    nameCurrentThread(label_);
    if (priority_ == Priority::utility) lowerCurrentThreadPriority(creatorNice);
    run();
  });
}

SerialQueue::~SerialQueue() {
  {
    MutexLock lock(mutex_);
    stopping_ = true;
  }
  wake_.notify_one();
  worker_.join();
}

void SerialQueue::async(std::function<void()> task) {
  {
    MutexLock lock(mutex_);
    tasks_.push_back(std::move(task));
  }
  wake_.notify_one();
}

void SerialQueue::run() {
  for (;;) {
    std::function<void()> task;
    {
      MutexLock lock(mutex_);
      while (!stopping_ && tasks_.empty()) lock.wait(wake_);
      if (tasks_.empty()) return;  // stopping, and everything submitted has run
      task = std::move(tasks_.front());
      tasks_.pop_front();
    }
    try {
      task();
    } catch (const std::exception& error) {
      Logger::standard().fault("Task on queue \"" + label_ + "\" failed: " + error.what());
    } catch (...) {
      Logger::standard().fault("Task on queue \"" + label_ + "\" failed with an unknown exception");
    }
  }
}

}  // namespace cardiolith::detail
