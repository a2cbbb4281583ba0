#pragma once

#include <string>
#include <vector>

#include "log/data_folder.hpp"

namespace cardiolith::tool {

// Under the exclusive folder lock, resolves every id (a unique start of at least four characters) before
// removing anything, so that one typo deletes nothing, then removes the readings and saves the log durably
// with its undo record before returning. Returns one "Deleted …" line per reading removed (an id named
// twice counts once). ToolError with a message for the person when an id names no reading or several, or
// the log can't be saved; the log is then as it was.
[[nodiscard]] std::vector<std::string> deleteReadings(const DataFolder& folder,
                                                      const std::vector<std::string>& ids);

}  // namespace cardiolith::tool
