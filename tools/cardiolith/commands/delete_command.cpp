#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "commands/delete_readings.hpp"
#include "log/data_folder.hpp"

namespace cardiolith::tool {
namespace {

void runDelete(const std::vector<std::string>& ids, const GlobalOptions& global) {
  const DataFolder folder(global);
  const auto deleted = deleteReadings(folder, ids);
  for (const auto& line : deleted) std::cout << line << '\n';
  std::cout << "(cardiolith undo brings " << (deleted.size() == 1 ? "it" : "them") << " back)\n";
}

}  // namespace

void addDeleteCommand(CLI::App& app, const GlobalOptions& global) {
  auto ids = std::make_shared<std::vector<std::string>>();
  auto* command = app.add_subcommand("delete", "Remove readings from the log, by id (see: cardiolith list)");
  command->add_option("id", *ids, "The id of a reading, or its first characters (at least 4)")->required();
  command->callback([ids, &global] { runDelete(*ids, global); });
}

}  // namespace cardiolith::tool
