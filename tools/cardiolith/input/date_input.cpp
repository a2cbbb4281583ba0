#include "input/date_input.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

using WallTime = Calendar::WallTime;

// A reading dated this far ahead of the clock is a typing slip, not a clock difference.
constexpr double futureTolerance = 5 * 60;
constexpr int earliestYear = 1900;

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

std::vector<std::string_view> words(std::string_view text) {
  std::vector<std::string_view> result;
  std::size_t position = 0;
  while (true) {
    position = text.find_first_not_of(" \t", position);
    if (position == std::string_view::npos) return result;
    const std::size_t end = std::min(text.find_first_of(" \t", position), text.size());
    result.push_back(text.substr(position, end - position));
    position = end;
  }
}

// A whole decimal number of at most `maxDigits` digits (at least one), or nothing.
std::optional<int> number(std::string_view text, std::size_t maxDigits) {
  if (text.empty() || text.size() > maxDigits) return std::nullopt;
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size() || text.front() == '-' || text.front() == '+')
    return std::nullopt;
  return value;
}

struct Day {
  int year, month, day;
};

Day dayOf(std::chrono::sys_days days) {
  const std::chrono::year_month_day date(days);
  return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day()))};
}

std::chrono::sys_days daysOf(const Day& day) {
  return std::chrono::sys_days(std::chrono::year(day.year) /
                               std::chrono::month(static_cast<unsigned>(day.month)) /
                               std::chrono::day(static_cast<unsigned>(day.day)));
}

bool onCalendar(const Day& day) {
  return std::chrono::year_month_day(std::chrono::year(day.year) /
                                     std::chrono::month(static_cast<unsigned>(day.month)) /
                                     std::chrono::day(static_cast<unsigned>(day.day)))
      .ok();
}

// "2026-11-20".
std::optional<Day> isoDay(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  const auto year = number(text.substr(0, 4), 4), month = number(text.substr(5, 2), 2),
             day = number(text.substr(8, 2), 2);
  if (!year || !month || !day) return std::nullopt;
  return Day{*year, *month, *day};
}

constexpr std::array<std::string_view, 7> weekdayNames = {"sunday",   "monday", "tuesday", "wednesday",
                                                          "thursday", "friday", "saturday"};

// "sun", "Sunday", "tues": a weekday, 0 for Sunday.
std::optional<int> weekdayNamed(std::string_view text) {
  const std::string lower = lowerCase(text);
  if (lower.size() < 3) return std::nullopt;
  for (std::size_t i = 0; i < weekdayNames.size(); ++i) {
    if (weekdayNames[i].starts_with(lower)) return static_cast<int>(i);
  }
  return std::nullopt;
}

struct ClockTime {
  int hour, minute;
  std::optional<int> offsetMinutes;  // east of UTC, when written
};

// "+01:00", "-0330", "+05", "Z".
std::optional<int> utcOffset(std::string_view text) {
  if (text == "Z" || text == "z") return 0;
  if (text.size() < 3 || (text[0] != '+' && text[0] != '-')) return std::nullopt;
  const int sign = text[0] == '-' ? -1 : 1;
  std::string_view rest = text.substr(1);
  const auto hours = number(rest.substr(0, 2), 2);
  rest.remove_prefix(2);
  if (!rest.empty() && rest.front() == ':') rest.remove_prefix(1);
  const auto minutes = rest.empty() ? std::optional<int>(0) : number(rest, 2);
  if (!hours || !minutes || rest.size() % 2 != 0 || *hours > 14 || *minutes > 59) return std::nullopt;
  return sign * (*hours * 60 + *minutes);
}

// "7:45", "07:45", "19:05+02:00".
std::optional<ClockTime> clockTime(std::string_view text, std::string_view option) {
  const auto colon = text.find(':');
  if (colon == std::string_view::npos || colon == 0 || colon > 2) return std::nullopt;
  const auto hour = number(text.substr(0, colon), 2);
  const auto minute = number(text.substr(colon + 1, 2), 2);
  if (!hour || !minute || text.size() < colon + 3) return std::nullopt;
  ClockTime time{*hour, *minute, std::nullopt};
  if (const auto suffix = text.substr(colon + 3); !suffix.empty()) {
    time.offsetMinutes = utcOffset(suffix);
    if (!time.offsetMinutes) return std::nullopt;
  }
  if (time.hour > 23 || time.minute > 59) {
    throw ToolError(std::string(option) + ": " + quoted(text) +
                    " is not a time of day; hours run from 0 to 23 and minutes from 00 to 59");
  }
  return time;
}

