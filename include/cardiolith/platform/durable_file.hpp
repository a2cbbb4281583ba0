#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

// Whole files read and replaced so that a crash at any moment leaves either the old or the new content,
// for programs that keep files of their own beside the stores' (a history of changes, for instance).
// Not synchronised: callers that share a file serialise their access themselves.
namespace cardiolith::durable_file {

// The whole content, or nothing when there is no file. std::filesystem::filesystem_error, naming the
// path, when it exists but can't be read.
std::optional<std::string> readIfPresent(const std::filesystem::path& path);

// Replaces the content through a temporary file in the same folder that is flushed to disk and renamed
// over `path`, and flushes the folder. On failure `path` is left as it was. filesystem_error.
void replace(const std::filesystem::path& path, std::string_view bytes);

// Removes the file, if there is one, and flushes the folder. filesystem_error when it can't.
void remove(const std::filesystem::path& path);

}  // namespace cardiolith::durable_file
