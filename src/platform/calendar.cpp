#include "cardiolith/platform/calendar.hpp"

#include <unicode/calendar.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <cmath>
#include <limits>

#include "platform/default_time_zone.hpp"
#include "platform/icu_strings.hpp"
#include "platform/thread_annotations.hpp"

namespace cardiolith {

// An ICU calendar is mutable while it computes, so each one is guarded by its own lock.
struct Calendar::Impl {
  explicit Impl(std::unique_ptr<icu::Calendar> icuCalendar) : calendar(std::move(icuCalendar)) {}
  mutable detail::Mutex mutex;
  std::unique_ptr<icu::Calendar> calendar CARDIOLITH_PT_GUARDED_BY(mutex);
};

namespace {

std::shared_ptr<const Calendar::Impl> makeImpl(std::unique_ptr<icu::TimeZone> zone) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::Calendar> calendar(
      icu::Calendar::createInstance(zone.release(), icu::Locale::getDefault(), status));
  if (U_FAILURE(status) || !calendar) return nullptr;
  // Strict: an instant outside the calendar's range is an error, not silently pinned to the range's end.
  calendar->setLenient(false);
  return std::make_shared<const Calendar::Impl>(std::move(calendar));
}

UDate toMillis(Date date) { return date.timeIntervalSince1970() * 1000.0; }

}  // namespace

Calendar Calendar::current() { return Calendar(makeImpl(detail::currentDefaultTimeZone())); }

std::optional<Calendar> Calendar::inTimeZone(std::string_view timeZoneID) {
  std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(detail::toICU(timeZoneID)));
  icu::UnicodeString resolved;
  if (!zone || zone->getID(resolved) == icu::UnicodeString(UCAL_UNKNOWN_ZONE_ID)) return std::nullopt;
  auto impl = makeImpl(std::move(zone));
  if (!impl) return std::nullopt;
  return Calendar(std::move(impl));
}

std::optional<Date> Calendar::dateByAddingDays(std::int64_t days, Date date) const {
  if (!impl_) return std::nullopt;
  const UDate start = toMillis(date);
  if (!std::isfinite(start)) return std::nullopt;
  detail::MutexLock lock(impl_->mutex);
  auto& calendar = *impl_->calendar;
  UErrorCode status = U_ZERO_ERROR;
  calendar.setTime(start, status);
  // ICU adds 32-bit amounts; a larger count is added in steps rather than wrapped.
  constexpr std::int64_t maxStep = std::numeric_limits<int32_t>::max();
  for (std::int64_t remaining = days; remaining != 0 && U_SUCCESS(status);) {
    const std::int64_t step = remaining > maxStep ? maxStep : (remaining < -maxStep ? -maxStep : remaining);
    calendar.add(UCAL_DATE, static_cast<int32_t>(step), status);
    remaining -= step;
  }
  const UDate end = calendar.getTime(status);
  if (U_FAILURE(status)) return std::nullopt;
  // Move by the calendar's whole-millisecond step so the fraction of the original instant is kept exactly.
  return date.addingTimeInterval((end - start) / 1000.0);
}

std::optional<std::int64_t> Calendar::wholeDays(Date from, Date to) const {
  if (!impl_) return std::nullopt;
  const UDate start = toMillis(from);
  const UDate end =
      start + (to.timeIntervalSinceReferenceDate() - from.timeIntervalSinceReferenceDate()) * 1000.0;
  if (!std::isfinite(start) || !std::isfinite(end)) return std::nullopt;
  detail::MutexLock lock(impl_->mutex);
  auto& calendar = *impl_->calendar;
  UErrorCode status = U_ZERO_ERROR;
  calendar.setTime(start, status);
  const int32_t days = calendar.fieldDifference(end, UCAL_DATE, status);
  if (U_FAILURE(status)) return std::nullopt;
  return days;
}

}  // namespace cardiolith
