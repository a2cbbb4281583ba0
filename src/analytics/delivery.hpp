#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cardiolith/analytics/sub_event_logger.hpp"
#include "cardiolith/platform/analytics_backend.hpp"

namespace cardiolith::detail {

using SubEventLoggerList = std::vector<std::shared_ptr<SubEventLogger>>;

// The analytics library's own copy of a caller's map: a new map, entry by entry, same keys, same values.
AnalyticsParameters libraryParameters(const AnalyticsParameters& parameters);

// One delivery, run on the analytics queue: first the analytics library with its own copy of the
// parameters, then each sink in order with the caller's parameters as given. A receiver that throws is
// logged at error level and skipped; the receivers after it are still called.
void deliverEvent(const std::string& name, const std::optional<AnalyticsParameters>& parameters,
                  const SubEventLoggerList& sinks);
void deliverUserProperties(const AnalyticsParameters& properties, const SubEventLoggerList& sinks);

}  // namespace cardiolith::detail