// "-2h", "30m ago", "2 hours ago": seconds before now.
std::optional<double> secondsAgo(const std::vector<std::string_view>& parts) {
  std::string text;
  if (parts.size() == 1 && parts[0].size() > 1 && parts[0][0] == '-') {
    text = parts[0].substr(1);
  } else if (parts.size() >= 2 && lowerCase(parts.back()) == "ago") {
    for (std::size_t i = 0; i + 1 < parts.size(); ++i) text += parts[i];
  } else {
    return std::nullopt;
  }
  const auto unitStart = text.find_first_not_of("0123456789");
  if (unitStart == 0 || unitStart == std::string::npos) return std::nullopt;
  const auto count = number(std::string_view(text).substr(0, unitStart), 7);
  const std::string unit = lowerCase(std::string_view(text).substr(unitStart));
  const struct {
    std::string_view names[4];
    double seconds;
  } units[] = {{{"m", "min", "minute", "minutes"}, 60},
               {{"h", "hour", "hours", "hr"}, 3600},
               {{"d", "day", "days", ""}, 86400}};
  for (const auto& entry : units) {
    if (count && std::find(std::begin(entry.names), std::end(entry.names), unit) != std::end(entry.names) &&
        !unit.empty())
      return *count * entry.seconds;
  }
  return std::nullopt;
}

std::string offsetText(Date instant, const WallTime& wall) {
  const auto local = std::chrono::sys_days(daysOf({wall.year, wall.month, wall.day}));
  const double wallSeconds =
      static_cast<double>(local.time_since_epoch().count()) * 86400 + wall.hour * 3600 + wall.minute * 60;
  const int minutes = static_cast<int>(std::lround((wallSeconds - instant.timeIntervalSince1970()) / 60));
  char text[16];
  std::snprintf(text, sizeof text, "%c%02d:%02d", minutes < 0 ? '-' : '+', std::abs(minutes) / 60,
                std::abs(minutes) % 60);
  return text;
}

std::string malformed(std::string_view text, std::string_view option) {
  return std::string(option) + ": " + quoted(text) +
         " is not a date or time; write e.g. \"2026-11-20 7:45\", \"7:45\" (today), \"yesterday 21:30\", "
         "\"mon 8:00\", \"2026-11-20\" (a day), \"-2h\" or \"30m ago\"";
}

}  // namespace

DateReader DateReader::current() { return DateReader(Calendar::current(), Date::now()); }

