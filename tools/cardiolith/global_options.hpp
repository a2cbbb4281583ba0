#pragma once

#include <filesystem>
#include <optional>

namespace cardiolith::tool {

// Options that every subcommand honours.
struct GlobalOptions {
  // One folder for both the shared container and the private documents folder; absent: the platform's
  // default places.
  std::optional<std::filesystem::path> dataDir;
};

}  // namespace cardiolith::tool
