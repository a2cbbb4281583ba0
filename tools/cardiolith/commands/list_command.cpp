#include <algorithm>
#include <cardiolith/analysis/blood_pressure_analysis.hpp>
#include <cardiolith/model/reading_lookup.hpp>
#include <cardiolith/platform/date.hpp>
#include <cstdint>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "commands/commands.hpp"
#include "input/date_input.hpp"
#include "input/period_options.hpp"
#include "log/data_folder.hpp"
#include "log/tag_list.hpp"
#include "render/category_text.hpp"
#include "render/log_json.hpp"
#include "render/reading_text.hpp"
#include "render/terminal.hpp"
#include "render/text_table.hpp"

namespace cardiolith::tool {
namespace {

struct ListOptions {
  PeriodOptions period;
  bool reverse = false;
  bool wide = false;
  bool json = false;
};

BloodPressureAnalysis categoryOf(const Reading& reading) {
  return BloodPressureAnalyzer::result(reading.systolic(), reading.diastolic());
}

// A pair outside the table is explained below it, so its cell can stay short enough for the line to fit.
std::string categoryCell(BloodPressureAnalysis category) {
  return category == BloodPressureAnalysis::unreadable ? "No category" : std::string(categoryName(category));
}

// The column has no room to say why a pair has no category, so each such pair is explained once below the
// table, as classify explains it; only the first few, since a long log may hold many.
void explainPairsOutsideTheTable(const ReadingList& readings, std::optional<std::size_t> width) {
  constexpr std::size_t shownPairs = 5;
  std::vector<std::pair<std::int64_t, std::int64_t>> pairs;
  std::set<std::pair<std::int64_t, std::int64_t>> seen;
  for (const auto& reading : readings) {
    const std::pair pair{reading->systolic(), reading->diastolic()};
    if (categoryOf(*reading) == BloodPressureAnalysis::unreadable && seen.insert(pair).second)
      pairs.push_back(pair);
  }
  if (pairs.empty()) return;
  std::cout << '\n';
  for (std::size_t i = 0; i < std::min(pairs.size(), shownPairs); ++i) {
    const auto [systolic, diastolic] = pairs[i];
    std::cout << wordWrapped(std::to_string(systolic) + "/" + std::to_string(diastolic) +
                                 " mmHg: " + categoryWithRule(systolic, diastolic),
                             width)
              << '\n';
  }
  if (pairs.size() > shownPairs) {
    std::cout << wordWrapped(
                     "and " + std::to_string(pairs.size() - shownPairs) +
                         " more pairs outside the table; cardiolith classify SYS/DIA explains any pair",
                     width)
              << '\n';
  }
}

// One row per reading; on a terminal, shortened to its width (unless --wide) and with coloured categories.
void printTable(const ReadingList& readings, const ReadingList& log, const TagList& tags,
                const ListOptions& options, const GlobalOptions& global) {
  using Align = TextTable::Align;
  const auto ids = shortestUniqueIdPrefixes(log);
  std::unordered_map<const Reading*, std::string> shortIds;
  for (std::size_t i = 0; i < log.size(); ++i) shortIds.emplace(log[i].get(), ids[i]);
  TextTable table({{"Id"},
                   {"Date"},
                   {"Sys", Align::right},
                   {"Dia", Align::right},
                   {"Pulse", Align::right},
                   {"Category"},
                   {"Tags"},
                   {"Notes"}});
  for (const auto& reading : readings) {
    table.addRow({shortIds.at(reading.get()), displayDateFormatter().string(reading->date()),
                  std::to_string(reading->systolic()), std::to_string(reading->diastolic()),
                  std::to_string(reading->pulse()), categoryCell(categoryOf(*reading)),
                  singleLine(joined(tags.titles(reading->tagIDs()), ", ")),
                  singleLine(reading->notes().value_or(""))});
  }
  constexpr std::size_t categoryColumn = 5;
  const TerminalStyle style = standardOutputStyle(global.color);
  TextTable::PrintOptions print;
  if (!options.wide) print.width = style.width;
  print.decorate = [&](std::size_t row, std::size_t column, const std::string& padded) {
    return column == categoryColumn ? colored(padded, categoryOf(*readings[row]), style.color) : padded;
  };
  table.print(std::cout, print);
  explainPairsOutsideTheTable(readings, print.width);
}

void runList(const ListOptions& options, const GlobalOptions& global) {
  const Period period = choosePeriod(options.period, DateReader::current(), std::nullopt);
  const DataFolder folder(global);
  const TagList tags(folder);
  ReadingsLog log(folder, ReadingsLog::Access::read);
  auto selection = selectReadings(log.readings(), period, options.period, tags);
  std::stable_sort(selection.begin(), selection.end(), [&](const auto& a, const auto& b) {
    return options.reverse ? a->date() < b->date() : a->date() > b->date();
  });

  if (options.json) {
    writeReadingsJson(std::cout, selection, tags);
    std::cout << '\n';
    return;
  }
  if (log.readings().empty()) {
    std::cout << "The log is empty. Add a reading with:\n  cardiolith add 128/82 --pulse 71\n";
  } else if (selection.empty()) {
    std::cout << "No readings match; the log holds " << log.readings().size()
              << " in all (cardiolith list shows every one).\n";
  } else {
    printTable(selection, log.readings(), tags, options, global);
  }
}

}  // namespace

void addListCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<ListOptions>();
  auto* command = app.add_subcommand("list", "Show the readings with their ids, newest first");
  addPeriodOptions(*command, options->period);
  command->add_flag("--reverse,-r", options->reverse, "Oldest first");
  command->add_flag("--wide", options->wide,
                    "Show whole notes, even where lines get longer than the terminal");
  command->add_flag("--json", options->json, "Write JSON for scripts instead of a table");
  command->callback([options, &global] { runList(*options, global); });
}

}  // namespace cardiolith::tool
