#include "cardiolith/platform/calendar.hpp"

#include <gtest/gtest.h>
#include <unicode/locid.h>
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

TEST(CalendarTest, LocalTimesAreGregorianDaysAndClockTimesOfTheZone) {
  // 2025-03-08 12:00 in New York; in Thailand's locale (Buddhist calendar, year 2568) still year 2025.
  testing::ScopedTimeZone zone("America/New_York");
  const icu::Locale previous = icu::Locale::getDefault();
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale::setDefault(icu::Locale("th_TH"), status);
  const auto local = Calendar::current().localTime(saturdayNoon.addingTimeInterval(59));
  icu::Locale::setDefault(previous, status);
  ASSERT_TRUE(local.has_value());
  EXPECT_EQ(local->day, (CalendarDay{2025, 3, 8}));
  EXPECT_EQ(local->hour, 12);
  EXPECT_EQ(local->minute, 0);
  EXPECT_FALSE(Calendar::current().localTime(Date(std::numeric_limits<double>::infinity())).has_value());
}

// Whole days are counted on the exact instants: an end a fraction of a millisecond short of a whole day is
// a day fewer, also where the start has a fraction of a millisecond that ICU's own count drops.
TEST(CalendarTest, CountsWholeDaysOnTheExactInstantsBelowAMillisecond) {
  testing::ScopedTimeZone zone("UTC");
  const auto calendar = Calendar::current();
  struct Case {
    double start;   // seconds since 2001
    double offset;  // from start + days
    std::int64_t days;
    std::int64_t expected;
  };
  const Case cases[] = {
      {785000000.1234567, -1.2e-7, 7, 6}, {785000000.1234567, 0, 7, 7},
      {785000000.1234567, 1.2e-7, 7, 7},  {785000000.9999, -1e-5, 7, 6},
      {785000000.0001, -1e-5, 1, 0},      {785000000.1234567, -1.2e-7, -7, -7},
      {785000000.1234567, 0, -7, -7},     {785000000.1234567, 1.2e-7, -7, -6},
      {785000000.5, 1e-6, -1, 0},
  };
  for (const auto& [startSeconds, offset, days, expected] : cases) {
    const Date start(startSeconds);
    const Date end = calendar.dateByAddingDays(days, start)->addingTimeInterval(offset);
    EXPECT_EQ(calendar.wholeDays(start, end), expected) << startSeconds << " " << days << " " << offset;
  }
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
