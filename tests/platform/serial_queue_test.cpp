#include "platform/serial_queue.hpp"

#include <gtest/gtest.h>
#include <pthread.h>

#include <stdexcept>
#include <vector>

#include "cardiolith/platform/logger.hpp"

namespace cardiolith::detail {
namespace {

TEST(SerialQueueConcurrencyTest, RunsTasksInOrderOffTheCallersThreadAndDrainsOnDestruction) {
  std::vector<int> order;
  std::thread::id worker;
  {
    SerialQueue queue("a-long-queue-label-here");
    for (int i = 0; i < 100; ++i) {
      queue.async([&order, &worker, i] {
        worker = std::this_thread::get_id();
        order.push_back(i);
      });
    }
  }  // destruction runs everything queued
  ASSERT_EQ(order.size(), 100u);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(order[i], i);
  EXPECT_NE(worker, std::this_thread::get_id());
}

TEST(SerialQueueConcurrencyTest, SubmitCarriesResultsAndExceptionsAndNamesTheThread) {
  SerialQueue queue("analytics", SerialQueue::Priority::utility);
  auto name = queue.submit([] {
    char buffer[16] = {};
    pthread_getname_np(pthread_self(), buffer, sizeof buffer);
    return std::string(buffer);
  });
  auto failure = queue.submit([]() -> int { throw std::runtime_error("boom"); });
  EXPECT_EQ(name.get(), "analytics");
  EXPECT_THROW(failure.get(), std::runtime_error);
}

TEST(SerialQueueConcurrencyTest, AFailingAsyncTaskIsLoggedAndLaterTasksStillRun) {
  std::vector<std::string> faults;
  Logger::setHandler([&](const LogRecord& record) {
    if (record.level == LogLevel::fault) faults.emplace_back(record.message);
  });
  bool laterRan = false;
  {
    SerialQueue queue("failing");
    queue.async([] { throw std::runtime_error("broken task"); });
    queue.async([&] { laterRan = true; });
  }
  Logger::setHandler(nullptr);
  EXPECT_TRUE(laterRan);
  ASSERT_EQ(faults.size(), 1u);
  EXPECT_NE(faults[0].find("broken task"), std::string::npos);
}

}  // namespace
}  // namespace cardiolith::detail
