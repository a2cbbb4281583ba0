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

TEST_F(SampleAndChartTest, ChartIsOnePictureWrittenAsSvgPngOrPdfByTheNameOfTheFile) {
  succeed({"sample", "--count", "20"});
  succeed({"add", "120/80/60", "--at", "2001-01-01 8:00"});  // long before the period
  // Each format by its signature, whatever the case of the extension.
  const std::pair<const char*, std::string> formats[] = {
      {"chart.svg", "<?xml"}, {"chart.PNG", "\x89PNG\r\n\x1a\n"}, {"chart.pdf", "%PDF-"}};
  for (const auto& [name, signature] : formats) {
    const auto file = root_ / name;
    EXPECT_EQ(succeed({"chart", "--days", "30", "--out", file.string()}),
              "Wrote a chart of 20 readings to " + file.string() + "\n");
    EXPECT_EQ(readFile(file).substr(0, signature.size()), signature) << name;
  }
  EXPECT_THAT(succeed({"chart", "--out", "-"}), MatchesRegex("<\\?xml.*<svg .*</svg>\n"));

  // The PDF keeps its words as text: the panels, the bands and the count of readings.
  const std::string text = pdfText(root_ / "chart.pdf");
  for (const auto& label : {"Systolic (mmHg)", "Diastolic (mmHg)", "Very high", "Elevated", "20 readings"})
    EXPECT_THAT(text, HasSubstr(label));
}

}  // namespace
}  // namespace cardiolith::tool::testing
