#include "cardiolith/platform/civil_time.hpp"

#include <unicode/calendar.h>
#include <unicode/gregocal.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>

#include <chrono>
#include <cmath>
#include <mutex>
#include <stdexcept>
#include <string>

#include "platform/default_time_zone.hpp"
#include "platform/icu_strings.hpp"

namespace cardiolith {
namespace {

bool validFields(const CivilTime& time) {
  return time.year >= 1 && time.year <= 9999 && time.month >= 1 && time.month <= 12 && time.day >= 1 &&
         time.day <= 31 && time.hour >= 0 && time.hour <= 23 && time.minute >= 0 && time.minute <= 59 &&
         time.second >= 0 && time.second < 61;
}

}  // namespace

struct LocalClock::Impl {
  std::unique_ptr<icu::Calendar> calendar;
};

LocalClock::LocalClock() : impl_(std::make_unique<Impl>()) {
  UErrorCode status = U_ZERO_ERROR;
  impl_->calendar = std::make_unique<icu::GregorianCalendar>(detail::currentDefaultTimeZone().release(),
                                                             icu::Locale::getRoot(), status);
  if (U_FAILURE(status)) impl_->calendar.reset();
  if (!impl_->calendar) return;
  impl_->calendar->setLenient(false);  // also refuses a clock time that a daylight-saving change skips
  impl_->calendar->setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
}

LocalClock::~LocalClock() = default;

// Whole seconds go through the calendar, so that a fraction is kept exactly as written.
std::optional<Date> LocalClock::instant(const CivilTime& time) const {
  if (!validFields(time) || !impl_->calendar) return std::nullopt;
  auto& calendar = *impl_->calendar;
  const double wholeSeconds = std::min(std::floor(time.second), 59.0);
  calendar.clear();
  calendar.set(time.year, time.month - 1, time.day, time.hour, time.minute,
               static_cast<int32_t>(wholeSeconds));
  UErrorCode status = U_ZERO_ERROR;
  const UDate millis = calendar.getTime(status);
  if (U_FAILURE(status)) return std::nullopt;
  return Date::fromTimeIntervalSince1970(millis / 1000.0 + (time.second - wholeSeconds));
}

std::optional<LocalClock::WallTime> LocalClock::wallTime(Date date) const {
  using namespace std::chrono;
  if (!impl_->calendar) return std::nullopt;
  const double utc = date.timeIntervalSince1970();
  constexpr double kFirstSecond = -62135596800.0, kEndSecond = 253402300800.0;  // the years 1-9999
  if (!(utc >= kFirstSecond && utc < kEndSecond)) return std::nullopt;
  int32_t raw = 0, daylight = 0;
  UErrorCode status = U_ZERO_ERROR;
  impl_->calendar->getTimeZone().getOffset(utc * 1000.0, false, raw, daylight, status);
  if (U_FAILURE(status)) return std::nullopt;
  const int offset = (raw + daylight) / 1000;
  const double local = utc + offset;
  const double days = std::floor(local / 86400.0);
  const double secondOfDay = local - days * 86400.0;
  const year_month_day day{sys_days(std::chrono::days(static_cast<int>(days)))};
  WallTime reading;
  reading.offsetSeconds = offset;
  reading.time.year = static_cast<int>(day.year());
  reading.time.month = static_cast<int>(static_cast<unsigned>(day.month()));
  reading.time.day = static_cast<int>(static_cast<unsigned>(day.day()));
  reading.time.hour = static_cast<int>(secondOfDay / 3600.0);
  reading.time.minute = static_cast<int>((secondOfDay - reading.time.hour * 3600.0) / 60.0);
  reading.time.second = secondOfDay - reading.time.hour * 3600.0 - reading.time.minute * 60.0;
  return reading;
}

std::optional<Date> localInstant(const CivilTime& time) { return LocalClock().instant(time); }

// Plain arithmetic: a fixed offset needs no time-zone rules.
std::optional<Date> instantAtOffset(const CivilTime& time, int offsetSeconds) {
  using namespace std::chrono;
  if (!validFields(time)) return std::nullopt;
  const year_month_day day{year(time.year), month(static_cast<unsigned>(time.month)),
                           std::chrono::day(static_cast<unsigned>(time.day))};
  if (!day.ok()) return std::nullopt;
  const double daySeconds = static_cast<double>(sys_days(day).time_since_epoch().count()) * 86400.0;
  return Date::fromTimeIntervalSince1970(daySeconds + time.hour * 3600.0 + time.minute * 60.0 + time.second -
                                         offsetSeconds);
}

struct DatePatternParser::Impl {
  std::mutex mutex;  // an ICU format object is not safe for concurrent use
  std::unique_ptr<icu::SimpleDateFormat> format;
};

DatePatternParser::DatePatternParser(std::string_view icuPattern) : impl_(std::make_unique<Impl>()) {
  UErrorCode status = U_ZERO_ERROR;
  impl_->format =
      std::make_unique<icu::SimpleDateFormat>(detail::toICU(icuPattern), icu::Locale("en_US_POSIX"), status);
  if (U_FAILURE(status)) {
    throw std::invalid_argument("\"" + std::string(icuPattern) + "\" is not an ICU date pattern (" +
                                u_errorName(status) + ")");
  }
  // Read the fields in UTC, so that they come back as written whatever the local zone does that day.
  impl_->format->adoptTimeZone(icu::TimeZone::createTimeZone("Etc/UTC"));
  impl_->format->setLenient(false);
}

DatePatternParser::~DatePatternParser() = default;

std::optional<CivilTime> DatePatternParser::parse(std::string_view text) const {
  const icu::UnicodeString input = detail::toICU(text);
  std::lock_guard lock(impl_->mutex);
  icu::ParsePosition position(0);
  const UDate millis = impl_->format->parse(input, position);
  if (position.getErrorIndex() >= 0 || position.getIndex() != input.length()) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  icu::GregorianCalendar calendar(icu::TimeZone::createTimeZone("Etc/UTC"), icu::Locale::getRoot(), status);
  calendar.setTime(millis, status);
  CivilTime time;
  time.year = calendar.get(UCAL_EXTENDED_YEAR, status);
  time.month = calendar.get(UCAL_MONTH, status) + 1;
  time.day = calendar.get(UCAL_DATE, status);
  time.hour = calendar.get(UCAL_HOUR_OF_DAY, status);
  time.minute = calendar.get(UCAL_MINUTE, status);
  time.second = calendar.get(UCAL_SECOND, status) + calendar.get(UCAL_MILLISECOND, status) / 1000.0;
  if (U_FAILURE(status)) return std::nullopt;
  return time;
}

}  // namespace cardiolith
