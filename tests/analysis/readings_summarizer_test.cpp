#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "analysis/readings_fixtures.hpp"
#include "cardiolith/analysis/readings_summary.hpp"
#include "support/scoped_time_zone.hpp"

namespace cardiolith {
namespace {

using testing::reading;
using testing::utc;
using enum BloodPressureAnalysis;

constexpr double kHour = 3600;
constexpr double kDay = 86400;
constexpr std::int64_t kInt64Max = std::numeric_limits<std::int64_t>::max();

// "systolic/diastolic/pulse" of a period's means, or "none".
std::string means(const std::optional<ReadingsSummary::AverageReading>& average) {
  if (!average) return "none";
  std::ostringstream text;
  text << average->systolic() << "/" << average->diastolic() << "/" << average->pulse();
  return text.str();
}

// Readings placed relative to the start of the current period, in seconds.
struct TimedValues {
  double offset;
  std::int64_t systolic, diastolic, pulse;
};

// Summaries in UTC, so that calendar days are 24 hours long, of a current period that starts at `start`.
class ReadingsSummarizerTest : public ::testing::Test {
 protected:
  ReadingsSummary summarise(double endOffset, const std::vector<TimedValues>& values) const {
    ReadingList readings;
    for (const auto& v : values) {
      readings.push_back(reading(start.addingTimeInterval(v.offset), v.systolic, v.diastolic, v.pulse));
    }
    return ReadingsSummarizer::summarise(readings, start, start.addingTimeInterval(endOffset));
  }

