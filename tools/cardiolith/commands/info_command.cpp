#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

#include "app/version.hpp"
#include "commands/commands.hpp"
#include "log/data_folder.hpp"
#include "log/tag_list.hpp"
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

// Whether the variable holds a path the library takes (it ignores relative ones).
bool setToAbsolutePath(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && value[0] == '/';
}

// Why the log's files are where they are.
std::string placeReason(const GlobalOptions& global) {
  if (global.dataDir) return "chosen with --data-dir";
  if (setToAbsolutePath("CARDIOLITH_GROUP_CONTAINER")) return "from $CARDIOLITH_GROUP_CONTAINER";
  if (setToAbsolutePath("XDG_DATA_HOME")) return "the default place under $XDG_DATA_HOME";
  return "the default place, ~/.local/share/group.cardiolith";
}

void printReadings(ReadingsLog& log, const DataFolder& folder) {
  const auto& file = log.file();
  std::cout << "Readings file: " << file.string();
  if (file == folder.oldReadingsFile() && file != folder.path() / "readings") {
    std::cout << "\n  (the older version's file: it could not be moved to "
              << (folder.path() / "readings").string()
              << " because a file is there too; see the warning above)";
  }
  if (!std::filesystem::exists(file)) {
    std::cout << "\n  not there yet: the first cardiolith add creates it\n";
    return;
  }
  const auto& readings = log.readings();
  std::cout << "\n  " << readingCount(readings.size());
  if (!readings.empty()) {
    const auto [first, last] = std::minmax_element(
        readings.begin(), readings.end(), [](const auto& a, const auto& b) { return a->date() < b->date(); });
    std::cout << ", from " << displayDateFormatter().string((*first)->date()) << " to "
              << displayDateFormatter().string((*last)->date());
  }
  std::cout << '\n';
}

void runInfo(const GlobalOptions& global) {
  const DataFolder folder(global);
  std::cout << "cardiolith " << kVersion << "\nData folder: " << folder.path().string() << " ("
            << placeReason(global) << ")"
            << (std::filesystem::is_directory(folder.path())
                    ? ""
                    : "\n  not there yet: the first change creates it")
            << '\n';
  try {
    ReadingsLog log(folder, ReadingsLog::Access::read);
    printReadings(log, folder);
  } catch (const ToolError& error) {
    // What is wrong with the file is what info is asked for, and the rest is still worth showing.
    std::string reason = error.what();
    for (auto at = reason.find('\n'); at != std::string::npos; at = reason.find('\n', at + 3))
      reason.replace(at, 1, "\n  ");
    std::cout << "Readings file: " << (folder.path() / "readings").string() << "\n  " << reason << '\n';
  }
  const TagList tags(folder);
  const auto count = std::to_string(tags.manager().tags().size());
  std::cout << "Tags file: " << folder.tagsFile().string() << "\n  "
            << (!std::filesystem::exists(folder.tagsFile())
                    ? "not there yet: the " + count + " default tags are used until a tag changes"
                : tags.manager().loadFailed()
                    ? "can't be read (see the message above): the " + count + " default tags stand in for it"
                    : count + " tags")
            << "\nLock: the data folder itself, locked while a command changes the log\n";
}

}  // namespace

void addInfoCommand(CLI::App& app, const GlobalOptions& global) {
  auto* command = app.add_subcommand(
      "info", "Show which files the log uses and why, how many readings they hold and from when");
  command->callback([&global] { runInfo(global); });
}

}  // namespace cardiolith::tool
