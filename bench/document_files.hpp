#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace cardiolith::bench {

// A folder holding the file "readings" with the generated document of this size, written once per
// process, removed at exit. The folder is laid out as a store's shared container.
const std::filesystem::path& documentFolder(std::size_t readingCount);

// The floor for loading: the whole file into a string with one open, fstat and read loop.
std::string readFileBytes(const std::filesystem::path& path);
// The floor for saving: the bytes written in place, creating or truncating the file, with one open and
// write loop.
void writeFileBytes(const std::filesystem::path& path, std::string_view bytes);

}  // namespace cardiolith::bench
