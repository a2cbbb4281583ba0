#include <algorithm>
#include <array>
#include <iterator>

#include "render/cairo_output.hpp"
#include "render/cairo_text.hpp"
#include "render/category_text.hpp"
#include "render/home_report.hpp"

namespace cardiolith::tool {
namespace {

// A4 in points, with 15 mm margins.
constexpr double pageWidth = 595.28;
constexpr double pageHeight = 841.89;
constexpr double margin = 42.5;
constexpr double contentWidth = pageWidth - 2 * margin;

constexpr Color ink{0x111827};
constexpr Color quiet{0x4b5563};
constexpr Color rule{0xd1d5db};

// Lays the report out from top to bottom, starting a new page when the next block does not fit.
class Pages {
 public:
  explicit Pages(cairo_t* cairo) : cairo_(cairo) {}

  void need(double height) {
    if (y_ + height <= pageHeight - margin) return;
    cairo_show_page(cairo_);
    y_ = margin;
  }
  // A paragraph, wrapped to the content's width and placed line by line, so that a long one goes on on the
  // next page instead of running off this one; the lines after the first indented by `hang`, `gap` below.
  void paragraph(std::string_view text, TextStyle style, double gap = 4, double hang = 0) {
    style.wrapWidth = contentWidth;
    auto lines = wrappedLines(cairo_, text, style);
    if (hang > 0 && lines.size() > 1) {
      // The first line keeps the full width; the rest is wrapped again to the narrower column under it.
      style.wrapWidth = contentWidth - hang;
      auto rest = wrappedLines(cairo_, text.substr(lines.front().size()), style);
      lines.resize(1);
      lines.insert(lines.end(), std::make_move_iterator(rest.begin()), std::make_move_iterator(rest.end()));
    }
    style.wrapWidth = 0;  // the lines are broken already
    const double lineHeight = style.size * 1.25;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      need(lineHeight);
      y_ += drawText(cairo_, margin + (i > 0 ? hang : 0), y_ + style.size, lines[i], style);
    }
    y_ += gap;
  }
  // A table row: cells at the given left edges (right-aligned cells at their right edges), then a rule.
  template <std::size_t size>
  void row(const std::array<std::string, size>& cells, const std::array<double, size>& at,
           const std::array<Align, size>& align, TextStyle style) {
    double height = style.size * 1.3;
    need(2 * height);  // a row of wrapped cells takes two lines at most in a report's columns
    for (std::size_t i = 0; i < size; ++i) {
      TextStyle cell = style;
      cell.align = align[i];
      if (align[i] == Align::left)
        cell.wrapWidth = (i + 1 < size ? at[i + 1] - at[i] : contentWidth - at[i]) - 6;
      height = std::max(height, drawText(cairo_, margin + at[i], y_ + style.size, cells[i], cell));
    }
    y_ += height + 2;
    line(rule);
    y_ += 3;
  }
  void line(Color color) {
    color.use(cairo_);
    cairo_set_line_width(cairo_, 0.5);
    cairo_move_to(cairo_, margin, y_);
    cairo_line_to(cairo_, pageWidth - margin, y_);
    cairo_stroke(cairo_);
  }
  void chart(const ChartRequest& request) {
    const double scale = contentWidth / request.width;
    const double height = chartHeight(request) * scale;
    need(height);
    cairo_save(cairo_);
    cairo_translate(cairo_, margin, y_);
    cairo_scale(cairo_, scale, scale);
    drawChart(cairo_, request);
    cairo_restore(cairo_);
    y_ += height + 8;
  }
  void space(double height) { y_ += height; }

