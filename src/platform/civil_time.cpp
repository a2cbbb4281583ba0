#include "cardiolith/platform/civil_time.hpp"

#include <unicode/calendar.h>
#include <unicode/gregocal.h>
#include <unicode/locid.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>

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

// Whole seconds go through the calendar, so that a fraction is kept exactly as written.
std::optional<Date> instantIn(std::unique_ptr<icu::TimeZone> zone, const CivilTime& time) {
  if (!validFields(time) || !zone) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  icu::GregorianCalendar calendar(zone.release(), icu::Locale::getRoot(), status);  // adopts the zone
  if (U_FAILURE(status)) return std::nullopt;
  calendar.setLenient(false);  // also refuses a clock time that a daylight-saving change skips
  calendar.setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
  const double wholeSeconds = std::min(std::floor(time.second), 59.0);
  calendar.clear();
  calendar.set(time.year, time.month - 1, time.day, time.hour, time.minute,
               static_cast<int32_t>(wholeSeconds));
  const UDate millis = calendar.getTime(status);
  if (U_FAILURE(status)) return std::nullopt;
  return Date::fromTimeIntervalSince1970(millis / 1000.0 + (time.second - wholeSeconds));
}

}  // namespace

std::optional<Date> localInstant(const CivilTime& time) {
  return instantIn(detail::currentDefaultTimeZone(), time);
}

std::optional<Date> instantAtOffset(const CivilTime& time, int offsetSeconds) {
  return instantIn(std::make_unique<icu::SimpleTimeZone>(offsetSeconds * 1000, "offset"), time);
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
