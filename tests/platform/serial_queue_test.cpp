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

TEST(SerialQueueConcurrencyTest, RunsTasksInOrderOnItsOwnNamedThreadAndDrainsOnDestruction) {
  std::vector<int> order;
  std::future<std::string> seenFromTask;
  {
    SerialQueue queue("a-long-queue-label-here");
    std::latch opened{1};
    queue.async([&] { opened.wait(); });  // keeps everything below queued until just before destruction
    for (int i = 0; i < 100; ++i) queue.async([&order, i] { order.push_back(i); });
    seenFromTask = queue.submit([&] {
      char name[16] = {};
      pthread_getname_np(pthread_self(), name, sizeof name);
      return std::string(name) + (queue.isCurrent() ? " (current)" : "");
    });
    EXPECT_FALSE(queue.isCurrent());
    opened.count_down();
  }
  std::vector<int> expected(100);
  std::iota(expected.begin(), expected.end(), 0);
  EXPECT_EQ(order, expected);
  EXPECT_EQ(seenFromTask.get(), "a-long-queue-la (current)");  // the label cut to 15 characters
}

TEST(SerialQueueConcurrencyTest, ExceptionsReachTheFutureOrTheLogAndLaterTasksStillRun) {
  std::vector<std::string> faults;
  Logger::setHandler([&](const LogRecord& record) {
    if (record.level == LogLevel::fault) faults.emplace_back(record.message);
  });
  std::future<int> failed;
  std::future<int> later;
  {
    SerialQueue queue("failing");
    failed = queue.submit([]() -> int { throw std::runtime_error("boom"); });
    queue.async([] { throw std::runtime_error("broken task"); });
    later = queue.submit([] { return 1; });
  }
  Logger::setHandler(nullptr);
  EXPECT_THROW(failed.get(), std::runtime_error);
  EXPECT_EQ(later.get(), 1);
  EXPECT_EQ(faults, std::vector<std::string>{"Task on queue \"failing\" failed: broken task"});
}

}  // namespace
}  // namespace cardiolith::detail
