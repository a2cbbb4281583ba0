#pragma once

#include <cardiolith/analysis/home_monitoring.hpp>
#include <cardiolith/platform/date.hpp>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "render/chart.hpp"

namespace cardiolith::tool {

// What every form of the home-monitoring report shows: the analysis, the period it covers and whom it is
// for. The forms (terminal text, JSON, HTML, PDF) differ only in how they lay it out.
struct HomeReportDocument {
  HomeMonitoringReport analysis;
  Date from;  // the first instant of the first day
  Date to;    // the last instant of the last day (or now)
  std::optional<std::string> name;
};

// "2 Mar 2026 – 8 Mar 2026".
std::string periodText(const HomeReportDocument& report);
// "136/85".
std::string pairText(const PressurePair& pair);
// "133.0/83.0", or "-" for none.
std::string meansText(const std::optional<ReadingStatistics>& statistics);
// "Tue 3 Mar 2026".
std::string dayText(const CalendarDay& day);
// "07:02".
std::string clockText(Date date);
// One row of the figures table: a name and the systolic, diastolic and pulse cells ("-" where none).
struct FigureRow {
  std::string name;
  std::string systolic;
  std::string diastolic;
  std::string pulse;
};
// Means (all, morning, evening, with their counts), variability, lowest and highest.
std::vector<FigureRow> figureRows(const HomeMonitoringReport& analysis);

// One day of the day-by-day table: each group's readings as "140/90 138/88", other readings with their time.
struct DayRow {
  std::string day;
  std::string morning;
  std::string evening;
  std::string other;
  bool leftOut = false;
};
std::vector<DayRow> dayRows(const HomeMonitoringReport& analysis);

// One of the person's own notes on a reading of the period, its text made plain (see plainNote).
struct PersonNote {
  std::shared_ptr<Reading> reading;
  std::string when;  // local: "Tue 3 Mar 2026 07:02"
  std::string text;
};
// The notes of the period's readings in time order; readings without notes, or with nothing printable in
// them, give none.
std::vector<PersonNote> personNotes(const HomeMonitoringReport& analysis);
// The printed forms show this many notes in full, so that a normal week stays on one or two A4 pages; the
// JSON holds them all.
inline constexpr std::size_t shownNotes = 20;
// "140/90 mmHg, pulse 70".
std::string noteValues(const Reading& reading);
// What stands in for the notes beyond shownNotes: how many, and the list command that shows them.
std::string moreNotesText(const HomeReportDocument& report, std::size_t more);

// The sentences under the figures: how they were computed and, when it was not met, the protocol's
// warning first.
std::vector<std::string> reportNotes(const HomeReportDocument& report);
// The width the report's chart is drawn at before it is scaled to the page: narrower than a chart on its own,
// so that its text stays at about 8 points on paper.
inline constexpr double reportChartWidth = 760;
// The chart of the report: the days of the period, morning and evening marked, the means and the threshold.
ChartRequest reportChart(const HomeReportDocument& report, double width);

// The forms of the report. Text stays within 80 columns.
void printReportText(std::ostream& out, const HomeReportDocument& report);
void printReportJson(std::ostream& out, const HomeReportDocument& report);
// One self-contained HTML file (styles and the chart inline, no scripts, nothing fetched) for A4.
std::string reportHtml(const HomeReportDocument& report);
// A4 pages with the text as text and the chart as vector drawing, fonts embedded as subsets.
std::string reportPdf(const HomeReportDocument& report);

}  // namespace cardiolith::tool
