#include <cardiolith/model/json.hpp>
#include <cardiolith/model/tag.hpp>
#include <filesystem>
#include <iostream>
#include <map>
#include <string>

#include "commands/commands.hpp"
#include "log/change_history.hpp"
#include "log/data_folder.hpp"
#include "log/folder_lock.hpp"
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

template <class Document>
std::optional<Document> decoded(const std::optional<std::string>& content) {
  if (!content) return Document{};
  try {
    return json::decode<Document>(*content);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

bool sameReading(const Reading& a, const Reading& b) { return a == b && a.tagIDs() == b.tagIDs(); }

// What undo did to the readings, reading by reading, compared by id.
std::string readingChanges(const ChangeHistory::RestoredFile& file) {
  const auto before = decoded<Readings>(file.before), after = decoded<Readings>(file.after);
  if (!before || !after) return "  restored " + file.path.string() + "\n";
  std::map<std::string, std::shared_ptr<Reading>> old;
  for (const auto& reading : after->readings) old[reading->id()] = reading;
  std::string text;
  for (const auto& reading : before->readings) {
    const auto match = old.find(reading->id());
    if (match == old.end()) {
      text += "  brought back " + describeWithId(before->readings, *reading) + "\n";
      continue;
    }
    if (!sameReading(*reading, *match->second)) {
      text += "  put back " + describeWithId(before->readings, *reading) + " (was " +
              displayDateFormatter().string(match->second->date()) + "  " + describeValues(*match->second) +
              ")\n";
    }
    old.erase(match);
  }
  for (const auto& reading : after->readings) {
    if (old.contains(reading->id())) text += "  removed " + describeWithId(after->readings, *reading) + "\n";
  }
  return text;
}

std::string tagChanges(const ChangeHistory::RestoredFile& file) {
  // Without a tags file, or with an empty one, the library gives the ten default tags.
  if (!file.before || file.before == "[]") return "  the tags are the ten default ones again\n";
  const auto before = decoded<std::vector<Tag>>(file.before), after = decoded<std::vector<Tag>>(file.after);
  if (!before || !after) return "  restored " + file.path.string() + "\n";
  // Titles come from the files, which may have been edited by hand: shown on one line, without controls.
  std::map<UUID, Tag> old;
  for (const auto& tag : *after) old.emplace(tag.id, tag);
  std::string text;
  for (const auto& tag : *before) {
    const auto match = old.find(tag.id);
    if (match == old.end()) {
      text += "  brought back the tag \"" + singleLine(tag.title) + "\"\n";
      continue;
    }
    if (match->second.title != tag.title) {
      text += "  renamed the tag \"" + singleLine(match->second.title) + "\" back to \"" +
              singleLine(tag.title) + "\"\n";
    }
    old.erase(match);
  }
  for (const auto& [id, tag] : old) text += "  removed the tag \"" + singleLine(tag.title) + "\"\n";
  return text;
}

void runUndo(const GlobalOptions& global) {
  const DataFolder folder(global);
  // Without a data folder there is no change to take back, and nothing to create for finding that out.
  if (!std::filesystem::is_directory(folder.path()))
    throw ToolError(std::string(ChangeHistory::nothingToUndo));
  const FolderLock lock = folder.lockForChange();
  const auto undone = ChangeHistory(folder.historyFile()).undoLast();
  std::string report = "Undid: cardiolith " + singleLine(undone.commandLine) + "\n";
  for (const auto& file : undone.files) {
    report += file.path.filename() == "tags" ? tagChanges(file) : readingChanges(file);
  }
  std::cout << report;
}

}  // namespace

void addUndoCommand(CLI::App& app, const GlobalOptions& global) {
  auto* command = app.add_subcommand(
      "undo", "Take back the last change cardiolith made to the log or the tags; repeat to go further back");
  command->callback([&global] { runUndo(global); });
}

}  // namespace cardiolith::tool
