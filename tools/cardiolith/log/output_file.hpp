#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace cardiolith::tool {

// Writes a file the user asked for (an export, a chart), replacing it. ToolError when it can't be written,
// or when it is one of `dataFiles`: a typo in --out must not put a CSV in the place of the log.
void writeOutputFile(const std::filesystem::path& path, std::string_view text,
                     const std::vector<std::filesystem::path>& dataFiles);

}  // namespace cardiolith::tool
