#include "cardiolith/analysis/home_monitoring.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "analysis/readings_fixtures.hpp"
#include "support/scoped_time_zone.hpp"

namespace cardiolith {
namespace {

using testing::reading;
using testing::utc;

// A reading at a UTC day, hour and minute of March 2026.
struct Timed {
  unsigned day;
  int hour;
  int minute;
  std::int64_t systolic, diastolic, pulse;
};

ReadingList readingsOf(const std::vector<Timed>& values) {
  ReadingList readings;
  // Given newest first, so that the analysis has to put them in order itself.
  for (auto it = values.rbegin(); it != values.rend(); ++it) {
    readings.push_back(reading(utc(2026, 3, it->day, it->hour).addingTimeInterval(it->minute * 60.0),
                               it->systolic, it->diastolic, it->pulse));
  }
  return readings;
}

// "DD:m<morning>e<evening>o<other>" for each day, with "-" after a day that is left out.
std::string grouping(const HomeMonitoringReport& report) {
  std::string text;
  for (const auto& day : report.days) {
    char entry[48];
    std::snprintf(entry, sizeof entry, "%s%02d%s:m%zue%zuo%zu", text.empty() ? "" : " ", day.day.day,
                  day.leftOut ? "-" : "", day.morning.size(), day.evening.size(), day.other.size());
    text += entry;
  }
  return text;
}

std::string means(const std::optional<ReadingStatistics>& statistics) {
  if (!statistics) return "none";
  char text[64];
  std::snprintf(text, sizeof text, "%.2f/%.2f/%.2f n%zu", statistics->systolic.mean,
                statistics->diastolic.mean, statistics->pulse.mean, statistics->readings);
  return text;
}

// Four days, a morning and an evening reading each; the first day measures high.
const std::vector<Timed> week = {
    {2, 7, 0, 160, 100, 80}, {2, 20, 0, 150, 96, 78},  //
    {3, 7, 0, 140, 90, 70},  {3, 20, 0, 130, 80, 66},  //
    {4, 7, 0, 136, 86, 72},  {4, 20, 0, 128, 78, 64},  //
    {5, 7, 0, 138, 88, 74},  {5, 20, 0, 126, 76, 62},
};

const HomeMonitoringOptions keepingFirstDay{.leaveOutFirstDay = false};
const HomeMonitoringOptions lowerThreshold{.threshold = {130, 80}};

// Every figure of a report but the spreads, in one line: the grouping, the day counts, the means of all,
// morning and evening readings, the rounded mean and whether it reaches the threshold.
std::string figures(const HomeMonitoringReport& report) {
  const auto rounded = report.roundedMean.value_or(PressurePair{});
  return grouping(report) + "; counted " + std::to_string(report.countedDays) + ", complete " +
         std::to_string(report.completeDays) + "; all " + means(report.all) + "; morning " +
         means(report.morning) + "; evening " + means(report.evening) + "; " +
         std::to_string(rounded.systolic) + "/" + std::to_string(rounded.diastolic) + ", threshold " +
         (!report.atOrAboveThreshold   ? "unknown"
          : *report.atOrAboveThreshold ? "reached"
                                       : "not reached");
}

TEST(HomeMonitoringTest, HandComputedWeeks) {
  const struct {
    const char* name;
    const char* zone;
    std::vector<Timed> readings;
    HomeMonitoringOptions options;
    const char* figures;
  } cases[] = {
      {"first day left out",
       "UTC",
       week,
       {},
       "02-:m1e1o0 03:m1e1o0 04:m1e1o0 05:m1e1o0; counted 3, complete 3; all 133.00/83.00/68.00 n6; morning "
       "138.00/88.00/72.00 n3; evening 128.00/78.00/64.00 n3; 133/83, threshold not reached"},
      // 1108/8 = 138.5 and 694/8 = 86.75 round to 139/87.
      {"first day kept", "UTC", week, keepingFirstDay,
       "02:m1e1o0 03:m1e1o0 04:m1e1o0 05:m1e1o0; counted 4, complete 4; all 138.50/86.75/70.75 n8; morning "
       "143.50/91.00/74.00 n4; evening 133.50/82.50/67.50 n4; 139/87, threshold reached"},
      {"the 2017 scale's threshold", "UTC", week, lowerThreshold,
       "02-:m1e1o0 03:m1e1o0 04:m1e1o0 05:m1e1o0; counted 3, complete 3; all 133.00/83.00/68.00 n6; morning "
       "138.00/88.00/72.00 n3; evening 128.00/78.00/64.00 n3; 133/83, threshold reached"},
      {"window edges",
       "UTC",
       {{2, 8, 0, 200, 120, 90},
        {3, 3, 59, 200, 120, 90},
        {3, 4, 0, 120, 80, 60},
        {3, 11, 59, 122, 82, 62},  //
        {3, 12, 0, 200, 120, 90},
        {3, 17, 59, 200, 120, 90},
        {3, 18, 0, 124, 84, 64},
        {3, 23, 59, 126, 86, 66}},
       {},
       "02-:m1e0o0 03:m2e2o3; counted 1, complete 1; all 123.00/83.00/63.00 n4; morning 121.00/81.00/61.00 "
       "n2; evening 125.00/85.00/65.00 n2; 123/83, threshold not reached"},
      // Clocks go forward on 29 March at 02:00 (UTC+1 to UTC+2). 05:30 UTC on the 30th is 07:30 local;
      // 02:15 UTC on the 31st is 04:15 local, a morning; 22:30 UTC on the 29th is 00:30 on the 30th, other.
      // Under a fixed UTC+1 the first would still be a morning but the second would fall at 03:15 and the
      // third at 23:30 on the 29th, an evening.
      {"across the spring-forward in Berlin",
       "Europe/Berlin",
       {{27, 6, 30, 150, 95, 70},
        {28, 6, 30, 130, 80, 60},
        {28, 19, 0, 134, 84, 64},
        {29, 5, 30, 132, 82, 62},  //
        {29, 22, 30, 200, 120, 90},
        {30, 5, 30, 136, 86, 66},
        {30, 19, 0, 138, 88, 68},
        {31, 2, 15, 140, 90, 70}},
       {},
       "27-:m1e0o0 28:m1e1o0 29:m1e0o0 30:m1e1o1 31:m1e0o0; counted 4, complete 2; all 135.00/85.00/65.00 "
       "n6; morning 134.50/84.50/64.50 n4; evening 136.00/86.00/66.00 n2; 135/85, threshold reached"},
      {"mornings only",
       "UTC",
       {{2, 7, 0, 150, 95, 70}, {3, 7, 0, 124, 78, 60}, {4, 7, 0, 126, 80, 62}, {5, 7, 0, 128, 82, 64}},
       {},
       "02-:m1e0o0 03:m1e0o0 04:m1e0o0 05:m1e0o0; counted 3, complete 0; all 126.00/80.00/62.00 n3; morning "
       "126.00/80.00/62.00 n3; evening none; 126/80, threshold not reached"},
      // 128/86 reaches 135/85 through the diastolic alone.
      {"diastolic alone reaches the threshold",
       "UTC",
       {{2, 7, 0, 120, 70, 60}, {3, 7, 0, 126, 84, 60}, {3, 20, 0, 130, 88, 60}},
       {},
       "02-:m1e0o0 03:m1e1o0; counted 1, complete 1; all 128.00/86.00/60.00 n2; morning 126.00/84.00/60.00 "
       "n1; evening 130.00/88.00/60.00 n1; 128/86, threshold reached"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    testing::ScopedTimeZone zone(c.zone);
    const auto report =
        HomeMonitoringAnalyzer::analyse(readingsOf(c.readings), utc(2026, 3, 1), utc(2026, 4, 1), c.options);
    EXPECT_EQ(figures(report), c.figures);
    EXPECT_EQ(report.protocolMet(), report.completeDays >= 3);
    ASSERT_TRUE(report.roundedMean);
    EXPECT_EQ(report.category,
              BloodPressureAnalyzer::result(report.roundedMean->systolic, report.roundedMean->diastolic));
  }
}

TEST(HomeMonitoringTest, VariabilityOfTheWeek) {
  testing::ScopedTimeZone zone("UTC");
  const auto report = HomeMonitoringAnalyzer::analyse(readingsOf(week), utc(2026, 3, 1), utc(2026, 4, 1));
  ASSERT_TRUE(report.all);
  // Systolic in time order 140 130 136 128 138 126, mean 133: squared deviations 166, over 5.
  const auto& systolic = report.all->systolic;
  EXPECT_NEAR(*systolic.standardDeviation, 5.761944, 1e-6);
  EXPECT_NEAR(*systolic.coefficientOfVariation, 5.761944 / 133 * 100, 1e-6);
  // |130-140| + |136-130| + |128-136| + |138-128| + |126-138| = 46, over 5 steps; the evening of one day
  // and the morning of the next are successive.
  EXPECT_DOUBLE_EQ(*systolic.averageRealVariability, 9.2);
  EXPECT_EQ(systolic.lowest, 126);
  EXPECT_EQ(systolic.highest, 140);
  EXPECT_EQ(report.all->diastolic.lowest, 76);
  EXPECT_EQ(report.all->diastolic.highest, 90);
}

TEST(HomeMonitoringTest, RangeEmptinessAndSingleReadings) {
  testing::ScopedTimeZone zone("UTC");
  // Only readings outside the range: no day, no figure.
  auto report = HomeMonitoringAnalyzer::analyse(readingsOf(week), utc(2026, 3, 10), utc(2026, 3, 17));
  EXPECT_TRUE(report.days.empty());
  EXPECT_FALSE(report.all || report.roundedMean || report.category || report.atOrAboveThreshold);
  // One reading that counts has a mean but no spread.
  report = HomeMonitoringAnalyzer::analyse(readingsOf(week), utc(2026, 3, 5), utc(2026, 3, 5, 12),
                                           keepingFirstDay);
  ASSERT_TRUE(report.all);
  EXPECT_EQ(report.all->readings, 1u);
  EXPECT_FALSE(report.all->systolic.standardDeviation || report.all->systolic.coefficientOfVariation ||
               report.all->systolic.averageRealVariability);
}

}  // namespace
}  // namespace cardiolith
