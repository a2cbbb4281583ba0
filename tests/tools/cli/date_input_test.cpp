// The tool's reading of dates and times typed on the command line, without a subprocess.

#include "input/date_input.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cardiolith/platform/date_formatter.hpp>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

using ::testing::HasSubstr;

// What a text reads as, in the zone's local time ("2026-11-25 08:00"), or the start of the error message.
std::string readAs(const DateReader& dates, const char* zone, const std::string& text) {
  try {
    const auto typed = dates.read(text, "--at");
    const DateFormatter local("yyyy-MM-dd HH:mm", "en_US_POSIX", zone);
    return local.string(typed.instant) + (typed.hasTimeOfDay ? "" : " (day)");
  } catch (const ToolError& error) {
    return std::string("error: ") + error.what();
  }
}

// "Now" is Wednesday 2026-11-25 14:10 in each zone.
struct DateCase {
  const char* zone;
  double now;  // Unix seconds
  std::string text;
  std::string expected;  // local time, or the start of the error
};

TEST(DateInputTest, ReadsEveryFormInTheUsersTimeZone) {
  const double berlin = 1795612200, saoPaulo = 1795626600, chatham = 1795566300;
  const std::vector<DateCase> cases{
      {"Europe/Berlin", berlin, "2026-11-20 7:45", "2026-11-20 07:45"},
      {"Europe/Berlin", berlin, "2026-11-20T07:45", "2026-11-20 07:45"},
      {"Europe/Berlin", berlin, "2026-11-20 07:45", "2026-11-20 07:45"},
      {"Europe/Berlin", berlin, "2026-11-20", "2026-11-20 00:00 (day)"},
      {"Europe/Berlin", berlin, "8:00", "2026-11-25 08:00"},
      {"Europe/Berlin", berlin, "today 8:00", "2026-11-25 08:00"},
      {"Europe/Berlin", berlin, "Yesterday 21:30", "2026-11-24 21:30"},
      {"Europe/Berlin", berlin, "yesterday", "2026-11-24 00:00 (day)"},
      {"Europe/Berlin", berlin, "mon 8:00", "2026-11-23 08:00"},
      {"Europe/Berlin", berlin, "wed 8:00", "2026-11-25 08:00"},  // today is the most recent Wednesday
      {"Europe/Berlin", berlin, "Thursday 8:00", "2026-11-19 08:00"},
      {"Europe/Berlin", berlin, "-2h", "2026-11-25 12:10"},
      {"Europe/Berlin", berlin, "30m ago", "2026-11-25 13:40"},
      {"Europe/Berlin", berlin, "2 hours ago", "2026-11-25 12:10"},
      {"Europe/Berlin", berlin, "now", "2026-11-25 14:10"},
      {"Europe/Berlin", berlin, "2026-10-25 02:30+01:00", "2026-10-25 02:30"},
      {"Europe/Berlin", berlin, "2026-10-25 2:30",
       "error: --at: \"2026-10-25 2:30\" happens twice in the local time zone, because the clocks go back "
       "that night. Write it with its UTC offset: \"2026-10-25 02:30+02:00\" for the first time, "
       "\"2026-10-25 02:30+01:00\" for the second"},
      {"Europe/Berlin", berlin, "2026-03-29 2:30", "error: --at: \"2026-03-29 2:30\" does not exist"},
      {"Europe/Berlin", berlin, "2026-02-29 8:00", "error: --at: \"2026-02-29 8:00\" is not a day"},
      {"Europe/Berlin", berlin, "8:60", "error: --at: \"8:60\" is not a time of day"},
      {"Europe/Berlin", berlin, "20.11.2026", "error: --at: \"20.11.2026\" is not a date or time"},
      {"Europe/Berlin", berlin, "-2x", "error: --at: \"-2x\" is not a date or time"},
      {"Europe/Berlin", berlin, "mo 8:00", "error: --at: \"mo 8:00\" is not a date or time"},
      // Sao Paulo keeps no summer time now; in 2018 the clocks skipped midnight, so that day began at 01:00.
      {"America/Sao_Paulo", saoPaulo, "yesterday 21:30", "2026-11-24 21:30"},
      {"America/Sao_Paulo", saoPaulo, "2018-11-04", "2018-11-04 01:00 (day)"},
      {"America/Sao_Paulo", saoPaulo, "2018-11-04 0:30", "error: --at: \"2018-11-04 0:30\" does not exist"},
      // Chatham is 13:45 ahead in its summer; its clocks skip 02:45-03:45 in September.
      {"Pacific/Chatham", chatham, "today 0:05", "2026-11-25 00:05"},
      {"Pacific/Chatham", chatham, "2026-09-27 3:00", "error: --at: \"2026-09-27 3:00\" does not exist"},
      {"Pacific/Chatham", chatham, "2026-04-05 2:50", "error: --at: \"2026-04-05 2:50\" happens twice"},
      {"Pacific/Chatham", chatham, "2026-04-05 2:50+12:45", "2026-04-05 02:50"},
  };
  for (const auto& test : cases) {
    const DateReader dates(*Calendar::inTimeZone(test.zone), Date::fromTimeIntervalSince1970(test.now));
    const std::string result = readAs(dates, test.zone, test.text);
    EXPECT_EQ(result.substr(0, test.expected.size()), test.expected)
        << test.zone << " " << test.text << ": " << result;
  }
}

TEST(DateInputTest, ReadingTimesNeedATimeOfDayAndAPlausibleYearUnlessForced) {
  const DateReader dates(*Calendar::inTimeZone("UTC"), Date::fromTimeIntervalSince1970(1795615800));
  const struct {
    const char* text;
    bool force;
    const char* error;  // empty: accepted
  } cases[] = {
      {"2026-11-20", false,
       "is a day without a time of day; say when the reading was taken, e.g. \"2026-11-20 8:00\""},
      {"yesterday", true, "is a day without a time of day"},
      {"1899-12-31 23:59", false, "is before 1900"},
      {"1899-12-31 23:59", true, ""},
      {"1900-01-01 0:00", false, ""},
      {"2026-11-25 14:14", false, ""},  // within a few minutes of the clock
      {"2026-11-25 14:20", false, "is in the future"},
      {"2026-11-25 14:20", true, ""},
  };
  for (const auto& test : cases) {
    std::string error;
    try {
      static_cast<void>(dates.readingTime(test.text, "--at", test.force));
    } catch (const ToolError& refusal) {
      error = refusal.what();
    }
    EXPECT_EQ(error.empty(), *test.error == '\0') << test.text << ": " << error;
    EXPECT_THAT(error, HasSubstr(test.error)) << test.text;
  }
}

TEST(DateInputTest, RangeEndsTakeTheWholeLastDay) {
  const DateReader dates(*Calendar::inTimeZone("Europe/Berlin"), Date::fromTimeIntervalSince1970(1795612200));
  // 2026-10-25 lasts 25 hours in Berlin: from 2026-10-24 22:00 UTC to 2026-10-25 23:00 UTC.
  EXPECT_EQ(dates.rangeStart("2026-10-25", "--from"), Date::fromTimeIntervalSince1970(1792879200));
  EXPECT_EQ(dates.rangeEnd("2026-10-25", "--to"),
            Date::fromTimeIntervalSince1970(1792969200).addingTimeInterval(-0.001));
  EXPECT_EQ(dates.rangeEnd("2026-10-25 9:00", "--to"), Date::fromTimeIntervalSince1970(1792915200));
}

}  // namespace
}  // namespace cardiolith::tool
