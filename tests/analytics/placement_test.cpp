#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

#include "cardiolith/analytics/event_logger.hpp"

namespace cardiolith {
namespace {

TEST(EventLoggerPlacementTest, EachPlacementHasItsFixedAnalyticsName) {
  const std::pair<EventLogger::Placement, std::string_view> cases[] = {
      {EventLogger::Placement::onboarding, "onboarding"},
      {EventLogger::Placement::settings, "settings"},
      {EventLogger::Placement::trends, "trends"},
  };
  for (const auto& [placement, name] : cases) EXPECT_EQ(EventLogger::analyticsName(placement), name);
}

TEST(EventLoggerPlacementTest, AValueOutsideTheEnumerationIsRejected) {
  EXPECT_THROW(EventLogger::analyticsName(static_cast<EventLogger::Placement>(7)), std::invalid_argument);
}

}  // namespace
}  // namespace cardiolith