DateReader::TypedTime DateReader::read(std::string_view text, std::string_view option) const {
  const auto parts = words(text);
  if (parts.size() == 1 && lowerCase(parts[0]) == "now") return {now_, true};
  if (const auto ago = secondsAgo(parts)) return {now_.addingTimeInterval(-*ago), true};

  const auto today = calendar_.wallTime(now_);
  if (!today) throw ToolError(std::string(option) + ": the clock shows a time the calendar can't represent");
  const auto todayDays = daysOf({today->year, today->month, today->day});

  // Split "2026-11-20T07:45" into its day and its time.
  std::vector<std::string_view> pieces = parts;
  if (pieces.size() == 1 && pieces[0].size() > 11 && pieces[0][10] == 'T') {
    pieces = {pieces[0].substr(0, 10), pieces[0].substr(11)};
  }
  std::optional<Day> day;
  std::optional<ClockTime> time;
  if (pieces.size() == 1 && (time = clockTime(pieces[0], option))) {
    day = dayOf(todayDays);
  } else if (!pieces.empty() && pieces.size() <= 2) {
    const std::string first = lowerCase(pieces[0]);
    if (first == "today") {
      day = dayOf(todayDays);
    } else if (first == "yesterday") {
      day = dayOf(todayDays - std::chrono::days(1));
    } else if (const auto weekday = weekdayNamed(first)) {
      const int todayWeekday = static_cast<int>(std::chrono::weekday(todayDays).c_encoding());
      day = dayOf(todayDays - std::chrono::days((todayWeekday - *weekday + 7) % 7));
    } else {
      day = isoDay(pieces[0]);
    }
    if (day && pieces.size() == 2 && !(time = clockTime(pieces[1], option))) day.reset();
  }
  if (!day) throw ToolError(malformed(text, option));
  if (!onCalendar(*day)) {
    throw ToolError(std::string(option) + ": " + quoted(text) + " is not a day of the calendar");
  }

  if (!time) {
    // A day alone starts at its first instant, even where the clocks skip midnight.
    const auto noon = calendar_.instantsAt({day->year, day->month, day->day, 12, 0});
    const auto start = noon ? calendar_.startOfDay(noon->earlier) : std::nullopt;
    if (!start)
      throw ToolError(std::string(option) + ": " + quoted(text) + " is out of the calendar's range");
    return {*start, false};
  }
  const WallTime wall{day->year, day->month, day->day, time->hour, time->minute};
  if (time->offsetMinutes) {
    const double seconds = static_cast<double>(daysOf(*day).time_since_epoch().count()) * 86400 +
                           (wall.hour * 60 + wall.minute - *time->offsetMinutes) * 60.0;
    return {Date::fromTimeIntervalSince1970(seconds), true};
  }
  const auto instants = calendar_.instantsAt(wall);
  if (!instants) {
    throw ToolError(std::string(option) + ": " + quoted(text) +
                    " does not exist in the local time zone: the clocks skip that time when they go forward. "
                    "Give a time before or after the jump.");
  }
  if (instants->earlier != instants->later) {
    char hhmm[16];
    std::snprintf(hhmm, sizeof hhmm, "%02d:%02d", wall.hour, wall.minute);
    const std::string typed = std::string(pieces[0].substr(0, 10)) + " " + hhmm;
    throw ToolError(std::string(option) + ": " + quoted(text) +
                    " happens twice in the local time zone, because the clocks go back that night. Write it "
                    "with its UTC offset: \"" +
                    typed + offsetText(instants->earlier, wall) + "\" for the first time, \"" + typed +
                    offsetText(instants->later, wall) + "\" for the second");
  }
  return {instants->earlier, true};
}

Date DateReader::readingTime(std::string_view text, std::string_view option, bool force) const {
  const auto typed = read(text, option);
  if (!typed.hasTimeOfDay) {
    throw ToolError(std::string(option) + ": " + quoted(text) +
                    " is a day without a time of day; say when the reading was taken, e.g. \"" +
                    std::string(text) + " 8:00\"");
  }
  if (force) return typed.instant;
  const auto wall = calendar_.wallTime(typed.instant);
  if (!wall || wall->year < earliestYear) {
    throw ToolError(std::string(option) + ": " + quoted(text) + " is before " + std::to_string(earliestYear) +
                    "; check the year, or add --force to keep it");
  }
  if (typed.instant > now_.addingTimeInterval(futureTolerance)) {
    throw ToolError(std::string(option) + ": " + displayDateFormatter().string(typed.instant) +
                    " is in the future; check the date, or add --force to keep it");
  }
  return typed.instant;
}

Date DateReader::rangeStart(std::string_view text, std::string_view option) const {
  return read(text, option).instant;
}

Date DateReader::rangeEnd(std::string_view text, std::string_view option) const {
  const auto typed = read(text, option);
  if (typed.hasTimeOfDay) return typed.instant;
  // The last millisecond before the next day's start: an inclusive bound that keeps the whole day and
  // still shows as that day.
  const auto next = calendar_.dateByAddingDays(1, typed.instant.addingTimeInterval(12 * 3600));
  const auto nextStart = next ? calendar_.startOfDay(*next) : std::nullopt;
  if (!nextStart)
    throw ToolError(std::string(option) + ": " + quoted(text) + " is out of the calendar's range");
  return nextStart->addingTimeInterval(-0.001);
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

}  // namespace cardiolith::tool
