#include "render/home_report.hpp"

#include <algorithm>
#include <cardiolith/platform/date_formatter.hpp>
#include <chrono>
#include <cstdio>

#include "render/category_text.hpp"
#include "render/reading_text.hpp"
#include "render/time_ticks.hpp"

namespace cardiolith::tool {
namespace {

std::string hourText(std::int32_t hour) {
  char text[16];
  std::snprintf(text, sizeof text, "%02d:00", hour);
  return text;
}

// "04:00 to 11:59" for the window {4, 12}.
std::string windowText(const HourWindow& window) {
  char end[16];
  std::snprintf(end, sizeof end, "%02d:59", window.endHour - 1);
  return hourText(window.firstHour) + " to " + end;
}

std::size_t otherReadings(const HomeMonitoringReport& analysis) {
  std::size_t count = 0;
  for (const auto& day : analysis.days) count += day.other.size();
  return count;
}

std::string readingsAtOtherTimes(std::size_t count) {
  if (count == 0) return "readings at other times would be";
  return std::to_string(count) +
         (count == 1 ? " reading at another time is" : " readings at other times are");
}

PointMark markOf(TimeOfDay time) {
  switch (time) {
    case TimeOfDay::morning:
      return PointMark::morning;
    case TimeOfDay::evening:
      return PointMark::evening;
    case TimeOfDay::other:
      break;
  }
  return PointMark::other;
}

std::string oneDecimal(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

std::string optionalText(const std::optional<double>& value, const char* unit = "") {
  return value ? oneDecimal(*value) + unit : "-";
}

std::string readingsText(const ReadingList& readings, bool withTime) {
  std::string text;
  for (const auto& reading : readings) {
    if (!text.empty()) text += ' ';
    if (withTime) text += clockText(reading->date()) + ' ';
    text += std::to_string(reading->systolic()) + "/" + std::to_string(reading->diastolic());
  }
  return text;
}

}  // namespace

std::vector<FigureRow> figureRows(const HomeMonitoringReport& analysis) {
  std::vector<FigureRow> rows;
  const auto cells = [&](std::string name, const std::optional<ReadingStatistics>& statistics,
                         const auto& text) {
    if (!statistics) {
      rows.push_back({std::move(name), "-", "-", "-"});
      return;
    }
    rows.push_back(
        {std::move(name), text(statistics->systolic), text(statistics->diastolic), text(statistics->pulse)});
  };
  const auto count = [](const std::optional<ReadingStatistics>& statistics) {
    const std::size_t readings = statistics ? statistics->readings : 0;
    return " (" + std::to_string(readings) + (readings == 1 ? " reading)" : " readings)");
  };
  const auto mean = [](const ValueStatistics& value) { return oneDecimal(value.mean); };
  cells("Mean" + count(analysis.all), analysis.all, mean);
  cells("Morning" + count(analysis.morning), analysis.morning, mean);
  cells("Evening" + count(analysis.evening), analysis.evening, mean);
  cells("SD", analysis.all,
        [](const ValueStatistics& value) { return optionalText(value.standardDeviation); });
  cells("CV", analysis.all,
        [](const ValueStatistics& value) { return optionalText(value.coefficientOfVariation, "%"); });
  cells("ARV", analysis.all,
        [](const ValueStatistics& value) { return optionalText(value.averageRealVariability); });
  cells("Lowest", analysis.all, [](const ValueStatistics& value) { return std::to_string(value.lowest); });
  cells("Highest", analysis.all, [](const ValueStatistics& value) { return std::to_string(value.highest); });
  return rows;
}

std::vector<DayRow> dayRows(const HomeMonitoringReport& analysis) {
  std::vector<DayRow> rows;
  for (const auto& day : analysis.days) {
    rows.push_back({dayText(day.day), readingsText(day.morning, false), readingsText(day.evening, false),
                    readingsText(day.other, true), day.leftOut});
  }
  return rows;
}

std::string periodText(const HomeReportDocument& report) {
  const DateFormatter day("d MMM yyyy");
  return day.string(report.from) + " \u2013 " + day.string(report.to);
}

std::string pairText(const PressurePair& pair) {
  return std::to_string(pair.systolic) + "/" + std::to_string(pair.diastolic);
}

std::string meansText(const std::optional<ReadingStatistics>& statistics) {
  if (!statistics) return "-";
  char text[64];
  std::snprintf(text, sizeof text, "%.1f/%.1f", statistics->systolic.mean, statistics->diastolic.mean);
  return text;
}

std::string dayText(const CalendarDay& day) {
  static constexpr const char* weekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                           "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const std::chrono::year_month_day date{std::chrono::year{day.year},
                                         std::chrono::month{static_cast<unsigned>(day.month)},
                                         std::chrono::day{static_cast<unsigned>(day.day)}};
  if (!date.ok())
    return std::to_string(day.year) + "-" + std::to_string(day.month) + "-" + std::to_string(day.day);
  const std::chrono::weekday weekday{std::chrono::sys_days{date}};
  return std::string(weekdays[weekday.c_encoding()]) + " " + std::to_string(day.day) + " " +
         months[day.month - 1] + " " + std::to_string(day.year);
}

std::string clockText(Date date) {
  static const DateFormatter clock("HH:mm");
  return clock.string(date);
}

std::vector<PersonNote> personNotes(const HomeMonitoringReport& analysis) {
  std::vector<PersonNote> notes;
  for (const auto& day : analysis.days) {
    for (const auto* readings : {&day.morning, &day.evening, &day.other}) {
      for (const auto& reading : *readings) {
        if (!reading->notes()) continue;
        auto text = plainNote(*reading->notes());
        if (!text.empty())
          notes.push_back({reading, dayText(day.day) + " " + clockText(reading->date()), std::move(text)});
      }
    }
  }
  std::stable_sort(notes.begin(), notes.end(), [](const PersonNote& a, const PersonNote& b) {
    return a.reading->date() < b.reading->date();
  });
  return notes;
}

std::string noteValues(const Reading& reading) {
  return std::to_string(reading.systolic()) + "/" + std::to_string(reading.diastolic()) + " mmHg, pulse " +
         std::to_string(reading.pulse());
}

std::string moreNotesText(const HomeReportDocument& report, std::size_t more) {
  static const DateFormatter day("yyyy-MM-dd", "en_US_POSIX");
  // Worded so that the command stays on one line of the text form: it is meant to be copied.
  return std::to_string(more) + (more == 1 ? " more note is" : " more notes are") +
         " not shown; cardiolith list --from " + day.string(report.from) + " --to " + day.string(report.to) +
         " shows them.";
}

std::vector<std::string> reportNotes(const HomeReportDocument& report) {
  const auto& analysis = report.analysis;
  const auto& options = analysis.options;
  std::vector<std::string> notes;
  if (!analysis.protocolMet()) {
    notes.push_back("Warning: only " + std::to_string(analysis.completeDays) +
                    (analysis.completeDays == 1 ? " day has" : " days have") +
                    " both morning and evening readings; home monitoring asks for at least 3 (7 is best), "
                    "two readings each morning and evening. Measure longer before relying on the average.");
  }
  if (!analysis.days.empty()) {
    notes.push_back(
        options.leaveOutFirstDay
            ? "The first day of measuring (" + dayText(analysis.days.front().day) +
                  ") is left out of the averages, as home monitoring asks; its readings are listed."
            : "The first day of measuring is kept in the averages (--keep-first-day).");
  }
  notes.push_back("Morning readings are those from " + windowText(options.morning) +
                  ", evening readings from " + windowText(options.evening) + "; " +
                  readingsAtOtherTimes(otherReadings(analysis)) + " listed but not averaged.");
  notes.push_back(
      "The home average is the mean of all morning and evening readings of the days that count, rounded to "
      "whole mmHg (halves upwards). That rounded average is classified and compared with the threshold " +
      pairText(options.threshold) +
      ", which is reached when the systolic or the diastolic value is at or above it.");
  if (analysis.roundedMean) {
    notes.push_back("Category of the average: " +
                    categoryWithRule(analysis.roundedMean->systolic, analysis.roundedMean->diastolic) + ".");
  }
  notes.push_back(
      "Variability: SD is the standard deviation, CV the standard deviation in percent of the mean, ARV the "
      "average real variability (the mean difference between successive readings).");
  return notes;
}

ChartRequest reportChart(const HomeReportDocument& report, double width) {
  const auto& analysis = report.analysis;
  ChartRequest chart;
  chart.width = width;
  chart.title = "Home readings";
  chart.subtitle = periodText(report);
  if (analysis.roundedMean)
    chart.subtitle += " \u00b7 home average " + pairText(*analysis.roundedMean) + " mmHg";
  chart.start = report.from;
  chart.end = report.to;
  const auto days = Calendar::current().wholeDays(report.from, report.to).value_or(0) + 1;
  chart.ticks = timeTicks(report.from, report.to, days);
  for (const auto& day : analysis.days) {
    for (const auto& [time, readings] :
         {std::pair{TimeOfDay::morning, &day.morning}, std::pair{TimeOfDay::evening, &day.evening},
          std::pair{TimeOfDay::other, &day.other}}) {
      for (const auto& reading : *readings)
        chart.points.push_back({reading->date(), reading->systolic(), reading->diastolic(), markOf(time)});
    }
  }
  if (analysis.all) {
    chart.systolicAverage = analysis.all->systolic.mean;
    chart.diastolicAverage = analysis.all->diastolic.mean;
  }
  chart.threshold = analysis.options.threshold;
  return chart;
}

}  // namespace cardiolith::tool
