#include <cardiolith/analysis/readings_summary.hpp>
#include <cardiolith/model/collection.hpp>
#include <cardiolith/platform/date.hpp>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "commands/commands.hpp"
#include "input/date_input.hpp"
#include "log/data_folder.hpp"
#include "render/category_text.hpp"
#include "render/json_writer.hpp"
#include "render/reading_text.hpp"
#include "render/text_table.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct SummaryOptions {
  std::int64_t days = 7;
  std::optional<std::string> from;
  std::optional<std::string> to;
  bool json = false;
};

struct Period {
  Date start;
  Date end;
  std::string name;
};

Period chosenPeriod(const SummaryOptions& options) {
  const Date now = Date::now();
  if (options.from) {
    const Date start = parseDateTime(*options.from, "--from");
    const Date end = options.to ? parseRangeEnd(*options.to, "--to") : now;
    // Without --to the period ends now, so the fault is the start's, and the message must say so.
    if (!options.to && start > now) {
      throw ToolError("--from: " + *options.from +
                      " is in the future, and the period runs from it to now; give a day before today, e.g. "
                      "--from " +
                      displayDateFormatter().string(now.addingDays(-30)).substr(0, 10));
    }
    requireOrdered(start, end);
    return {start, end, "From " + *options.from + " to " + options.to.value_or("now")};
  }
  return {now.addingDays(-options.days), now,
          "Last " + std::to_string(options.days) + (options.days == 1 ? " day" : " days")};
}

std::string formatted(const char* format, double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, format, value);
  return buffer;
}

std::string averageCell(const std::optional<ReadingsSummary::AverageReading>& average,
                        float (ReadingsSummary::AverageReading::*field)() const) {
  return average ? formatted("%.1f", static_cast<double>(((*average).*field)())) : "-";
}

// "↑ +3.4%": the arrow says which way the average went, the number by how much.
std::string changeCell(std::optional<float> change) {
  if (!change) return "-";
  const double value = *change;
  if (std::isnan(value)) return "n/a";
  const char* arrow = value > 0 ? "\u2191 " : value < 0 ? "\u2193 " : "\u2192 ";
  return arrow + formatted("%+.1f%%", value);
}

void printJson(const ReadingsSummary& summary, const Period& period, std::size_t readingCount) {
  JsonWriter json(std::cout);
  const auto writeAverage = [&](const std::optional<ReadingsSummary::AverageReading>& average) {
    if (!average) {
      json.null();
      return;
    }
    json.beginObject();
    json.key("systolic").number(average->systolic());
    json.key("diastolic").number(average->diastolic());
    json.key("pulse").number(average->pulse());
    json.endObject();
  };
  json.beginObject();
  json.key("start").string(isoDateFormatter().string(period.start));
  json.key("end").string(isoDateFormatter().string(period.end));
  json.key("readings").integer(static_cast<std::int64_t>(readingCount));
  json.key("current");
  writeAverage(summary.currentPeriodAverage());
  json.key("previous");
  writeAverage(summary.previousPreviousAverage());
  json.key("change").beginObject();
  json.key("systolic").numberOrNull(summary.systolicChange());
  json.key("diastolic").numberOrNull(summary.diastolicChange());
  json.key("pulse").numberOrNull(summary.pulseChange());
  json.endObject();
  const auto category = summary.currentPeriodAverageAnalysis();
  if (category) {
    json.key("category").string(categoryKey(*category));
  } else {
    json.key("category").null();
  }
  json.endObject();
  std::cout << '\n';
}

void printText(const ReadingsSummary& summary, const Period& period, std::size_t readingCount) {
  std::cout << period.name << " (" << displayDateFormatter().string(period.start) << " to "
            << displayDateFormatter().string(period.end) << "): " << readingCount
            << (readingCount == 1 ? " reading" : " readings") << "\n\n";
  if (!summary.currentPeriodAverage()) {
    std::cout << "No readings in this period. Choose a longer one with --days, or see them all with: "
                 "cardiolith list\n";
    return;
  }
  using Average = ReadingsSummary::AverageReading;
  using Align = TextTable::Align;
  TextTable table(
      {{"Average"}, {"Systolic", Align::right}, {"Diastolic", Align::right}, {"Pulse", Align::right}});
  const auto addAverageRow = [&](std::string name, const std::optional<Average>& average) {
    table.addRow({std::move(name), averageCell(average, &Average::systolic),
                  averageCell(average, &Average::diastolic), averageCell(average, &Average::pulse)});
  };
  addAverageRow("This period", summary.currentPeriodAverage());
  addAverageRow("Period before", summary.previousPreviousAverage());
  table.addRow({"Change", changeCell(summary.systolicChange()), changeCell(summary.diastolicChange()),
                changeCell(summary.pulseChange())});
  table.print(std::cout);
  if (!summary.previousPreviousAverage()) std::cout << "(no readings in the period before, so no change)\n";
  const auto category = *summary.currentPeriodAverageAnalysis();
  std::cout << "\nCategory of the average: " << categoryName(category) << " (" << categoryRule(category)
            << ")\n";
}

void runSummary(const SummaryOptions& options, const GlobalOptions& global) {
  const Period period = chosenPeriod(options);
  const DataFolder folder(global);
  ReadingsLog log(folder, ReadingsLog::Access::read);
  const auto& readings = log.readings();
  const auto summary = ReadingsSummarizer::summarise(readings, period.start, period.end);
  const std::size_t readingCount = filtered(readings, period.start, period.end).size();

  if (options.json) return printJson(summary, period, readingCount);
  if (readings.empty()) {
    std::cout << "The log is empty, so there is nothing to summarise yet. Add a reading with:\n"
                 "  cardiolith add 128/82 --pulse 71\n";
    return;
  }
  printText(summary, period, readingCount);
}

}  // namespace

void addSummaryCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<SummaryOptions>();
  auto* command =
      app.add_subcommand("summary", "Average the readings of a period and compare with the period before");
  auto* days = command->add_option("--days", options->days, "The last N days (default 7)")
                   ->check(CLI::Range(1, 100000));
  auto* from =
      command->add_option("--from", options->from, "Start day (YYYY-MM-DD) or minute")->excludes(days);
  command->add_option("--to", options->to, "Last day (included) or minute; default now")->needs(from);
  command->add_flag("--json", options->json, "Write JSON for scripts");
  command->callback([options, &global] { runSummary(*options, global); });
}

}  // namespace cardiolith::tool
