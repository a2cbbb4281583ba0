#include <cardiolith/analysis/plausibility.hpp>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "commands/edit_reading.hpp"
#include "input/date_input.hpp"
#include "input/pressure_input.hpp"
#include "log/data_folder.hpp"
#include "render/category_text.hpp"
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

// The edit the options ask for; ToolError for values that can't be read or a pulse given twice.
ReadingEdit editOf(const EditOptions& options) {
  ReadingEdit edit;
  edit.id = options.id;
  if (options.values) {
    const auto input = parsePressure(*options.values, true);
    edit.systolic = input.systolic;
    edit.diastolic = input.diastolic;
    if (input.pulse && options.pulse && *input.pulse != *options.pulse)
      throw ToolError("the pulse is given twice, as " + std::to_string(*input.pulse) + " and --pulse " +
                      std::to_string(*options.pulse) + "; give it once");
    edit.pulse = input.pulse;
  }
  if (options.pulse) edit.pulse = options.pulse;
  if (options.at) edit.date = DateReader::current().readingTime(*options.at, "--at", options.force);
  edit.note = options.note;
  edit.removeNote = options.noNote;
  edit.tags = options.tags;
  edit.untags = options.untags;
  edit.force = options.force;
  return edit;
}

void runEdit(const EditOptions& options, const GlobalOptions& global) {
  const ReadingEdit edit = editOf(options);
  if (!edit.changesSomething()) {
    throw ToolError("nothing to change; give new values (cardiolith edit " + options.id +
                    " 138/85), --pulse, --at, --note, --no-note, --tag or --untag");
  }
  const DataFolder folder(global);
  const EditedReading result = editReading(folder, edit);
  std::cout << result.before << "\n" << result.after << "\n";
  if (!edit.tags.empty() || !edit.untags.empty())
    std::cout << "  Tags: " << joined(result.tagTitles, ", ") << "\n";
  if (result.reading->notes()) std::cout << "  Note: " << singleLine(*result.reading->notes()) << "\n";
  // A corrected value can be the real, alarming one: it gets the same advice as when it is added.
  const Reading& reading = *result.reading;
  if (edit.systolic && isHypertensiveCrisis(reading.systolic(), reading.diastolic()))
    std::cout << kCrisisAdvice << "\n";
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
