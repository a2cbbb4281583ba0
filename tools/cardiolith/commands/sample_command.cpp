#include <cardiolith/platform/date.hpp>
#include <cardiolith/sample/fake_readings_generator.hpp>
#include <iostream>
#include <memory>
#include <optional>

#include "commands/commands.hpp"
#include "log/data_folder.hpp"
#include "log/tag_list.hpp"
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct SampleOptions {
  std::int64_t count = 30;
  std::optional<std::int64_t> variance;
  bool notes = false;
  bool force = false;
};

void runSample(const SampleOptions& options, const GlobalOptions& global) {
  const DataFolder folder(global);
  // The generator takes its tags from a tag list of its own, which opens the library's default places.
  folder.makeLibraryDefault();
  const TagList tags(folder);  // also quietens the generator's first-use message about a missing tags file
  ReadingsLog log(folder, ReadingsLog::Access::change);
  if (!log.readings().empty() && !options.force) {
    throw ToolError("the log in " + log.file().string() + " already holds " +
                    readingCount(log.readings().size()) +
                    ", and sample readings would mix with them.\nTry the samples in an empty folder "
                    "with --data-dir DIR, or add --force to add them anyway.");
  }
  // The generator makes count + 1 readings, one a day back from the end date.
  const auto samples = FakeReadingsGenerator::generateFakeReadings(options.count - 1, Date::now(),
                                                                   options.variance, options.notes);
  log.readings().insert(log.readings().end(), samples.begin(), samples.end());
  log.save();
  std::cout << "Added " << samples.size() << " sample readings, one a day from "
            << displayDateFormatter().string(samples.back()->date()) << " to "
            << displayDateFormatter().string(samples.front()->date())
            << ".\nSee them with: cardiolith list\n";
}

}  // namespace

void addSampleCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<SampleOptions>();
  auto* command = app.add_subcommand("sample", "Fill an empty log with made-up readings, to try the tool");
  command->add_option("--count", options->count, "How many readings, one a day up to now (default 30)")
      ->check(CLI::Range(1, 100000));
  command
      ->add_option("--variance", options->variance,
                   "Keep values within this much below 120/80 (default: anywhere in 70-199/40-124)")
      ->check(CLI::Range(1, 1000));
  command->add_flag("--notes", options->notes, "Give each reading a filler note");
  command->add_flag("--force", options->force, "Add the samples even though the log already holds readings");
  command->callback([options, &global] { runSample(*options, global); });
}

}  // namespace cardiolith::tool
