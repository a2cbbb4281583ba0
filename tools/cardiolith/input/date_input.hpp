#pragma once

#include <cardiolith/platform/date.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace cardiolith::tool {

// Dates typed on the command line, "YYYY-MM-DD" or "YYYY-MM-DD HH:MM" (a "T" may stand for the space),
// read in the local time zone. `option` names the option in error messages. Every function throws
// ToolError for a malformed text, a day the calendar doesn't have or a time the local clock skips.

// The instant named: the minute given, or the start of the day.
Date parseDateTime(std::string_view text, std::string_view option);
// The last instant that the text covers: the minute given, or the last millisecond of the day, so that an
// inclusive range ending there takes the whole day.
Date parseRangeEnd(std::string_view text, std::string_view option);

// ToolError when a range ends before it starts.
void requireOrdered(Date from, Date to);

// The whole days a report covers: from the start of `from` to the end of `to` (default now), or, without
// `from`, the `last` span ("7d") ending now and starting at the local midnight of its first day.
std::pair<Date, Date> reportDays(const std::optional<std::string>& from, const std::optional<std::string>& to,
                                 std::string_view last);

// A span of days: "7", "7d" or "2w" (weeks). At least one day.
std::int64_t parseSpanDays(std::string_view text, std::string_view option);

}  // namespace cardiolith::tool
