#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cardiolith/analytics/sub_event_logger.hpp"
#include "cardiolith/platform/analytics_backend.hpp"

namespace cardiolith {

// Forwards analytics events and user properties, on one serial queue "analytics", first to the analytics
// library and then to each registered sink in array order. Calls never block on delivery.
class EventLogger {
 public:
  enum class Placement { onboarding, settings, trends };
  static std::string_view analyticsName(Placement placement);

  // Created on first use; lives for the rest of the process.
  static EventLogger& shared();

  void log(const std::string& name, std::optional<AnalyticsParameters> parameters = std::nullopt);
  void updateUserProperties(AnalyticsParameters properties);

  std::vector<std::shared_ptr<SubEventLogger>> subEventLoggers() const;
  void setSubEventLoggers(std::vector<std::shared_ptr<SubEventLogger>> subEventLoggers);

 private:
  EventLogger();
  ~EventLogger();
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace cardiolith
