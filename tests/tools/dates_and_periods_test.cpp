// Dates typed and shown in the user's time zone, and periods of whole calendar days, end to end.

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using DatesAndPeriodsTest = ToolTest;

TEST_F(DatesAndPeriodsTest, WhatIsTypedIsWhatIsShownInEveryKindOfTimeZone) {
  const struct {
    const char* zone;
    const char* julyOffset;  // of 2026-07-01 08:00
    const char* januaryOffset;
  } cases[] = {
      {"America/Sao_Paulo", "-03:00", "-03:00"},
      {"Pacific/Chatham", "+12:45", "+13:45"},
      {"CET-1CEST,M3.5.0,M10.5.0/3", "+02:00", "+01:00"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.zone);
    std::filesystem::remove_all(data_);
    environment_["TZ"] = test.zone;
    EXPECT_THAT(succeed({"add", "120/80/60", "--at", "2026-07-01 8:00"}),
                HasSubstr("Added 2026-07-01 08:00 "));
    succeed({"add", "121/80/60", "--at", "2026-01-15T08:00"});
    const auto readings = listed({"--reverse"});
    ASSERT_EQ(readings.size(), 2u);
    EXPECT_EQ(readings[0]["date"], std::string("2026-01-15T08:00:00") + test.januaryOffset);
    EXPECT_EQ(readings[1]["date"], std::string("2026-07-01T08:00:00") + test.julyOffset);
    const auto rows = lines(succeed({"list", "--from", "2026-07-01", "--to", "2026-07-01"}));
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_THAT(rows[2], MatchesRegex("[0-9A-F]{8}  2026-07-01 08:00  120 .*"));
  }
}

// Readings at the first and last minute of the days around a period: the last N days are whole calendar
// days ending today, whatever the time now.
TEST_F(DatesAndPeriodsTest, LastDaysAreWholeCalendarDaysEndingToday) {
  environment_["TZ"] = "Pacific/Chatham";
  succeed({"add", "130/85/70", "--at", "today 0:00"});
  succeed({"add", "131/85/70", "--at", "yesterday 23:59"});
  for (const auto& [options, expected] :
       std::vector<std::pair<Arguments, std::size_t>>{{{"--last", "1d"}, 1},
                                                      {{"--last", "2d"}, 2},
                                                      {{"--last", "1"}, 1},
                                                      {{"--last", "2w"}, 2},
                                                      {{"--from", "today"}, 1},
                                                      {{"--to", "yesterday"}, 1}}) {
    EXPECT_EQ(listed(options).size(), expected) << ::testing::PrintToString(options);
  }
  EXPECT_THAT(succeed({"summary", "--days", "1"}),
              MatchesRegex("Last 1 day \\([0-9-]{10} to [0-9-]{10}\\): 1 reading\n.*"));
  // The default period, the last 7 days, holds both, and the week before it none.
  EXPECT_THAT(succeed({"summary", "--json"}),
              HasSubstr(R"("readings":2,"previousReadings":0,"current":{"systolic":130.5,"diastolic":85,)"
                        R"("pulse":70},"previous":null,"change":{"systolic":null,"diastolic":null,)"
                        R"("pulse":null},"category":"high"})"));
}

TEST_F(DatesAndPeriodsTest, ReportsTakeTheSamePeriodAndTagOptions) {
  succeed({"add", "130/85/70", "--at", "2026-11-02 8:00", "--tag", "Morning"});
  succeed({"add", "120/80/60", "--at", "2026-11-02 20:00", "--tag", "Evening", "--tag", "Left arm"});
  succeed({"add", "125/80/60", "--at", "2026-11-09 8:00", "--tag", "morning"});
  const Arguments period{"--from", "2026-11-01", "--to", "2026-11-07"};
  EXPECT_EQ(listed(joined(period, {"--tag", "MORNING"})).size(), 1u) << "titles match in any case";
  EXPECT_EQ(listed({"--tag", "evening", "--tag", "left arm"}).size(), 1u);
  EXPECT_EQ(listed({"--tag", "Morning", "--tag", "Evening"}).size(), 0u) << "every tag given";
  const auto exported = lines(succeed(joined({"export"}, joined(period, {"--tag", "Morning"}))));
  ASSERT_EQ(exported.size(), 2u);
  EXPECT_THAT(exported[1], ::testing::StartsWith("2026-11-02 08:00 +00:00,130,85,70,High,Morning,"));
  EXPECT_THAT(succeed(joined({"summary", "--json"}, joined(period, {"--tag", "morning"}))),
              HasSubstr(R"("readings":1,"previousReadings":0,"current":{"systolic":130,)"));
  const auto pdf = root_ / "chart.pdf";
  EXPECT_EQ(succeed(joined({"chart", "--out", pdf.string()}, period)),
            "Wrote a chart of 2 readings to " + pdf.string() + "\n");
  EXPECT_THAT(pdfText(pdf), HasSubstr("Blood pressure, 2026-11-01 to 2026-11-07"));
}

}  // namespace
}  // namespace cardiolith::tool::testing
