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

// Text from the log (a note, a tag title) as it may be shown: on one line, so it can't break a table row,
// and without control characters or bidirectional overrides, so it can't drive or garble the terminal.
std::string singleLine(std::string_view text);
// A person's free text made safe for any layout: line breaks (also U+2028 and U+2029) and tabs become
// spaces, other control characters (C0, DEL, C1) are dropped, runs of spaces shrink to one and the ends are
// trimmed. Empty when nothing printable is left.
std::string plainNote(std::string_view text);
// The items with `separator` between neighbours.
std::string joined(const std::vector<std::string>& items, std::string_view separator);

// "1 reading", "2 readings".
std::string readingCount(std::size_t count);

// "128/82 mmHg, pulse 71: High".
std::string describeValues(const Reading& reading);
// "1A2B3C4D  2026-11-20 07:45  128/82 mmHg, pulse 71: High", with the reading's short id in `readings`.
std::string describeWithId(const ReadingList& readings, const Reading& reading);

}  // namespace cardiolith::tool
