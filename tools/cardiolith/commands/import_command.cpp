#include <cardiolith/interop/import_file.hpp>
#include <cardiolith/interop/import_plan.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "log/data_folder.hpp"
#include "log/tag_list.hpp"
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

// Reads every file into one plan.
interop::ImportPlan plannedImport(const ImportOptions& options, const ReadingList& existing,
                                  const std::vector<Tag>& tags) {
  interop::ImportPlanner planner(existing, tags, {.force = options.force, .createTags = options.createTags});
  ProgressBar progress("Reading");
  for (const auto& name : options.files) {
    try {
      interop::ReaderOptions readerOptions{options.columns, options.dateFormat,
                                           [&progress](std::uint64_t done) { progress.update(done); }};
      const auto format = options.format ? interop::importFormatNamed(*options.format) : std::nullopt;
      // Before the file is opened: opening reads its first block already.
      std::error_code unknown;
      const std::uintmax_t size = std::filesystem::file_size(name, unknown);
      progress.restart("Reading " + std::filesystem::path(name).filename().string(), unknown ? 0 : size);
      interop::ImportFile file(name, format, readerOptions);
      progress.setTotal(file.size());  // an archive's member, not the archive
      planner.takeAll(file.reader(), name);
    } catch (const interop::ImportError& error) {
      throw ToolError("nothing imported: " + name + ": " + error.what());
    } catch (const std::invalid_argument& error) {  // a --date-format that ICU rejects
      throw ToolError(std::string("--date-format: ") + error.what());
    }
  }
  return std::move(planner).takePlan();
}

std::string account(const interop::ImportPlan& plan, bool dryRun) {
  std::size_t skipped = 0;
  std::string reasons;
  for (const auto& [reason, count] : plan.skipped) {
    skipped += count;
    reasons += (reasons.empty() ? "" : ", ") + std::to_string(count) + " " + reason;
  }
  std::ostringstream text;
  text << (dryRun ? "Dry run, nothing changed: " : "Imported: ") << plan.added.size()
       << (dryRun ? " would be added, " : " added, ") << plan.alreadyThere << " already there, " << skipped
       << " skipped" << (reasons.empty() ? "" : " (" + reasons + ")") << ", " << plan.refused.size()
       << " refused.\n";
  return text.str();
}

void refuseUnlessClean(const interop::ImportPlan& plan, const ImportOptions& options) {
  if (!plan.unknownTags.empty()) {
    std::string titles;
    for (const auto& title : plan.unknownTags) titles += (titles.empty() ? "\"" : ", \"") + title + "\"";
    throw ToolError("nothing imported: the log has no tag titled " + titles +
                    ".\nAdd them with cardiolith tags add TITLE, or import with --create-tags.");
  }
  if (plan.refused.empty() || options.skipInvalid) return;
  std::string message = "nothing imported: " + std::to_string(plan.refused.size()) +
                        (plan.refused.size() == 1 ? " row is" : " rows are") + " invalid:\n";
  constexpr std::size_t kListed = 20;
  for (std::size_t i = 0; i < plan.refused.size() && i < kListed; ++i)
    message += "  " + plan.refused[i].position + ": " + plan.refused[i].reason + "\n";
  if (plan.refused.size() > kListed)
    message += "  and " + std::to_string(plan.refused.size() - kListed) + " more\n";
  message += "Correct the file, or add --skip-invalid to import the rest (--force keeps implausible values).";
  throw ToolError(message);
}

void runImport(const ImportOptions& options, const GlobalOptions& global) {
  const DataFolder folder(global);
  ReadingsLog log(folder, options.dryRun ? ReadingsLog::Access::read : ReadingsLog::Access::change);
  TagList tags(folder);
  const interop::ImportPlan plan = plannedImport(options, log.readings(), tags.manager().tags());
  refuseUnlessClean(plan, options);

  std::string report;
  for (const auto& row : plan.refused)
    report += (options.dryRun ? "Would skip " : "Skipped ") + row.position + ": " + row.reason + "\n";
  if (options.dryRun) {
    for (const auto& reading : plan.added)
      report += "Would add " + displayDateFormatter().string(reading->date()) + "  " +
                describeValues(*reading) + "\n";
    for (const auto& tag : plan.newTags) report += "Would create the tag \"" + tag.title + "\"\n";
    std::cout << report << account(plan, true);
    return;
  }
  if (!plan.newTags.empty()) {
    tags.requireReadable();
    for (const auto& tag : plan.newTags) {
      tags.manager().insert(tag);
      report += "Created the tag \"" + tag.title + "\"\n";
    }
    tags.finishSaving();  // before the readings that name the tags are saved
  }
  if (!plan.added.empty()) {
    auto& readings = log.readings();
    readings.insert(readings.end(), plan.added.begin(), plan.added.end());
    log.save();
  }
  std::cout << report << account(plan, false);
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
