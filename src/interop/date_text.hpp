#pragma once

#include <optional>
#include <string_view>

#include "cardiolith/platform/civil_time.hpp"

namespace cardiolith::interop::detail {

// Which number of a slashed date (01/12/2025) is the day. Dotted dates (12.01.2025) always put the day
// first; only slashes are written both ways.
enum class DayOrder { dayFirst, monthFirst };

// A date cell, with a clock time and a UTC offset when it has them.
struct DateText {
  CivilTime time;
  bool hasTime = false;
  std::optional<int> offsetSeconds;
  // For a slashed date: its first two numbers, which `time` reads in the order it was given (day first
  // when none was given).
  std::optional<std::pair<int, int>> slashed;
};

// Reads "2025-01-12", "2025-01-12 08:12", "2025-01-12T08:12:00.5+01:00", "2025-01-12 08:12:00 +0100",
// "Jan 12 2025", "January 12, 2025 8:12 PM", "12 Jan 2025", "12.01.2025", "01/12/2025 08:12". Nothing
// when the text is none of these.
std::optional<DateText> parseDateText(std::string_view text, std::optional<DayOrder> order);

// Reads a clock time alone: "8:12", "08:12", "08:12:30", "8:12 PM". Sets hour, minute and second of
// `into`; false when the text is no time.
bool parseClockTime(std::string_view text, CivilTime& into);

// The day order a slashed date proves: the first number is the day when it is above 12, the second when
// it is. Nothing when both could be months.
std::optional<DayOrder> provenOrder(std::pair<int, int> slashed);

}  // namespace cardiolith::interop::detail
