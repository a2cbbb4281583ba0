#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace cardiolith::tool {

// A failure the user can act on. main() prints what() on standard error and exits with status 1; the
// message says what was wrong and, where there is one, what to do instead.
struct ToolError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Text that holds a filesystem error ("filesystem error: cannot open file: Permission denied [/x/readings]"),
// for a message that names the file already: without the standard library's "filesystem error: " and the
// paths it appends in brackets. Text without one is returned as it is.
inline std::string fileErrorReason(std::string text) {
  constexpr std::string_view marker = "filesystem error: ";
  const auto at = text.find(marker);
  if (at == std::string::npos) return text;
  text.erase(at, marker.size());
  while (text.ends_with(']')) {
    const auto open = text.rfind(" [");
    if (open == std::string::npos || open < at) break;
    text.erase(open);
  }
  return text;
}

}  // namespace cardiolith::tool
