#include "commands/undo_change.hpp"

#include <cardiolith/model/json.hpp>
#include <cardiolith/model/tag.hpp>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>

#include "log/change_history.hpp"
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
void addReadingChanges(const ChangeHistory::RestoredFile& file, std::vector<std::string>& lines) {
  const auto before = decoded<Readings>(file.before), after = decoded<Readings>(file.after);
  if (!before || !after) return lines.push_back("restored " + file.path.string());
  std::map<std::string, std::shared_ptr<Reading>> old;
  for (const auto& reading : after->readings) old[reading->id()] = reading;
  for (const auto& reading : before->readings) {
    const auto match = old.find(reading->id());
    if (match == old.end()) {
      lines.push_back("brought back " + describeWithId(before->readings, *reading));
      continue;
    }
    if (!sameReading(*reading, *match->second)) {
      lines.push_back("put back " + describeWithId(before->readings, *reading) + " (was " +
                      displayDateFormatter().string(match->second->date()) + "  " +
                      describeValues(*match->second) + ")");
    }
    old.erase(match);
  }
  for (const auto& reading : after->readings) {
    if (old.contains(reading->id())) lines.push_back("removed " + describeWithId(after->readings, *reading));
  }
}

void addTagChanges(const ChangeHistory::RestoredFile& file, std::vector<std::string>& lines) {
  // Without a tags file, or with an empty one, the library gives the ten default tags.
  if (!file.before || file.before == "[]") return lines.push_back("the tags are the ten default ones again");
  const auto before = decoded<std::vector<Tag>>(file.before), after = decoded<std::vector<Tag>>(file.after);
  if (!before || !after) return lines.push_back("restored " + file.path.string());
  std::map<UUID, Tag> old;
  for (const auto& tag : *after) old.emplace(tag.id, tag);
  for (const auto& tag : *before) {
    const auto match = old.find(tag.id);
    if (match == old.end()) {
      lines.push_back("brought back the tag \"" + singleLine(tag.title) + "\"");
      continue;
    }
    if (match->second.title != tag.title)
      lines.push_back("renamed the tag \"" + singleLine(match->second.title) + "\" back to \"" +
                      singleLine(tag.title) + "\"");
    old.erase(match);
  }
  for (const auto& [id, tag] : old) lines.push_back("removed the tag \"" + singleLine(tag.title) + "\"");
}

}  // namespace

UndoneChange undoLastChange(const DataFolder& folder) {
  // Without a data folder there is no change to take back, and nothing to create for finding that out.
  if (!std::filesystem::is_directory(folder.path()))
    throw ToolError(std::string(ChangeHistory::nothingToUndo));
  const FolderLock lock = folder.lockForChange();
  const auto undone = ChangeHistory(folder.historyFile()).undoLast();
  // The command line and the titles come from files that may have been edited by hand: one line each,
  // without terminal controls.
  UndoneChange result{singleLine(undone.commandLine), {}};
  for (const auto& file : undone.files) {
    if (file.path.filename() == "tags") {
      addTagChanges(file, result.changes);
    } else {
      addReadingChanges(file, result.changes);
    }
  }
  return result;
}

}  // namespace cardiolith::tool
