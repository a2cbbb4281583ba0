#include "platform/default_time_zone.hpp"

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

#include "platform/icu_strings.hpp"
#include "platform/posix_time_zone.hpp"
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

bool startTZChecked CARDIOLITH_GUARDED_BY(mutex) = false;

// The zone of a TZ that holds a POSIX rule rather than a zone name; ICU reads such a TZ as UTC.
std::unique_ptr<icu::TimeZone> posixRuleZone(const std::optional<std::string>& tz) {
  if (!tz || tz->empty() || tz->front() == ':') return nullptr;
  std::unique_ptr<icu::TimeZone> named(icu::TimeZone::createTimeZone(toICU(*tz)));
  icu::UnicodeString id;
  if (named && named->getID(id) != icu::UnicodeString(UCAL_UNKNOWN_ZONE_ID)) return nullptr;
  return timeZoneFromPosixRule(*tz);
}

}  // namespace

std::unique_ptr<icu::TimeZone> currentDefaultTimeZone() {
  MutexLock lock(mutex);
  auto tz = environmentTZ();
  const bool changed = tz != lastSeenTZ;
  if (changed || !startTZChecked) {
    startTZChecked = true;
    lastSeenTZ = tz;
    if (auto rule = posixRuleZone(tz)) {
      icu::TimeZone::adoptDefault(rule.release());
    } else if (changed) {
      ::tzset();
      icu::TimeZone::adoptDefault(icu::TimeZone::detectHostTimeZone());
    }
  }
  return std::unique_ptr<icu::TimeZone>(icu::TimeZone::createDefault());
}

}  // namespace cardiolith::detail
