#include <cardiolith/analysis/plausibility.hpp>
#include <cardiolith/model/reading_lookup.hpp>
#include <cardiolith/platform/date.hpp>
#include <cardiolith/platform/text.hpp>
#include <cardiolith/platform/uuid.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "input/date_input.hpp"
#include "input/pressure_input.hpp"
#include "input/reading_id_input.hpp"
#include "log/data_folder.hpp"
#include "log/tag_list.hpp"
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

void refuseImplausible(const PressureInput& input, std::int64_t pulse) {
  const auto problems = implausibilities(input.systolic, input.diastolic, pulse);
  if (problems.empty()) return;
  throw ToolError("not added: " + joined(problems, "; ") +
                  ".\nCheck the reading, or add --force to keep it exactly as typed.");
}

void runAdd(const AddOptions& options, const GlobalOptions& global) {
  const auto input = parsePressure(options.values, true);
  const std::int64_t pulse = chosenPulse(input, options);
  const auto dates = DateReader::current();
  const Date date = options.at ? dates.readingTime(*options.at, "--at", options.force) : dates.now();
  if (!options.force) refuseImplausible(input, pulse);
  if (options.note && !text::isValidUTF8(*options.note))
    throw ToolError("--note: the text is not valid UTF-8");

  const DataFolder folder(global);
  std::optional<TagList> tagList;
  std::optional<std::set<UUID>> tagIDs;
  if (!options.tags.empty()) {
    tagList.emplace(folder);
    tagIDs.emplace();
    for (const auto& title : options.tags) tagIDs->insert(tagList->find(title).id);
  }

  auto reading = std::make_shared<Reading>(UUID::random().uuidString(), date, input.systolic, input.diastolic,
                                           pulse, options.note, std::nullopt, tagIDs);
  // Composed before taking the lock, which concurrent adds wait for: the first date formatting loads the
  // locale data.
  std::string report =
      "Added " + displayDateFormatter().string(date) + "  " + describeValues(*reading) + "\n";
  if (tagList) report += "  Tags: " + singleLine(joined(tagList->titles(reading->tagIDs()), ", ")) + "\n";
  if (reading->notes()) report += "  Note: " + singleLine(*reading->notes()) + "\n";
  if (isHypertensiveCrisis(input.systolic, input.diastolic)) report += std::string(kCrisisAdvice) + "\n";

  {
    ReadingsLog log(folder, ReadingsLog::Access::change);
    if (const auto twin = options.force ? nullptr : findDuplicate(log.readings(), *reading)) {
      throw ToolError(
          "not added: the log already holds this reading, " + describeWithId(log.readings(), *twin) +
          ".\nAdd --force to keep both (two measurements in the same minute with the same values).");
    }
    if (!std::filesystem::exists(log.file())) report += "Started a new log in " + log.file().string() + "\n";
    log.readings().push_back(reading);
    report.insert(report.find('\n'), "  (id " + shortIdIn(log.readings(), *reading) + ")");
    log.save();
  }
  std::cout << report;
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
