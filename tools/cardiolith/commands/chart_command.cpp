#include <cardiolith/analysis/blood_pressure_analysis.hpp>
#include <cardiolith/analysis/readings_summary.hpp>
#include <cardiolith/model/collection.hpp>
#include <cardiolith/platform/date.hpp>
#include <cardiolith/platform/date_formatter.hpp>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "commands/commands.hpp"
#include "log/data_folder.hpp"
#include "log/output_file.hpp"
#include "render/cairo_output.hpp"
#include "render/category_text.hpp"
#include "render/chart.hpp"
#include "render/time_ticks.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct ChartOptions {
  std::int64_t days = 30;
  std::string out;
};

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
  const bool toStandardOutput = options.out == "-";
  const auto format = toStandardOutput ? std::optional{ImageFormat::svg} : imageFormatOf(options.out);
  if (!format) {
    throw ToolError("cannot tell which picture to draw from the name " + options.out +
                    ": end it in .svg, .png or .pdf, or give --out - for SVG on standard output");
  }
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
  request.systolicAverage = mean(selection, &Reading::systolic);
  request.diastolicAverage = mean(selection, &Reading::diastolic);

  const std::string bytes = renderImage(*format, request.width, chartHeight(request),
                                        [&](cairo_t* cairo) { drawChart(cairo, request); });
  if (toStandardOutput) {
    std::cout << bytes << std::flush;
    return;
  }
  writeOutputFile(options.out, bytes, {log.file(), folder.tagsFile(), folder.lockFile()});
  std::cout << "Wrote a chart of " << selection.size() << " readings to " << options.out << '\n';
}

}  // namespace

void addChartCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<ChartOptions>();
  auto* command = app.add_subcommand(
      "chart", "Draw systolic and diastolic pressure over time as an SVG, PNG or PDF picture");
  command->add_option("--days", options->days, "The last N days (default 30)")->check(CLI::Range(1, 100000));
  command
      ->add_option("--out,-o", options->out,
                   "The picture to write, its kind by its name: pressure.svg, pressure.png or pressure.pdf; "
                   "- writes SVG to standard output")
      ->required();
  command->callback([options, &global] { runChart(*options, global); });
}

}  // namespace cardiolith::tool
