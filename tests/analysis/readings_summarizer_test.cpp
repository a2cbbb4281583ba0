#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
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
  std::int64_t systolic;
  std::int64_t diastolic;
  std::int64_t pulse;
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

TEST_F(ReadingsSummarizerTest, WorkedWeek) {
  const ReadingsSummary summary =
      summarise(7 * kDay, {
                              {7 * kDay, 135, 90, 75},                // at the end: current
                              {-7 * kDay, 115, 78, 77},               // at the previous start
                              {2 * kDay + 4 * kHour, 125, 80, 65},    // current
                              {-3 * kDay - 12 * kHour, 125, 82, 77},  // previous
                              {7 * kDay + 1, 300, 200, 199},          // just after the end
                              {-7 * kDay - 1, 1, 1, 1},               // just before the previous start
                          });
  EXPECT_EQ(means(summary.currentPeriodAverage()), "130/85/70");
  EXPECT_EQ(means(summary.previousPreviousAverage()), "120/80/77");
  EXPECT_NEAR(*summary.systolicChange(), 7.6923, 1e-4);
  EXPECT_NEAR(*summary.diastolicChange(), 5.8824, 1e-4);
  EXPECT_EQ(*summary.pulseChange(), -10.0f);
  EXPECT_EQ(summary.currentPeriodAverageAnalysis(), high);
  EXPECT_EQ(summary.currentPeriodStartDate(), start);
  EXPECT_EQ(summary.currentPeriodEndDate(), start.addingTimeInterval(7 * kDay));
}

// The previous period runs from D whole calendar days before the start up to the start, both included.
TEST_F(ReadingsSummarizerTest, PeriodsIncludeTheirBounds) {
  struct Case {
    double endOffset;
    const char* current;
    const char* previous;
    std::vector<TimedValues> readings;
  };
  const Case cases[] = {
      // A reading at the start counts in both periods.
      {7 * kDay, "105/71/61", "100/70/60", {{0, 100, 70, 60}, {kDay, 110, 72, 62}}},
      {7 * kDay, "120/80/70", "none", {{kDay, 120, 80, 70}}},
      {7 * kDay, "none", "120/80/70", {{-3 * kDay, 120, 80, 70}}},
      // Less than a whole day: D = 0, so the previous period shrinks to the start instant itself.
      {12 * kHour,
       "110/75/65",
       "100/70/60",
       {{0, 100, 70, 60}, {6 * kHour, 120, 80, 70}, {-1, 200, 100, 90}}},
      // An end less than a day before the start: no current reading, D = 0, only the start instant.
      {-kHour, "none", "100/70/60", {{0, 100, 70, 60}, {-kHour / 2, 120, 80, 70}, {-kHour, 130, 85, 75}}},
      // An end a day or more before the start: D < 0 puts the previous start after the start.
      {-2 * kDay,
       "none",
       "none",
       {{0, 100, 70, 60}, {-kDay, 120, 80, 70}, {kDay, 130, 85, 75}, {-2 * kDay, 90, 60, 60}}},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE("case " + std::to_string(i));
    const ReadingsSummary summary = summarise(cases[i].endOffset, cases[i].readings);
    EXPECT_EQ(means(summary.currentPeriodAverage()), cases[i].current);
    EXPECT_EQ(means(summary.previousPreviousAverage()), cases[i].previous);
    // The category comes with the current means, the changes with both.
    const bool both = summary.currentPeriodAverage() && summary.previousPreviousAverage();
    EXPECT_EQ(summary.currentPeriodAverageAnalysis().has_value(), summary.currentPeriodAverage().has_value());
    EXPECT_TRUE(summary.systolicChange().has_value() == both &&
                summary.diastolicChange().has_value() == both && summary.pulseChange().has_value() == both);
  }
}

TEST_F(ReadingsSummarizerTest, ZeroCurrentAverageGivesInfinityOrNaN) {
  const ReadingsSummary summary = summarise(7 * kDay, {{kDay, 120, 0, 0}, {-kDay, 110, 0, 60}});
  ASSERT_TRUE(summary.diastolicChange() && summary.pulseChange());
  EXPECT_TRUE(std::isnan(*summary.diastolicChange()));  // (0 - 0) / 0
  EXPECT_TRUE(std::isinf(*summary.pulseChange()));      // (0 - 60) / 0
  EXPECT_LT(*summary.pulseChange(), 0);
}

