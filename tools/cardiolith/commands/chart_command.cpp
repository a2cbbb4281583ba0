#include <cardiolith/model/collection.hpp>
#include <cardiolith/platform/date.hpp>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "commands/commands.hpp"
#include "log/data_folder.hpp"
#include "log/output_file.hpp"
#include "render/cairo_output.hpp"
#include "render/period_chart.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct ChartOptions {
  std::int64_t days = 30;
  std::string out;
};

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

  const ChartRequest request = periodChart(selection, start, end, options.days);
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
