#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "commands/commands.hpp"
#include "commands/export_readings.hpp"
#include "input/period_options.hpp"
#include "log/data_folder.hpp"
#include "log/output_file.hpp"
#include "render/reading_text.hpp"

namespace cardiolith::tool {
namespace {

struct ExportOptions {
  std::string format = "csv";
  PeriodOptions period;
  std::optional<std::string> out;
};

void runExport(const ExportOptions& options, const GlobalOptions& global) {
  const DataFolder folder(global);
  const ExportedReadings exported = exportReadings(folder, options.period, options.format);
  if (!options.out) {
    std::cout << exported.text;
    return;
  }
  writeOutputFile(*options.out, exported.text, folder.ownFiles());
  std::cout << "Exported " << readingCount(exported.count) << " to " << *options.out << '\n';
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
