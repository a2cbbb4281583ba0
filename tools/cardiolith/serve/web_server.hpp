#pragma once

#include "log/data_folder.hpp"

namespace cardiolith::tool::serve {

struct ServeOptions {
  // 0: any free port, which is printed.
  int port = 8470;
  // Open the page in the desktop's browser with xdg-open.
  bool open = false;
};

// Serves the folder's log on http://127.0.0.1:port/ and http://[::1]:port/ (when the machine has IPv6)
// until SIGINT or SIGTERM, then lets the requests under way finish and returns. Prints the address on
// standard output once listening. ToolError when the port can't be bound.
void serveUntilSignalled(const DataFolder& folder, const ServeOptions& options);

}  // namespace cardiolith::tool::serve
