#pragma once

#include <stdexcept>
#include <string_view>

#include "commands/add_reading.hpp"

namespace cardiolith::tool::serve {

// A request body the server can't make sense of: the message says which member, what was found and what
// was expected. The server answers it with 400.
struct MalformedRequest : std::invalid_argument {
  using std::invalid_argument::invalid_argument;
};

// Reads the JSON body of "add a reading":
//   {"systolic": 128, "diastolic": 82, "pulse": 71, "at": "2026-11-20 07:45", "note": "...",
//    "tags": ["Morning"], "force": false}
// systolic, diastolic and pulse are required integers; "at" (local time, as `add --at` reads it) is
// optional and defaults to now; unknown members are refused so that a typo is not silently dropped.
// MalformedRequest for JSON that is not such an object; ToolError for a date the clock doesn't have, one
// without a time of day, or one in the future or before 1900 without "force".
[[nodiscard]] NewReading parseNewReading(std::string_view body);

}  // namespace cardiolith::tool::serve
