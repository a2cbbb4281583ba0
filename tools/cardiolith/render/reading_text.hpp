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
// The items with `separator` between neighbours.
std::string joined(const std::vector<std::string>& items, std::string_view separator);

// "128/82 mmHg, pulse 71: High".
std::string describeValues(const Reading& reading);
// "1A2B3C4D  2026-11-20 07:45  128/82 mmHg, pulse 71: High", with the reading's short id in `readings`.
std::string describeWithId(const ReadingList& readings, const Reading& reading);

}  // namespace cardiolith::tool
