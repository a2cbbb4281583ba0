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
  // Gregorian whatever the locale's own calendar (Buddhist in Thailand, say): day arithmetic is the same in
  // every one of them, and local days are then named by the years and months people and ISO dates use.
  icu::Locale locale = icu::Locale::getDefault();
  locale.setKeywordValue("calendar", "gregorian", status);
  std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(zone.release(), locale, status));
  if (U_FAILURE(status) || !calendar) return nullptr;
  // Strict: an instant outside the calendar's range is an error, not silently pinned to the range's end.
  calendar->setLenient(false);
  return std::make_shared<const Calendar::Impl>(std::move(calendar));
}

UDate toMillis(Date date) { return date.timeIntervalSince1970() * 1000.0; }

// Calendar::dateByAddingDays on a calendar that the caller has locked.
std::optional<Date> addingDays(icu::Calendar& calendar, std::int64_t days, Date date) {
  const UDate start = toMillis(date);
  if (!std::isfinite(start)) return std::nullopt;
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
  detail::MutexLock lock(impl_->mutex);
  return addingDays(*impl_->calendar, days, date);
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
  std::int64_t days = calendar.fieldDifference(end, UCAL_DATE, status);
  if (U_FAILURE(status)) return std::nullopt;
  // ICU counts on instants in milliseconds since 1970, a double that rounds away the last fraction of a
  // microsecond, so an end that close to a day boundary may be counted on the wrong side of it. The exact
  // instants, a day on either side of ICU's answer, decide.
  const int direction = to >= from ? 1 : -1;
  const auto isReached = [&](std::int64_t count) {
    const auto stepped = addingDays(calendar, count, from);
    return stepped && (direction > 0 ? !(to < *stepped) : !(*stepped < to));
  };
  if (!isReached(days)) return days - direction;
  if (isReached(days + direction)) return days + direction;
  return days;
}

std::optional<LocalTime> Calendar::localTime(Date date) const {
  if (!impl_) return std::nullopt;
  const UDate millis = toMillis(date);
  if (!std::isfinite(millis)) return std::nullopt;
  detail::MutexLock lock(impl_->mutex);
  auto& calendar = *impl_->calendar;
  UErrorCode status = U_ZERO_ERROR;
  calendar.setTime(millis, status);
  // The extended year counts years before year 1 as 0, -1, ..., so days stay ordered across the era change.
  const LocalTime local{{calendar.get(UCAL_EXTENDED_YEAR, status), calendar.get(UCAL_MONTH, status) + 1,
                         calendar.get(UCAL_DATE, status)},
                        calendar.get(UCAL_HOUR_OF_DAY, status),
                        calendar.get(UCAL_MINUTE, status)};
  if (U_FAILURE(status)) return std::nullopt;
  return local;
}

}  // namespace cardiolith
