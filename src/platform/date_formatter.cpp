#include "cardiolith/platform/date_formatter.hpp"

#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>

#include <stdexcept>

#include "platform/default_time_zone.hpp"
#include "platform/icu_strings.hpp"
#include "platform/thread_annotations.hpp"

namespace cardiolith {

struct DateFormatter::Impl {
  detail::Mutex mutex;  // an ICU format object is not safe for concurrent use
  std::unique_ptr<icu::SimpleDateFormat> format CARDIOLITH_PT_GUARDED_BY(mutex);
  bool followsDefaultTimeZone = false;
};

DateFormatter::DateFormatter(std::string icuPattern, std::string localeID, std::string timeZoneID)
    : impl_(std::make_unique<Impl>()) {
  const icu::Locale locale = localeID.empty() ? icu::Locale::getDefault() : icu::Locale(localeID.c_str());
  UErrorCode status = U_ZERO_ERROR;
  auto format = std::make_unique<icu::SimpleDateFormat>(detail::toICU(icuPattern), locale, status);
  if (U_FAILURE(status)) {
    throw std::invalid_argument("DateFormatter: pattern \"" + icuPattern +
                                "\" is not a valid ICU date pattern (" + u_errorName(status) + ")");
  }
  if (timeZoneID.empty()) {
    impl_->followsDefaultTimeZone = true;
  } else {
    std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(detail::toICU(timeZoneID)));
    icu::UnicodeString resolved;
    if (zone->getID(resolved) == icu::UnicodeString(UCAL_UNKNOWN_ZONE_ID)) {
      throw std::invalid_argument("DateFormatter: \"" + timeZoneID + "\" is not a known time zone");
    }
    format->adoptTimeZone(zone.release());
  }
  impl_->format = std::move(format);
}

DateFormatter::~DateFormatter() = default;

std::string DateFormatter::string(Date date) const {
  detail::MutexLock lock(impl_->mutex);
  if (impl_->followsDefaultTimeZone) {
    auto zone = detail::currentDefaultTimeZone();
    if (*zone != impl_->format->getTimeZone()) impl_->format->adoptTimeZone(zone.release());
  }
  icu::UnicodeString text;
  impl_->format->format(date.timeIntervalSince1970() * 1000.0, text);
  return detail::fromICU(text);
}

}  // namespace cardiolith
