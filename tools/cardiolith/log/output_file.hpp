#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace cardiolith::tool {

// Writes a file the user asked for (an export, a chart), replacing it. The text goes to a temporary file
// beside it, which is renamed into place only when it is whole, so a full disk or a crash leaves the
// previous file as it was. When `path` is a symbolic link, the file it names is written.
// ToolError saying why it can't be written (no such folder, a folder in the way, no permission, a full
// disk), or when it is one of `ownFiles` (DataFolder::ownFiles()), compared by path and by identity, as
// a file that exists or one that may come: a typo in --out must not put a CSV in the place of the log;
// and for an empty path.
void writeOutputFile(const std::filesystem::path& path, std::string_view text,
                     const std::vector<std::filesystem::path>& ownFiles);

}  // namespace cardiolith::tool
