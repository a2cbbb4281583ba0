#pragma once

#include <cstdint>
#include <optional>

#include "cardiolith/platform/calendar.hpp"
#include "cardiolith/platform/date.hpp"

namespace cardiolith {

// A run of whole local calendar days: from the first instant of its first day (midnight, or the first
// minute after a midnight the clocks skip) up to, but not including, the first instant of the day after
// its last. A day across a daylight-saving change lasts 23 or 25 hours.
struct DayPeriod {
  Date start;
  Date end;
};

// The last `days` whole calendar days ending with the day of `now`, that day included: what a person
// means by "the last 7 days", so that this morning's first reading and the first reading of the day a week
// ago are both in it whatever the time now. Days are those of `calendar` (its time zone). Nothing when
// `days` is less than 1 or the calendar can't compute the bounds. Pure; any thread.
std::optional<DayPeriod> lastWholeDays(std::int64_t days, Date now, const Calendar& calendar);

}  // namespace cardiolith
