#include <algorithm>
#include <cardiolith/interop/delimited.hpp>
#include <cardiolith/interop/fhir.hpp>
#include <cardiolith/model/collection.hpp>
#include <cardiolith/model/json.hpp>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include "commands/commands.hpp"
#include "input/period_options.hpp"
#include "log/data_folder.hpp"
#include "log/output_file.hpp"
#include "log/tag_list.hpp"
#include "render/category_text.hpp"
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct ExportOptions {
  std::string format = "csv";
  PeriodOptions period;
  std::optional<std::string> out;
};

std::string exportText(const ReadingList& readings, const TagList& tags, const std::string& format) {
  if (format == "json") return json::encode(Readings{readings});
  if (format == "fhir") return interop::encodeFhirBundle(readings);
  std::ostringstream text;
  interop::writeDelimited(text, readings, tags.manager().tags(),
                          {format == "tsv" ? '\t' : ',', [](BloodPressureAnalysis category) {
                             return std::string(categoryName(category));
                           }});
  return text.str();
}

void runExport(const ExportOptions& options, const GlobalOptions& global) {
  const Period period = choosePeriod(options.period, DateReader::current(), std::nullopt);
  const DataFolder folder(global);
  const TagList tags(folder);
  ReadingsLog log(folder, ReadingsLog::Access::read);
  auto selection = selectReadings(log.readings(), period, options.period, tags);
  std::stable_sort(selection.begin(), selection.end(),
                   [](const auto& a, const auto& b) { return a->date() < b->date(); });
  std::string text;
  try {
    text = exportText(selection, tags, options.format);
  } catch (const EncodingError& error) {
    throw ToolError(std::string("can't export the log: ") + error.what());
  }
  if (!options.out) {
    std::cout << text;
    return;
  }
  writeOutputFile(*options.out, text, folder.ownFiles());
  std::cout << "Exported " << readingCount(selection.size()) << " to " << *options.out << '\n';
}

}  // namespace

void addExportCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<ExportOptions>();
  auto* command = app.add_subcommand(
      "export",
      "Write the readings, oldest first, as CSV or TSV for a spreadsheet, JSON (a complete backup) or FHIR");
  command
      ->add_option(
          "--format", options->format,
          "csv (default) or tsv: every column, texts exact; json: the readings document, ids included; "
          "fhir: a FHIR R4 Bundle of Observations")
      ->check(CLI::IsMember({"csv", "tsv", "json", "fhir"}));
  command->add_option("--out,-o", options->out, "Write to this file instead of standard output");
  addPeriodOptions(*command, options->period);
  command->callback([options, &global] { runExport(*options, global); });
}

}  // namespace cardiolith::tool
