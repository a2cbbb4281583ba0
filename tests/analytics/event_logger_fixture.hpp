#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "cardiolith/analytics/event_logger.hpp"
#include "recording_receivers.hpp"

namespace cardiolith::testing {

// Installs a recording backend on a fresh journal and no sinks. Afterwards waits until everything the test
// queued has been delivered, so that nothing spills into the next test, and restores the launch
// arguments, the backend and the log handler.
class EventLoggerFixture : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  static EventLogger& logger() { return EventLogger::shared(); }
  std::shared_ptr<RecordingSink> sink(const std::string& label) const {
    return std::make_shared<RecordingSink>(journal, label);
  }

  std::shared_ptr<Journal> journal = std::make_shared<Journal>();

 private:
  std::vector<std::string> originalArguments_;
};

}  // namespace cardiolith::testing