  testing::ScopedTimeZone zone_{"UTC"};
  const Date start = utc(2025, 3, 1, 8);
};

// The previous period runs from D whole calendar days before the start up to the start, both included.
TEST_F(ReadingsSummarizerTest, PeriodsIncludeTheirBounds) {
  // The end, the current and previous means, the readings.
  const std::tuple<double, const char*, const char*, std::vector<TimedValues>> cases[] = {
      // A week: the end and the previous start count, a second past either of them does not.
      {7 * kDay,
       "130/85/75",
       "100/70/60",
       {{7 * kDay, 130, 85, 75},
        {-7 * kDay, 100, 70, 60},
        {7 * kDay + 1, 1, 1, 1},
        {-7 * kDay - 1, 1, 1, 1}}},
      {7 * kDay, "120/80/70", "none", {{kDay, 120, 80, 70}}},
      // Less than a whole day: D = 0, so the previous period shrinks to the start, which counts in both.
      {12 * kHour, "110/75/65", "100/70/60", {{0, 100, 70, 60}, {6 * kHour, 120, 80, 70}, {-1, 1, 1, 1}}},
      // An end less than a day before the start: no current reading, D = 0, only the start instant.
      {-kHour, "none", "100/70/60", {{0, 100, 70, 60}, {-kHour / 2, 120, 80, 70}, {-kHour, 130, 85, 75}}},
      // An end a day or more before the start: D < 0 puts the previous start after the start.
      {-2 * kDay, "none", "none", {{0, 1, 1, 1}, {-kDay, 1, 1, 1}, {kDay, 1, 1, 1}, {-2 * kDay, 1, 1, 1}}},
  };
  for (const auto& [endOffset, current, previous, readings] : cases) {
    SCOPED_TRACE(endOffset);
    const ReadingsSummary summary = summarise(endOffset, readings);
    EXPECT_EQ(means(summary.currentPeriodAverage()), current);
    EXPECT_EQ(means(summary.previousPreviousAverage()), previous);
    EXPECT_EQ(summary.currentPeriodStartDate(), start);
    EXPECT_EQ(summary.currentPeriodEndDate(), start.addingTimeInterval(endOffset));
    // The category comes with the current means, the changes with both.
    const bool both = summary.currentPeriodAverage() && summary.previousPreviousAverage();
    EXPECT_EQ(summary.currentPeriodAverageAnalysis().has_value(), summary.currentPeriodAverage().has_value());
    EXPECT_TRUE(summary.systolicChange().has_value() == both &&
                summary.diastolicChange().has_value() == both && summary.pulseChange().has_value() == both);
  }
}

// An end a fraction of a microsecond short of seven whole days makes six, so the previous period starts six
// days back; a reading seven days back is outside it.
TEST_F(ReadingsSummarizerTest, CountsTheWholeDaysOfTheExactInstants) {
  const Date fractionalStart(785000000.1234567);
  const ReadingList readings{reading(fractionalStart.addingTimeInterval(-7 * kDay), 100, 70, 60)};
  const Date end = fractionalStart.addingTimeInterval(7 * kDay - 1.2e-7);
  EXPECT_FALSE(ReadingsSummarizer::summarise(readings, fractionalStart, end).previousPreviousAverage());
  EXPECT_TRUE(
      ReadingsSummarizer::summarise(readings, fractionalStart, fractionalStart.addingTimeInterval(7 * kDay))
          .previousPreviousAverage());
}

// The category is that of the current means truncated toward zero, saturating at the ends of the int64 range.
TEST_F(ReadingsSummarizerTest, CategoryOfTheCurrentMeansTruncatedTowardZero) {
  const std::pair<std::vector<TimedValues>, BloodPressureAnalysis> cases[] = {
      {{{kHour, 120, 80, 70}, {kHour, 121, 81, 70}}, normal},  // 120.5/80.5 -> 120/80, not 121/81
      {{{kHour, -1, 0, 70}, {kHour, 0, 0, 70}}, low},          // -0.5 -> 0, not -1
      {{{kHour, kInt64Max, 0, 70}}, veryHigh},                 // 2^63 saturates
      {{{kHour, 100, kInt64Max, 70}}, veryHigh},
  };
  for (const auto& [readings, expected] : cases) {
    EXPECT_EQ(summarise(kDay, readings).currentPeriodAverageAnalysis(), expected) << readings[0].systolic;
  }
}

// Sums, means and changes are rounded to float at every step, and sums follow the array order: 2^24 + 1
// rounds back to 2^24 in float, so a large first value swallows the small ones after it, while in double,
// or added before it, they count. Each field gets its own values so that a mix-up of fields shows too.
TEST_F(ReadingsSummarizerTest, AveragesAccumulateInSinglePrecisionInArrayOrder) {
  const ReadingList readings{reading(start, 1 << 24, 1 << 25, -(1 << 24)), reading(start, 1, 2, -1),
                             reading(start, 1, 2, -1)};
  const auto average = ReadingsSummarizer::summarise(readings, start, start).currentPeriodAverage();
  ASSERT_TRUE(average);
  // Sums of 2^24, 2^25 and -2^24 rather than 2^24 + 2, 2^25 + 4 and -2^24 - 2, divided by 3 in float.
  const std::tuple<Reading::ValueType, float, float> fields[] = {
      {Reading::ValueType::systolic, average->systolic(), 5592405.5f},
      {Reading::ValueType::diastolic, average->diastolic(), 11184811.0f},
      {Reading::ValueType::pulse, average->pulse(), -5592405.5f}};
  for (const auto& [type, summaryMean, expected] : fields) {
    EXPECT_EQ(ReadingsSummarizer::getAverage(type, readings), expected) << static_cast<int>(type);
    EXPECT_EQ(summaryMean, expected) << static_cast<int>(type);
  }
  EXPECT_EQ(ReadingsSummarizer::getAverage(Reading::ValueType::systolic, {}), std::nullopt);
}

TEST_F(ReadingsSummarizerTest, ChangesAreComputedStepByStepInSinglePrecision) {
  const ReadingsSummary summary = summarise(kDay, {{kHour, 60, 60, 60}, {-kHour, 61, 62, 69}});
  const std::pair<std::optional<float>, float> changes[] = {
      {summary.systolicChange(), 61.0f}, {summary.diastolicChange(), 62.0f}, {summary.pulseChange(), 69.0f}};
  for (const auto& [change, previous] : changes) {
    const float expected = (60.0f - previous) / 60.0f * 100.0f;
    // The same formula evaluated in double and rounded once gives a different float.
    ASSERT_NE(expected, static_cast<float>((60.0 - static_cast<double>(previous)) / 60.0 * 100.0));
    EXPECT_EQ(change, expected);
  }

  // A zero current mean gives NaN for (0 - 0) / 0 and an infinity for (0 - 60) / 0, both kept as changes.
  const ReadingsSummary zero = summarise(7 * kDay, {{kDay, 120, 0, 0}, {-kDay, 110, 0, 60}});
  ASSERT_TRUE(zero.diastolicChange() && zero.pulseChange());
  EXPECT_TRUE(std::isnan(*zero.diastolicChange()));
  EXPECT_EQ(*zero.pulseChange(), -std::numeric_limits<float>::infinity());
}

// Calendar days across the spring-forward change of 9 March 2025 in New York are not 24 hours each.
TEST(ReadingsSummarizerDaylightSavingTest, PeriodsCountCalendarDaysInTheCurrentZone) {
  testing::ScopedTimeZone zone("America/New_York");
  // The start, the end, and the previous start: 08:00 local 7 calendar days before the start.
  const Date cases[][3] = {
      // The previous period spans the change: 08:00 EST is 13:00 UTC, 08:00 EDT is 12:00 UTC.
      {utc(2025, 3, 15, 12), utc(2025, 3, 22, 12), utc(2025, 3, 8, 13)},
      // The current period spans it: 6 days 23 hours make 7 calendar days.
      {utc(2025, 3, 8, 13), utc(2025, 3, 15, 12), utc(2025, 3, 1, 13)},
  };
  for (const auto& [start, end, previousStart] : cases) {
    SCOPED_TRACE(start.timeIntervalSince1970());
    // Counted by 24-hour days, the previous start would move to include the reading just before it in the
    // first case, and to exclude the one at it in the second.
    const ReadingList readings{reading(end, 130, 85, 75), reading(previousStart, 120, 80, 70),
                               reading(previousStart.addingTimeInterval(-1), 1, 1, 1)};
    const ReadingsSummary summary = ReadingsSummarizer::summarise(readings, start, end);
    EXPECT_EQ(means(summary.currentPeriodAverage()), "130/85/75");
    EXPECT_EQ(means(summary.previousPreviousAverage()), "120/80/70");
  }
}

}  // namespace
}  // namespace cardiolith
