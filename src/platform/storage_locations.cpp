#include "cardiolith/platform/storage_locations.hpp"

#include <cstdlib>
#include <system_error>

namespace cardiolith {
namespace {

std::optional<std::filesystem::path> environmentPath(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  return std::filesystem::path(value);
}

// $XDG_DATA_HOME, else $HOME/.local/share.
std::optional<std::filesystem::path> dataHome() {
  if (auto xdg = environmentPath("XDG_DATA_HOME")) return xdg;
  if (auto home = environmentPath("HOME")) return *home / ".local" / "share";
  return std::nullopt;
}

}  // namespace

StorageLocations StorageLocations::current() {
  StorageLocations locations;

  auto container = environmentPath("CARDIOLITH_GROUP_CONTAINER");
  if (!container) {
    if (auto base = dataHome()) container = *base / "group.cardiolith";
  }
  if (container) {
    std::error_code error;
    std::filesystem::create_directories(*container, error);
    if (!error && std::filesystem::is_directory(*container, error)) locations.sharedContainer = container;
  }

  auto documents = environmentPath("CARDIOLITH_DOCUMENTS_DIR");
  if (!documents) {
    if (auto base = dataHome()) documents = *base / "cardiolith";
  }
  if (documents) locations.documentDirectories.push_back(*documents);
  return locations;
}

}  // namespace cardiolith
