#include <gtest/gtest.h>

#include <cardiolith/model/day_periods.hpp>

namespace cardiolith {
namespace {

TEST(LastWholeDays, RunFromTheStartOfTheFirstDayToTheStartOfTomorrow) {
  const struct {
    const char* zone;
    double now;  // Unix seconds
    std::int64_t days;
    double start, end;
  } cases[] = {
      // 2026-11-25 06:30 in Berlin: the whole week from 2026-11-19 00:00 to 2026-11-26 00:00 (+01:00).
      {"Europe/Berlin", 1795584600, 7, 1795042800, 1795647600},
      // One day is today, even a minute after midnight.
      {"Europe/Berlin", 1795561260, 1, 1795561200, 1795647600},
      // 2026-03-30 12:00 +02:00: the week holds the 23-hour day of the change.
      {"Europe/Berlin", 1774864800, 7, 1774306800, 1774908000},
      // 2018-11-05 12:00 in Sao Paulo: 2018-11-04 began at 01:00, the clocks skipping midnight.
      {"America/Sao_Paulo", 1541426400, 2, 1541300400, 1541469600},
  };
  for (const auto& test : cases) {
    const auto period =
        lastWholeDays(test.days, Date::fromTimeIntervalSince1970(test.now), *Calendar::inTimeZone(test.zone));
    ASSERT_TRUE(period) << test.zone << " " << test.now;
    EXPECT_EQ(period->start.timeIntervalSince1970(), test.start) << test.zone << " " << test.now;
    EXPECT_EQ(period->end.timeIntervalSince1970(), test.end) << test.zone << " " << test.now;
  }
  EXPECT_FALSE(lastWholeDays(0, Date(), *Calendar::inTimeZone("UTC")));
}

}  // namespace
}  // namespace cardiolith
