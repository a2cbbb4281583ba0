#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using ::testing::HasSubstr;

std::size_t occurrences(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
  return count;
}

class SampleCommandTest : public ToolTest {
 protected:
  nlohmann::json readings() { return nlohmann::json::parse(run({"list", "--json"}).out)["readings"]; }
};

TEST_F(SampleCommandTest, FillsAnEmptyLogWithOneReadingADay) {
  const auto result = run({"sample", "--count", "12", "--variance", "10", "--notes"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("Added 12 sample readings"));
  const auto all = readings();
  ASSERT_EQ(all.size(), 12u);
  for (const auto& reading : all) {
    EXPECT_GE(reading["systolic"], 110);
    EXPECT_LE(reading["systolic"], 119);
    EXPECT_GE(reading["diastolic"], 70);
    EXPECT_LE(reading["diastolic"], 79);
    EXPECT_TRUE(reading["notes"].is_string());
  }
}

TEST_F(SampleCommandTest, LeavesAnExistingLogAloneUnlessForced) {
  ASSERT_EQ(run({"add", "120/80/60"}).exitCode, 0);
  const auto refused = run({"sample"});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_THAT(refused.err, HasSubstr("already holds 1 readings"));
  EXPECT_THAT(refused.err, HasSubstr("--force"));
  EXPECT_EQ(readings().size(), 1u);

  ASSERT_EQ(run({"sample", "--count", "5", "--force"}).exitCode, 0);
  EXPECT_EQ(readings().size(), 6u) << "the samples are added to the reading, not put in its place";
}

TEST_F(SampleCommandTest, RefusesCountsAndVariancesThatMakeNoReadings) {
  EXPECT_EQ(run({"sample", "--count", "0"}).exitCode, 2);
  EXPECT_EQ(run({"sample", "--variance", "0"}).exitCode, 2);
  EXPECT_FALSE(std::filesystem::exists(readingsFile()));
}

using ChartCommandTest = ToolTest;

TEST_F(ChartCommandTest, DrawsBothPressuresOfEveryReadingInThePeriod) {
  ASSERT_EQ(run({"sample", "--count", "20"}).exitCode, 0);
  ASSERT_EQ(run({"add", "120/80/60", "--at", "2001-01-01"}).exitCode, 0);  // long before the period
  const auto svg = root_ / "chart.svg";
  const auto result = run({"chart", "--days", "30", "--out", svg.string()});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, "Wrote a chart of 20 readings to " + svg.string() + "\n");

  const std::string text = readFile(svg);
  EXPECT_EQ(text.rfind("<svg xmlns=\"http://www.w3.org/2000/svg\"", 0), 0u);
  EXPECT_EQ(text.substr(text.size() - 7), "</svg>\n");
  // One dot per pressure per reading, plus the two in the legend.
  EXPECT_EQ(occurrences(text, "<circle"), 2u * 20u + 2u);
  EXPECT_EQ(occurrences(text, "<polyline"), 2u);
  for (const auto& label : {"Systolic (mmHg)", "Diastolic (mmHg)", "Very high", "Elevated", "20 readings"}) {
    EXPECT_THAT(text, HasSubstr(label));
  }
}

TEST_F(ChartCommandTest, RefusesAnEmptyPeriod) {
  ASSERT_EQ(run({"add", "120/80/60", "--at", "2001-01-01"}).exitCode, 0);
  const auto svg = root_ / "chart.svg";
  const auto result = run({"chart", "--out", svg.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("no readings in the last 30 days"));
  EXPECT_FALSE(std::filesystem::exists(svg));
  EXPECT_EQ(run({"chart"}).exitCode, 2) << "--out is required";
}

}  // namespace
}  // namespace cardiolith::tool::testing
