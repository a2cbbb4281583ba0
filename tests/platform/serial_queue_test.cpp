#include "platform/serial_queue.hpp"

#include <gtest/gtest.h>
#include <pthread.h>

#include <latch>
#include <numeric>
#include <stdexcept>
#include <vector>

#include "cardiolith/platform/logger.hpp"

namespace cardiolith::detail {
namespace {

// A failing task's exception reaches its future or, when it has none, the log, and the tasks queued after it
// still run: the in-order tasks below come after two failures.
TEST(SerialQueueConcurrencyTest, RunsTasksInOrderOnItsOwnNamedThreadPastFailuresAndDrainsOnDestruction) {
  std::vector<std::string> faults;
  Logger::setHandler([&](const LogRecord& record) {
    if (record.level == LogLevel::fault) faults.emplace_back(record.message);
  });
  std::vector<int> order;
  std::future<int> failed;
  std::future<std::string> seenFromTask;
  {
    SerialQueue queue("a-long-queue-label-here");
    std::latch opened{1};
    queue.async([&] { opened.wait(); });  // keeps everything below queued until just before destruction
    failed = queue.submit([]() -> int { throw std::runtime_error("boom"); });
    queue.async([] { throw std::runtime_error("broken task"); });
    for (int i = 0; i < 100; ++i) queue.async([&order, i] { order.push_back(i); });
    seenFromTask = queue.submit([&] {
      char name[16] = {};
      pthread_getname_np(pthread_self(), name, sizeof name);
      return std::string(name) + (queue.isCurrent() ? " (current)" : "");
    });
    EXPECT_FALSE(queue.isCurrent());
    opened.count_down();
  }
  Logger::setHandler(nullptr);
  EXPECT_THROW(failed.get(), std::runtime_error);
  std::vector<int> expected(100);
  std::iota(expected.begin(), expected.end(), 0);
  EXPECT_EQ(order, expected);
  EXPECT_EQ(seenFromTask.get(), "a-long-queue-la (current)");  // the label cut to 15 characters
  // The log names the queue by its whole label.
  EXPECT_EQ(faults,
            std::vector<std::string>{"Task on queue \"a-long-queue-label-here\" failed: broken task"});
}

}  // namespace
}  // namespace cardiolith::detail
