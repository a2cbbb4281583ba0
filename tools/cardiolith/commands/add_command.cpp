#include <cardiolith/analysis/plausibility.hpp>
#include <cardiolith/platform/date.hpp>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/add_reading.hpp"
#include "commands/commands.hpp"
#include "input/date_input.hpp"
#include "input/pressure_input.hpp"
#include "log/data_folder.hpp"
#include "render/category_text.hpp"
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct AddOptions {
  std::string values;
  std::optional<std::int64_t> pulse;
  std::optional<std::string> at;
  std::optional<std::string> note;
  std::vector<std::string> tags;
  bool force = false;
};

std::int64_t chosenPulse(const PressureInput& input, const AddOptions& options) {
  if (input.pulse && options.pulse && *input.pulse != *options.pulse) {
    throw ToolError("the pulse is given twice, as " + std::to_string(*input.pulse) + " and --pulse " +
                    std::to_string(*options.pulse) + "; give it once");
  }
  if (input.pulse) return *input.pulse;
  if (options.pulse) return *options.pulse;
  throw ToolError(
      "the pulse is missing; give it with --pulse (the monitor shows it beside the pressures), e.g. "
      "cardiolith add " +
      options.values + " --pulse 71");
}

void runAdd(const AddOptions& options, const GlobalOptions& global) {
  const auto input = parsePressure(options.values, true);
  NewReading request;
  request.systolic = input.systolic;
  request.diastolic = input.diastolic;
  request.pulse = chosenPulse(input, options);
  const auto dates = DateReader::current();
  request.date = options.at ? dates.readingTime(*options.at, "--at", options.force) : dates.now();
  request.note = options.note;
  request.tags = options.tags;
  request.force = options.force;
  // Formatted before addReading takes the lock, which concurrent adds wait for: the first date formatting
  // loads the locale data.
  const std::string when = displayDateFormatter().string(*request.date);

  const DataFolder folder(global);
  const AddedReading added = addReading(folder, request);
  const Reading& reading = *added.reading;
  std::cout << "Added " << when << "  " << describeValues(reading) << "  (id " << added.shortId << ")\n";
  if (!added.tagTitles.empty()) std::cout << "  Tags: " << singleLine(joined(added.tagTitles, ", ")) << "\n";
  if (reading.notes()) std::cout << "  Note: " << singleLine(*reading.notes()) << "\n";
  if (isHypertensiveCrisis(reading.systolic(), reading.diastolic())) std::cout << kCrisisAdvice << "\n";
  if (added.newLogFile) std::cout << "Started a new log in " << added.newLogFile->string() << "\n";
}

}  // namespace

void addAddCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<AddOptions>();
  auto* command = app.add_subcommand("add", "Add a reading to the log");
  command
      ->add_option("reading", options->values,
                   "Systolic/diastolic in mmHg (128/82), or with the pulse (128/82/71)")
      ->required();
  command->add_option("--pulse,-p", options->pulse, "Pulse in beats per minute");
  command->add_option("--at", options->at,
                      "When it was taken (default: now): \"2026-11-20 7:45\", 7:45 (today), \"yesterday "
                      "21:30\", \"mon 8:00\", -2h, \"30m ago\"");
  command->add_option("--note,-n", options->note, "A note to keep with the reading");
  command->add_option("--tag,-t", options->tags, "A tag title; repeat for several (see: cardiolith tags)");
  command->add_flag(
      "--force", options->force,
      "Keep values outside the usual human range, a date before 1900 or in the future, or a duplicate");
  command->callback([options, &global] { runAdd(*options, global); });
}

}  // namespace cardiolith::tool
