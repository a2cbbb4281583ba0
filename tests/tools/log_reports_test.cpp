// list, summary and export over one small log.

#include <algorithm>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

// Added out of date order, so every report has to sort. 1-8 March averages 130/85/70 and the 7 days before
// hold one reading of 120/80/77; the one of January lies in neither.
class LogReportsTest : public ToolTest {
 protected:
  LogReportsTest() {
    succeed({"add", "128/84/68", "--at", "2026-03-02 08:00", "--tag", "Morning", "--tag", "Left arm",
             "--note", "dizzy, \"bad\" day\nslept late"});
    succeed({"add", "180/110/90", "--at", "2026-01-10 23:59", "--tag", "Evening"});
    succeed({"add", "132/86/72", "--at", "2026-03-05 20:00", "--note", "tab\there"});
    succeed({"add", "120/80/77", "--at", "2026-02-25 08:00"});
  }
};

TEST_F(LogReportsTest, ListShowsATableNewestFirstWithShortIds) {
  // A note's line break must not break its row.
  const auto rows = lines(succeed({"list"}));
  ASSERT_EQ(rows.size(), 6u);
  EXPECT_EQ(rows[0], "Id        Date              Sys  Dia  Pulse  Category   Tags               Notes");
  const std::vector<std::string> expected{
      "2026-03-05 20:00  132   86     72  High                          tab here",
      "2026-03-02 08:00  128   84     68  High       Left arm, Morning  dizzy, \"bad\" day slept late",
      "2026-02-25 08:00  120   80     77  Normal", "2026-01-10 23:59  180  110     90  Very high  Evening"};
  const auto readings = listed();
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_EQ(rows[i + 2], readings[i]["id"].get<std::string>().substr(0, 8) + "  " + expected[i]);
  EXPECT_EQ(lines(succeed({"list", "--reverse"}))[2], rows[5]) << "oldest first";
  EXPECT_THAT(succeed({"list", "--from", "2027-01-01"}), HasSubstr("No readings match; the log holds 4"));
  EXPECT_EQ(listed({"--last", "100000d"}).size(), 4u) << "a span reaching back before the first reading";
}

TEST_F(LogReportsTest, SummaryComparesThePeriodWithTheOneBefore) {
  EXPECT_EQ(succeed({"summary", "--from", "2026-03-01", "--to", "2026-03-08"}),
            "From 2026-03-01 to 2026-03-08 (2026-03-01 to 2026-03-08): 2 readings\n"
            "Period before (2026-02-21 to 2026-02-28): 1 reading\n\n"
            "Average        Systolic  Diastolic     Pulse\n"
            "-------------  --------  ---------  --------\n"
            "This period       130.0       85.0      70.0\n"
            "Period before     120.0       80.0      77.0\n"
            "Change          \u2191 +7.7%    \u2191 +5.9%  \u2193 -10.0%\n\n"
            "Category of the average: High (systolic 130-139, or diastolic 81-89)\n");

  EXPECT_EQ(
      succeed({"summary", "--from", "2026-03-01", "--to", "2026-03-08", "--json"}),
      R"({"start":"2026-03-01T00:00:00Z","end":"2026-03-08T23:59:59Z","readings":2,"previousReadings":1,)"
      R"("current":{"systolic":130,"diastolic":85,"pulse":70},"previous":{"systolic":120,"diastolic":80,)"
      R"("pulse":77},"change":{"systolic":7.692308,"diastolic":5.882353,"pulse":-10},"category":"high"})"
      "\n");

  EXPECT_THAT(
      succeed({"summary", "--from", "2026-02-25", "--to", "2026-02-25"}),
      HasSubstr("(no readings in the period before, so no change)\n\nCategory of the average: Normal"));
  // The last 3 days, counted back from now, are empty.
  EXPECT_THAT(succeed({"summary", "--days", "3"}),
              MatchesRegex("Last 3 days .*\nNo readings in this period.*"));
  EXPECT_THAT(
      succeed({"summary", "--days", "3", "--json"}),
      MatchesRegex(
          R"(.*"readings":0,"previousReadings":0,"current":null,"previous":null,.*,"category":null}.*)"));
}

TEST_F(LogReportsTest, ExportWritesEveryColumnOldestFirstAndQuotesWhereNeeded) {
  const auto rows = lines(succeed({"export", "--from", "2026-02-01"}));
  ASSERT_EQ(rows.size(), 5u);  // a header (the writer's own test holds it) and a note with a line break
  EXPECT_THAT(rows[1], MatchesRegex("2026-02-25 08:00 \\+00:00,120,80,77,Normal,,,[-0-9A-F]{36}\r"));
  EXPECT_THAT(rows[2], HasSubstr("Left arm; Morning,\"dizzy, \"\"bad\"\" day"));
  EXPECT_THAT(lines(succeed({"export", "--format", "tsv", "--last", "100000d"})).back(),
              MatchesRegex("2026-03-05 20:00 \\+00:00\t132\t86\t72\tHigh\t\t\"tab\there\"\t[-0-9A-F]{36}\r"));

  const auto file = root_ / "export.csv";
  EXPECT_EQ(succeed({"export", "--out", file.string()}), "Exported 4 readings to " + file.string() + "\n");
  EXPECT_EQ(readFile(file), succeed({"export"}));
}

using EmptyLogTest = ToolTest;

TEST_F(EmptyLogTest, ReportsSayHowToAddAReading) {
  for (const auto& command : {"list", "summary"})
    EXPECT_THAT(succeed({command}), MatchesRegex("The log is empty.*\n  cardiolith add 128/82 --pulse 71\n"));
  EXPECT_EQ(succeed({"list", "--json"}), "{\"readings\":[]}\n");
}

// A pair that the library calls unreadable is shown with the row of the table it missed wherever a person
// reads its category (lines joined, since a report wraps them); JSON keeps the library's id.
TEST_F(EmptyLogTest, APairOutsideTheCategoryTableIsToldWhichRowItMissed) {
  succeed({"add", "85/70/60", "--at", "yesterday 8:00"});
  succeed({"add", "86/71/60", "--at", "yesterday 20:00"});  // averages 85.5/70.5
  const auto missed = [](int systolic, int diastolic) {
    const std::string s = std::to_string(systolic), d = std::to_string(diastolic);
    return "No category (outside the table) (systolic " + s + " is in the Low row (systolic 89 or less), " +
           "but diastolic " + d + " is not (diastolic 59 or less))";
  };
  const std::vector<std::pair<Arguments, std::string>> cases{
      {{"classify", "85/70"}, "85/70 mmHg: " + missed(85, 70) + "\n"},
      {{"list"}, "No category\n\n86/71 mmHg: " + missed(86, 71) + "\n85/70 mmHg: " + missed(85, 70) + "\n"},
      {{"summary"}, "Category of the average: " + missed(85, 70) + "\n"},  // truncated, as classified
      {{"report", "--keep-first-day"}, "Category of the average: " + missed(86, 71) + "."},  // rounded
  };
  for (const auto& [command, text] : cases) {
    auto shown = succeed(command);
    if (command[0] == "report") std::replace(shown.begin(), shown.end(), '\n', ' ');
    EXPECT_THAT(shown, HasSubstr(text)) << command[0];
  }
  EXPECT_EQ(listed()[0]["category"], "unreadable");
}

}  // namespace
}  // namespace cardiolith::tool::testing
