#include <gtest/gtest.h>

#include <optional>

#include "cardiolith/platform/calendar.hpp"

namespace cardiolith {
namespace {

using WallTime = Calendar::WallTime;

double unixSeconds(std::optional<Date> date) { return date ? date->timeIntervalSince1970() : -1; }

TEST(CalendarWallTimeTest, ResolvesSkippedRepeatedAndOrdinaryLocalTimes) {
  const struct {
    const char* zone;
    WallTime time;
    double earlier, later;  // Unix seconds; -1: no instant
  } cases[] = {
      {"Europe/Berlin", {2026, 3, 29, 2, 30}, -1, -1},                   // the clocks skip 02:00-03:00
      {"Europe/Berlin", {2026, 3, 29, 3, 0}, 1774746000, 1774746000},    // 01:00 UTC
      {"Europe/Berlin", {2026, 10, 25, 2, 30}, 1792888200, 1792891800},  // 00:30 and 01:30 UTC
      {"Europe/Berlin", {2026, 4, 31, 8, 0}, -1, -1},                    // no such day
      {"Pacific/Chatham", {2026, 9, 27, 3, 0}, -1, -1},                  // 02:45 jumps to 03:45
      {"Pacific/Chatham", {2026, 4, 5, 2, 50}, 1775307900, 1775311500},  // 03:45 falls back to 02:45
      {"America/Sao_Paulo", {2018, 11, 4, 0, 0}, -1, -1},                // summer time began at midnight
      {"America/Sao_Paulo", {2026, 11, 20, 7, 45}, 1795171500, 1795171500},
  };
  for (const auto& test : cases) {
    const auto calendar = Calendar::inTimeZone(test.zone);
    ASSERT_TRUE(calendar) << test.zone;
    const auto instants = calendar->instantsAt(test.time);
    EXPECT_EQ(instants ? instants->earlier.timeIntervalSince1970() : -1, test.earlier) << test.zone;
    EXPECT_EQ(instants ? instants->later.timeIntervalSince1970() : -1, test.later) << test.zone;
    if (instants) {
      EXPECT_EQ(calendar->wallTime(instants->later), test.time) << test.zone;
    }
  }
}

TEST(CalendarWallTimeTest, DaysStartAtMidnightOrAtTheFirstMinuteAfterASkippedOne) {
  const auto saoPaulo = Calendar::inTimeZone("America/Sao_Paulo");
  // 2018-11-04 12:00 local (-02:00); that day began at 01:00 -02:00, 03:00 UTC.
  EXPECT_EQ(unixSeconds(saoPaulo->startOfDay(Date::fromTimeIntervalSince1970(1541340000))), 1541300400);
  const auto berlin = Calendar::inTimeZone("Europe/Berlin");
  const Date evening = Date::fromTimeIntervalSince1970(1795196800);  // 2026-11-20 18:46:40 +01:00
  EXPECT_EQ(unixSeconds(berlin->startOfDay(evening)), 1795129200);
  EXPECT_EQ(berlin->weekday(evening), 5);  // a Friday
  EXPECT_EQ(berlin->wallTime(evening), (WallTime{2026, 11, 20, 18, 46}));
}

}  // namespace
}  // namespace cardiolith
