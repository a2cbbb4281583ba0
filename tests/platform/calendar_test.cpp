#include "cardiolith/platform/calendar.hpp"

#include <gtest/gtest.h>
#include <unicode/timezone.h>

#include <limits>

#include "cardiolith/platform/date.hpp"
#include "cardiolith/platform/date_formatter.hpp"
#include "support/scoped_time_zone.hpp"

namespace cardiolith {
namespace {

constexpr double kHour = 3600;
constexpr double kDay = 86400;

// 2025-03-08 12:00 in New York (EST, UTC-5) is 17:00 UTC; clocks spring forward on 2025-03-09 at 02:00.
const Date kBeforeSpringForward = Date::fromTimeIntervalSince1970(1741453200);

TEST(CalendarTest, AddingDaysAcrossDaylightSavingKeepsTheLocalClockTime) {
  testing::ScopedTimeZone zone("America/New_York");
  const DateFormatter local("yyyy-MM-dd HH:mm:ss.SSS");

  const Date next = kBeforeSpringForward.addingDays(1);
  EXPECT_EQ(next.timeIntervalSinceReferenceDate() - kBeforeSpringForward.timeIntervalSinceReferenceDate(),
            23 * kHour);
  EXPECT_EQ(local.string(next), "2025-03-09 12:00:00.000");

  const Date back = next.addingDays(-1);
  EXPECT_EQ(back, kBeforeSpringForward);
  EXPECT_EQ(kBeforeSpringForward.addingDays(0), kBeforeSpringForward);

  // The fraction of a second survives the step.
  const Date fractional = kBeforeSpringForward.addingTimeInterval(0.123);
  EXPECT_EQ(fractional.addingDays(7).timeIntervalSinceReferenceDate(),
            fractional.timeIntervalSinceReferenceDate() + 7 * kDay - kHour);
}

TEST(CalendarTest, WholeDaysCountsCalendarDaysInTheCurrentZone) {
  testing::ScopedTimeZone zone("America/New_York");
  const auto calendar = Calendar::current();
  const Date start = kBeforeSpringForward;
  struct Case {
    double secondsLater;
    std::int64_t days;
  };
  const Case cases[] = {
      {0, 0},
      {23 * kHour, 1},               // the short day is a whole calendar day
      {23 * kHour - 1, 0},
      {7 * kDay - kHour, 7},         // a week across the change
      {7 * kDay - kHour - 1, 6},
      {6 * kDay + 23 * kHour - kHour, 6},
      {-kDay, -1},
      {-kDay + 1, 0},
      {-10 * kDay, -10},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(calendar.wholeDays(start, start.addingTimeInterval(c.secondsLater)), c.days) << c.secondsLater;
  }
}

TEST(CalendarTest, SixDaysAndTwentyThreeHoursAreSixWholeDaysInUTC) {
  testing::ScopedTimeZone zone("UTC");
  const Date start(1000);
  EXPECT_EQ(Calendar::current().wholeDays(start, start.addingTimeInterval(6 * kDay + 23 * kHour)), 6);
  EXPECT_EQ(Calendar::current().wholeDays(start, start.addingTimeInterval(7 * kDay)), 7);
}

TEST(CalendarTest, CountsBeyondTheCalendarsRangeGiveNothingAndLeaveDatesUnchanged) {
  testing::ScopedTimeZone zone("UTC");
  const Date start(0);
  const auto calendar = Calendar::current();
  for (const std::int64_t days : {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min(),
                                  std::int64_t{1} << 40}) {
    EXPECT_FALSE(calendar.dateByAddingDays(days, start).has_value()) << days;
    EXPECT_EQ(start.addingDays(days), start) << days;
  }
  // A count that does not fit 32 bits but stays in range is added, not wrapped.
  const std::int64_t beyond32Bits = std::int64_t{3'000'000'000};
  const Date ancient = Date::fromTimeIntervalSince1970(-1.5e14);
  EXPECT_EQ(calendar.dateByAddingDays(beyond32Bits, ancient), ancient.addingTimeInterval(3e9 * kDay));
  EXPECT_FALSE(calendar.wholeDays(start, Date(1e300)).has_value());
  EXPECT_FALSE(calendar.dateByAddingDays(1, Date(std::numeric_limits<double>::quiet_NaN())).has_value());
}

TEST(CalendarTest, FollowsTZChangesAndAdoptedDefaults) {
  const Date winterNoonUTC = Date::fromTimeIntervalSince1970(1736942400);  // 2025-01-15 12:00 UTC
  const DateFormatter hour("HH");
  {
    testing::ScopedTimeZone zone("Asia/Tokyo");
    EXPECT_EQ(hour.string(winterNoonUTC), "21");
  }
  {
    testing::ScopedTimeZone zone("America/New_York");
    EXPECT_EQ(hour.string(winterNoonUTC), "07");
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("Europe/Berlin"));
    EXPECT_EQ(hour.string(winterNoonUTC), "13");
    // Berlin springs forward on 2025-03-30: the adopted zone drives day arithmetic too.
    const Date berlinNoon = Date::fromTimeIntervalSince1970(1743246000);  // 2025-03-29 12:00 CET
    EXPECT_EQ(berlinNoon.addingDays(1), berlinNoon.addingTimeInterval(23 * kHour));
  }
}

TEST(CalendarTest, NamedTimeZones) {
  EXPECT_TRUE(Calendar::inTimeZone("America/New_York").has_value());
  EXPECT_FALSE(Calendar::inTimeZone("Not/AZone").has_value());
  const auto tokyo = Calendar::inTimeZone("Asia/Tokyo");
  ASSERT_TRUE(tokyo);
  EXPECT_EQ(tokyo->dateByAddingDays(1, Date(0)), Date(kDay));  // no daylight saving in Tokyo
}

}  // namespace
}  // namespace cardiolith
