#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cardiolith/analytics/sub_event_logger.hpp"
#include "cardiolith/export.hpp"
#include "cardiolith/platform/analytics_backend.hpp"

namespace cardiolith {

// Forwards analytics events and user properties, on one serial queue "analytics", first to the analytics
// library and then to each registered sink in array order. Calls never block on delivery, and delivery
// never runs on the caller's thread. Calls from one thread arrive everywhere in call order.
//
// With "-DONTLOGANALYTICS" among the launch arguments (a whole argument, exactly; checked on every call)
// a call is dropped before anything is queued.
//
// A receiver that throws loses only that one call: the exception is caught on the queue and logged at
// error level through Logger::standard(), naming the receiver ("Analytics library" or "Analytics sink at
// index N" of the call's snapshot), the event name or "user properties update", and its what(). The
// sinks after it and later calls are delivered as usual.
//
// Work queued before a normal exit (std::exit, or returning from main) still runs: the exit waits for it.
// Work queued while the process is exiting, or an exit called from a sink on the queue itself, is not
// waited for. std::quick_exit, std::_Exit and abnormal termination do not wait either.
class CARDIOLITH_EXPORT EventLogger {
 public:
  enum class Placement { onboarding, settings, trends };
  // "onboarding", "settings", "trends"; std::invalid_argument for a value outside the enumeration.
  [[nodiscard]] static std::string_view analyticsName(Placement placement);

  // Created on first use, thread-safely; lives for the rest of the process. Starts with no sinks.
  static EventLogger& shared();

  // Queue an event or a properties update. The library gets a new map with the same entries; each sink
  // gets the caller's map as given (absent parameters stay absent, an empty map stays an empty map).
  void log(const std::string& name, std::optional<AnalyticsParameters> parameters = std::nullopt);
  void updateUserProperties(AnalyticsParameters properties);

  // The sinks, in delivery order. A call delivers to the sinks set when it was made: a change affects only
  // later calls. Both are safe to use from any thread. setSubEventLoggers throws std::invalid_argument,
  // naming the index, for a null sink.
  [[nodiscard]] std::vector<std::shared_ptr<SubEventLogger>> subEventLoggers() const;
  void setSubEventLoggers(std::vector<std::shared_ptr<SubEventLogger>> subEventLoggers);

 private:
  EventLogger();
  ~EventLogger();
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace cardiolith
