#include "cardiolith/platform/storage_locations.hpp"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "cardiolith/platform/logger.hpp"

namespace cardiolith {
namespace {

std::optional<std::filesystem::path> environmentPath(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  std::filesystem::path path(value);
  if (!path.is_absolute()) {
    Logger::standard().error(std::string("ignoring ") + name + "=\"" + value +
                             "\": it must be an absolute path (a relative one would depend on the current "
                             "folder)");
    return std::nullopt;
  }
  return path;
}

// $XDG_DATA_HOME, else $HOME/.local/share.
std::optional<std::filesystem::path> dataHome() {
  if (auto xdg = environmentPath("XDG_DATA_HOME")) return xdg;
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0')
    return std::filesystem::path(home) / ".local" / "share";
  return std::nullopt;
}

}  // namespace

StorageLocations StorageLocations::planned() {
  StorageLocations locations;
  const auto base = dataHome();
  locations.sharedContainer = environmentPath("CARDIOLITH_GROUP_CONTAINER");
  if (!locations.sharedContainer && base) locations.sharedContainer = *base / "group.cardiolith";
  auto documents = environmentPath("CARDIOLITH_DOCUMENTS_DIR");
  if (!documents && base) documents = *base / "cardiolith";
  if (documents) locations.documentDirectories.push_back(*documents);
  return locations;
}

StorageLocations StorageLocations::current() {
  auto locations = planned();
  std::error_code error;
  if (locations.sharedContainer && !createPrivateFolder(*locations.sharedContainer, error))
    locations.sharedContainer.reset();
  return locations;
}

bool createPrivateFolder(const std::filesystem::path& folder, std::error_code& error) {
  error.clear();
  std::error_code ignored;  // a missing folder is no error here
  if (std::filesystem::is_directory(folder, ignored)) return true;
  const auto parent = folder.parent_path();
  if (!parent.empty() && parent != folder && !createPrivateFolder(parent, error)) return false;
  if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
    error.assign(errno, std::generic_category());
    return false;
  }
  if (std::filesystem::is_directory(folder, ignored)) return true;
  error = std::make_error_code(std::errc::not_a_directory);
  return false;
}

}  // namespace cardiolith
