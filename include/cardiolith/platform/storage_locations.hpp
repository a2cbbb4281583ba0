#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "cardiolith/export.hpp"

namespace cardiolith {

// Where the shared container (every process of the app family) and the private documents folders are.
struct CARDIOLITH_EXPORT StorageLocations {
  std::optional<std::filesystem::path> sharedContainer;    // absent: the process has no access
  std::vector<std::filesystem::path> documentDirectories;  // the first one is used; may be empty

  // On Linux: the shared container is $CARDIOLITH_GROUP_CONTAINER, else $XDG_DATA_HOME/group.cardiolith,
  // else $HOME/.local/share/group.cardiolith, created with its parents (absent when that fails); the
  // documents folder is $CARDIOLITH_DOCUMENTS_DIR, else $XDG_DATA_HOME/cardiolith, else
  // $HOME/.local/share/cardiolith, never created. Never the user's own ~/Documents.
  [[nodiscard]] static StorageLocations current();
};

}  // namespace cardiolith