// The category is that of the current means truncated toward zero, saturating at the ends of the int64 range.
TEST_F(ReadingsSummarizerTest, CategoryOfTheCurrentMeansTruncatedTowardZero) {
  const std::pair<std::vector<TimedValues>, BloodPressureAnalysis> cases[] = {
      {{{kHour, 120, 80, 70}, {kHour, 121, 81, 70}}, normal},  // 120.5/80.5 -> 120/80
      {{{kHour, -1, 0, 70}, {kHour, 0, 0, 70}}, low},          // -0.5 -> 0, not -1
      {{{kHour, kInt64Max, 0, 70}}, veryHigh},                 // 2^63 saturates
      {{{kHour, kInt64Max, 85, 70}}, high},                    // the diastolic row still comes first
      {{{kHour, 100, kInt64Max, 70}}, veryHigh},
      {{{kHour, kInt64Max, kInt64Max, 70}, {kHour, kInt64Max, kInt64Max, 70}}, veryHigh},
  };
  for (const auto& [readings, expected] : cases) {
    EXPECT_EQ(summarise(kDay, readings).currentPeriodAverageAnalysis(), expected)
        << "first systolic " << readings[0].systolic;
  }

  // 1299 / 10 and 809 / 10 in single precision: 129.9/80.9, truncated to 129/80.
  std::vector<TimedValues> fractional{{kHour, 129, 80, 60}};
  for (int i = 1; i < 10; ++i) fractional.push_back({kHour, 130, 81, 60 + i});
  const ReadingsSummary summary = summarise(kDay, fractional);
  ASSERT_TRUE(summary.currentPeriodAverage());
  EXPECT_EQ(summary.currentPeriodAverage()->systolic(), 129.9f);
  EXPECT_EQ(summary.currentPeriodAverage()->diastolic(), 80.9f);
  EXPECT_EQ(summary.currentPeriodAverage()->pulse(), 64.5f);
  EXPECT_EQ(summary.currentPeriodAverageAnalysis(), elevated);
}

// Sums, means and changes are rounded to float at every step, and sums follow the array order.
TEST_F(ReadingsSummarizerTest, AveragesAccumulateInSinglePrecisionInArrayOrder) {
  // 2^24 + 1 + 1 rounds back to 2^24 when added in that order in float, but not in the other order.
  const auto systolicMean = [](const std::vector<std::int64_t>& values) {
    ReadingList readings;
    for (const auto value : values) readings.push_back(reading(Date(), value, 0, 0));
    return ReadingsSummarizer::getAverage(Reading::ValueType::systolic, readings);
  };
  EXPECT_EQ(systolicMean({16777216, 1, 1}), 5592405.5f);
  EXPECT_EQ(systolicMean({1, 1, 16777216}), 5592406.0f);
  EXPECT_EQ(systolicMean({}), std::nullopt);

  // Large sums, where single and double precision part ways, through both operations and every field.
  ReadingList readings;
  for (std::int64_t i = 0; i < 5000; ++i) {
    readings.push_back(reading(start, 1'000'003 + (i * 7919) % 1000, 70'000'001 + (i * 104729) % 100'000,
                               -3'000'017 - (i * 31) % 977));
  }
  const auto average = ReadingsSummarizer::summarise(readings, start, start).currentPeriodAverage();
  ASSERT_TRUE(average);
  const std::pair<Reading::ValueType, float> fields[] = {
      {Reading::ValueType::systolic, average->systolic()},
      {Reading::ValueType::diastolic, average->diastolic()},
      {Reading::ValueType::pulse, average->pulse()}};
  for (const auto& [type, summaryMean] : fields) {
    float floatSum = 0;
    double doubleSum = 0;
    for (const auto& r : readings) {
      floatSum += static_cast<float>(r->value(type));
      doubleSum += static_cast<double>(r->value(type));
    }
    const float expected = floatSum / 5000.0f;
    ASSERT_NE(expected, static_cast<float>(doubleSum / 5000)) << static_cast<int>(type);
    EXPECT_EQ(ReadingsSummarizer::getAverage(type, readings), expected) << static_cast<int>(type);
    EXPECT_EQ(summaryMean, expected) << static_cast<int>(type);
  }
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
