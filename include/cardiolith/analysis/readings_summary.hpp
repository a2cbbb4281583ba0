#pragma once

#include <optional>

#include "cardiolith/analysis/blood_pressure_analysis.hpp"
#include "cardiolith/export.hpp"
#include "cardiolith/model/reading.hpp"

namespace cardiolith {

struct ReadingsSummarizer;

// The averages of a current period against the period of equal whole-day length before it. Read-only:
// summaries come only from ReadingsSummarizer::summarise and placeHolder().
class CARDIOLITH_EXPORT ReadingsSummary {
 public:
  // Single-precision means of one period, taken over the same readings.
  class AverageReading {
   public:
    float systolic() const { return systolic_; }
    float diastolic() const { return diastolic_; }
    float pulse() const { return pulse_; }

   private:
    friend struct ReadingsSummarizer;
    AverageReading(float systolic, float diastolic, float pulse)
        : systolic_(systolic), diastolic_(diastolic), pulse_(pulse) {}
    float systolic_;
    float diastolic_;
    float pulse_;
  };

  const std::optional<AverageReading>& currentPeriodAverage() const { return currentPeriodAverage_; }
  const std::optional<AverageReading>& previousPreviousAverage() const { return previousPreviousAverage_; }
  // ((current - previous) / current) * 100, present when both averages are.
  std::optional<float> systolicChange() const { return systolicChange_; }
  std::optional<float> diastolicChange() const { return diastolicChange_; }
  std::optional<float> pulseChange() const { return pulseChange_; }
  // The category of the current averages truncated toward zero; present exactly when they are.
  [[nodiscard]] std::optional<BloodPressureAnalysis> currentPeriodAverageAnalysis() const {
    return currentPeriodAverageAnalysis_;
  }
  Date currentPeriodStartDate() const { return currentPeriodStartDate_; }
  Date currentPeriodEndDate() const { return currentPeriodEndDate_; }

  // A copy of the process-wide sample summary, built once from 15 generated readings on first use.
  [[nodiscard]] static ReadingsSummary placeHolder();

 private:
  friend struct ReadingsSummarizer;
  ReadingsSummary(Date start, Date end) : currentPeriodStartDate_(start), currentPeriodEndDate_(end) {}

  std::optional<AverageReading> currentPeriodAverage_;
  std::optional<AverageReading> previousPreviousAverage_;
  std::optional<float> systolicChange_;
  std::optional<float> diastolicChange_;
  std::optional<float> pulseChange_;
  std::optional<BloodPressureAnalysis> currentPeriodAverageAnalysis_;
  Date currentPeriodStartDate_;
  Date currentPeriodEndDate_;
};

struct CARDIOLITH_EXPORT ReadingsSummarizer {
  // Current period: the readings from startDate to endDate, both included. Previous period: from D
  // calendar days before startDate up to startDate, both included, where D is the whole days from
  // startDate to endDate in Calendar::current(). Sums, means and changes are computed in single precision,
  // in array order. The category is that of the current means truncated toward zero; a mean outside the
  // int64 range (2^63 or more, or below -2^63: only readings near the ends of that range give one)
  // saturates to INT64_MAX or INT64_MIN, so it still yields a category.
  [[nodiscard]] static ReadingsSummary summarise(const ReadingList& readings, Date startDate, Date endDate);
  // The single-precision mean of one field, accumulated in array order; nothing for no readings.
  [[nodiscard]] static std::optional<float> getAverage(Reading::ValueType valueType,
                                                       const ReadingList& readings);
};

}  // namespace cardiolith
