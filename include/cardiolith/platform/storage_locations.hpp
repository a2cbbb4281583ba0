#pragma once

#include <filesystem>
#include <optional>
#include <system_error>
#include <vector>

#include "cardiolith/export.hpp"

namespace cardiolith {

// Where the shared container (every process of the app family) and the private documents folders are.
struct CARDIOLITH_EXPORT StorageLocations {
  std::optional<std::filesystem::path> sharedContainer;    // absent: the process has no access
  std::vector<std::filesystem::path> documentDirectories;  // the first one is used; may be empty

  // On Linux: the shared container is $CARDIOLITH_GROUP_CONTAINER, else $XDG_DATA_HOME/group.cardiolith,
  // else $HOME/.local/share/group.cardiolith, created with its parents by createPrivateFolder (absent when
  // that fails); the documents folder is $CARDIOLITH_DOCUMENTS_DIR, else $XDG_DATA_HOME/cardiolith, else
  // $HOME/.local/share/cardiolith, never created. Never the user's own ~/Documents. A relative value of
  // one of the three variables is invalid (it would make the log depend on the current folder): it is
  // ignored, as if unset, and an error-level message naming it is logged.
  [[nodiscard]] static StorageLocations current();
  // The same places as current(), without creating any folder: for readers, which have nothing to read
  // where no folder is.
  [[nodiscard]] static StorageLocations planned();
};

// Creates `folder` and its missing parents, each readable by its owner only (the log is health data);
// folders that exist keep their permissions. True when `folder` is a folder afterwards; otherwise false,
// with the reason in `error`.
[[nodiscard]] bool createPrivateFolder(const std::filesystem::path& folder, std::error_code& error);

}  // namespace cardiolith
