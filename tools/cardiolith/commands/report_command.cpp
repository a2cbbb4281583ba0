#include <unistd.h>

#include <cardiolith/analysis/home_monitoring.hpp>
#include <charconv>
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include "commands/commands.hpp"
#include "input/date_input.hpp"
#include "input/period_options.hpp"
#include "input/pressure_input.hpp"
#include "log/data_folder.hpp"
#include "log/output_file.hpp"
#include "render/home_report.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct ReportOptions {
  std::optional<std::string> from;
  std::optional<std::string> to;
  std::string last = "7d";
  std::string format = "text";
  std::optional<std::string> out;
  std::string threshold = "135/85";
  std::string morning = "4-12";
  std::string evening = "18-24";
  bool keepFirstDay = false;
  std::optional<std::string> name;
  bool json = false;
};

// "4-12": the local hours from 04:00 up to 11:59.
HourWindow parseWindow(std::string_view text, std::string_view option) {
  HourWindow window;
  const char* const end = text.data() + text.size();
  const auto first = std::from_chars(text.data(), end, window.firstHour);
  const bool dash = first.ec == std::errc{} && first.ptr != end && *first.ptr == '-';
  const auto last = dash ? std::from_chars(first.ptr + 1, end, window.endHour) : first;
  if (!dash || last.ec != std::errc{} || last.ptr != end || !window.isValid()) {
    throw ToolError(std::string(option) + ": \"" + std::string(text) +
                    "\" is not a span of hours; write the first hour and the hour it ends at, from 0 to 24, "
                    "e.g. \"4-12\" for 04:00 to 11:59");
  }
  return window;
}

HomeMonitoringOptions analysisOptions(const ReportOptions& options) {
  HomeMonitoringOptions analysis;
  analysis.morning = parseWindow(options.morning, "--morning");
  analysis.evening = parseWindow(options.evening, "--evening");
  if (analysis.morning.firstHour < analysis.evening.endHour &&
      analysis.evening.firstHour < analysis.morning.endHour)
    throw ToolError("--morning " + options.morning + " and --evening " + options.evening +
                    " overlap; give each reading one time of day");
  const auto threshold = [&] {
    try {
      return parsePressure(options.threshold, false);
    } catch (const ToolError& error) {
      throw ToolError("--threshold: " + std::string(error.what()));
    }
  }();
  if (threshold.systolic <= 0 || threshold.diastolic <= 0)
    throw ToolError("--threshold: give two positive pressures in mmHg, e.g. 130/80");
  analysis.threshold = {threshold.systolic, threshold.diastolic};
  analysis.leaveOutFirstDay = !options.keepFirstDay;
  return analysis;
}

void write(const ReportOptions& options, const std::string& bytes, const DataFolder& folder) {
  if (options.out) {
    writeOutputFile(*options.out, bytes, folder.ownFiles());
    std::cout << "Wrote the " << options.format << " report to " << *options.out << '\n';
    return;
  }
  if (options.format == "pdf" && ::isatty(STDOUT_FILENO))
    throw ToolError("a PDF is not for the terminal; write it to a file with -o report.pdf");
  std::cout << bytes << std::flush;
}

void runReport(const ReportOptions& options, const GlobalOptions& global) {
  const auto analysisSettings = analysisOptions(options);
  const auto [from, to] = reportDays(options.from, options.to, options.last, DateReader::current());
  const DataFolder folder(global);
  ReadingsLog log(folder, ReadingsLog::Access::read);
  const HomeReportDocument report{HomeMonitoringAnalyzer::analyse(log.readings(), from, to, analysisSettings),
                                  from, to, options.name};
  std::ostringstream text;
  if (options.json) {
    printReportJson(text, report);
  } else if (options.format == "text") {
    printReportText(text, report);
  } else if (options.format == "html") {
    return write(options, reportHtml(report), folder);
  } else {
    return write(options, reportPdf(report), folder);
  }
  write(options, text.str(), folder);
}

}  // namespace

void addReportCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<ReportOptions>();
  auto* command = app.add_subcommand(
      "report",
      "The home-monitoring report for a doctor: morning and evening averages of a week, first day "
      "left out, day by day");
  auto* from = command->add_option("--from", options->from, "First day (YYYY-MM-DD)");
  command->add_option("--to", options->to, "Last day (included); default today")->needs(from);
  command
      ->add_option("--last", options->last,
                   "The last N whole days, today included: \"7d\" (the default) or \"2w\"")
      ->excludes(from);
  command->add_option("--format", options->format, "text (the default), html or pdf")
      ->check(CLI::IsMember({"text", "html", "pdf"}));
  command->add_option("-o,--out", options->out, "Write the report to this file instead of standard output");
  command->add_option("--threshold", options->threshold,
                      "The home threshold, reached by either value (default 135/85; the 2017 ACC/AHA scale "
                      "uses 130/80)");
  command->add_option("--morning", options->morning, "Morning hours, first-end (default 4-12: 04:00-11:59)");
  command->add_option("--evening", options->evening, "Evening hours, first-end (default 18-24: 18:00-23:59)");
  command->add_flag("--keep-first-day", options->keepFirstDay, "Count the first day of measuring as well");
  command->add_option("--name", options->name, "The person's name, for the heading");
  command->add_flag("--json", options->json, "Write every figure as JSON for scripts");
  command->callback([options, &global] { runReport(*options, global); });
}

}  // namespace cardiolith::tool
