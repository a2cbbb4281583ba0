#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "commands/add_reading.hpp"
#include "commands/edit_reading.hpp"

namespace cardiolith::tool::serve {

// A request body the server can't make sense of: the message says which member, what was found and what
// was expected. The server answers it with 400.
struct MalformedRequest : std::invalid_argument {
  using std::invalid_argument::invalid_argument;
};

// A reading to add, with the command line that would add it, which names the change in the undo history.
struct PageAddition {
  NewReading reading;
  std::vector<std::string> command;
};

// Reads the JSON body of "add a reading":
//   {"systolic": 128, "diastolic": 82, "pulse": 71, "at": "2026-11-20 07:45", "note": "...",
//    "tags": ["Morning"], "force": false}
// systolic, diastolic and pulse are required integers; "at" (local time, as `add --at` reads it) is
// optional and defaults to now; unknown members are refused so that a typo is not silently dropped.
// MalformedRequest for JSON that is not such an object; ToolError for a date the clock doesn't have, one
// without a time of day, or one in the future or before 1900 without "force".
[[nodiscard]] PageAddition parseNewReading(std::string_view body);

// A correction from the page, and the command line that would make it.
struct PageEdit {
  ReadingEdit edit;
  // The tags the reading is to carry, all of them, when the body names them; the caller turns them into
  // the edit's tags and untags against the log's tag list.
  std::optional<std::vector<std::string>> tags;
  std::vector<std::string> command;
};

// Reads the JSON body of "edit the reading `id`": the members of "add a reading", each optional; what is
// absent stays as it was, an empty "note" removes the note, "tags" is the complete new set. Errors as
// parseNewReading, and MalformedRequest for a body that changes nothing.
[[nodiscard]] PageEdit parseReadingEdit(std::string_view id, std::string_view body);

}  // namespace cardiolith::tool::serve
