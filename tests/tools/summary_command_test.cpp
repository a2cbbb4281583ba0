#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

class SummaryCommandTest : public ToolTest {
 protected:
  void SetUp() override {
    ToolTest::SetUp();
    // Current period 1-8 March: two readings averaging 130/85/70. The 7 days before: one of 120/80/77.
    // The one of January lies in neither.
    for (const auto& [at, values] :
         std::vector<std::pair<std::string, std::string>>{{"2026-03-02 08:00", "128/84/68"},
                                                          {"2026-03-05 20:00", "132/86/72"},
                                                          {"2026-02-25 08:00", "120/80/77"},
                                                          {"2026-01-10 08:00", "180/110/90"}}) {
      const auto result = run({"add", values, "--at", at});
      ASSERT_EQ(result.exitCode, 0) << result.err;
    }
  }
};

TEST_F(SummaryCommandTest, ComparesThePeriodWithTheOneBefore) {
  const auto result = run({"summary", "--from", "2026-03-01", "--to", "2026-03-08"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const auto rows = lines(result.out);
  ASSERT_GE(rows.size(), 8u);
  EXPECT_EQ(rows[0], "From 2026-03-01 to 2026-03-08 (2026-03-01 00:00 to 2026-03-08 23:59): 2 readings");
  EXPECT_THAT(rows[4], MatchesRegex("This period +130.0 +85.0 +70.0"));
  EXPECT_THAT(rows[5], MatchesRegex("Period before +120.0 +80.0 +77.0"));
  EXPECT_THAT(rows[6], MatchesRegex("Change +\u2191 \\+7.7% +\u2191 \\+5.9% +\u2193 -10.0%"));
  EXPECT_THAT(result.out, HasSubstr("Category of the average: High (systolic 130-139, or diastolic 81-89)"));
}

TEST_F(SummaryCommandTest, JsonCarriesTheExactValues) {
  const auto result = run({"summary", "--from", "2026-03-01", "--to", "2026-03-08", "--json"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const auto summary = nlohmann::json::parse(result.out);
  EXPECT_EQ(summary["start"], "2026-03-01T00:00:00Z");
  EXPECT_EQ(summary["readings"], 2);
  EXPECT_EQ(summary["current"], nlohmann::json({{"systolic", 130}, {"diastolic", 85}, {"pulse", 70}}));
  EXPECT_EQ(summary["previous"], nlohmann::json({{"systolic", 120}, {"diastolic", 80}, {"pulse", 77}}));
  EXPECT_NEAR(summary["change"]["systolic"].get<double>(), 7.6923, 1e-3);
  EXPECT_NEAR(summary["change"]["diastolic"].get<double>(), 5.8824, 1e-3);
  EXPECT_NEAR(summary["change"]["pulse"].get<double>(), -10.0, 1e-3);
  EXPECT_EQ(summary["category"], "high");
}

TEST_F(SummaryCommandTest, APeriodWithoutThePeriodBeforeHasNoChange) {
  const auto text = run({"summary", "--from", "2026-02-25", "--to", "2026-02-25"});
  ASSERT_EQ(text.exitCode, 0) << text.err;
  EXPECT_THAT(text.out, HasSubstr("(no readings in the period before, so no change)"));
  EXPECT_THAT(text.out, HasSubstr("Category of the average: Normal"));

  const auto json =
      nlohmann::json::parse(run({"summary", "--from", "2026-02-25", "--to", "2026-02-25", "--json"}).out);
  EXPECT_TRUE(json["previous"].is_null());
  EXPECT_TRUE(json["change"]["systolic"].is_null());
}

TEST_F(SummaryCommandTest, AnEmptyPeriodSaysSo) {
  const auto text = run({"summary", "--days", "3"});
  ASSERT_EQ(text.exitCode, 0) << text.err;
  EXPECT_THAT(text.out, HasSubstr("Last 3 days"));
  EXPECT_THAT(text.out, HasSubstr("No readings in this period"));

  const auto json = nlohmann::json::parse(run({"summary", "--days", "3", "--json"}).out);
  EXPECT_EQ(json["readings"], 0);
  EXPECT_TRUE(json["current"].is_null());
  EXPECT_TRUE(json["category"].is_null());
}

TEST_F(SummaryCommandTest, DaysCountBackFromNow) {
  ASSERT_EQ(run({"add", "122/78/66"}).exitCode, 0);
  const auto json = nlohmann::json::parse(run({"summary", "--json"}).out);
  EXPECT_EQ(json["readings"], 1);
  EXPECT_EQ(json["category"], "elevated");
}

TEST_F(SummaryCommandTest, RefusesBadPeriods) {
  struct Case {
    std::vector<std::string> arguments;
    int exitCode;
    std::string message;
  };
  const std::vector<Case> cases{
      {{"summary", "--days", "0"}, 2, "--days"},
      {{"summary", "--to", "2026-03-08"}, 2, "--to requires --from"},
      {{"summary", "--days", "7", "--from", "2026-03-01"}, 2, "excludes"},
      {{"summary", "--from", "2026-3-1"}, 1, "--from: \"2026-3-1\" is not a date"},
      {{"summary", "--from", "2026-03-08", "--to", "2026-03-01"}, 1, "the range ends before it starts"},
  };
  for (const auto& [arguments, exitCode, message] : cases) {
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, exitCode) << ::testing::PrintToString(arguments);
    EXPECT_THAT(result.err, HasSubstr(message)) << ::testing::PrintToString(arguments);
  }
}

using ClassifyCommandTest = ToolTest;

TEST_F(ClassifyCommandTest, NamesTheCategoryOfAPair) {
  struct Case {
    std::string pair;
    std::string key;
    std::string name;
  };
  const std::vector<Case> cases{
      {"0/0", "low", "Low"},
      {"120/80", "normal", "Normal"},
      {"120/59", "elevated", "Elevated"},
      {"135/95", "high", "High"},
      {"150/85", "high", "High"},
      {"140/80", "veryHigh", "Very high"},
      {"100/90", "veryHigh", "Very high"},
      {"85/70", "unreadable", "Unreadable"},
  };
  for (const auto& [pair, key, name] : cases) {
    const auto text = run({"classify", pair});
    EXPECT_EQ(text.exitCode, 0) << pair;
    EXPECT_THAT(text.out, ::testing::StartsWith(pair + " mmHg: " + name + " (")) << pair;

    const auto json = run({"classify", pair, "--json"});
    ASSERT_EQ(json.exitCode, 0) << pair;
    EXPECT_EQ(nlohmann::json::parse(json.out)["category"], key) << pair;
  }
}

TEST_F(ClassifyCommandTest, RefusesAnythingButAPair) {
  for (const auto& text : {"135", "135/95/70", "a/b", "135/", " 135/95"}) {
    const auto result = run({"classify", text});
    EXPECT_EQ(result.exitCode, 1) << text;
    EXPECT_THAT(result.err, HasSubstr("is not a blood-pressure pair; write systolic/diastolic")) << text;
  }
  EXPECT_EQ(run({"classify"}).exitCode, 2);
}

}  // namespace
}  // namespace cardiolith::tool::testing
