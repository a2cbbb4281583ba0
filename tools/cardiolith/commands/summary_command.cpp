#include <cardiolith/analysis/readings_summary.hpp>
#include <cardiolith/model/collection.hpp>
#include <cardiolith/platform/date.hpp>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "commands/commands.hpp"
#include "input/date_input.hpp"
#include "input/period_options.hpp"
#include "log/data_folder.hpp"
#include "log/tag_list.hpp"
#include "render/category_text.hpp"
#include "render/log_json.hpp"
#include "render/reading_text.hpp"
#include "render/text_table.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct SummaryOptions {
  PeriodOptions period;
  std::optional<std::int64_t> days;
  bool json = false;
};

constexpr std::int64_t defaultDays = 7;

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

// An average as the summarizer classifies it: truncated toward zero, saturating beyond the int64 range.
std::int64_t classifiedValue(float average) {
  constexpr float twoToThe63 = 0x1p63f;
  if (average >= twoToThe63) return std::numeric_limits<std::int64_t>::max();
  if (average < -twoToThe63) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(average);
}

void printText(const ReadingsSummary& summary, const Period& period, const ComparedCounts& counts) {
  std::cout << period.name << " (" << period.bounds() << "): " << readingCount(counts.current) << "\n";
  if (counts.previousPeriod) {
    std::cout << counts.previousPeriod->name << " (" << counts.previousPeriod->bounds()
              << "): " << readingCount(counts.previous) << "\n";
  }
  std::cout << "\n";
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
  const auto& average = *summary.currentPeriodAverage();
  std::cout << "\nCategory of the average: "
            << categoryWithRule(classifiedValue(average.systolic()), classifiedValue(average.diastolic()))
            << "\n";
}

void runSummary(const SummaryOptions& options, const GlobalOptions& global) {
  const auto dates = DateReader::current();
  Period period = chooseDaysPeriod(options.period, options.days, dates, defaultDays);
  if (!std::isfinite(period.end.timeIntervalSinceReferenceDate())) {
    period.end = dates.now();
    period.name += " to now";
  }
  if (!std::isfinite(period.start.timeIntervalSinceReferenceDate()))
    throw ToolError(
        "--to needs --from here: a summary compares its period with the one before, so it needs a start");
  const DataFolder folder(global);
  const TagList tags(folder);
  ReadingsLog log(folder, ReadingsLog::Access::read);
  // The tag filter applies to both periods; the period's own bounds are applied by the summarizer.
  const Period everything{Date(-std::numeric_limits<double>::infinity()),
                          Date(std::numeric_limits<double>::infinity()), false, ""};
  const auto readings = selectReadings(log.readings(), everything, options.period, tags);
  const auto summary = ReadingsSummarizer::summarise(readings, period.start, period.summaryEnd());
  const ComparedCounts counts = countComparedReadings(readings, period, dates.calendar());

  if (options.json) {
    writeSummaryJson(std::cout, summary, period, counts);
    std::cout << '\n';
    return;
  }
  if (log.readings().empty()) {
    std::cout << "The log is empty, so there is nothing to summarise yet. Add a reading with:\n"
                 "  cardiolith add 128/82 --pulse 71\n";
    return;
  }
  printText(summary, period, counts);
}

}  // namespace

void addSummaryCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<SummaryOptions>();
  auto* command =
      app.add_subcommand("summary", "Average the readings of a period and compare with the period before");
  auto* days =
      command->add_option("--days", options->days, "The last N whole days, today included (default 7)")
          ->check(CLI::Range(1, 100000));
  addPeriodOptions(*command, options->period, days);
  command->add_flag("--json", options->json, "Write JSON for scripts");
  command->callback([options, &global] { runSummary(*options, global); });
}

}  // namespace cardiolith::tool
