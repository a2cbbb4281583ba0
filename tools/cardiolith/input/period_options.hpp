#pragma once

#include <CLI/CLI.hpp>
#include <cardiolith/model/reading.hpp>
#include <cardiolith/platform/date.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "input/date_input.hpp"
#include "log/tag_list.hpp"

namespace cardiolith::tool {

// The options with which list, summary, export and chart choose their readings.
struct PeriodOptions {
  std::optional<std::string> from;
  std::optional<std::string> to;
  std::optional<std::string> last;
  std::vector<std::string> tags;
};

// Adds --from, --to, --last and --tag. `days`, when given, is a command's own --days option, the same as
// --last with days.
void addPeriodOptions(CLI::App& command, PeriodOptions& options, CLI::Option* days = nullptr);

// The instants a command looks at, both bounds included.
struct Period {
  Date start;
  Date end;
  bool wholeDays = false;  // from a day's start to a day's last millisecond
  std::string name;        // "Last 7 days", "From 2026-11-01 to 2026-11-20", "All readings"

  // The end to hand the summarizer, which counts whole days from start to end: for whole days it is the
  // next day's start, so that a week counts as 7 days and not 6 days and 23:59:59.999.
  Date summaryEnd() const { return wholeDays ? end.addingTimeInterval(0.001) : end; }
  // "2026-11-19 to 2026-11-25" for whole days, "2026-11-19 08:00 to 2026-11-25 21:30" otherwise.
  std::string bounds() const;
};

// The period the options name: --last N (whole calendar days ending today), --from and --to (a missing one
// leaves that side open), or else the last `defaultDays` days, or everything when there is no default.
// ToolError for a text that isn't a date or a span, and for a range that ends before it starts.
Period choosePeriod(const PeriodOptions& options, const DateReader& dates,
                    std::optional<std::int64_t> defaultDays);

// ToolError naming --from (`from`, as typed) when a period whose end is open, and so runs to now, starts
// after now: it would run backwards, and the start is what is wrong.
void refuseStartAfterNow(const Period& period, const std::optional<std::string>& from,
                         const DateReader& dates);

// The period of a command with a --days option of its own (chart, summary): --days N as --last N, then
// choosePeriod with `defaultDays`, refusing as refuseStartAfterNow does a period that would run backwards.
[[nodiscard]] Period chooseDaysPeriod(const PeriodOptions& options, std::optional<std::int64_t> days,
                                      const DateReader& dates, std::int64_t defaultDays);

// The readings of the period that carry every tag of --tag, in log order. ToolError for an unknown tag.
ReadingList selectReadings(const ReadingList& readings, const Period& period, const PeriodOptions& options,
                           const TagList& tags);

// The whole days a report covers: from the start of `from` to the end of `to` (today when not given), or,
// without `from`, the `last` span ("7d"): that many calendar days, today included, up to now. ToolError as
// choosePeriod.
[[nodiscard]] std::pair<Date, Date> reportDays(const std::optional<std::string>& from,
                                               const std::optional<std::string>& to, const std::string& last,
                                               const DateReader& dates);

// How many readings a summary compares: those of its period and those of the period before, which has as
// many whole days and ends where the period starts (absent when the calendar can't reach back that far).
struct ComparedCounts {
  std::size_t current = 0;
  std::size_t previous = 0;
  std::optional<Period> previousPeriod;
};
[[nodiscard]] ComparedCounts countComparedReadings(const ReadingList& readings, const Period& period,
                                                   const Calendar& calendar);

}  // namespace cardiolith::tool
