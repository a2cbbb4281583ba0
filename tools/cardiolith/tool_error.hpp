#pragma once

#include <stdexcept>

namespace cardiolith::tool {

// A failure the user can act on. main() prints what() on standard error and exits with status 1; the
// message says what was wrong and, where there is one, what to do instead.
struct ToolError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace cardiolith::tool
