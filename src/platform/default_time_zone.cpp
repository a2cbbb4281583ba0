#include "platform/default_time_zone.hpp"

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

#include "platform/thread_annotations.hpp"

namespace cardiolith::detail {
namespace {

std::optional<std::string> environmentTZ() {
  const char* value = std::getenv("TZ");
  if (value == nullptr) return std::nullopt;
  return std::string(value);
}

Mutex mutex;
// TZ as it was when the process started, before ICU can have read it: ICU's cached default follows that
// value, or a later one if TZ changed before ICU first looked, which a re-detection then merely confirms.
std::optional<std::string> lastSeenTZ CARDIOLITH_GUARDED_BY(mutex) = environmentTZ();

}  // namespace

std::unique_ptr<icu::TimeZone> currentDefaultTimeZone() {
  MutexLock lock(mutex);
  if (auto tz = environmentTZ(); tz != lastSeenTZ) {
    lastSeenTZ = std::move(tz);
    ::tzset();
    icu::TimeZone::adoptDefault(icu::TimeZone::detectHostTimeZone());
  }
  return std::unique_ptr<icu::TimeZone>(icu::TimeZone::createDefault());
}

}  // namespace cardiolith::detail
