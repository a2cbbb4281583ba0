#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace cardiolith::tool {

// Options that every subcommand honours.
struct GlobalOptions {
  // One folder for both the shared container and the private documents folder; absent: the platform's
  // default places.
  std::optional<std::filesystem::path> dataDir;
  // --color: "auto" (colour on a terminal, unless NO_COLOR is set), "always" or "never".
  std::string color = "auto";
};

}  // namespace cardiolith::tool
