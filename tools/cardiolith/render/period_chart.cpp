#include "render/period_chart.hpp"

#include <cardiolith/analysis/blood_pressure_analysis.hpp>
#include <cardiolith/analysis/readings_summary.hpp>
#include <cardiolith/platform/date_formatter.hpp>
#include <cctype>
#include <cstdio>
#include <string>

#include "render/category_text.hpp"
#include "render/time_ticks.hpp"

namespace cardiolith::tool {
namespace {

std::string subtitle(const ReadingList& readings, Date start, Date end) {
  const DateFormatter day("d MMM yyyy");
  std::string text = day.string(start) + " \u2013 " + day.string(end) + " \u00b7 " +
                     std::to_string(readings.size()) + (readings.size() == 1 ? " reading" : " readings");
  const auto systolic = ReadingsSummarizer::getAverage(Reading::ValueType::systolic, readings);
  const auto diastolic = ReadingsSummarizer::getAverage(Reading::ValueType::diastolic, readings);
  if (systolic && diastolic) {
    char average[64];
    std::snprintf(average, sizeof average, "%.1f/%.1f", static_cast<double>(*systolic),
                  static_cast<double>(*diastolic));
    // Classified like a summary's average: each pressure truncated toward zero.
    const auto category = BloodPressureAnalyzer::result(static_cast<std::int64_t>(*systolic),
                                                        static_cast<std::int64_t>(*diastolic));
    text += " \u00b7 average " + std::string(average) + " mmHg, " + std::string(categoryName(category));
  }
  return text;
}

// The mean of one pressure over the readings, for the dashed line of its panel.
double mean(const ReadingList& readings, std::int64_t (Reading::*field)() const) {
  double sum = 0;
  for (const auto& reading : readings) sum += static_cast<double>(((*reading).*field)());
  return sum / static_cast<double>(readings.size());
}

}  // namespace

ChartRequest periodChart(const ReadingList& selection, const Period& period, std::int64_t days) {
  const Date start = period.start, end = period.end;
  ChartRequest request;
  // "last 30 days", or the dates that --from and --to named ("mon", "yesterday") as they resolved.
  std::string name = period.name.starts_with("Last") ? period.name : period.bounds();
  name[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[0])));
  request.title = "Blood pressure, " + name;
  request.subtitle = subtitle(selection, start, end);
  request.start = start;
  request.end = end;
  request.ticks = timeTicks(start, end, days);
  for (const auto& reading : selection)
    request.points.push_back({reading->date(), reading->systolic(), reading->diastolic()});
  request.systolicAverage = mean(selection, &Reading::systolic);
  request.diastolicAverage = mean(selection, &Reading::diastolic);
  return request;
}

}  // namespace cardiolith::tool
