#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using ::testing::HasSubstr;

class ListCommandTest : public ToolTest {
 protected:
  void SetUp() override {
    ToolTest::SetUp();
    // Added out of date order, so the listing has to sort.
    addAt("2026-11-19 08:00", "131/85/70", {"--note", "line one\nline two"});
    addAt("2026-11-20 23:59", "145/92/80", {"--tag", "Evening"});
    addAt("2026-11-18 07:30", "118/76/64", {});
    addAt("2026-11-21 00:00", "119/70/60", {});
  }

  void addAt(const std::string& at, const std::string& values, std::vector<std::string> more) {
    std::vector<std::string> arguments{"add", values, "--at", at};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const auto result = run(arguments);
    ASSERT_EQ(result.exitCode, 0) << result.err;
  }

  std::vector<std::string> listedDates(const std::vector<std::string>& options) {
    std::vector<std::string> arguments{"list", "--json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    std::vector<std::string> dates;
    const auto readings = nlohmann::json::parse(result.out)["readings"];
    for (const auto& reading : readings) dates.push_back(reading["date"]);
    return dates;
  }
};

TEST_F(ListCommandTest, PrintsATableNewestFirst) {
  const auto result = run({"list"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const auto rows = lines(result.out);
  ASSERT_EQ(rows.size(), 6u);
  EXPECT_THAT(rows[0], ::testing::MatchesRegex("Date +Sys +Dia +Pulse +Category +Tags +Notes"));
  EXPECT_THAT(rows[2], ::testing::MatchesRegex("2026-11-21 00:00 +119 +70 +60 +Normal"));
  EXPECT_THAT(rows[3], ::testing::MatchesRegex("2026-11-20 23:59 +145 +92 +80 +Very high +Evening"));
  // A note's line break must not break the row.
  EXPECT_THAT(rows[4], ::testing::MatchesRegex("2026-11-19 08:00 +131 +85 +70 +High +line one line two"));
  EXPECT_THAT(rows[5], ::testing::MatchesRegex("2026-11-18 07:30 +118 +76 +64 +Normal"));
}

TEST_F(ListCommandTest, RangesIncludeTheWholeLastDay) {
  struct Case {
    std::vector<std::string> options;
    std::vector<std::string> dates;
  };
  const std::vector<Case> cases{
      {{"--from", "2026-11-19"}, {"2026-11-21T00:00:00Z", "2026-11-20T23:59:00Z", "2026-11-19T08:00:00Z"}},
      {{"--to", "2026-11-20"}, {"2026-11-20T23:59:00Z", "2026-11-19T08:00:00Z", "2026-11-18T07:30:00Z"}},
      {{"--from", "2026-11-19", "--to", "2026-11-20"}, {"2026-11-20T23:59:00Z", "2026-11-19T08:00:00Z"}},
      {{"--from", "2026-11-19 08:01", "--to", "2026-11-21 00:00"},
       {"2026-11-21T00:00:00Z", "2026-11-20T23:59:00Z"}},
      {{"--from", "2026-12-01"}, {}},
  };
  for (const auto& [options, dates] : cases) {
    EXPECT_EQ(listedDates(options), dates) << ::testing::PrintToString(options);
  }
}

TEST_F(ListCommandTest, JsonHasEveryField) {
  const auto result = run({"list", "--json"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const auto readings = nlohmann::json::parse(result.out)["readings"];
  ASSERT_EQ(readings.size(), 4u);
  const auto& withNote = readings[2];
  EXPECT_EQ(withNote["notes"], "line one\nline two");
  EXPECT_EQ(withNote["category"], "high");
  EXPECT_EQ(withNote["tags"], nlohmann::json::array());
  EXPECT_EQ(readings[1]["tags"], nlohmann::json({"Evening"}));
  EXPECT_EQ(readings[1]["category"], "veryHigh");
  EXPECT_TRUE(readings[0]["notes"].is_null());
}

TEST_F(ListCommandTest, EmptyRangeSaysHowManyTheLogHolds) {
  const auto result = run({"list", "--from", "2027-01-01"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out, HasSubstr("No readings in that range; the log holds 4"));
}

TEST_F(ListCommandTest, RefusesBadRanges) {
  struct Case {
    std::vector<std::string> arguments;
    int exitCode;
    std::string message;
  };
  const std::vector<Case> cases{
      {{"list", "--from", "yesterday"}, 1, "--from: \"yesterday\" is not a date"},
      {{"list", "--to", "2026-04-31"}, 1, "--to: \"2026-04-31\" is not a day of the calendar"},
      {{"list", "--last", "7x"}, 1, "--last: \"7x\" is not a span of days"},
      {{"list", "--last", "0d"}, 1, "is not a span of days"},
      {{"list", "--from", "2026-11-20", "--to", "2026-11-19"}, 1, "the range ends before it starts"},
      {{"list", "--last", "7d", "--from", "2026-11-01"}, 2, "excludes"},
  };
  for (const auto& [arguments, exitCode, message] : cases) {
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, exitCode) << ::testing::PrintToString(arguments);
    EXPECT_THAT(result.err, HasSubstr(message));
  }
}

using ListLastTest = ToolTest;

TEST_F(ListLastTest, CountsBackFromNow) {
  ASSERT_EQ(run({"add", "120/80/60"}).exitCode, 0);
  ASSERT_EQ(run({"add", "121/80/60", "--at", "2001-01-01"}).exitCode, 0);
  struct Case {
    std::string span;
    std::size_t count;
  };
  for (const auto& [span, count] : {Case{"1d", 1}, Case{"1", 1}, Case{"2w", 1}, Case{"100000d", 2}}) {
    const auto result = run({"list", "--json", "--last", span});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(nlohmann::json::parse(result.out)["readings"].size(), count) << span;
  }
}

using EmptyLogTest = ToolTest;

TEST_F(EmptyLogTest, ReadingCommandsSayHowToAddAReading) {
  for (const auto& command : {"list", "summary"}) {
    const auto result = run({command});
    EXPECT_EQ(result.exitCode, 0) << command;
    EXPECT_THAT(result.out, HasSubstr("The log is empty")) << command;
    EXPECT_THAT(result.out, HasSubstr("cardiolith add 128/82 --pulse 71")) << command;
  }
  EXPECT_EQ(run({"list", "--json"}).out, "{\"readings\":[]}\n");
}

}  // namespace
}  // namespace cardiolith::tool::testing
