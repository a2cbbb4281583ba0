#include "cardiolith/platform/calendar.hpp"

#include <unicode/calendar.h>
#include <unicode/gregocal.h>
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

namespace {

// Typed and shown dates are Gregorian whatever the locale's own calendar, so these operations use a
// Gregorian calendar in the same time zone. Lenient, so that out-of-range fields resolve to some instant
// that the callers then compare with what they asked for.
std::unique_ptr<icu::GregorianCalendar> gregorianIn(const icu::Calendar& calendar) {
  UErrorCode status = U_ZERO_ERROR;
  auto gregorian = std::make_unique<icu::GregorianCalendar>(calendar.getTimeZone().clone(), status);
  if (U_FAILURE(status)) return nullptr;
  gregorian->setGregorianChange(-std::numeric_limits<double>::infinity(), status);  // proleptic
  return U_SUCCESS(status) ? std::move(gregorian) : nullptr;
}

std::optional<Calendar::WallTime> fieldsOf(icu::Calendar& calendar, UDate millis) {
  UErrorCode status = U_ZERO_ERROR;
  calendar.setTime(millis, status);
  Calendar::WallTime time{calendar.get(UCAL_EXTENDED_YEAR, status), calendar.get(UCAL_MONTH, status) + 1,
                          calendar.get(UCAL_DATE, status), calendar.get(UCAL_HOUR_OF_DAY, status),
                          calendar.get(UCAL_MINUTE, status)};
  if (U_FAILURE(status)) return std::nullopt;
  return time;
}

std::optional<UDate> millisAt(icu::Calendar& calendar, const Calendar::WallTime& time) {
  UErrorCode status = U_ZERO_ERROR;
  calendar.clear();
  calendar.set(UCAL_EXTENDED_YEAR, time.year);
  calendar.set(UCAL_MONTH, time.month - 1);
  calendar.set(UCAL_DATE, time.day);
  calendar.set(UCAL_HOUR_OF_DAY, time.hour);
  calendar.set(UCAL_MINUTE, time.minute);
  const UDate millis = calendar.getTime(status);
  if (U_FAILURE(status)) return std::nullopt;
  return millis;
}

}  // namespace

std::optional<Calendar::WallTime> Calendar::wallTime(Date date) const {
  if (!impl_ || !std::isfinite(toMillis(date))) return std::nullopt;
  detail::MutexLock lock(impl_->mutex);
  auto gregorian = gregorianIn(*impl_->calendar);
  if (!gregorian) return std::nullopt;
  return fieldsOf(*gregorian, std::floor(toMillis(date)));
}

std::optional<int> Calendar::weekday(Date date) const {
  if (!impl_ || !std::isfinite(toMillis(date))) return std::nullopt;
  detail::MutexLock lock(impl_->mutex);
  auto& calendar = *impl_->calendar;
  UErrorCode status = U_ZERO_ERROR;
  calendar.setTime(std::floor(toMillis(date)), status);
  const int32_t day = calendar.get(UCAL_DAY_OF_WEEK, status);
  if (U_FAILURE(status)) return std::nullopt;
  return day - UCAL_SUNDAY;
}

std::optional<Calendar::Instants> Calendar::instantsAt(const WallTime& time) const {
  if (!impl_) return std::nullopt;
  detail::MutexLock lock(impl_->mutex);
  auto gregorian = gregorianIn(*impl_->calendar);
  if (!gregorian) return std::nullopt;
  gregorian->setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
  const auto earlier = millisAt(*gregorian, time);
  gregorian->setRepeatedWallTimeOption(UCAL_WALLTIME_LAST);
  const auto later = millisAt(*gregorian, time);
  // A skipped time or an impossible date resolves to an instant whose local fields are not the ones asked.
  if (!earlier || !later || fieldsOf(*gregorian, *earlier) != time) return std::nullopt;
  return Instants{Date::fromTimeIntervalSince1970(*earlier / 1000.0),
                  Date::fromTimeIntervalSince1970(*later / 1000.0)};
}

std::optional<Date> Calendar::startOfDay(Date date) const {
  const auto time = wallTime(date);
  if (!time) return std::nullopt;
  if (const auto midnight = instantsAt({time->year, time->month, time->day, 0, 0})) return midnight->earlier;
  detail::MutexLock lock(impl_->mutex);
  auto gregorian = gregorianIn(*impl_->calendar);
  if (!gregorian) return std::nullopt;
  gregorian->setSkippedWallTimeOption(UCAL_WALLTIME_NEXT_VALID);
  const auto first = millisAt(*gregorian, {time->year, time->month, time->day, 0, 0});
  if (!first) return std::nullopt;
  return Date::fromTimeIntervalSince1970(*first / 1000.0);
}

std::optional<LocalTime> Calendar::localTime(Date date) const {
  const auto time = wallTime(date);
  if (!time) return std::nullopt;
  return LocalTime{{time->year, time->month, time->day}, time->hour, time->minute};
}

}  // namespace cardiolith
