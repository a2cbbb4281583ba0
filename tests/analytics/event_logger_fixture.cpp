#include "event_logger_fixture.hpp"

#include "cardiolith/platform/logger.hpp"
#include "cardiolith/platform/process_info.hpp"

namespace cardiolith::testing {

void EventLoggerFixture::SetUp() {
  originalArguments_ = ProcessInfo::arguments();
  OstrelAnalyticsLogger::shared().setBackend(std::make_shared<RecordingBackend>(journal));
  logger().setSubEventLoggers({});
}

void EventLoggerFixture::TearDown() {
  ProcessInfo::setArguments(originalArguments_);
  const auto drainJournal = std::make_shared<Journal>();
  logger().setSubEventLoggers({std::make_shared<RecordingSink>(drainJournal, "drain")});
  logger().log("drain");
  EXPECT_TRUE(drainJournal->waitFor(eventLine("drain", "drain")));
  logger().setSubEventLoggers({});
  OstrelAnalyticsLogger::shared().setBackend(nullptr);
  Logger::setHandler(nullptr);
}

}  // namespace cardiolith::testing
