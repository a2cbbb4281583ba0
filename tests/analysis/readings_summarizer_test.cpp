#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <ostream>
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

struct Means {
  float systolic;
  float diastolic;
  float pulse;
};

void expectMeans(const std::optional<ReadingsSummary::AverageReading>& actual,
                 const std::optional<Means>& expected, const char* which) {
  SCOPED_TRACE(which);
  ASSERT_EQ(actual.has_value(), expected.has_value());
  if (!expected) return;
  EXPECT_EQ(actual->systolic(), expected->systolic);
  EXPECT_EQ(actual->diastolic(), expected->diastolic);
  EXPECT_EQ(actual->pulse(), expected->pulse);
}

// The relations between the optional fields that every summary keeps.
void expectConsistent(const ReadingsSummary& summary) {
  const bool both = summary.currentPeriodAverage() && summary.previousPreviousAverage();
  EXPECT_EQ(summary.currentPeriodAverageAnalysis().has_value(), summary.currentPeriodAverage().has_value());
  EXPECT_EQ(summary.systolicChange().has_value(), both);
  EXPECT_EQ(summary.diastolicChange().has_value(), both);
  EXPECT_EQ(summary.pulseChange().has_value(), both);
}

// Summaries in UTC, so that calendar days are 24 hours long unless a test says otherwise.
class ReadingsSummarizerTest : public ::testing::Test {
 protected:
  testing::ScopedTimeZone zone_{"UTC"};
};

TEST_F(ReadingsSummarizerTest, WorkedWeek) {
  const Date start = utc(2025, 3, 1, 8);
  const Date end = utc(2025, 3, 8, 8);
  const ReadingList readings{
      reading(utc(2025, 3, 8, 8), 135, 90, 75),          // at the end: current
      reading(utc(2025, 2, 22, 8), 115, 78, 77),         // at the previous start: previous
      reading(utc(2025, 3, 3, 12), 125, 80, 65),         // current
      reading(utc(2025, 2, 25, 20), 125, 82, 77),        // previous
      reading(utc(2025, 3, 8, 8, 0, 1), 300, 200, 199),  // just after the end
      reading(utc(2025, 2, 22, 7, 59, 59), 1, 1, 1),     // just before the previous start
  };

  const ReadingsSummary summary = ReadingsSummarizer::summarise(readings, start, end);

  expectMeans(summary.currentPeriodAverage(), Means{130, 85, 70}, "current");
  expectMeans(summary.previousPreviousAverage(), Means{120, 80, 77}, "previous");
  EXPECT_NEAR(*summary.systolicChange(), 7.6923, 1e-4);
  EXPECT_NEAR(*summary.diastolicChange(), 5.8824, 1e-4);
  EXPECT_EQ(*summary.pulseChange(), -10.0f);
  EXPECT_EQ(summary.currentPeriodAverageAnalysis(), high);
  EXPECT_EQ(summary.currentPeriodStartDate(), start);
  EXPECT_EQ(summary.currentPeriodEndDate(), end);
}

// Readings placed relative to the start of a period, in seconds.
struct TimedValues {
  double offset;
  std::int64_t systolic;
  std::int64_t diastolic;
  std::int64_t pulse;
};

struct PeriodCase {
  std::string name;
  double endOffset;
  std::vector<TimedValues> readings;
  std::optional<Means> current;
  std::optional<Means> previous;
};

std::ostream& operator<<(std::ostream& out, const PeriodCase& periodCase) { return out << periodCase.name; }

class ReadingsSummarizerPeriodTest : public ::testing::TestWithParam<PeriodCase> {
 protected:
  testing::ScopedTimeZone zone_{"UTC"};
};

TEST_P(ReadingsSummarizerPeriodTest, SelectsBothPeriodsWithInclusiveBounds) {
  const PeriodCase& periodCase = GetParam();
  const Date start = utc(2025, 3, 1, 8);
  const Date end = start.addingTimeInterval(periodCase.endOffset);
  ReadingList readings;
  for (const auto& values : periodCase.readings) {
    readings.push_back(
        reading(start.addingTimeInterval(values.offset), values.systolic, values.diastolic, values.pulse));
  }

  const ReadingsSummary summary = ReadingsSummarizer::summarise(readings, start, end);

  expectMeans(summary.currentPeriodAverage(), periodCase.current, "current");
  expectMeans(summary.previousPreviousAverage(), periodCase.previous, "previous");
  expectConsistent(summary);
  EXPECT_EQ(summary.currentPeriodStartDate(), start);
  EXPECT_EQ(summary.currentPeriodEndDate(), end);
}

