#include <algorithm>
#include <cardiolith/analysis/blood_pressure_analysis.hpp>
#include <cardiolith/model/collection.hpp>
#include <cardiolith/platform/date.hpp>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "commands/commands.hpp"
#include "input/period_input.hpp"
#include "log/data_folder.hpp"
#include "log/tag_list.hpp"
#include "render/category_text.hpp"
#include "render/json_writer.hpp"
#include "render/reading_text.hpp"
#include "render/text_table.hpp"

namespace cardiolith::tool {
namespace {

struct ListOptions {
  PeriodOptions period;
  bool json = false;
};

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

void printTable(const ReadingList& readings, const TagList& tags) {
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
                  joined(tags.titles(reading->tagIDs()), ", "), singleLine(reading->notes().value_or(""))});
  }
  table.print(std::cout);
}

void runList(const ListOptions& options, const GlobalOptions& global) {
  const DateRange range = chosenRange(options.period);
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
    printTable(selection, tags);
  }
}

}  // namespace

void addListCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<ListOptions>();
  auto* command = app.add_subcommand("list", "Show the readings, newest first");
  addPeriodOptions(*command, options->period);
  command->add_flag("--json", options->json, "Write JSON for scripts instead of a table");
  command->callback([options, &global] { runList(*options, global); });
}

}  // namespace cardiolith::tool
