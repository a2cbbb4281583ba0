#pragma once

#include <optional>
#include <string>

#include "cardiolith/export.hpp"
#include "cardiolith/platform/analytics_backend.hpp"

namespace cardiolith {

// A further analytics sink that the app registers with EventLogger. Called on the "analytics" queue.
class CARDIOLITH_EXPORT SubEventLogger {
 public:
  virtual ~SubEventLogger();
  virtual void log(const std::string& name, const std::optional<AnalyticsParameters>& parameters) = 0;
  virtual void updateUserProperties(const AnalyticsParameters& properties) = 0;
};

}  // namespace cardiolith
