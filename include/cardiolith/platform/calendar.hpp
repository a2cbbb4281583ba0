#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "cardiolith/export.hpp"
#include "cardiolith/platform/date.hpp"

namespace cardiolith {

// The user's calendar in a fixed time zone, over ICU.
class CARDIOLITH_EXPORT Calendar {
 public:
  // The calendar of the current locale in the default time zone as it is at the moment of the call.
  // A change of the TZ environment variable is noticed; so is icu::TimeZone::adoptDefault.
  [[nodiscard]] static Calendar current();
  // The same calendar in a named time zone (an Olson id such as "America/New_York").
  [[nodiscard]] static std::optional<Calendar> inTimeZone(std::string_view timeZoneID);

  // The instant `days` calendar days after `date` at the same local wall-clock time (no wrapping).
  // Nothing when the result lies outside what the calendar can represent.
  [[nodiscard]] std::optional<Date> dateByAddingDays(std::int64_t days, Date date) const;
  // The whole calendar days from `from` to `to`, negative when `to` is earlier; nothing when the
  // calendar cannot count them.
  [[nodiscard]] std::optional<std::int64_t> wholeDays(Date from, Date to) const;

  struct Impl;

 private:
  explicit Calendar(std::shared_ptr<const Impl> impl) : impl_(std::move(impl)) {}
  std::shared_ptr<const Impl> impl_;
};

}  // namespace cardiolith
