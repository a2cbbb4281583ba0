#include <algorithm>
#include <cardiolith/model/collection.hpp>
#include <cardiolith/platform/date.hpp>
#include <cmath>
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
#include "render/period_chart.hpp"
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct ChartOptions {
  std::optional<std::int64_t> days;
  PeriodOptions period;
  std::string out;
};

constexpr std::int64_t defaultDays = 30;

void runChart(const ChartOptions& options, const GlobalOptions& global) {
  const auto dates = DateReader::current();
  Period period = chooseDaysPeriod(options.period, options.days, dates, defaultDays);
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
  const auto days = dates.calendar().wholeDays(period.start, period.summaryEnd()).value_or(1);

  const ChartRequest request = periodChart(selection, period, days);
  const std::string bytes = renderImage(*format, request.width, chartHeight(request),
                                        [&](cairo_t* cairo) { drawChart(cairo, request); });
  if (toStandardOutput) {
    std::cout << bytes << std::flush;
    return;
  }
  writeOutputFile(options.out, bytes, folder.ownFiles());
  std::cout << "Wrote a chart of " << readingCount(selection.size()) << " to " << options.out << '\n';
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
