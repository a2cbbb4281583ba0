#include "log/tag_list.hpp"

#include <algorithm>
#include <cardiolith/platform/text.hpp>
#include <cctype>
#include <iostream>

#include "log/library_log.hpp"
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

constexpr std::string_view loadFailure = "Unable to load tags";
constexpr std::string_view saveFailure = "Failed to save tags";

// The library's own message names no file and says nothing of what to do; TagList says both, once.
bool existsMutingLoadFailure(const std::filesystem::path& file) {
  LibraryLog::mute(std::string(loadFailure));
  std::error_code error;
  return std::filesystem::exists(file, error);
}

std::string caseFolded(std::string_view title) {
  std::string folded = text::canonical(title);
  std::transform(folded.begin(), folded.end(), folded.begin(),
                 [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
  return folded;
}

}  // namespace

TagList::TagList(const DataFolder& folder)
    : file_(folder.tagsFile()),
      fileExisted_(existsMutingLoadFailure(file_)),
      manager_(folder.locations(), StorageOptions{.durable = true}) {
  manager_.waitUntilLoaded();
  // Before the first tag change there is no tags file and the library falls back on the default tags;
  // that is the normal start, not something to warn about.
  if (!fileExisted_) return;
  if (const auto failure = LibraryLog::firstLogged(loadFailure)) {
    std::cerr << "cardiolith: can't read the tags file " << file_.string() << " ("
              << failure->substr(std::min(failure->size(), loadFailure.size() + 2))
              << "); the default tags stand in for it. Move it aside (or restore it from a backup) to use "
                 "your tags again.\n";
  }
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
  // A long list would bury the message; the whole list is one command away.
  constexpr std::size_t mostListed = 20;
  std::vector<std::string> known;
  for (const auto& tag : manager_.tags()) known.push_back("\"" + singleLine(tag.title) + "\"");
  std::sort(known.begin(), known.end());
  std::string list;
  for (std::size_t i = 0; i < known.size() && i < mostListed; ++i)
    list += (list.empty() ? "" : ", ") + known[i];
  if (known.size() > mostListed)
    list += " and " + std::to_string(known.size() - mostListed) + " more (cardiolith tags lists them all)";
  throw ToolError("there is no tag \"" + singleLine(title) + "\"; the tags are: " +
                  (list.empty() ? "(none)" : list) + "\nAdd a new one with: cardiolith tags add TITLE");
}

std::vector<std::string> TagList::titles(const std::optional<std::set<UUID>>& ids) const {
  std::vector<std::string> result;
  if (!ids) return result;
  for (const auto& tag : manager_.tags(*ids)) result.push_back(tag.title);
  return result;
}

void TagList::requireReadable() const {
  if (fileExisted_ && LibraryLog::hasLogged(loadFailure)) {
    throw ToolError(
        "can't change the tags while the tags file " + file_.string() +
        " can't be read; nothing was changed. Move it aside (or restore it from a backup) first.");
  }
}

void TagList::finishSaving() {
  manager_.waitForPendingSaves();
  if (LibraryLog::hasLogged(saveFailure)) {
    throw ToolError("the tags could not be saved to " + file_.string() + " (see the message above)");
  }
}

}  // namespace cardiolith::tool
