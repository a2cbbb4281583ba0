#include <algorithm>
#include <regex>
#include <sstream>

#include "render/cairo_output.hpp"
#include "render/category_text.hpp"
#include "render/home_report.hpp"

namespace cardiolith::tool {
namespace {

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

// The chart as an SVG element to place in the page: without the XML declaration, and without the namespace
// declarations, which an HTML parser supplies itself, so that the page names no outside address at all.
std::string inlineChart(const HomeReportDocument& report) {
  const auto chart = reportChart(report, reportChartWidth);
  std::string svg = renderImage(ImageFormat::svg, chart.width, chartHeight(chart),
                                [&](cairo_t* cairo) { drawChart(cairo, chart); });
  svg.erase(0, svg.find("<svg"));
  static const std::regex namespaces(R"( xmlns(:xlink)?="[^"]*")");
  const auto tagEnd = svg.find('>');
  return std::regex_replace(svg.substr(0, tagEnd), namespaces, "") + svg.substr(tagEnd);
}

constexpr std::string_view style = R"(
@page { size: A4; margin: 12mm 14mm; }
* { box-sizing: border-box; }
body { font-family: "DejaVu Sans", sans-serif; font-size: 9.5pt; color: #111827; margin: 0 auto;
       max-width: 182mm; padding: 8mm 0; }
h1 { font-size: 16pt; margin: 0; }
h2 { font-size: 11pt; margin: 10pt 0 4pt; }
.period { color: #4b5563; margin: 2pt 0 8pt; }
.headline { font-size: 13pt; margin: 4pt 0; }
.reached { color: #991b1b; font-weight: bold; }
.warning { border-left: 3pt solid #b45309; background: #fffbeb; padding: 4pt 8pt; margin: 6pt 0; }
table { border-collapse: collapse; width: 100%; }
th, td { text-align: left; padding: 2pt 6pt; border-bottom: 0.5pt solid #d1d5db; vertical-align: top; }
th { border-bottom: 1pt solid #6b7280; }
.n { text-align: right; font-variant-numeric: tabular-nums; }
tr.left-out td { color: #6b7280; font-style: italic; }
figure { margin: 8pt 0; break-inside: avoid; }
svg { width: 100%; height: auto; display: block; }
/* A week's table is short: it moves to the next page whole rather than leave its heading behind. */
section.days { break-inside: avoid; }
h2 { break-after: avoid; }
tr { break-inside: avoid; }
td.when, td.values { white-space: nowrap; }
/* A note is the person's own text: a long link or a row of letters wraps anywhere instead of widening the page. */
td.note { overflow-wrap: anywhere; width: 100%; }
.notes { font-size: 8.5pt; color: #374151; padding-left: 14pt; }
)";

void figuresTable(std::ostream& out, const HomeMonitoringReport& analysis) {
  out << "<table class=\"figures\"><tr><th></th><th class=\"n\">Systolic</th><th class=\"n\">Diastolic</th>"
         "<th class=\"n\">Pulse</th></tr>\n";
  for (const auto& row : figureRows(analysis)) {
    out << "<tr><td>" << escaped(row.name) << "</td><td class=\"n\">" << escaped(row.systolic)
        << "</td><td class=\"n\">" << escaped(row.diastolic) << "</td><td class=\"n\">" << escaped(row.pulse)
        << "</td></tr>\n";
  }
  out << "</table>\n";
}

void daysTable(std::ostream& out, const HomeMonitoringReport& analysis) {
  out << "<section class=\"days\">\n<h2>Day by day "
         "(mmHg)</h2>\n<table><tr><th>Day</th><th>Morning</th><th>Evening</th>"
         "<th>Other times</th></tr>\n";
  for (const auto& row : dayRows(analysis)) {
    out << (row.leftOut ? "<tr class=\"left-out\">" : "<tr>") << "<td>" << escaped(row.day)
        << (row.leftOut ? " (left out)" : "") << "</td><td>" << escaped(row.morning) << "</td><td>"
        << escaped(row.evening) << "</td><td>" << escaped(row.other) << "</td></tr>\n";
  }
  out << "</table>\n</section>\n";
}

// The person's notes as text, at most shownNotes of them; nothing when there are none.
void personNotesTable(std::ostream& out, const HomeReportDocument& report) {
  const auto notes = personNotes(report.analysis);
  if (notes.empty()) return;
  out << "<h2>Your notes</h2>\n<table class=\"person-notes\"><tr><th>When</th><th>Reading</th><th>Note</th>"
         "</tr>\n";
  const auto shown = std::min(notes.size(), shownNotes);
  for (std::size_t i = 0; i < shown; ++i) {
    out << "<tr><td class=\"when\">" << escaped(notes[i].when) << "</td><td class=\"values\">"
        << escaped(noteValues(*notes[i].reading)) << "</td><td class=\"note\">" << escaped(notes[i].text)
        << "</td></tr>\n";
  }
  out << "</table>\n";
  if (notes.size() > shown) out << "<p>" << escaped(moreNotesText(report, notes.size() - shown)) << "</p>\n";
}

}  // namespace

std::string reportHtml(const HomeReportDocument& report) {
  const auto& analysis = report.analysis;
  std::ostringstream out;
  const std::string title = "Home blood pressure, " + periodText(report);
  out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" << escaped(title)
      << "</title>\n<style>" << style << "</style>\n</head>\n<body>\n";
  out << "<h1>Home blood pressure</h1>\n<p class=\"period\">" << escaped(periodText(report));
  if (report.name) out << " \u00b7 " << escaped(*report.name);
  out << "</p>\n";
  if (analysis.roundedMean) {
    out << "<p class=\"headline\">Home average <strong>" << pairText(*analysis.roundedMean)
        << " mmHg</strong> (" << escaped(categoryName(*analysis.category)) << ") \u00b7 threshold "
        << pairText(analysis.options.threshold) << " mmHg "
        << (*analysis.atOrAboveThreshold ? "<span class=\"reached\">reached</span>" : "not reached")
        << "</p>\n";
  } else {
    out << "<p class=\"headline\">No home average: no morning or evening readings on the days that "
           "count.</p>\n";
  }
  out << "<p>" << analysis.countedDays << " days and " << (analysis.all ? analysis.all->readings : 0)
      << " readings counted; " << analysis.completeDays << " days with morning and evening readings.</p>\n";
  const auto notes = reportNotes(report);
  auto note = notes.begin();
  if (!analysis.protocolMet()) out << "<p class=\"warning\">" << escaped(*note++) << "</p>\n";
  if (analysis.all) figuresTable(out, analysis);
  if (!analysis.days.empty()) out << "<figure>" << inlineChart(report) << "</figure>\n";
  daysTable(out, analysis);
  personNotesTable(out, report);
  out << "<h2>About the figures</h2>\n<ul class=\"notes\">\n";
  for (; note != notes.end(); ++note) out << "<li>" << escaped(*note) << "</li>\n";
  out << "</ul>\n</body>\n</html>\n";
  return out.str();
}

}  // namespace cardiolith::tool
