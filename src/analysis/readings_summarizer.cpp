#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "cardiolith/analysis/blood_pressure_analysis.hpp"
#include "cardiolith/analysis/readings_summary.hpp"
#include "cardiolith/platform/calendar.hpp"
#include "model/date_bounds.hpp"

namespace cardiolith {
namespace {

// Adds integers in single precision: each value is rounded to the nearest float, then added to a float
// sum, in the order given. Every average of a summary goes through this, so the rounding is the same
// whichever operation computes it.
class SinglePrecisionSum {
 public:
  void add(std::int64_t value) { sum_ += static_cast<float>(value); }
  float mean(std::size_t count) const { return sum_ / static_cast<float>(count); }

 private:
  float sum_ = 0.0f;
};

struct PeriodMeans {
  float systolic;
  float diastolic;
  float pulse;
};

// The three sums of one period's readings, added in list order, as getAverage adds them.
class PeriodSums {
 public:
  void add(const Reading& reading) {
    systolic_.add(reading.systolic());
    diastolic_.add(reading.diastolic());
    pulse_.add(reading.pulse());
    ++count_;
  }

  // Nothing for an empty period.
  std::optional<PeriodMeans> means() const {
    if (count_ == 0) return std::nullopt;
    return PeriodMeans{systolic_.mean(count_), diastolic_.mean(count_), pulse_.mean(count_)};
  }

 private:
  SinglePrecisionSum systolic_, diastolic_, pulse_;
  std::size_t count_ = 0;
};

// ((current - previous) / current) * 100, each step rounded to float. Division by a zero current average
// gives an infinity, or NaN when the previous one is zero too; both are kept as the change.
float percentChange(float current, float previous) { return ((current - previous) / current) * 100.0f; }

// Truncation toward zero to a 64-bit integer, saturating at the ends of the range: an average that lies
// beyond them (readings at the very limits of the 64-bit range) is classified as the nearest
// representable pressure. Averages of integers are never NaN.
std::int64_t truncatedTowardZero(float value) {
  constexpr float twoToThe63 = 0x1p63f;  // exactly representable, one past the largest int64
  if (value >= twoToThe63) return std::numeric_limits<std::int64_t>::max();
  if (value < -twoToThe63) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(value);
}

// D calendar days before startDate, where D is the whole calendar days from startDate to endDate: the
// previous period runs from there to startDate, both included. Nothing when the calendar can't give D or
// the date, and then the previous period is empty; unlike Date::addingDays, there is no falling back to
// startDate itself.
std::optional<Date> previousPeriodStart(Date startDate, Date endDate) {
  const Calendar calendar = Calendar::current();
  const std::optional<std::int64_t> days = calendar.wholeDays(startDate, endDate);
  if (!days || *days == std::numeric_limits<std::int64_t>::min()) return std::nullopt;
  return calendar.dateByAddingDays(-*days, startDate);
}

}  // namespace

ReadingsSummary ReadingsSummarizer::summarise(const ReadingList& readings, Date startDate, Date endDate) {
  ReadingsSummary summary(startDate, endDate);
  // Both periods are what filtered() keeps, summed in one pass in list order: a large log is read from
  // memory once, and no list of a period's readings is built.
  const std::optional<Date> previousStart = previousPeriodStart(startDate, endDate);
  PeriodSums currentSums, previousSums;
  for (const auto& reading : readings) {
    const Date date = reading->date();
    if (detail::keptByPeriod(date, startDate, endDate)) currentSums.add(*reading);
    if (previousStart && detail::keptByPeriod(date, *previousStart, startDate)) previousSums.add(*reading);
  }
  const std::optional<PeriodMeans> current = currentSums.means();
  const std::optional<PeriodMeans> previous = previousSums.means();

  if (current) {
    summary.currentPeriodAverage_ =
        ReadingsSummary::AverageReading(current->systolic, current->diastolic, current->pulse);
    summary.currentPeriodAverageAnalysis_ = BloodPressureAnalyzer::result(
        truncatedTowardZero(current->systolic), truncatedTowardZero(current->diastolic));
  }
  if (previous) {
    summary.previousPreviousAverage_ =
        ReadingsSummary::AverageReading(previous->systolic, previous->diastolic, previous->pulse);
  }
  if (current && previous) {
    summary.systolicChange_ = percentChange(current->systolic, previous->systolic);
    summary.diastolicChange_ = percentChange(current->diastolic, previous->diastolic);
    summary.pulseChange_ = percentChange(current->pulse, previous->pulse);
  }
  return summary;
}

std::optional<float> ReadingsSummarizer::getAverage(Reading::ValueType valueType,
                                                    const ReadingList& readings) {
  if (readings.empty()) return std::nullopt;
  SinglePrecisionSum sum;
  for (const auto& reading : readings) sum.add(reading->value(valueType));
  return sum.mean(readings.size());
}

}  // namespace cardiolith
