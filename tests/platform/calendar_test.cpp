#include "cardiolith/platform/calendar.hpp"

#include <gtest/gtest.h>
#include <unicode/timezone.h>

#include <limits>

#include "cardiolith/platform/date.hpp"
#include "cardiolith/platform/date_formatter.hpp"
#include "support/scoped_time_zone.hpp"

namespace cardiolith {
namespace {

constexpr double hour = 3600;
constexpr double day = 86400;

// 2025-03-08 12:00 in New York (EST, UTC-5); clocks spring forward on 2025-03-09 at 02:00.
const Date saturdayNoon = Date::fromTimeIntervalSince1970(1741453200);

TEST(CalendarTest, DayArithmeticFollowsTheLocalCalendarAcrossTheSpringForward) {
  // Days added keep the local clock time (the day of the change lasts 23 hours) and the fraction. Whole days
  // count calendar days: the short day is a whole one, and one second less towards the start is a day fewer.
  const std::pair<std::int64_t, double> cases[] = {{1, 23 * hour}, {-1, -day}, {7, 7 * day - hour}};
  const Date start = saturdayNoon.addingTimeInterval(0.123);
  {
    testing::ScopedTimeZone zone("America/New_York");
    const auto calendar = Calendar::current();
    for (const auto& [days, seconds] : cases) {
      const std::int64_t sign = days > 0 ? 1 : -1;
      EXPECT_EQ(start.addingDays(days), start.addingTimeInterval(seconds)) << days;
      EXPECT_EQ(calendar.wholeDays(start, start.addingTimeInterval(seconds)), days) << days;
      EXPECT_EQ(calendar.wholeDays(start, start.addingTimeInterval(seconds - static_cast<double>(sign))),
                days - sign)
          << days;
    }
  }
  // Six days and 23 hours, seven days across the New York change, are six where no day is short.
  testing::ScopedTimeZone zone("UTC");
  EXPECT_EQ(Calendar::current().wholeDays(start, start.addingTimeInterval(7 * day - hour)), 6);
}

TEST(CalendarTest, CountsBeyondTheCalendarsRangeGiveNothingAndLeaveDatesUnchanged) {
  testing::ScopedTimeZone zone("UTC");
  const Date start(0);
  const auto calendar = Calendar::current();
  for (const std::int64_t days : {std::numeric_limits<std::int64_t>::max(),
                                  std::numeric_limits<std::int64_t>::min(), std::int64_t{1} << 40}) {
    EXPECT_FALSE(calendar.dateByAddingDays(days, start).has_value()) << days;
    EXPECT_EQ(start.addingDays(days), start) << days;
  }
  // A count that does not fit 32 bits but stays in range is added, not wrapped.
  const Date ancient = Date::fromTimeIntervalSince1970(-1.5e14);
  EXPECT_EQ(calendar.dateByAddingDays(3'000'000'000, ancient), ancient.addingTimeInterval(3e9 * day));
  EXPECT_FALSE(calendar.wholeDays(start, Date(1e300)).has_value());
  EXPECT_FALSE(calendar.dateByAddingDays(1, Date(std::numeric_limits<double>::quiet_NaN())).has_value());
}

TEST(CalendarTest, FollowsTZChangesAdoptedDefaultsAndNamedZones) {
  const Date winterNoonUTC = Date::fromTimeIntervalSince1970(1736942400);  // 2025-01-15 12:00 UTC
  const DateFormatter hourOfDay("HH");
  {
    testing::ScopedTimeZone zone("America/New_York");
    EXPECT_EQ(hourOfDay.string(winterNoonUTC), "07");
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("Europe/Berlin"));
    EXPECT_EQ(hourOfDay.string(winterNoonUTC), "13");
    // Berlin springs forward on 2025-03-30: the adopted zone drives day arithmetic too.
    const Date berlinNoon = Date::fromTimeIntervalSince1970(1743246000);  // 2025-03-29 12:00 CET
    EXPECT_EQ(berlinNoon.addingDays(1), berlinNoon.addingTimeInterval(23 * hour));
  }
  {
    // A later change of TZ overrides the adopted zone. Last, so that a repeated run, which starts in New
    // York again, still sees a change and leaves Berlin behind.
    testing::ScopedTimeZone zone("Asia/Tokyo");
    EXPECT_EQ(hourOfDay.string(winterNoonUTC), "21");
  }
  EXPECT_FALSE(Calendar::inTimeZone("Not/AZone").has_value());
  EXPECT_EQ(Calendar::inTimeZone("America/New_York").value().dateByAddingDays(1, saturdayNoon),
            saturdayNoon.addingTimeInterval(23 * hour));
}

}  // namespace
}  // namespace cardiolith
