#include "platform/default_time_zone.hpp"

#include <cstdlib>
#include <ctime>
#include <mutex>
#include <optional>
#include <string>

namespace cardiolith::detail {
namespace {

std::optional<std::string> environmentTZ() {
  const char* value = std::getenv("TZ");
  if (value == nullptr) return std::nullopt;
  return std::string(value);
}

}  // namespace

std::unique_ptr<icu::TimeZone> currentDefaultTimeZone() {
  static std::mutex mutex;
  static std::optional<std::string> lastSeenTZ = environmentTZ();
  std::lock_guard lock(mutex);
  if (auto tz = environmentTZ(); tz != lastSeenTZ) {
    lastSeenTZ = std::move(tz);
    ::tzset();
    icu::TimeZone::adoptDefault(icu::TimeZone::detectHostTimeZone());
  }
  return std::unique_ptr<icu::TimeZone>(icu::TimeZone::createDefault());
}

}  // namespace cardiolith::detail
