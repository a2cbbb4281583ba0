#pragma once

#include <cardiolith/model/reading.hpp>
#include <cardiolith/platform/date_formatter.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace cardiolith::tool {

// Local date and time as the tool shows and reads them: "2026-11-20 07:45".
const DateFormatter& displayDateFormatter();
// ISO 8601 with the local offset, for scripts: "2026-11-20T07:45:00+01:00".
const DateFormatter& isoDateFormatter();

// The text on one line: line breaks become spaces, so a note can't break a table row.
std::string singleLine(std::string_view text);
// A person's free text made safe for any layout: line breaks (also U+2028 and U+2029) and tabs become
// spaces, other control characters (C0, DEL, C1) are dropped, runs of spaces shrink to one and the ends are
// trimmed. Empty when nothing printable is left.
std::string plainNote(std::string_view text);
// The items with `separator` between neighbours.
std::string joined(const std::vector<std::string>& items, std::string_view separator);

// "128/82 mmHg, pulse 71: High".
std::string describeValues(const Reading& reading);

}  // namespace cardiolith::tool
