#include <cardiolith/analysis/blood_pressure_analysis.hpp>
#include <cardiolith/analysis/readings_summary.hpp>
#include <cardiolith/model/collection.hpp>
#include <cardiolith/platform/date.hpp>
#include <cardiolith/platform/date_formatter.hpp>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <limits>
#include <memory>
#include <string>

#include "commands/commands.hpp"
#include "log/data_folder.hpp"
#include "log/output_file.hpp"
#include "render/category_text.hpp"
#include "render/svg_chart.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct ChartOptions {
  std::int64_t days = 30;
  std::string out;
};

std::tm localParts(Date date) {
  const auto seconds = static_cast<std::time_t>(std::floor(date.timeIntervalSince1970()));
  std::tm parts{};
  localtime_r(&seconds, &parts);
  return parts;
}

// The local midnight of the given day; mktime carries day and month overflow into the next month or year.
Date localMidnight(std::tm parts) {
  parts.tm_hour = parts.tm_min = parts.tm_sec = 0;
  parts.tm_isdst = -1;
  return Date::fromTimeIntervalSince1970(static_cast<double>(std::mktime(&parts)));
}

// The smallest of the steps (days, or months for long periods) that puts at most ten marks under the chart.
template <std::size_t size>
int spacingFor(double count, const int (&steps)[size]) {
  for (const int step : steps) {
    if (count / step <= 10) return step;
  }
  return steps[size - 1];
}

// Marks at local midnights: every day or few days for short periods, on the first of every month or few
// months for long ones.
std::vector<TimeTick> timeTicks(Date start, Date end, std::int64_t days) {
  static constexpr int daySteps[] = {1, 2, 3, 7, 14};
  static constexpr int monthSteps[] = {1, 2, 3, 6, 12, 24, 60, 120, 240, 600, 1200};
  const bool monthly = days > 140;
  const int step = monthly ? spacingFor(static_cast<double>(days) / 30.4, monthSteps)
                           : spacingFor(static_cast<double>(days), daySteps);
  const DateFormatter label(monthly ? "MMM yyyy" : "d MMM");
  std::tm first = localParts(start);
  if (monthly) first.tm_mday = 1;
  std::vector<TimeTick> ticks;
  Date previous{-std::numeric_limits<double>::infinity()};
  for (int index = 0;; ++index) {
    std::tm parts = first;
    (monthly ? parts.tm_mon : parts.tm_mday) += index * step;
    const Date tick = localMidnight(parts);
    if (tick > end || !(tick > previous)) break;  // past the end, or beyond what mktime can represent
    if (tick >= start) ticks.push_back({tick, label.string(tick)});
    previous = tick;
  }
  return ticks;
}

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

void runChart(const ChartOptions& options, const GlobalOptions& global) {
  const DataFolder folder(global);
  ReadingsLog log(folder, ReadingsLog::Access::read);
  const Date end = Date::now();
  const Date start = end.addingDays(-options.days);
  const auto selection = filtered(log.readings(), start, end);
  if (selection.empty()) {
    throw ToolError("no readings in the last " + std::to_string(options.days) +
                    " days, so there is nothing to chart; try a longer period with --days");
  }

  ChartRequest request;
  request.title =
      "Blood pressure, last " + std::to_string(options.days) + (options.days == 1 ? " day" : " days");
  request.subtitle = subtitle(selection, start, end);
  request.start = start;
  request.end = end;
  request.ticks = timeTicks(start, end, options.days);
  for (const auto& reading : selection)
    request.points.push_back({reading->date(), reading->systolic(), reading->diastolic()});

  writeOutputFile(options.out, renderChart(request), folder.ownFiles());
  std::cout << "Wrote a chart of " << selection.size() << " readings to " << options.out << '\n';
}

}  // namespace

void addChartCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<ChartOptions>();
  auto* command =
      app.add_subcommand("chart", "Draw systolic and diastolic pressure over time as an SVG picture");
  command->add_option("--days", options->days, "The last N days (default 30)")->check(CLI::Range(1, 100000));
  command->add_option("--out,-o", options->out, "The SVG file to write, e.g. pressure.svg")->required();
  command->callback([options, &global] { runChart(*options, global); });
}

}  // namespace cardiolith::tool
