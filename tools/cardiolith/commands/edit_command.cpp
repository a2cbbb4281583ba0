#include <algorithm>
#include <cardiolith/analysis/plausibility.hpp>
#include <cardiolith/platform/text.hpp>
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
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct EditOptions {
  std::string id;
  std::optional<std::string> values;
  std::optional<std::int64_t> pulse;
  std::optional<std::string> at;
  std::optional<std::string> note;
  bool noNote = false;
  std::vector<std::string> tags;
  std::vector<std::string> untags;
  bool force = false;
};

bool changesSomething(const EditOptions& options) {
  return options.values || options.pulse || options.at || options.note || options.noNote ||
         !options.tags.empty() || !options.untags.empty();
}

std::optional<std::set<UUID>> editedTags(const Reading& old, const EditOptions& options,
                                         const std::optional<TagList>& tagList) {
  if (!tagList) return old.tagIDs();
  auto ids = old.tagIDs().value_or(std::set<UUID>{});
  for (const auto& title : options.tags) ids.insert(tagList->find(title).id);
  for (const auto& title : options.untags) ids.erase(tagList->find(title).id);
  return ids;
}

// The reading as edited: a new record with the old id, so the health-store ids and every reference stay.
std::shared_ptr<Reading> edited(const Reading& old, const EditOptions& options,
                                const std::optional<TagList>& tagList) {
  std::int64_t systolic = old.systolic(), diastolic = old.diastolic(), pulse = old.pulse();
  if (options.values) {
    const auto input = parsePressure(*options.values, true);
    systolic = input.systolic;
    diastolic = input.diastolic;
    if (input.pulse && options.pulse && *input.pulse != *options.pulse)
      throw ToolError("the pulse is given twice, as " + std::to_string(*input.pulse) + " and --pulse " +
                      std::to_string(*options.pulse) + "; give it once");
    if (input.pulse) pulse = *input.pulse;
  }
  if (options.pulse) pulse = *options.pulse;
  const Date date =
      options.at ? DateReader::current().readingTime(*options.at, "--at", options.force) : old.date();
  std::optional<std::string> notes = old.notes();
  if (options.note) notes = *options.note;
  if (options.noNote) notes.reset();
  auto reading = std::make_shared<Reading>(old.id(), date, systolic, diastolic, pulse, notes,
                                           old.healthKitID(), editedTags(old, options, tagList));
  if (!options.force) {
    const auto problems = implausibilities(systolic, diastolic, pulse);
    if (!problems.empty())
      throw ToolError("not changed: " + joined(problems, "; ") +
                      ".\nCheck the values, or add --force to keep them exactly as typed.");
  }
  return reading;
}

void runEdit(const EditOptions& options, const GlobalOptions& global) {
  if (!changesSomething(options)) {
    throw ToolError("nothing to change; give new values (cardiolith edit " + options.id +
                    " 138/85), --pulse, --at, --note, --no-note, --tag or --untag");
  }
  if (options.note && !text::isValidUTF8(*options.note))
    throw ToolError("--note: the text is not valid UTF-8");
  const DataFolder folder(global);
  std::optional<TagList> tagList;
  if (!options.tags.empty() || !options.untags.empty()) tagList.emplace(folder);

  ReadingsLog log(folder, ReadingsLog::Access::change);
  auto& readings = log.readings();
  const auto old = findReadingById(readings, options.id);
  const auto reading = edited(*old, options, tagList);
  std::string report = "Before: " + describeWithId(readings, *old) + "\n";
  std::replace(readings.begin(), readings.end(), old, reading);
  report += "After:  " + describeWithId(readings, *reading) + "\n";
  if (tagList) report += "  Tags: " + joined(tagList->titles(reading->tagIDs()), ", ") + "\n";
  if (reading->notes()) report += "  Note: " + singleLine(*reading->notes()) + "\n";
  log.save();
  std::cout << report;
}

}  // namespace

void addEditCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<EditOptions>();
  auto* command = app.add_subcommand("edit", "Correct a reading in place; it keeps its id");
  command->add_option("id", options->id, "The reading's id, or its first characters (at least 4)")
      ->required();
  command->add_option("reading", options->values, "New systolic/diastolic (138/85), or with the pulse");
  command->add_option("--pulse,-p", options->pulse, "New pulse in beats per minute");
  command->add_option("--at", options->at,
                      "New date and time, e.g. \"yesterday 21:30\" or \"2026-11-20 7:45\"");
  auto* note = command->add_option("--note,-n", options->note, "Replace the note");
  command->add_flag("--no-note", options->noNote, "Remove the note")->excludes(note);
  command->add_option("--tag,-t", options->tags, "Add this tag; repeat for several");
  command->add_option("--untag", options->untags, "Remove this tag; repeat for several");
  command->add_flag("--force", options->force, "Keep values outside the usual human range, or an odd date");
  command->callback([options, &global] { runEdit(*options, global); });
}

}  // namespace cardiolith::tool
