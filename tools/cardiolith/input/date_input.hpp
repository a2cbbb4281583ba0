#pragma once

#include <cardiolith/platform/calendar.hpp>
#include <cardiolith/platform/date.hpp>
#include <cstdint>
#include <string_view>

namespace cardiolith::tool {

// Dates and times typed on the command line, read in the user's time zone on the Gregorian calendar, the
// one the tool shows dates in. The forms:
//   "2026-11-20"                         a day
//   "2026-11-20 7:45", "2026-11-20T07:45"  a minute of a day, optionally with its UTC offset
//                                        ("2026-10-25 02:30+01:00") to name one of a repeated hour
//   "7:45"                               that minute today
//   "today", "yesterday", "mon".."sun"   a day (a weekday is the most recent one, today included),
//                                        optionally followed by a time: "yesterday 21:30", "mon 8:00"
//   "now", "-2h", "-30m", "-1d", "30m ago", "2 hours ago"   an instant relative to now
// Every function throws ToolError, naming `option`, for a text of none of these forms, a day not on the
// calendar, a time that the local clocks skip, and a repeated time (clocks going back) without offset.
class DateReader {
 public:
  DateReader(Calendar calendar, Date now) : calendar_(std::move(calendar)), now_(now) {}
  // The user's calendar and time zone, and the clock.
  static DateReader current();

  const Calendar& calendar() const { return calendar_; }
  Date now() const { return now_; }

  struct TypedTime {
    Date instant;       // the minute named, or the first instant of the day named
    bool hasTimeOfDay;  // false for a day alone
  };
  TypedTime read(std::string_view text, std::string_view option) const;

  // When a reading was taken: the text must name a time of day, not just a day. Unless `force`, also
  // refuses a date before 1900 or in the future (beyond a few minutes of clock difference).
  Date readingTime(std::string_view text, std::string_view option, bool force) const;
  // The first instant a range includes: the minute named, or the start of the day.
  Date rangeStart(std::string_view text, std::string_view option) const;
  // The last instant a range includes: the minute named, or the last millisecond of the day.
  Date rangeEnd(std::string_view text, std::string_view option) const;

 private:
  Calendar calendar_;
  Date now_;
};

// ToolError when a range ends before it starts.
void requireOrdered(Date from, Date to);

// A span of days: "7", "7d" or "2w" (weeks). At least one day.
std::int64_t parseSpanDays(std::string_view text, std::string_view option);

}  // namespace cardiolith::tool
