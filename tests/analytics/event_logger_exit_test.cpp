#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "cardiolith/analytics/event_logger.hpp"

namespace cardiolith {
namespace {

constexpr int queuedEvents = 1000;
std::atomic<bool> exitStarted{false};
std::atomic<int> delivered{0};

// Holds the queue until the exit has begun, so that every event is still queued then. It polls rather than
// blocks: opening the gate then wakes no thread, which could otherwise take the exiting thread's processor
// and hide a logger that lets the exit go on without waiting.
class CountingSink : public SubEventLogger {
 public:
  void log(const std::string&, const std::optional<AnalyticsParameters>&) override {
    while (!exitStarted) std::this_thread::yield();
    ++delivered;
  }
  void updateUserProperties(const AnalyticsParameters&) override {}
};

// Exit hooks run in reverse order of registration. The logger, and with it its hook that waits for the
// queue, is created between the two hooks here: the second opens the gate, the first reports what had
// arrived by the time the exit went on past the logger's hook.
void queueEventsThenExit() {
  std::atexit([] { std::fprintf(stderr, "%d delivered when the exit went on\n", delivered.load()); });
  auto& logger = EventLogger::shared();
  std::atexit([] { exitStarted = true; });
  logger.setSubEventLoggers({std::make_shared<CountingSink>()});
  for (int event = 0; event < queuedEvents; ++event) logger.log("queued");
  std::exit(0);
}

TEST(EventLoggerExitConcurrencyTest, WorkQueuedBeforeANormalExitStillRuns) {
  // A fresh process, not a fork: a forked child would have no analytics thread.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(queueEventsThenExit(), ::testing::ExitedWithCode(0),
              std::to_string(queuedEvents) + " delivered when the exit went on");
}

}  // namespace
}  // namespace cardiolith
