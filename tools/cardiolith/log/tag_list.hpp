#pragma once

#include <cardiolith/model/tag.hpp>
#include <cardiolith/storage/tags_manager.hpp>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "log/change_history.hpp"
#include "log/data_folder.hpp"

namespace cardiolith::tool {

// The data folder's tags, loaded (durably saved) through a TagsManager and ready to use.
class TagList {
 public:
  explicit TagList(const DataFolder& folder);
  ~TagList();

  TagsManager& manager() { return manager_; }
  const TagsManager& manager() const { return manager_; }

  // The tag with this title: the canonically equal one, else the only one equal when letter case is
  // ignored (Unicode case folding). ToolError listing the known titles when there is none.
  Tag find(std::string_view title) const;
  // The tag with this title, if any, by the same rule.
  std::optional<Tag> lookUp(std::string_view title) const;

  // The titles of these tag ids in the user's locale order; unknown ids are skipped.
  std::vector<std::string> titles(const std::optional<std::set<UUID>>& ids) const;
  // Every tag's title, in the user's locale order.
  std::vector<std::string> sortedTitles() const;

  // ToolError when the tags file exists but could not be read: a change would replace it.
  void requireReadable() const;
  // Blocks until every change has been written, and records it in the undo history. ToolError when a save
  // failed. Call it under the folder's exclusive lock, taken before this list was loaded.
  void finishSaving();

 private:
  std::filesystem::path file_;
  ChangeHistory history_;
  std::optional<std::string> savedContent_;  // the file as loaded, or as last recorded
  TagsManager manager_;
};

}  // namespace cardiolith::tool
