#pragma once

#include <cardiolith/platform/date.hpp>
#include <cstdint>
#include <string_view>

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

// A span of days: "7", "7d" or "2w" (weeks). At least one day.
std::int64_t parseSpanDays(std::string_view text, std::string_view option);

}  // namespace cardiolith::tool
