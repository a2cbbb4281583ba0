#include "input/date_input.hpp"

#include <cardiolith/platform/date_formatter.hpp>
#include <charconv>
#include <ctime>
#include <optional>
#include <string>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct CalendarFields {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0;
  bool hasTime = false;
};

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

// Reads exactly `width` decimal digits at `position`.
std::optional<int> digits(std::string_view text, std::size_t position, std::size_t width) {
  if (position + width > text.size()) return std::nullopt;
  int value = 0;
  for (std::size_t i = position; i < position + width; ++i) {
    if (text[i] < '0' || text[i] > '9') return std::nullopt;
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

CalendarFields parseFields(std::string_view text, std::string_view option) {
  const auto malformed = [&] {
    return ToolError(std::string(option) + ": " + quoted(text) +
                     " is not a date; write YYYY-MM-DD or \"YYYY-MM-DD HH:MM\", e.g. \"2026-11-20 07:45\"");
  };
  CalendarFields fields;
  const auto year = digits(text, 0, 4), month = digits(text, 5, 2), day = digits(text, 8, 2);
  if (!year || !month || !day || text[4] != '-' || text[7] != '-') throw malformed();
  fields.year = *year;
  fields.month = *month;
  fields.day = *day;
  if (text.size() == 10) return fields;
  const auto hour = digits(text, 11, 2), minute = digits(text, 14, 2);
  if (text.size() != 16 || (text[10] != ' ' && text[10] != 'T') || !hour || !minute || text[13] != ':') {
    throw malformed();
  }
  if (*hour > 23 || *minute > 59) {
    throw ToolError(std::string(option) + ": " + std::string(text.substr(11)) +
                    " is not a time of day; hours run from 00 to 23 and minutes from 00 to 59");
  }
  fields.hour = *hour;
  fields.minute = *minute;
  fields.hasTime = true;
  return fields;
}

// mktime on the local time zone, with every field checked after normalisation: mktime quietly turns
// 31 April into 1 May and a skipped 02:30 into 03:30, and neither is what the user typed.
Date localInstant(const CalendarFields& fields, int dayOffset, std::string_view text,
                  std::string_view option) {
  std::tm parts{};
  parts.tm_year = fields.year - 1900;
  parts.tm_mon = fields.month - 1;
  parts.tm_mday = fields.day;
  parts.tm_hour = fields.hour;
  parts.tm_min = fields.minute;
  parts.tm_isdst = -1;
  std::tm checked = parts;
  const std::time_t seconds = std::mktime(&checked);
  const bool sameDay =
      checked.tm_year == parts.tm_year && checked.tm_mon == parts.tm_mon && checked.tm_mday == parts.tm_mday;
  if (!sameDay) {
    throw ToolError(std::string(option) + ": " + quoted(text.substr(0, 10)) +
                    " is not a day of the calendar");
  }
  // A day alone starts at its first instant, even where the clocks skip midnight.
  const bool sameTime = checked.tm_hour == parts.tm_hour && checked.tm_min == parts.tm_min;
  if (seconds == static_cast<std::time_t>(-1) || (fields.hasTime && !sameTime)) {
    throw ToolError(std::string(option) + ": " + quoted(text) +
                    " does not exist in the local time zone (the clocks skip that time)");
  }
  if (dayOffset == 0) return Date::fromTimeIntervalSince1970(static_cast<double>(seconds));
  parts.tm_mday += dayOffset;
  const std::time_t shifted = std::mktime(&parts);
  return Date::fromTimeIntervalSince1970(static_cast<double>(shifted));
}

}  // namespace

Date parseDateTime(std::string_view text, std::string_view option) {
  return localInstant(parseFields(text, option), 0, text, option);
}

Date parseRangeEnd(std::string_view text, std::string_view option) {
  const auto fields = parseFields(text, option);
  if (fields.hasTime) return localInstant(fields, 0, text, option);
  // The last millisecond before the next day's midnight: an inclusive bound that keeps the whole day and
  // still shows as that day (a bound closer to midnight would print as the next day).
  return localInstant(fields, 1, text, option).addingTimeInterval(-0.001);
}

void requireOrdered(Date from, Date to) {
  if (to < from) throw ToolError("--to: the range ends before it starts; give --from the earlier date");
}

std::int64_t parseSpanDays(std::string_view text, std::string_view option) {
  std::int64_t count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  const std::string_view unit = text.substr(static_cast<std::size_t>(end - text.data()));
  const std::int64_t daysPerUnit = unit.empty() || unit == "d" ? 1 : unit == "w" ? 7 : 0;
  constexpr std::int64_t maximumDays = 1'000'000;
  if (error != std::errc{} || daysPerUnit == 0 || count < 1 || count > maximumDays / daysPerUnit) {
    throw ToolError(std::string(option) + ": " + quoted(text) +
                    " is not a span of days; write a positive number of days (\"7d\") or weeks (\"2w\")");
  }
  return count * daysPerUnit;
}

std::pair<Date, Date> reportDays(const std::optional<std::string>& from, const std::optional<std::string>& to,
                                 std::string_view last) {
  if (from) {
    const Date start = parseDateTime(*from, "--from");
    const Date end = to ? parseRangeEnd(*to, "--to") : Date::now();
    requireOrdered(start, end);
    return {start, end};
  }
  const std::int64_t days = parseSpanDays(last, "--last");
  const Date now = Date::now();
  const Date today = parseDateTime(DateFormatter("yyyy-MM-dd").string(now), "--last");
  return {today.addingDays(1 - days), now};
}

}  // namespace cardiolith::tool
