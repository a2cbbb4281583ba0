#include "log/tag_list.hpp"

#include <algorithm>
#include <cardiolith/platform/text.hpp>
#include <cctype>

#include "log/library_log.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

std::filesystem::path mutingFirstUse(std::filesystem::path file) {
  std::error_code error;
  // Before the first tag change there is no tags file and the library falls back on the default tags;
  // that is the normal start, not something to warn about.
  if (!std::filesystem::exists(file, error)) LibraryLog::mute("Unable to load tags");
  return file;
}

std::string caseFolded(std::string_view title) {
  std::string folded = text::canonical(title);
  std::transform(folded.begin(), folded.end(), folded.begin(),
                 [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
  return folded;
}

}  // namespace

TagList::TagList(const DataFolder& folder)
    : file_(mutingFirstUse(folder.tagsFile())),
      manager_(folder.locations(), StorageOptions{.durable = true}) {
  manager_.waitUntilLoaded();
}

TagList::~TagList() { manager_.waitForPendingSaves(); }

std::optional<Tag> TagList::lookUp(std::string_view title) const {
  const auto tags = manager_.tags();
  for (const auto& tag : tags) {
    if (text::canonicallyEqual(tag.title, title)) return tag;
  }
  const std::string folded = caseFolded(title);
  std::optional<Tag> match;
  for (const auto& tag : tags) {
    if (caseFolded(tag.title) != folded) continue;
    if (match) return std::nullopt;  // "morning" with both "Morning" and "MORNING": ask for the exact title
    match = tag;
  }
  return match;
}

Tag TagList::find(std::string_view title) const {
  if (auto tag = lookUp(title)) return *tag;
  std::vector<std::string> known;
  for (const auto& tag : manager_.tags()) known.push_back("\"" + tag.title + "\"");
  std::sort(known.begin(), known.end());
  std::string list;
  for (const auto& entry : known) list += (list.empty() ? "" : ", ") + entry;
  throw ToolError("there is no tag \"" + std::string(title) + "\"; the tags are: " +
                  (list.empty() ? "(none)" : list) + "\nAdd a new one with: cardiolith tags add TITLE");
}

std::vector<std::string> TagList::titles(const std::optional<std::set<UUID>>& ids) const {
  std::vector<std::string> result;
  if (!ids) return result;
  for (const auto& tag : manager_.tags(*ids)) result.push_back(tag.title);
  return result;
}

void TagList::requireReadable() const {
  if (manager_.loadFailed()) {
    throw ToolError("can't read the tags file " + file_.string() +
                    "; nothing was changed. Move it aside (or restore it from a backup) to change the tags.");
  }
}

void TagList::finishSaving() {
  try {
    manager_.finishPendingSaves();
  } catch (const std::exception&) {
    // The library has logged the reason already; it is printed above this line.
    throw ToolError("the tags could not be saved to " + file_.string() + " (see the message above)");
  }
}

}  // namespace cardiolith::tool
