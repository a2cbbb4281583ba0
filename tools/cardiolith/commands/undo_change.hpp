#pragma once

#include <string>
#include <vector>

#include "log/data_folder.hpp"

namespace cardiolith::tool {

struct UndoneChange {
  // The change taken back, as it was typed or as the web page names it: "add 138/85 --pulse 71".
  std::string commandLine;
  // What undo did, a line each: "brought back …", "put back … (was …)", "removed …", and for the tags
  // "brought back the tag …" and the like.
  std::vector<std::string> changes;
};

// Under the exclusive folder lock, puts the readings and tags files back as they were before the newest
// change recorded in the undo history, byte for byte, and drops that change from the history. ToolError,
// changing nothing, when there is nothing to undo, the history can't be read, or a file was changed since
// by something else.
[[nodiscard]] UndoneChange undoLastChange(const DataFolder& folder);

}  // namespace cardiolith::tool
