#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace cardiolith::detail {

// The whole content of a file. std::filesystem::filesystem_error, naming the path, when it can't be read.
// `spareCapacity` leaves that many bytes of capacity after the content (for readers that look past the end).
std::string readWholeFile(const std::filesystem::path& path, std::size_t spareCapacity = 0);

// Writes the whole file in place, creating or truncating it. filesystem_error when it fails.
void writeWholeFile(const std::filesystem::path& path, std::string_view bytes);

// Replaces the file's content so that a crash at any moment leaves either the old or the new content:
// the bytes go to a new temporary file in the same folder, which is flushed to disk and renamed over
// `path` (keeping the old file's permissions), and then the folder itself is flushed. On failure the
// temporary file is removed and `path` is left as it was. filesystem_error naming `path` when it fails.
void replaceWholeFileDurably(const std::filesystem::path& path, std::string_view bytes);

// Creates a new file holding the bytes, flushed to disk together with its folder entry. Fails with
// EEXIST when anything is at `path` already; a failed write removes the partial file. filesystem_error.
void createFileDurably(const std::filesystem::path& path, std::string_view bytes);

// Renames `from` to `to` without ever replacing: fails with EEXIST when anything is at `to` already, and
// then changes nothing. filesystem_error naming both paths.
void moveWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace cardiolith::detail
