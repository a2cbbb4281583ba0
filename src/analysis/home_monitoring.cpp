#include "cardiolith/analysis/home_monitoring.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "cardiolith/model/collection.hpp"

namespace cardiolith {
namespace {

struct PlacedReading {
  LocalTime local;
  std::shared_ptr<Reading> reading;
};

// Statistics of one field over readings in time order (never empty), in double precision: a week holds a
// few dozen readings, and the variability figures need more than single precision's digits.
ValueStatistics valueStatistics(const ReadingList& readings, std::int64_t (Reading::*field)() const) {
  ValueStatistics result;
  const auto count = static_cast<double>(readings.size());
  double sum = 0;
  double successiveDifferences = 0;
  result.lowest = std::numeric_limits<std::int64_t>::max();
  result.highest = std::numeric_limits<std::int64_t>::min();
  for (std::size_t index = 0; index < readings.size(); ++index) {
    const std::int64_t value = ((*readings[index]).*field)();
    sum += static_cast<double>(value);
    result.lowest = std::min(result.lowest, value);
    result.highest = std::max(result.highest, value);
    if (index > 0) {
      successiveDifferences +=
          std::fabs(static_cast<double>(value) - static_cast<double>(((*readings[index - 1]).*field)()));
    }
  }
  result.mean = sum / count;
  if (readings.size() < 2) return result;
  double squares = 0;
  for (const auto& reading : readings) {
    const double deviation = static_cast<double>(((*reading).*field)()) - result.mean;
    squares += deviation * deviation;
  }
  result.standardDeviation = std::sqrt(squares / (count - 1));
  if (result.mean != 0)
    result.coefficientOfVariation = *result.standardDeviation / std::fabs(result.mean) * 100;
  result.averageRealVariability = successiveDifferences / (count - 1);
  return result;
}

std::optional<ReadingStatistics> statistics(const ReadingList& readings) {
  if (readings.empty()) return std::nullopt;
  return ReadingStatistics{readings.size(), valueStatistics(readings, &Reading::systolic),
                           valueStatistics(readings, &Reading::diastolic),
                           valueStatistics(readings, &Reading::pulse)};
}

// Half away from zero, saturating at the ends of the int64 range.
std::int64_t roundedToWhole(double value) {
  const double rounded = std::round(value);
  if (rounded >= 0x1p63) return std::numeric_limits<std::int64_t>::max();
  if (rounded < -0x1p63) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(rounded);
}

bool earlier(const std::shared_ptr<Reading>& a, const std::shared_ptr<Reading>& b) {
  return a->date() < b->date();
}

}  // namespace

TimeOfDay HomeMonitoringAnalyzer::timeOfDay(std::int32_t hour, const HomeMonitoringOptions& options) {
  if (options.morning.contains(hour)) return TimeOfDay::morning;
  if (options.evening.contains(hour)) return TimeOfDay::evening;
  return TimeOfDay::other;
}

HomeMonitoringReport HomeMonitoringAnalyzer::analyse(const ReadingList& readings, Date from, Date to,
                                                     const HomeMonitoringOptions& options) {
  HomeMonitoringReport report;
  report.options = options;

  const Calendar calendar = Calendar::current();
  std::vector<PlacedReading> placed;
  for (auto& reading : filtered(readings, from, to)) {
    if (const auto local = calendar.localTime(reading->date()))
      placed.push_back({*local, std::move(reading)});
  }
  std::stable_sort(placed.begin(), placed.end(), [](const PlacedReading& a, const PlacedReading& b) {
    return earlier(a.reading, b.reading);
  });

  for (auto& [local, reading] : placed) {
    if (report.days.empty() || report.days.back().day != local.day) {
      const bool first = report.days.empty();
      report.days.push_back({local.day, first && options.leaveOutFirstDay, {}, {}, {}});
    }
    auto& day = report.days.back();
    switch (timeOfDay(local.hour, options)) {
      case TimeOfDay::morning:
        day.morning.push_back(std::move(reading));
        break;
      case TimeOfDay::evening:
        day.evening.push_back(std::move(reading));
        break;
      case TimeOfDay::other:
        day.other.push_back(std::move(reading));
        break;
    }
  }

  ReadingList all, morning, evening;
  for (const auto& day : report.days) {
    if (day.leftOut || (day.morning.empty() && day.evening.empty())) continue;
    ++report.countedDays;
    if (!day.morning.empty() && !day.evening.empty()) ++report.completeDays;
    morning.insert(morning.end(), day.morning.begin(), day.morning.end());
    evening.insert(evening.end(), day.evening.begin(), day.evening.end());
    all.insert(all.end(), day.morning.begin(), day.morning.end());
    all.insert(all.end(), day.evening.begin(), day.evening.end());
  }
  // Within a day mornings come before evenings whatever the windows, so put `all` back into time order
  // for the successive differences.
  std::stable_sort(all.begin(), all.end(), earlier);

  report.all = statistics(all);
  report.morning = statistics(morning);
  report.evening = statistics(evening);
  if (report.all) {
    const PressurePair mean{roundedToWhole(report.all->systolic.mean),
                            roundedToWhole(report.all->diastolic.mean)};
    report.roundedMean = mean;
    report.category = BloodPressureAnalyzer::result(mean.systolic, mean.diastolic);
    report.atOrAboveThreshold =
        mean.systolic >= options.threshold.systolic || mean.diastolic >= options.threshold.diastolic;
  }
  return report;
}

}  // namespace cardiolith
