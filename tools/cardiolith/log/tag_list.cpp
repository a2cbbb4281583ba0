#include "log/tag_list.hpp"

#include <algorithm>
#include <cardiolith/platform/durable_file.hpp>
#include <cardiolith/platform/text.hpp>
#include <iostream>

#include "log/library_log.hpp"
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

constexpr std::string_view loadFailure = "Unable to load tags";

// The library's own message names no file and says nothing of what to do; TagList says both, once.
std::filesystem::path mutingLoadFailure(std::filesystem::path file) {
  LibraryLog::mute(std::string(loadFailure));
  return file;
}

// The file's bytes, for the undo history; an unreadable file is reported by the load itself.
std::optional<std::string> readForHistory(const std::filesystem::path& file) {
  try {
    return durable_file::readIfPresent(file);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

bool byLocale(const std::string& a, const std::string& b) { return text::localeCompare(a, b) < 0; }

}  // namespace

TagList::TagList(const DataFolder& folder)
    : file_(mutingLoadFailure(folder.tagsFile())),
      history_(folder.historyFile()),
      savedContent_(readForHistory(file_)),
      manager_(folder.locations(), StorageOptions{.durable = true}) {
  manager_.waitUntilLoaded();
  // A missing file is the normal first start, with the default tags; only a file that is there but can't
  // be read is worth a word.
  if (!manager_.loadFailed()) return;
  const auto failure = LibraryLog::firstLogged(loadFailure);
  std::cerr << "cardiolith: can't read the tags file " << file_.string();
  if (failure) {
    std::cerr << " (" << fileErrorReason(failure->substr(std::min(failure->size(), loadFailure.size() + 2)))
              << ")";
  }
  std::cerr << "; the default tags stand in for it. Move it aside (or restore it from a backup) to use your "
               "tags again.\n";
}

TagList::~TagList() { manager_.waitForPendingSaves(); }

std::optional<Tag> TagList::lookUp(std::string_view title) const {
  const auto tags = manager_.tags();
  for (const auto& tag : tags) {
    if (text::canonicallyEqual(tag.title, title)) return tag;
  }
  const std::string folded = text::caseFolded(title);
  std::optional<Tag> match;
  for (const auto& tag : tags) {
    if (text::caseFolded(tag.title) != folded) continue;
    if (match) return std::nullopt;  // "morning" with both "Morning" and "MORNING": ask for the exact title
    match = tag;
  }
  return match;
}

Tag TagList::find(std::string_view title) const {
  if (auto tag = lookUp(title)) return *tag;
  // A long list would bury the message; the whole list is one command away.
  constexpr std::size_t mostListed = 20;
  const auto known = sortedTitles();
  std::string list;
  for (std::size_t i = 0; i < known.size() && i < mostListed; ++i)
    list += (list.empty() ? "\"" : ", \"") + singleLine(known[i]) + "\"";
  if (known.size() > mostListed)
    list += " and " + std::to_string(known.size() - mostListed) + " more (cardiolith tags lists them all)";
  throw ToolError("there is no tag \"" + singleLine(title) + "\"; the tags are: " +
                  (list.empty() ? "(none)" : list) + "\nAdd a new one with: cardiolith tags add TITLE");
}

std::vector<std::string> TagList::titles(const std::optional<std::set<UUID>>& ids) const {
  std::vector<std::string> result;
  if (!ids) return result;
  for (const auto& tag : manager_.tags(*ids)) result.push_back(tag.title);
  std::stable_sort(result.begin(), result.end(), byLocale);
  return result;
}

std::vector<std::string> TagList::sortedTitles() const {
  std::vector<std::string> result;
  for (const auto& tag : manager_.tags()) result.push_back(tag.title);
  std::stable_sort(result.begin(), result.end(), byLocale);
  return result;
}

void TagList::requireReadable() const {
  if (manager_.loadFailed()) {
    throw ToolError(
        "can't change the tags while the tags file " + file_.string() +
        " can't be read; nothing was changed. Move it aside (or restore it from a backup) first.");
  }
}

void TagList::finishSaving() {
  try {
    manager_.finishPendingSaves();
  } catch (const std::exception&) {
    // The library has logged the reason already; it is printed above this line.
    throw ToolError("the tags could not be saved to " + file_.string() + " (see the message above)");
  }
  const auto saved = readForHistory(file_);
  if (saved == savedContent_) return;
  history_.recordWrite(file_, savedContent_);
  savedContent_ = saved;
}

}  // namespace cardiolith::tool
