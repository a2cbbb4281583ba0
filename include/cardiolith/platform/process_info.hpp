#pragma once

#include <string>
#include <vector>

#include "cardiolith/export.hpp"

namespace cardiolith {

// The process's launch arguments. Read from the process itself (/proc/self/cmdline), so a host does not
// have to pass argv along; a host or a test may replace them.
struct CARDIOLITH_EXPORT ProcessInfo {
  // The launch arguments, argv[0] first.
  [[nodiscard]] static std::vector<std::string> arguments();
  // Replaces the launch arguments for the rest of the process. Safe from any thread; a reader on another
  // thread (analytics checks its switch-off argument at each event) sees either the old or the new list
  // whole, never a mixture.
  static void setArguments(std::vector<std::string> arguments);
  // True when one argument equals `argument` exactly (whole argument, case-sensitive).
  [[nodiscard]] static bool hasArgument(const std::string& argument);
};

}  // namespace cardiolith
