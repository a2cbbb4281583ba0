#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "input/reading_id_input.hpp"
#include "log/data_folder.hpp"
#include "render/reading_text.hpp"

namespace cardiolith::tool {
namespace {

void runDelete(const std::vector<std::string>& ids, const GlobalOptions& global) {
  const DataFolder folder(global);
  ReadingsLog log(folder, ReadingsLog::Access::change);
  auto& readings = log.readings();
  // Every id is resolved before anything is removed, so one typo deletes nothing.
  std::vector<std::shared_ptr<Reading>> doomed;
  std::string report;
  for (const auto& id : ids) {
    const auto reading = findReadingById(readings, id);
    if (std::find(doomed.begin(), doomed.end(), reading) != doomed.end()) continue;
    doomed.push_back(reading);
    report += "Deleted " + describeWithId(readings, *reading) + "\n";
  }
  std::erase_if(readings, [&](const auto& reading) {
    return std::find(doomed.begin(), doomed.end(), reading) != doomed.end();
  });
  log.save();
  std::cout << report << "(cardiolith undo brings " << (doomed.size() == 1 ? "it" : "them") << " back)\n";
}

}  // namespace

void addDeleteCommand(CLI::App& app, const GlobalOptions& global) {
  auto ids = std::make_shared<std::vector<std::string>>();
  auto* command = app.add_subcommand("delete", "Remove readings from the log, by id (see: cardiolith list)");
  command->add_option("id", *ids, "The id of a reading, or its first characters (at least 4)")->required();
  command->callback([ids, &global] { runDelete(*ids, global); });
}

}  // namespace cardiolith::tool