INSTANTIATE_TEST_SUITE_P(
    Periods, ReadingsSummarizerPeriodTest,
    ::testing::Values(
        PeriodCase{"NoReadings", 7 * kDay, {}, std::nullopt, std::nullopt},
        PeriodCase{"ReadingAtStartCountsInBoth",
                   7 * kDay,
                   {{0, 100, 70, 60}, {kDay, 110, 72, 62}},
                   Means{105, 71, 61},
                   Means{100, 70, 60}},
        PeriodCase{"BoundsIncludedOutsideIgnored",
                   7 * kDay,
                   {{-7 * kDay - 1, 1, 1, 1},
                    {7 * kDay, 130, 90, 80},
                    {-7 * kDay, 120, 80, 70},
                    {7 * kDay + 1, 300, 200, 199},
                    {30 * kDay, 300, 200, 199}},
                   Means{130, 90, 80},
                   Means{120, 80, 70}},
        PeriodCase{"CurrentOnly", 7 * kDay, {{kDay, 120, 80, 70}}, Means{120, 80, 70}, std::nullopt},
        PeriodCase{"PreviousOnly", 7 * kDay, {{-3 * kDay, 120, 80, 70}}, std::nullopt, Means{120, 80, 70}},
        // Less than a whole day: the previous period shrinks to the start instant itself.
        PeriodCase{"ZeroDaysWithReadingAtStart",
                   12 * kHour,
                   {{0, 100, 70, 60}, {6 * kHour, 120, 80, 70}, {-1, 200, 100, 90}},
                   Means{110, 75, 65},
                   Means{100, 70, 60}},
        PeriodCase{"ZeroDaysWithoutReadingAtStart",
                   12 * kHour,
                   {{6 * kHour, 120, 80, 70}, {-1, 200, 100, 90}},
                   Means{120, 80, 70},
                   std::nullopt},
        // An end less than a day before the start: no current reading, D = 0, only the start instant.
        PeriodCase{"EndShortlyBeforeStart",
                   -kHour,
                   {{0, 100, 70, 60}, {-kHour / 2, 120, 80, 70}, {-kHour, 130, 85, 75}},
                   std::nullopt,
                   Means{100, 70, 60}},
        // An end a day or more before the start: D < 0 puts the previous start after the start.
        PeriodCase{"EndDaysBeforeStart",
                   -2 * kDay,
                   {{0, 100, 70, 60}, {-kDay, 120, 80, 70}, {kDay, 130, 85, 75}, {-2 * kDay, 90, 60, 60}},
                   std::nullopt,
                   std::nullopt}),
    [](const auto& info) { return info.param.name; });

TEST_F(ReadingsSummarizerTest, ZeroCurrentAverageGivesInfinityOrNaN) {
  const Date start = utc(2025, 3, 1, 8);
  const ReadingList readings{reading(start.addingTimeInterval(kDay), 120, 0, 0),
                             reading(start.addingTimeInterval(-kDay), 110, 0, 60)};

  const ReadingsSummary summary =
      ReadingsSummarizer::summarise(readings, start, start.addingTimeInterval(7 * kDay));

  ASSERT_TRUE(summary.diastolicChange() && summary.pulseChange());
  EXPECT_TRUE(std::isnan(*summary.diastolicChange()));  // (0 - 0) / 0
  EXPECT_TRUE(std::isinf(*summary.pulseChange()));      // (0 - 60) / 0
  EXPECT_LT(*summary.pulseChange(), 0);
}

struct CategoryCase {
  std::vector<std::int64_t> systolic;
  std::vector<std::int64_t> diastolic;
  BloodPressureAnalysis expected;
};

