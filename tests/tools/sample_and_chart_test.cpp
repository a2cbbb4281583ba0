#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using SampleAndChartTest = ToolTest;

TEST_F(SampleAndChartTest, SampleFillsAnEmptyLogAndAddsToAFullOneOnlyWhenForced) {
  EXPECT_THAT(succeed({"sample", "--count", "12", "--variance", "10", "--notes"}),
              HasSubstr("Added 12 sample readings"));
  const auto readings = listed();
  ASSERT_EQ(readings.size(), 12u);
  for (const auto& reading : readings) {
    EXPECT_THAT(reading["systolic"].get<int>(), ::testing::AllOf(::testing::Ge(110), ::testing::Le(119)));
    EXPECT_THAT(reading["diastolic"].get<int>(), ::testing::AllOf(::testing::Ge(70), ::testing::Le(79)));
    EXPECT_TRUE(reading["notes"].is_string());
  }
  succeed({"sample", "--count", "5", "--force"});
  EXPECT_EQ(listed().size(), 17u) << "the samples are added to the log, not put in its place";
}

TEST_F(SampleAndChartTest, ChartDrawsBothPressuresOfEveryReadingInThePeriod) {
  succeed({"sample", "--count", "20"});
  succeed({"add", "120/80/60", "--at", "2001-01-01 8:00"});  // long before the period
  const auto svg = root_ / "chart.svg";
  EXPECT_EQ(succeed({"chart", "--days", "30", "--out", svg.string()}),
            "Wrote a chart of 20 readings to " + svg.string() + "\n");

  const std::string text = readFile(svg);
  EXPECT_THAT(text, MatchesRegex("<svg xmlns=\"http://www.w3.org/2000/svg\".*</svg>\n"));
  const auto occurrences = [&](const std::string& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
  };
  EXPECT_EQ(occurrences("<circle"), 2u * 20u + 2u) << "a dot per pressure per reading, and two in the legend";
  EXPECT_EQ(occurrences("<polyline"), 2u);
  for (const auto& label : {"Systolic (mmHg)", "Diastolic (mmHg)", "Very high", "Elevated", "20 readings"})
    EXPECT_THAT(text, HasSubstr(label));
}

}  // namespace
}  // namespace cardiolith::tool::testing