 private:
  cairo_t* cairo_;
  double y_ = margin;
};

void figures(Pages& pages, const HomeMonitoringReport& analysis) {
  constexpr std::array<double, 4> at{0, 300, 390, contentWidth};
  constexpr std::array<Align, 4> align{Align::left, Align::right, Align::right, Align::right};
  pages.row<4>({"", "Systolic", "Diastolic", "Pulse"}, at, align, {9, true, ink});
  for (const auto& row : figureRows(analysis))
    pages.row<4>({row.name, row.systolic, row.diastolic, row.pulse}, at, align, {9, false, ink});
}

void days(Pages& pages, const HomeMonitoringReport& analysis) {
  constexpr std::array<double, 4> at{0, 150, 270, 390};
  constexpr std::array<Align, 4> align{Align::left, Align::left, Align::left, Align::left};
  pages.need(80);  // the heading with the first rows, never alone at the foot of a page
  pages.paragraph("Day by day (mmHg)", {11, true, ink}, 6);
  pages.row<4>({"Day", "Morning", "Evening", "Other times"}, at, align, {9, true, ink});
  for (const auto& row : dayRows(analysis)) {
    pages.row<4>({row.day + (row.leftOut ? " (left out)" : ""), row.morning, row.evening, row.other}, at,
                 align, {9, false, row.leftOut ? quiet : ink});
  }
}

// The person's notes, at most shownNotes of them, each after its reading's time and values.
void notesOfThePerson(Pages& pages, const HomeReportDocument& report) {
  const auto notes = personNotes(report.analysis);
  if (notes.empty()) return;
  pages.need(60);  // the heading with the first notes
  pages.paragraph("Your notes", {11, true, ink}, 4);
  const auto shown = std::min(notes.size(), shownNotes);
  for (std::size_t i = 0; i < shown; ++i) {
    pages.paragraph(notes[i].when + " \u00b7 " + noteValues(*notes[i].reading) + ": " + notes[i].text,
                    {9, false, ink}, 3, 12);
  }
  if (notes.size() > shown)
    pages.paragraph(moreNotesText(report, notes.size() - shown), {9, false, quiet}, 3);
  pages.space(6);
}

}  // namespace

std::string reportPdf(const HomeReportDocument& report) {
  const auto& analysis = report.analysis;
  return renderImage(ImageFormat::pdf, pageWidth, pageHeight, [&](cairo_t* cairo) {
    Pages pages(cairo);
    pages.paragraph("Home blood pressure", {18, true, ink}, 2);
    pages.paragraph(periodText(report) + (report.name ? " \u00b7 " + *report.name : ""), {10, false, quiet},
                    8);
    if (analysis.roundedMean) {
      pages.paragraph("Home average " + pairText(*analysis.roundedMean) + " mmHg (" +
                          std::string(categoryName(*analysis.category)) + ")",
                      {13, true, ink}, 2);
      pages.paragraph(
          "Threshold " + pairText(analysis.options.threshold) + " mmHg " +
              (*analysis.atOrAboveThreshold ? "reached" : "not reached"),
          {11, *analysis.atOrAboveThreshold, *analysis.atOrAboveThreshold ? Color{0x991b1b} : ink});
    } else {
      pages.paragraph("No home average: no morning or evening readings on the days that count.",
                      {13, true, ink});
    }
    pages.paragraph(std::to_string(analysis.countedDays) + " days and " +
                        std::to_string(analysis.all ? analysis.all->readings : 0) + " readings counted; " +
                        std::to_string(analysis.completeDays) + " days with morning and evening readings.",
                    {9.5, false, ink}, 6);
    const auto notes = reportNotes(report);
    auto note = notes.begin();
    if (!analysis.protocolMet()) pages.paragraph(*note++, {9.5, true, {0x92400e}}, 6);
    if (analysis.all) figures(pages, analysis);
    pages.space(4);
    if (!analysis.days.empty()) pages.chart(reportChart(report, reportChartWidth));
    days(pages, analysis);
    pages.space(8);
    notesOfThePerson(pages, report);
    pages.paragraph("About the figures", {11, true, ink}, 4);
    for (; note != notes.end(); ++note) pages.paragraph(*note, {8.5, false, quiet}, 3);
  });
}

}  // namespace cardiolith::tool