TEST_F(ReadingsSummarizerTest, CategoryOfTheCurrentMeansTruncatedTowardZero) {
  const CategoryCase cases[] = {
      {{120, 121}, {80, 81}, normal},  // 120.5/80.5 -> 120/80
      {{-1, 0}, {0, 0}, low},          // -0.5 -> 0, not -1
      {{kInt64Max}, {0}, veryHigh},    // 2^63 saturates
      {{kInt64Max}, {85}, high},       // the diastolic row still comes first
      {{100}, {kInt64Max}, veryHigh}, {{kInt64Max, kInt64Max}, {kInt64Max, kInt64Max}, veryHigh},
  };
  const Date start = utc(2025, 3, 1, 8);
  for (const auto& c : cases) {
    ReadingList readings;
    for (std::size_t i = 0; i < c.systolic.size(); ++i) {
      readings.push_back(reading(start.addingTimeInterval(kHour), c.systolic[i], c.diastolic[i], 70));
    }
    const ReadingsSummary summary =
        ReadingsSummarizer::summarise(readings, start, start.addingTimeInterval(kDay));
    EXPECT_EQ(summary.currentPeriodAverageAnalysis(), c.expected) << "first systolic " << c.systolic[0];
  }
}

TEST_F(ReadingsSummarizerTest, AveragesAndCategoryOfFractionalMeans) {
  // 1299 / 10 and 809 / 10 in single precision.
  ReadingList readings;
  const Date start = utc(2025, 3, 1, 8);
  for (int i = 0; i < 10; ++i) {
    readings.push_back(
        reading(start.addingTimeInterval(kHour), i == 0 ? 129 : 130, i == 0 ? 80 : 81, 60 + i));
  }
  const ReadingsSummary summary =
      ReadingsSummarizer::summarise(readings, start, start.addingTimeInterval(kDay));
  ASSERT_TRUE(summary.currentPeriodAverage());
  EXPECT_EQ(summary.currentPeriodAverage()->systolic(), 129.9f);
  EXPECT_EQ(summary.currentPeriodAverage()->diastolic(), 80.9f);
  EXPECT_EQ(summary.currentPeriodAverage()->pulse(), 64.5f);
  EXPECT_EQ(summary.currentPeriodAverageAnalysis(), elevated);
}

TEST_F(ReadingsSummarizerTest, GetAverageSelectsTheFieldAndIsAbsentForNoReadings) {
  const ReadingList readings{reading(Date(0), 120, 80, 60), reading(Date(1), 121, 81, 61)};
  EXPECT_EQ(ReadingsSummarizer::getAverage(Reading::ValueType::systolic, readings), 120.5f);
  EXPECT_EQ(ReadingsSummarizer::getAverage(Reading::ValueType::diastolic, readings), 80.5f);
  EXPECT_EQ(ReadingsSummarizer::getAverage(Reading::ValueType::pulse, readings), 60.5f);
  EXPECT_EQ(ReadingsSummarizer::getAverage(Reading::ValueType::pulse, {}), std::nullopt);
}

// A sum rounded to float after every addition, in array order: the arithmetic the summary promises.
float singlePrecisionMean(const std::vector<std::int64_t>& values) {
  float sum = 0.0f;
  for (const std::int64_t value : values) sum += static_cast<float>(value);
  return sum / static_cast<float>(values.size());
}

double doublePrecisionMean(const std::vector<std::int64_t>& values) {
  double sum = 0.0;
  for (const std::int64_t value : values) sum += static_cast<double>(value);
  return sum / static_cast<double>(values.size());
}

