#pragma once

#include <CLI/CLI.hpp>
#include <cardiolith/platform/date.hpp>
#include <limits>
#include <optional>
#include <string>

namespace cardiolith::tool {

// The period options of the commands that show or write part of the log: --from DAY, --to DAY (the whole
// day counts) or --last 7d / 2w.
struct PeriodOptions {
  std::optional<std::string> from;
  std::optional<std::string> to;
  std::optional<std::string> last;
};

// Both bounds included; unbounded by default.
struct DateRange {
  Date from{-std::numeric_limits<double>::infinity()};
  Date to{std::numeric_limits<double>::infinity()};
};

// Adds the options to `command`, storing into `options`, which must outlive the parse.
void addPeriodOptions(CLI::App& command, PeriodOptions& options);

// The range the options name. ToolError for a malformed date or a range that ends before it starts.
DateRange chosenRange(const PeriodOptions& options);

}  // namespace cardiolith::tool
