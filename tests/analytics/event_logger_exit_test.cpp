#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <future>

#include "cardiolith/analytics/event_logger.hpp"

namespace cardiolith {
namespace {

// Opened by an exit hook, so that the delivery below can only run once the process is already exiting.
std::promise<void> exitStarted;

// Waits until the exit has begun, then reports the event on standard error.
class ExitReportingSink : public SubEventLogger {
 public:
  void log(const std::string& name, const std::optional<AnalyticsParameters>&) override {
    exitStarted.get_future().wait();
    std::fprintf(stderr, "delivered %s during exit\n", name.c_str());
  }
  void updateUserProperties(const AnalyticsParameters&) override {}
};

// Exit hooks run in reverse order of registration. The child process starts fresh, so the logger (and its
// own hook, which waits for the queue) is created here, between the two hooks of this test: the first
// marks the end of the logger's wait, the second opens the gate the delivery waits for.
void runQueuedEventThenExit() {
  std::atexit([] { std::fputs("exit went on\n", stderr); });
  auto& logger = EventLogger::shared();
  std::atexit([] { exitStarted.set_value(); });
  logger.setSubEventLoggers({std::make_shared<ExitReportingSink>()});
  logger.log("last-words");
  std::exit(0);
}

TEST(EventLoggerExitConcurrencyTest, WorkQueuedBeforeANormalExitStillRuns) {
  // The child must start from a fresh process: a forked child would have no analytics thread.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(runQueuedEventThenExit(), ::testing::ExitedWithCode(0),
              "delivered last-words during exit\n(.|\n)*exit went on");
}

}  // namespace
}  // namespace cardiolith
