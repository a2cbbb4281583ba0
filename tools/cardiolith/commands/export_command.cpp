#include <algorithm>
#include <cardiolith/platform/list_formatter.hpp>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "input/period_options.hpp"
#include "log/data_folder.hpp"
#include "log/output_file.hpp"
#include "log/tag_list.hpp"
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct ExportOptions {
  std::string format = "csv";
  bool tags = false;
  bool notes = false;
  std::optional<std::string> out;
  PeriodOptions period;
};

// The export has no quoting, so a cell must not hold what a reader takes for a row end or a quoted
// field: line breaks become spaces and double quotes single ones.
std::string plainCell(std::string_view text) {
  std::string cell = singleLine(text);
  std::replace(cell.begin(), cell.end(), '"', '\'');
  return cell;
}

// Tag titles joined with "; " (a list text such as "a, b, and c" would lose its commas to the separator),
// and an empty text for no tags, so the cell is always there.
class TagCellFormatter : public ListFormatter {
 public:
  std::optional<std::string> string(const std::vector<std::string>& titles) const override {
    std::vector<std::string> cells;
    for (const auto& title : titles) cells.push_back(plainCell(title));
    return joined(cells, "; ");
  }
};

std::string headerLine(std::string_view separator, bool includeTags, bool includeNotes) {
  std::vector<std::string> headings;
  for (const auto heading : Reading::allHeadings) {
    switch (heading) {
      case Reading::Heading::date:
        headings.emplace_back("Date");
        break;
      case Reading::Heading::sys:
        headings.emplace_back("Systolic");
        break;
      case Reading::Heading::dia:
        headings.emplace_back("Diastolic");
        break;
      case Reading::Heading::pulse:
        headings.emplace_back("Pulse");
        if (includeTags) headings.emplace_back("Tags");  // the tags cell comes before the notes
        break;
      case Reading::Heading::notes:
        if (includeNotes) headings.emplace_back("Notes");
        break;
    }
  }
  return joined(headings, separator);
}

// A copy of the reading whose optional cells are present (empty when absent) and plain, so that every
// row has the header's columns in the header's places.
std::shared_ptr<Reading> exportable(const Reading& reading) {
  return Reading::decoded(reading.id(), reading.date(), reading.systolic(), reading.diastolic(),
                          reading.pulse(), plainCell(reading.notes().value_or("")),
                          reading.tagIDs().value_or(std::set<UUID>{}), reading.healthKitID());
}

std::string exportText(ReadingList readings, const TagList& tags, const ExportOptions& options) {
  const std::string separator = options.format == "tsv" ? "\t" : ",";
  std::stable_sort(readings.begin(), readings.end(),
                   [](const auto& a, const auto& b) { return a->date() < b->date(); });
  const TagCellFormatter tagFormatter;
  std::ostringstream text;
  text << headerLine(separator, options.tags, options.notes) << '\n';
  for (const auto& reading : readings) {
    text << exportable(*reading)->inLineFormat(displayDateFormatter(), tagFormatter, tags.manager(),
                                               separator, options.tags, options.notes)
         << '\n';
  }
  return text.str();
}

void runExport(const ExportOptions& options, const GlobalOptions& global) {
  const Period period = choosePeriod(options.period, DateReader::current(), std::nullopt);
  const DataFolder folder(global);
  const TagList tags(folder);
  ReadingsLog log(folder, ReadingsLog::Access::read);
  const auto selection = selectReadings(log.readings(), period, options.period, tags);
  const std::string text = exportText(selection, tags, options);
  if (!options.out) {
    std::cout << text;
    return;
  }
  writeOutputFile(*options.out, text, folder.ownFiles());
  std::cout << "Exported " << selection.size() << " readings to " << *options.out << '\n';
}

}  // namespace

void addExportCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<ExportOptions>();
  auto* command =
      app.add_subcommand("export", "Write the readings, oldest first, as CSV or TSV for a spreadsheet");
  command->add_option("--format", options->format, "csv (default) or tsv")
      ->check(CLI::IsMember({"csv", "tsv"}));
  command->add_flag("--tags", options->tags, "Add a column with the tag titles");
  command->add_flag("--notes", options->notes, "Add a column with the notes");
  command->add_option("--out,-o", options->out, "Write to this file instead of standard output");
  addPeriodOptions(*command, options->period);
  command->callback([options, &global] { runExport(*options, global); });
}

}  // namespace cardiolith::tool
