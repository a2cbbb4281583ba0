#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "cardiolith/analysis/blood_pressure_analysis.hpp"
#include "cardiolith/export.hpp"
#include "cardiolith/model/reading.hpp"
#include "cardiolith/platform/calendar.hpp"

namespace cardiolith {

// The analysis of a home-monitoring week, as doctors ask for it: measure in the morning and in the
// evening for several days, leave out the first day (people are not yet used to the device and measure
// high), and average all the other morning and evening readings. A pure function of its arguments and of
// the user's calendar (Calendar::current(), which follows ICU's default time zone at each call).

// Local clock hours [firstHour, endHour): {4, 12} is 04:00 to 11:59. 0 <= firstHour < endHour <= 24.
struct HourWindow {
  std::int32_t firstHour = 0;
  std::int32_t endHour = 0;
  // Whether a local clock time in this hour (0-23) falls in the window; the minutes never decide.
  constexpr bool contains(std::int32_t hour) const noexcept { return hour >= firstHour && hour < endHour; }
  constexpr bool isValid() const noexcept { return 0 <= firstHour && firstHour < endHour && endHour <= 24; }
};

// A pair of whole pressures in mmHg.
struct PressurePair {
  std::int64_t systolic = 0;
  std::int64_t diastolic = 0;
  friend constexpr bool operator==(const PressurePair&, const PressurePair&) = default;
};

struct HomeMonitoringOptions {
  HourWindow morning{4, 12};
  HourWindow evening{18, 24};
  // The first day that holds a reading is listed but does not count.
  bool leaveOutFirstDay = true;
  // A home mean at or above either value counts as high (135/85; the 2017 ACC/AHA scale uses 130/80).
  PressurePair threshold{135, 85};
};

enum class TimeOfDay { morning, evening, other };

// The readings of one local calendar day, each group in time order.
struct HomeMonitoringDay {
  CalendarDay day;
  bool leftOut = false;  // the first day, when it is left out
  ReadingList morning;
  ReadingList evening;
  ReadingList other;  // listed, never averaged
};

// One value (systolic, diastolic or pulse) over a set of readings.
struct ValueStatistics {
  double mean = 0;
  // Sample standard deviation (divided by n - 1); nothing for a single reading.
  std::optional<double> standardDeviation;
  // The standard deviation in percent of the mean; nothing without a deviation or with a mean of 0.
  std::optional<double> coefficientOfVariation;
  // Average real variability: the mean absolute difference between successive readings in time order;
  // nothing for a single reading.
  std::optional<double> averageRealVariability;
  std::int64_t lowest = 0;
  std::int64_t highest = 0;
};

// The statistics of a non-empty set of readings.
struct ReadingStatistics {
  std::size_t readings = 0;
  ValueStatistics systolic;
  ValueStatistics diastolic;
  ValueStatistics pulse;
};

struct HomeMonitoringReport {
  HomeMonitoringOptions options;
  // The days that hold at least one reading of the range, in calendar order.
  std::vector<HomeMonitoringDay> days;
  // Days that are not left out and hold a morning or an evening reading; of them, those with both.
  std::size_t countedDays = 0;
  std::size_t completeDays = 0;
  // The morning and evening readings of the days that count, together and apart; nothing when none.
  std::optional<ReadingStatistics> all;
  std::optional<ReadingStatistics> morning;
  std::optional<ReadingStatistics> evening;
  // The mean of `all` rounded to whole mmHg, half away from zero (135.5 gives 136, 135.49 gives 135): the
  // figure printed for people is the one that is classified and compared with the threshold, so a mean
  // printed as "135/85" never reads as below a 135/85 threshold.
  std::optional<PressurePair> roundedMean;
  // BloodPressureAnalyzer's category of roundedMean.
  std::optional<BloodPressureAnalysis> category;
  // Whether roundedMean reaches the threshold in either pressure.
  std::optional<bool> atOrAboveThreshold;

  static constexpr std::size_t minimumCompleteDays = 3;
  // At least three days that count have both a morning and an evening reading. Fewer is a reason to
  // measure longer, not a failure: every figure is still given.
  bool protocolMet() const { return completeDays >= minimumCompleteDays; }
};

struct CARDIOLITH_EXPORT HomeMonitoringAnalyzer {
  // Analyses the readings dated from `from` to `to`, both included (normally the first instant of the
  // first day and the last of the last day), in any order. Readings are grouped by their local day and
  // clock time in Calendar::current(); a reading the calendar cannot place is left out. Options with an
  // invalid window are used as given: a reading can only fall in a valid one. Never fails; may be called
  // from any thread.
  [[nodiscard]] static HomeMonitoringReport analyse(const ReadingList& readings, Date from, Date to,
                                                    const HomeMonitoringOptions& options = {});
  // The group of a local clock hour: morning when both windows hold it, then evening, else other.
  [[nodiscard]] static TimeOfDay timeOfDay(std::int32_t hour, const HomeMonitoringOptions& options);
};

}  // namespace cardiolith
