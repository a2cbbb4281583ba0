#include "cardiolith/platform/durable_file.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/file_io.hpp"

namespace cardiolith::durable_file {

std::optional<std::string> readIfPresent(const std::filesystem::path& path) {
  try {
    return detail::readWholeFile(path);
  } catch (const std::filesystem::filesystem_error& error) {
    if (error.code() == std::errc::no_such_file_or_directory) return std::nullopt;
    throw;
  }
}

void replace(const std::filesystem::path& path, std::string_view bytes) {
  detail::replaceWholeFileDurably(path, bytes);
}

void remove(const std::filesystem::path& path) {
  if (::unlink(path.c_str()) != 0) {
    if (errno == ENOENT) return;
    throw std::filesystem::filesystem_error("cannot remove file", path,
                                            std::error_code(errno, std::generic_category()));
  }
  const auto folder = path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
  detail::FileDescriptor handle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (handle.get() < 0 || (::fsync(handle.get()) != 0 && errno != EINVAL))
    throw std::filesystem::filesystem_error("cannot flush folder to disk", folder,
                                            std::error_code(errno, std::generic_category()));
}

}  // namespace cardiolith::durable_file
