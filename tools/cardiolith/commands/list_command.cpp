#include <algorithm>
#include <cardiolith/analysis/blood_pressure_analysis.hpp>
#include <cardiolith/model/collection.hpp>
#include <cardiolith/platform/date.hpp>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "commands/commands.hpp"
#include "input/date_input.hpp"
#include "log/data_folder.hpp"
#include "log/tag_list.hpp"
#include "render/category_text.hpp"
#include "render/json_writer.hpp"
#include "render/reading_text.hpp"
#include "render/terminal.hpp"
#include "render/text_table.hpp"

namespace cardiolith::tool {
namespace {

struct ListOptions {
  std::optional<std::string> from;
  std::optional<std::string> to;
  std::optional<std::string> last;
  bool json = false;
  bool wide = false;
};

struct DateRange {
  Date from{-std::numeric_limits<double>::infinity()};
  Date to{std::numeric_limits<double>::infinity()};
};

DateRange chosenRange(const ListOptions& options) {
  DateRange range;
  if (options.last) range.from = Date::now().addingDays(-parseSpanDays(*options.last, "--last"));
  if (options.from) range.from = parseDateTime(*options.from, "--from");
  if (options.to) range.to = parseRangeEnd(*options.to, "--to");
  requireOrdered(range.from, range.to);
  return range;
}

BloodPressureAnalysis categoryOf(const Reading& reading) {
  return BloodPressureAnalyzer::result(reading.systolic(), reading.diastolic());
}

void printJson(const ReadingList& readings, const TagList& tags) {
  JsonWriter json(std::cout);
  json.beginObject().key("readings").beginArray();
  for (const auto& reading : readings) {
    json.beginObject();
    json.key("id").string(reading->id());
    json.key("date").string(isoDateFormatter().string(reading->date()));
    json.key("systolic").integer(reading->systolic());
    json.key("diastolic").integer(reading->diastolic());
    json.key("pulse").integer(reading->pulse());
    json.key("category").string(categoryKey(categoryOf(*reading)));
    json.key("tags").beginArray();
    for (const auto& title : tags.titles(reading->tagIDs())) json.string(title);
    json.endArray();
    json.key("notes").stringOrNull(reading->notes());
    json.endObject();
  }
  json.endArray().endObject();
  std::cout << '\n';
}

// One row per reading; on a terminal, shortened to its width (unless --wide) and with coloured categories.
void printTable(const ReadingList& readings, const TagList& tags, const ListOptions& options,
                const GlobalOptions& global) {
  using Align = TextTable::Align;
  TextTable table({{"Date"},
                   {"Sys", Align::right},
                   {"Dia", Align::right},
                   {"Pulse", Align::right},
                   {"Category"},
                   {"Tags"},
                   {"Notes"}});
  for (const auto& reading : readings) {
    table.addRow({displayDateFormatter().string(reading->date()), std::to_string(reading->systolic()),
                  std::to_string(reading->diastolic()), std::to_string(reading->pulse()),
                  std::string(categoryName(categoryOf(*reading))),
                  singleLine(joined(tags.titles(reading->tagIDs()), ", ")),
                  singleLine(reading->notes().value_or(""))});
  }
  constexpr std::size_t categoryColumn = 4;
  const TerminalStyle style = standardOutputStyle(global.color);
  TextTable::PrintOptions print;
  if (!options.wide) print.width = style.width;
  print.decorate = [&](std::size_t row, std::size_t column, const std::string& padded) {
    return column == categoryColumn ? colored(padded, categoryOf(*readings[row]), style.color) : padded;
  };
  table.print(std::cout, print);
}

void runList(const ListOptions& options, const GlobalOptions& global) {
  const DateRange range = chosenRange(options);
  const DataFolder folder(global);
  const TagList tags(folder);
  ReadingsLog log(folder, ReadingsLog::Access::read);
  auto selection = filtered(log.readings(), range.from, range.to);
  std::stable_sort(selection.begin(), selection.end(),
                   [](const auto& a, const auto& b) { return a->date() > b->date(); });

  if (options.json) return printJson(selection, tags);
  if (log.readings().empty()) {
    std::cout << "The log is empty. Add a reading with:\n  cardiolith add 128/82 --pulse 71\n";
  } else if (selection.empty()) {
    std::cout << "No readings in that range; the log holds " << log.readings().size()
              << " in all (cardiolith list shows every one).\n";
  } else {
    printTable(selection, tags, options, global);
  }
}

}  // namespace

void addListCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<ListOptions>();
  auto* command = app.add_subcommand("list", "Show the readings, newest first");
  auto* from =
      command->add_option("--from", options->from, "First day (YYYY-MM-DD) or minute (\"YYYY-MM-DD HH:MM\")");
  auto* to = command->add_option("--to", options->to, "Last day (included) or minute");
  command->add_option("--last", options->last, "Only the last days or weeks: 7d, 2w")
      ->excludes(from)
      ->excludes(to);
  command->add_flag("--json", options->json, "Write JSON for scripts instead of a table");
  command->add_flag("--wide", options->wide,
                    "Show whole notes, even where lines get longer than the terminal");
  command->callback([options, &global] { runList(*options, global); });
}

}  // namespace cardiolith::tool
