#pragma once

#include <string>
#include <vector>

namespace cardiolith {

// The process's launch arguments. Read from the process itself (/proc/self/cmdline), so a host does not
// have to pass argv along; a host or a test may replace them.
struct ProcessInfo {
  // The launch arguments, argv[0] first.
  static std::vector<std::string> arguments();
  // Replaces the launch arguments for the rest of the process.
  static void setArguments(std::vector<std::string> arguments);
  // True when one argument equals `argument` exactly (whole argument, case-sensitive).
  static bool hasArgument(const std::string& argument);
};

}  // namespace cardiolith
