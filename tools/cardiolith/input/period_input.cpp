#include "input/period_input.hpp"

#include "input/date_input.hpp"

namespace cardiolith::tool {

void addPeriodOptions(CLI::App& command, PeriodOptions& options) {
  auto* from =
      command.add_option("--from", options.from, "First day (YYYY-MM-DD) or minute (\"YYYY-MM-DD HH:MM\")");
  auto* to = command.add_option("--to", options.to, "Last day (included) or minute");
  command.add_option("--last", options.last, "Only the last days or weeks: 7d, 2w")
      ->excludes(from)
      ->excludes(to);
}

DateRange chosenRange(const PeriodOptions& options) {
  DateRange range;
  if (options.last) range.from = Date::now().addingDays(-parseSpanDays(*options.last, "--last"));
  if (options.from) range.from = parseDateTime(*options.from, "--from");
  if (options.to) range.to = parseRangeEnd(*options.to, "--to");
  requireOrdered(range.from, range.to);
  return range;
}

}  // namespace cardiolith::tool
