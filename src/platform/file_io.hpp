#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace cardiolith::detail {

// The whole content of a file. std::filesystem::filesystem_error, naming the path, when it can't be read.
std::string readWholeFile(const std::filesystem::path& path);

// Writes the whole file in place, creating or truncating it. filesystem_error when it fails.
void writeWholeFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace cardiolith::detail
