#include <algorithm>
#include <cardiolith/platform/text.hpp>
#include <cardiolith/platform/uuid.hpp>
#include <cctype>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "commands/commands.hpp"
#include "log/data_folder.hpp"
#include "log/folder_lock.hpp"
#include "log/tag_list.hpp"
#include "render/reading_text.hpp"
#include "render/text_table.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct TagsOptions {
  std::string title;
  std::string newTitle;
  std::string color = "8e8e93";
  bool force = false;
};

// Six hex digits, with or without a leading "#", kept in lower case without the mark like the default tags.
std::string checkedColor(std::string color) {
  if (!color.empty() && color.front() == '#') color.erase(0, 1);
  const bool hex = color.size() == 6 && std::all_of(color.begin(), color.end(),
                                                    [](unsigned char c) { return std::isxdigit(c) != 0; });
  if (!hex) throw ToolError("--color: \"" + color + "\" is not a colour; write six hex digits, e.g. 34c759");
  std::transform(color.begin(), color.end(), color.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return color;
}

constexpr std::size_t maximumTitleLength = 100;

// A title that shows as typed: readable on one line, visible, and short enough for a list or a table.
std::string checkedTitle(const std::string& title) {
  if (!text::isValidUTF8(title)) throw ToolError("the tag title is not valid UTF-8");
  if (text::isBlank(title))
    throw ToolError(
        "a tag needs a title that shows something, not only spaces; e.g. cardiolith tags add Clinic");
  if (text::printable(title) != title) {
    throw ToolError(
        "a tag title can't hold line breaks, tabs, control characters or direction overrides; write it on "
        "one "
        "line, e.g. cardiolith tags add \"After walk\"");
  }
  if (text::codePointCount(title) > maximumTitleLength) {
    throw ToolError("the tag title has " + std::to_string(text::codePointCount(title)) +
                    " characters; at most 100 are allowed, e.g. cardiolith tags add \"After walk\"");
  }
  return title;
}

void refuseTakenTitle(const TagList& tags, const std::string& title, const UUID* renamed = nullptr) {
  const auto existing = tags.lookUp(title);
  if (existing && (renamed == nullptr || existing->id != *renamed)) {
    throw ToolError("there is already a tag \"" + singleLine(existing->title) + "\"");
  }
}

void listTags(const GlobalOptions& global) {
  const DataFolder folder(global);
  const TagList tags(folder);
  auto list = tags.manager().tags();
  std::stable_sort(list.begin(), list.end(),
                   [](const Tag& a, const Tag& b) { return text::localeCompare(a.title, b.title) < 0; });
  TextTable table({{"Tag"}, {"Colour"}});
  for (const auto& tag : list) table.addRow({singleLine(tag.title), "#" + tag.colorHex});
  table.print(std::cout);
}

// Runs one change of the tag list under the folder lock and waits until it is written. A change that needs
// the readings gets them from the readings log, which then holds the lock; others take the lock alone, so
// that a damaged readings file doesn't stop them.
template <class Change>
void changeLockedTags(const DataFolder& folder, const ReadingList& readings, Change& change) {
  TagList tags(folder);
  tags.requireReadable();
  change(tags, readings);
  tags.finishSaving();
}

template <class Change>
void changeTags(const GlobalOptions& global, bool withReadings, Change change) {
  const DataFolder folder(global);
  if (withReadings) {
    ReadingsLog log(folder, ReadingsLog::Access::change);
    changeLockedTags(folder, log.readings(), change);
  } else {
    const FolderLock lock = folder.lockForChange();
    changeLockedTags(folder, ReadingList{}, change);
  }
}

void addTag(const TagsOptions& options, const GlobalOptions& global) {
  const std::string title = checkedTitle(options.title);
  const std::string color = checkedColor(options.color);
  changeTags(global, false, [&](TagList& tags, const ReadingList&) {
    refuseTakenTitle(tags, title);
    tags.manager().insert(Tag{UUID::random(), title, color});
  });
  std::cout << "Added tag \"" << title << "\" (#" << color << ")\n";
}

void renameTag(const TagsOptions& options, const GlobalOptions& global) {
  const std::string newTitle = checkedTitle(options.newTitle);
  std::string oldTitle;
  changeTags(global, false, [&](TagList& tags, const ReadingList&) {
    const Tag tag = tags.find(options.title);
    refuseTakenTitle(tags, newTitle, &tag.id);
    oldTitle = tag.title;
    // The id stays, so every reading that carries the tag shows the new title.
    tags.manager().update(Tag{tag.id, newTitle, tag.colorHex});
  });
  std::cout << "Renamed tag \"" << singleLine(oldTitle) << "\" to \"" << newTitle << "\"\n";
}

void deleteTag(const TagsOptions& options, const GlobalOptions& global) {
  std::string report;
  changeTags(global, true, [&](TagList& tags, const ReadingList& readings) {
    const Tag tag = tags.find(options.title);
    const auto carriers = std::count_if(readings.begin(), readings.end(), [&](const auto& reading) {
      return reading->tagIDs() && reading->tagIDs()->contains(tag.id);
    });
    const std::string count =
        std::to_string(carriers) + (carriers == 1 ? " reading carries" : " readings carry");
    if (carriers > 0 && !options.force) {
      throw ToolError(
          count + " the tag \"" + tag.title + "\" (cardiolith list --tag '" + tag.title +
          "' shows them); they would keep their values but lose the tag.\nAdd --force to delete it.");
    }
    tags.manager().deleteTag(tag);
    const std::string lost = std::to_string(carriers) +
                             (carriers == 1 ? " reading no longer carries" : " readings no longer carry");
    report =
        "Deleted tag \"" + singleLine(tag.title) + "\"" + (carriers > 0 ? "; " + lost + " it" : "") + "\n";
    if (tags.manager().tags().empty()) {
      report += "That was the last tag, so the ten default tags come back (cardiolith tags shows them).\n";
    }
  });
  std::cout << report;
}

}  // namespace

void addTagsCommand(CLI::App& app, const GlobalOptions& global) {
  auto options = std::make_shared<TagsOptions>();
  auto* tags = app.add_subcommand("tags", "List, add, rename or delete the tags that readings can carry");
  tags->require_subcommand(0, 1);

  auto* list = tags->add_subcommand("list", "List the tags (the default)");
  list->callback([&global] { listTags(global); });

  auto* add = tags->add_subcommand("add", "Add a tag");
  add->add_option("title", options->title, "The new tag's title")->required();
  add->add_option("--color,--colour", options->color, "Six hex digits, e.g. 34c759 (default: grey)");
  add->callback([options, &global] { addTag(*options, global); });

  auto* rename = tags->add_subcommand("rename", "Rename a tag; readings keep it");
  rename->add_option("title", options->title, "The tag's title now")->required();
  rename->add_option("new-title", options->newTitle, "Its new title")->required();
  rename->callback([options, &global] { renameTag(*options, global); });

  auto* remove = tags->add_subcommand("delete", "Delete a tag; readings that carried it keep their values");
  remove->add_option("title", options->title, "The tag's title")->required();
  remove->add_flag("--force", options->force, "Delete it even though readings carry it");
  remove->callback([options, &global] { deleteTag(*options, global); });

  tags->callback([tags, &global] {
    if (tags->get_subcommands().empty()) listTags(global);
  });
}

}  // namespace cardiolith::tool
