#include "cardiolith/analytics/event_logger.hpp"

#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "analytics/delivery.hpp"
#include "analytics/drainable_queue.hpp"
#include "cardiolith/platform/logger.hpp"
#include "cardiolith/platform/process_info.hpp"
#include "platform/thread_annotations.hpp"

namespace cardiolith {
namespace {

// The launch argument that turns analytics off for the whole process. A plain array, not a std::string,
// so that it is still valid for calls made while static objects are being destroyed.
constexpr char dontLogAnalyticsArgument[] = "-DONTLOGANALYTICS";

}  // namespace

struct EventLogger::Impl {
  // Calls take a snapshot: a shared reference to the current array, never a copy of the sinks.
  std::shared_ptr<const detail::SubEventLoggerList> snapshot() const {
    detail::MutexLock lock(sinksMutex);
    return sinks;
  }

  mutable detail::Mutex sinksMutex;
  std::shared_ptr<const detail::SubEventLoggerList> sinks CARDIOLITH_GUARDED_BY(sinksMutex) =
      std::make_shared<const detail::SubEventLoggerList>();
  detail::DrainableQueue queue{"analytics", detail::SerialQueue::Priority::utility};
};

EventLogger::EventLogger() : impl_(std::make_unique<Impl>()) {}

// Never runs for the shared instance; defined here, where Impl is complete.
EventLogger::~EventLogger() = default;

EventLogger& EventLogger::shared() {
  // Never destroyed, so that calls made while static objects are being destroyed still find a logger.
  // Its queue is drained instead by an exit hook, which std::exit runs before destroying the static
  // objects created before it. What a delivery touches besides the sinks (the analytics library's backend,
  // the log handler) lives in never-destroyed slots, so it is still there while the hook waits.
  static EventLogger* const instance = [] {
    auto* logger = new EventLogger();
    if (std::atexit([] { shared().impl_->queue.drain(); }) != 0) {
      Logger::standard().error("Analytics events still queued at exit will be lost");
    }
    return logger;
  }();
  return *instance;
}

void EventLogger::log(const std::string& name, std::optional<AnalyticsParameters> parameters) {
  if (ProcessInfo::hasArgument(dontLogAnalyticsArgument)) return;
  impl_->queue.async([name, parameters = std::move(parameters), sinks = impl_->snapshot()] {
    detail::deliverEvent(name, parameters, *sinks);
  });
}

void EventLogger::updateUserProperties(AnalyticsParameters properties) {
  if (ProcessInfo::hasArgument(dontLogAnalyticsArgument)) return;
  impl_->queue.async([properties = std::move(properties), sinks = impl_->snapshot()] {
    detail::deliverUserProperties(properties, *sinks);
  });
}

std::vector<std::shared_ptr<SubEventLogger>> EventLogger::subEventLoggers() const {
  return *impl_->snapshot();
}

void EventLogger::setSubEventLoggers(std::vector<std::shared_ptr<SubEventLogger>> subEventLoggers) {
  for (std::size_t index = 0; index < subEventLoggers.size(); ++index) {
    if (!subEventLoggers[index]) {
      throw std::invalid_argument("subEventLoggers[" + std::to_string(index) + "] is null");
    }
  }
  auto replacement = std::make_shared<const detail::SubEventLoggerList>(std::move(subEventLoggers));
  {
    detail::MutexLock lock(impl_->sinksMutex);
    impl_->sinks.swap(replacement);
  }
  // The old array is released outside the lock, so a sink's destructor may use the logger.
}

}  // namespace cardiolith
