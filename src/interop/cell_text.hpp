#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cardiolith/platform/civil_time.hpp"

// The transformations the tool's own table applies to cell texts, each with its exact inverse.
namespace cardiolith::interop::detail {

// The header of the tool's own table, before the separator is chosen.
inline constexpr std::string_view kOwnColumns[] = {"Date",     "Systolic", "Diastolic", "Pulse",
                                                   "Category", "Tags",     "Notes",     "ID"};

// One more leading apostrophe when the text, after its leading apostrophes, starts with a character that
// makes a spreadsheet run it as a formula (=, +, -, @, tab, carriage return).
std::string guardedFromFormulas(std::string_view text);

// Appends `value` (0 or more) as exactly `width` decimal digits (at most 8), zeros in front.
void appendDigits(std::string& out, int value, int width);
// Appends "2025-01-12" + `between` + "08:12": the day and the clock time to the minute.
void appendDayAndMinute(std::string& out, const CivilTime& time, char between);
// Appends an offset east of UTC to the minute: "+01:00", "-03:00".
void appendOffset(std::string& out, int offsetSeconds);
// The inverse: drops one leading apostrophe where guardedFromFormulas would have added it.
std::string_view unguarded(std::string_view text);

// Titles joined by "; ", with "\" and ";" inside a title escaped by "\".
std::string joinedTitles(const std::vector<std::string>& titles);
// The inverse of joinedTitles; empty for an empty text.
std::vector<std::string> splitTitles(std::string_view text);

// The cell as RFC 4180 writes it: quoted, with quotes doubled, when it holds the separator, a quote, a
// line break or a carriage return.
void appendQuoted(std::string& out, std::string_view cell, char separator);

}  // namespace cardiolith::interop::detail
