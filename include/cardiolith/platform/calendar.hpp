#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "cardiolith/export.hpp"
#include "cardiolith/platform/date.hpp"

namespace cardiolith {

// A day of the calendar as people name it: year, month 1-12, day of the month 1-31.
struct CalendarDay {
  std::int32_t year = 0;
  std::int32_t month = 0;
  std::int32_t day = 0;
  friend constexpr auto operator<=>(const CalendarDay&, const CalendarDay&) = default;
};

// An instant as the local clock shows it: the day, the hour 0-23 and the minute 0-59.
struct LocalTime {
  CalendarDay day;
  std::int32_t hour = 0;
  std::int32_t minute = 0;
};

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
  // The local day and clock time of `date` in this calendar's time zone (after a daylight-saving change,
  // the clock time that the zone shows then). Nothing when the calendar cannot represent the instant.
  // Thread-safe, like every operation of a calendar.
  [[nodiscard]] std::optional<LocalTime> localTime(Date date) const;

  // A date and wall-clock time on the Gregorian calendar, as people type and read them.
  struct WallTime {
    int year = 0, month = 0, day = 0;  // month and day count from 1
    int hour = 0, minute = 0;
    friend bool operator==(const WallTime&, const WallTime&) = default;
  };

  // The local Gregorian date and time of `date` in this calendar's time zone (seconds dropped), and its
  // weekday, 0 for Sunday to 6 for Saturday. Nothing for an instant the calendar can't represent.
  std::optional<WallTime> wallTime(Date date) const;
  std::optional<int> weekday(Date date) const;

  // The instants at which the local clock shows `time`. Usually one (earlier == later). Where the clocks
  // go back and the time happens twice, `earlier` and `later` are the two instants, an hour or so apart.
  // Where the clocks skip the time, or the date isn't on the calendar (31 April), there are none.
  struct Instants {
    Date earlier, later;
  };
  std::optional<Instants> instantsAt(const WallTime& time) const;

  // The first instant of the local day that `date` falls on: its midnight, or the first minute after it
  // where the clocks skip midnight. Nothing for an instant the calendar can't represent.
  std::optional<Date> startOfDay(Date date) const;

  struct Impl;

 private:
  explicit Calendar(std::shared_ptr<const Impl> impl) : impl_(std::move(impl)) {}
  std::shared_ptr<const Impl> impl_;
};

}  // namespace cardiolith
