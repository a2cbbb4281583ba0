#include "cardiolith/model/day_periods.hpp"

namespace cardiolith {

std::optional<DayPeriod> lastWholeDays(std::int64_t days, Date now, const Calendar& calendar) {
  if (days < 1) return std::nullopt;
  const auto todayStart = calendar.startOfDay(now);
  if (!todayStart) return std::nullopt;
  // Steps are taken from the middle of today, which every day has, and then snapped to their day's start:
  // stepping from a start at 01:00 (a skipped midnight) would otherwise keep 01:00 on ordinary days.
  const Date midday = todayStart->addingTimeInterval(12 * 3600);
  const auto firstDay = calendar.dateByAddingDays(1 - days, midday);
  const auto nextDay = calendar.dateByAddingDays(1, midday);
  const auto start = firstDay ? calendar.startOfDay(*firstDay) : std::nullopt;
  const auto end = nextDay ? calendar.startOfDay(*nextDay) : std::nullopt;
  if (!start || !end) return std::nullopt;
  return DayPeriod{*start, *end};
}

}  // namespace cardiolith
