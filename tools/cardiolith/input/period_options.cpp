#include "input/period_options.hpp"

#include <algorithm>
#include <cardiolith/model/collection.hpp>
#include <cardiolith/model/day_periods.hpp>
#include <cardiolith/platform/date_formatter.hpp>
#include <cmath>
#include <limits>

#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

Period lastDays(std::int64_t days, const DateReader& dates) {
  const auto period = lastWholeDays(days, dates.now(), dates.calendar());
  if (!period)
    throw ToolError("the last " + std::to_string(days) + " days reach beyond the calendar's range");
  return {period->start, period->end.addingTimeInterval(-0.001), true,
          "Last " + std::to_string(days) + (days == 1 ? " day" : " days")};
}

}  // namespace

void addPeriodOptions(CLI::App& command, PeriodOptions& options, CLI::Option* days) {
  auto* from = command.add_option(
      "--from", options.from, "First day or minute: 2026-11-01, \"2026-11-01 8:00\", yesterday, mon, -2h");
  auto* to = command.add_option("--to", options.to, "Last day (included) or minute; default: now");
  auto* last = command.add_option("--last", options.last, "The last N whole days, today included: 7d, 2w")
                   ->excludes(from);
  last->excludes(to);
  if (days != nullptr) {
    days->excludes(from)->excludes(last);
    to->excludes(days);
  }
  command.add_option("--tag,-t", options.tags,
                     "Only readings with this tag; repeat for several (all of them)");
}

std::string Period::bounds() const {
  static const DateFormatter day("yyyy-MM-dd", "en_US_POSIX");
  if (wholeDays) return day.string(start) + " to " + day.string(end);
  return displayDateFormatter().string(start) + " to " + displayDateFormatter().string(end);
}

Period choosePeriod(const PeriodOptions& options, const DateReader& dates,
                    std::optional<std::int64_t> defaultDays) {
  if (options.last) return lastDays(parseSpanDays(*options.last, "--last"), dates);
  if (!options.from && !options.to) {
    if (defaultDays) return lastDays(*defaultDays, dates);
    return {Date(-std::numeric_limits<double>::infinity()), Date(std::numeric_limits<double>::infinity()),
            false, "All readings"};
  }
  Period period{Date(-std::numeric_limits<double>::infinity()), Date(std::numeric_limits<double>::infinity()),
                false, ""};
  std::optional<DateReader::TypedTime> from;
  if (options.from) from = dates.read(*options.from, "--from");
  if (from) period.start = from->instant;
  if (options.to) period.end = dates.rangeEnd(*options.to, "--to");
  requireOrdered(period.start, period.end);
  period.wholeDays =
      from && !from->hasTimeOfDay && options.to && !dates.read(*options.to, "--to").hasTimeOfDay;
  period.name =
      (options.from ? "From " + *options.from : std::string("Up")) + " to " + options.to.value_or("now");
  if (!options.to) period.name = "From " + *options.from;
  return period;
}

ReadingList selectReadings(const ReadingList& readings, const Period& period, const PeriodOptions& options,
                           const TagList& tags) {
  std::vector<UUID> wanted;
  for (const auto& title : options.tags) wanted.push_back(tags.find(title).id);
  auto selection = filtered(readings, period.start, period.end);
  std::erase_if(selection, [&](const auto& reading) {
    const auto& ids = reading->tagIDs();
    return std::any_of(wanted.begin(), wanted.end(),
                       [&](const UUID& id) { return !ids || !ids->contains(id); });
  });
  return selection;
}

std::pair<Date, Date> reportDays(const std::optional<std::string>& from, const std::optional<std::string>& to,
                                 const std::string& last, const DateReader& dates) {
  PeriodOptions choice;
  choice.from = from;
  choice.to = to;
  if (!from) choice.last = last;
  Period period = choosePeriod(choice, dates, std::nullopt);
  refuseStartAfterNow(period, from, dates);
  if (!std::isfinite(period.end.timeIntervalSinceReferenceDate())) period.end = dates.now();
  return {period.start, period.end};
}

Period chooseDaysPeriod(const PeriodOptions& options, std::optional<std::int64_t> days,
                        const DateReader& dates, std::int64_t defaultDays) {
  PeriodOptions choice = options;
  if (days) choice.last = std::to_string(*days);
  Period period = choosePeriod(choice, dates, defaultDays);
  refuseStartAfterNow(period, options.from, dates);
  return period;
}

void refuseStartAfterNow(const Period& period, const std::optional<std::string>& from,
                         const DateReader& dates) {
  if (std::isfinite(period.end.timeIntervalSinceReferenceDate()) || !(period.start > dates.now())) return;
  throw ToolError(
      "--from: " + from.value_or("") +
      " is in the future, and the period runs from it to now; give a day before today, e.g. --from " +
      displayDateFormatter().string(dates.now().addingDays(-30)).substr(0, 10));
}

ComparedCounts countComparedReadings(const ReadingList& readings, const Period& period,
                                     const Calendar& calendar) {
  ComparedCounts counts;
  counts.current = filtered(readings, period.start, period.summaryEnd()).size();
  const auto days = calendar.wholeDays(period.start, period.summaryEnd());
  const auto previousStart = days ? calendar.dateByAddingDays(-*days, period.start) : std::nullopt;
  if (!previousStart) return counts;
  counts.previous = filtered(readings, *previousStart, period.start).size();
  counts.previousPeriod =
      Period{*previousStart, period.start.addingTimeInterval(period.wholeDays ? -0.001 : 0), period.wholeDays,
             "Period before"};
  return counts;
}

}  // namespace cardiolith::tool