TEST_F(ReadingsSummarizerTest, AveragesAccumulateInSinglePrecisionInArrayOrder) {
  // 2^24 + 1 + 1 rounds back to 2^24 when added in that order in float, but not in the other order.
  EXPECT_EQ(ReadingsSummarizer::getAverage(
                Reading::ValueType::systolic,
                {reading(Date(), 16777216, 0, 0), reading(Date(), 1, 0, 0), reading(Date(), 1, 0, 0)}),
            5592405.5f);
  EXPECT_EQ(ReadingsSummarizer::getAverage(
                Reading::ValueType::systolic,
                {reading(Date(), 1, 0, 0), reading(Date(), 1, 0, 0), reading(Date(), 16777216, 0, 0)}),
            5592406.0f);

  // Large sums, where single and double precision part ways, through both operations.
  const Date start = utc(2025, 3, 1, 8);
  std::vector<std::int64_t> systolic, diastolic, pulse;
  ReadingList readings;
  for (std::int64_t i = 0; i < 5000; ++i) {
    systolic.push_back(1'000'003 + (i * 7919) % 1000);
    diastolic.push_back(70'000'001 + (i * 104729) % 100'000);
    pulse.push_back(-3'000'017 - (i * 31) % 977);
    readings.push_back(reading(start.addingTimeInterval(static_cast<double>(i)), systolic.back(),
                               diastolic.back(), pulse.back()));
  }
  const Means expected{singlePrecisionMean(systolic), singlePrecisionMean(diastolic),
                       singlePrecisionMean(pulse)};
  ASSERT_NE(expected.systolic, static_cast<float>(doublePrecisionMean(systolic)));
  ASSERT_NE(expected.diastolic, static_cast<float>(doublePrecisionMean(diastolic)));
  ASSERT_NE(expected.pulse, static_cast<float>(doublePrecisionMean(pulse)));

  EXPECT_EQ(ReadingsSummarizer::getAverage(Reading::ValueType::systolic, readings), expected.systolic);
  EXPECT_EQ(ReadingsSummarizer::getAverage(Reading::ValueType::diastolic, readings), expected.diastolic);
  EXPECT_EQ(ReadingsSummarizer::getAverage(Reading::ValueType::pulse, readings), expected.pulse);
  const ReadingsSummary summary =
      ReadingsSummarizer::summarise(readings, start, start.addingTimeInterval(kDay));
  expectMeans(summary.currentPeriodAverage(), expected, "current");
}

TEST_F(ReadingsSummarizerTest, ChangesAreComputedStepByStepInSinglePrecision) {
  const Date start = utc(2025, 3, 1, 8);
  const ReadingList readings{reading(start.addingTimeInterval(kHour), 60, 60, 60),
                             reading(start.addingTimeInterval(-kHour), 61, 62, 69)};
  const float current = 60.0f;
  const float previous[] = {61.0f, 62.0f, 69.0f};
  float expected[3];
  for (int i = 0; i < 3; ++i) {
    const float difference = current - previous[i];
    const float ratio = difference / current;
    expected[i] = ratio * 100.0f;
    // The same formula evaluated in double and rounded once gives a different float.
    ASSERT_NE(expected[i], static_cast<float>((60.0 - static_cast<double>(previous[i])) / 60.0 * 100.0));
  }

  const ReadingsSummary summary =
      ReadingsSummarizer::summarise(readings, start, start.addingTimeInterval(kDay));

  EXPECT_EQ(summary.systolicChange(), expected[0]);
  EXPECT_EQ(summary.diastolicChange(), expected[1]);
  EXPECT_EQ(summary.pulseChange(), expected[2]);
}

// Calendar days across the spring-forward change of 9 March 2025 in New York are not 24 hours each.
TEST(ReadingsSummarizerDaylightSavingTest, PeriodsCountCalendarDaysInTheCurrentZone) {
  testing::ScopedTimeZone zone("America/New_York");
  struct Case {
    const char* name;
    Date start;
    Date end;
    Date previousStart;  // 08:00 local, 7 calendar days before the start
  };
  const Case cases[] = {
      // The previous period spans the change: 08:00 EST is 13:00 UTC, 08:00 EDT is 12:00 UTC.
      {"PreviousPeriodAcrossTheChange", utc(2025, 3, 15, 12), utc(2025, 3, 22, 12), utc(2025, 3, 8, 13)},
      // The current period spans it: 6 days 23 hours make 7 calendar days.
      {"CurrentPeriodAcrossTheChange", utc(2025, 3, 8, 13), utc(2025, 3, 15, 12), utc(2025, 3, 1, 13)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const ReadingList readings{
        reading(c.end, 130, 85, 75),
        reading(c.previousStart, 120, 80, 70),
        // Counted by 24-hour days, the previous start would move to include this reading in the first case
        // and to exclude the one at the previous start in the second.
        reading(c.previousStart.addingTimeInterval(-1), 1, 1, 1),
    };
    const ReadingsSummary summary = ReadingsSummarizer::summarise(readings, c.start, c.end);
    expectMeans(summary.currentPeriodAverage(), Means{130, 85, 75}, "current");
    expectMeans(summary.previousPreviousAverage(), Means{120, 80, 70}, "previous");
  }
}

}  // namespace
}  // namespace cardiolith
