#include <algorithm>
#include <cardiolith/analysis/blood_pressure_analysis.hpp>
#include <cardiolith/analysis/readings_summary.hpp>
#include <cardiolith/model/collection.hpp>
#include <cardiolith/platform/date.hpp>
#include <cardiolith/platform/date_formatter.hpp>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "commands/commands.hpp"
#include "input/period_options.hpp"
#include "log/data_folder.hpp"
#include "log/output_file.hpp"
#include "log/tag_list.hpp"
#include "render/cairo_output.hpp"
#include "render/category_text.hpp"
#include "render/chart.hpp"
#include "render/time_ticks.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct ChartOptions {
  std::optional<std::int64_t> days;
  PeriodOptions period;
  std::string out;
};

constexpr std::int64_t defaultDays = 30;

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

void runChart(const ChartOptions& options, const GlobalOptions& global) {
  const auto dates = DateReader::current();
  PeriodOptions choice = options.period;
  if (options.days) choice.last = std::to_string(*options.days);
  Period period = choosePeriod(choice, dates, defaultDays);
  const bool toStandardOutput = options.out == "-";
  const auto format = toStandardOutput ? std::optional{ImageFormat::svg} : imageFormatOf(options.out);
  if (!format) {
    throw ToolError("cannot tell which picture to draw from the name " + options.out +
                    ": end it in .svg, .png or .pdf, or give --out - for SVG on standard output");
  }
  const DataFolder folder(global);
  const TagList tags(folder);
  ReadingsLog log(folder, ReadingsLog::Access::read);
  const auto selection = selectReadings(log.readings(), period, options.period, tags);
  if (selection.empty()) {
    throw ToolError("no readings in that period (" + period.bounds() +
                    "), so there is nothing to chart; try a longer one with --days or --from");
  }
  // An open end closes the chart now, an open start at the first reading.
  if (!std::isfinite(period.end.timeIntervalSinceReferenceDate())) period.end = dates.now();
  if (!std::isfinite(period.start.timeIntervalSinceReferenceDate())) {
    period.start = (*std::min_element(selection.begin(), selection.end(), [](const auto& a, const auto& b) {
                     return a->date() < b->date();
                   }))->date();
  }
  const Date start = period.start, end = period.end;
  const auto days = dates.calendar().wholeDays(start, period.summaryEnd()).value_or(1);

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

  const std::string bytes = renderImage(*format, request.width, chartHeight(request),
                                        [&](cairo_t* cairo) { drawChart(cairo, request); });
  if (toStandardOutput) {
    std::cout << bytes << std::flush;
    return;
  }
  writeOutputFile(options.out, bytes, folder.ownFiles());
  std::cout << "Wrote a chart of " << selection.size() << " readings to " << options.out << '\n';
}

}  // namespace

void addChartCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<ChartOptions>();
  auto* command = app.add_subcommand(
      "chart", "Draw systolic and diastolic pressure over time as an SVG, PNG or PDF picture");
  auto* days =
      command->add_option("--days", options->days, "The last N whole days, today included (default 30)")
          ->check(CLI::Range(1, 100000));
  addPeriodOptions(*command, options->period, days);
  command
      ->add_option("--out,-o", options->out,
                   "The picture to write, its kind by its name: pressure.svg, pressure.png or pressure.pdf; "
                   "- writes SVG to standard output")
      ->required();
  command->callback([options, &global] { runChart(*options, global); });
}

}  // namespace cardiolith::tool
