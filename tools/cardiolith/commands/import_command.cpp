#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "commands/import_readings.hpp"
#include "log/data_folder.hpp"
#include "render/progress_bar.hpp"
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct ImportOptions {
  std::vector<std::string> files;
  std::optional<std::string> format;
  bool dryRun = false;
  bool skipInvalid = false;
  bool force = false;
  bool createTags = false;
  std::vector<std::string> columns;
  std::optional<std::string> dateFormat;
};

ImportSettings settingsOf(const ImportOptions& options) {
  return {.format = options.format,
          .skipInvalid = options.skipInvalid,
          .force = options.force,
          .createTags = options.createTags,
          .columns = options.columns,
          .dateFormat = options.dateFormat,
          .remedies = {}};  // the command line's options
}

void runImport(const ImportOptions& options, const GlobalOptions& global) {
  const DataFolder folder(global);
  const ImportSettings settings = settingsOf(options);
  if (const auto fault = importChoicesFault(settings)) throw ToolError(*fault);
  std::vector<ImportSource> sources;
  for (const auto& name : options.files) sources.push_back({name, name});
  const auto plan = [&] {
    // Cleared before the report is printed.
    ProgressBar progress("Reading");
    return options.dryRun ? previewImport(folder, sources, settings, &progress)
                          : importReadings(folder, sources, settings, &progress);
  }();

  std::string report;
  if (options.dryRun) {
    if (const auto refusal = importRefusal(plan, settings)) throw ToolError(*refusal);
    for (const auto& row : plan.refused) report += "Would refuse " + row.position + ": " + row.reason + "\n";
    for (const auto& reading : plan.added)
      report += "Would add " + displayDateFormatter().string(reading->date()) + "  " +
                describeValues(*reading) + "\n";
    for (const auto& tag : plan.newTags) report += "Would create the tag \"" + tag.title + "\"\n";
  } else {
    for (const auto& row : plan.refused) report += "Refused " + row.position + ": " + row.reason + "\n";
    for (const auto& tag : plan.newTags) report += "Created the tag \"" + tag.title + "\"\n";
  }
  std::cout << report << importAccount(plan, options.dryRun) << '\n';
}

}  // namespace

void addImportCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<ImportOptions>();
  auto* command = app.add_subcommand(
      "import",
      "Add readings from files: this tool's exports, spreadsheets, FHIR, a phone health app's export");
  command->add_option("files", options->files, "The files to read, all in one change of the log")->required();
  command
      ->add_option(
          "--format", options->format,
          "csv, tsv, json (a readings document), fhir or health (export.xml or export.zip); found from "
          "the content by default")
      ->check(CLI::IsMember({"csv", "tsv", "json", "fhir", "health"}));
  command->add_flag("--dry-run", options->dryRun,
                    "Show what would be added, skipped and refused; change nothing");
  command->add_flag("--skip-invalid", options->skipInvalid, "Import the valid rows and list the others");
  command->add_flag("--force", options->force,
                    "Keep values outside the usual human range, as add --force does");
  command->add_flag("--create-tags", options->createTags, "Create the tags the log does not have yet");
  command
      ->add_option("--columns", options->columns,
                   "Each column's role in order, for a header in another language or none: "
                   "date,time,datetime,timestamp,systolic,diastolic,pulse,notes,tags,id,skip")
      ->delimiter(',');
  command->add_option("--date-format", options->dateFormat,
                      "An ICU date pattern for the date column, e.g. dd.MM.yyyy or \"MM/dd/yyyy HH:mm\"");
  command->callback([options, &global] { runImport(*options, global); });
}

}  // namespace cardiolith::tool
