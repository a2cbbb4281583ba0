#include "render/chart.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "render/cairo_text.hpp"
#include "render/category_text.hpp"

namespace cardiolith::tool {
namespace {

// Geometry, in user units (pixels at 100%).
constexpr double plotLeft = 64;
constexpr double bandNamesWidth = 104;  // room for the band names on the right
constexpr double systolicTop = 136;
constexpr double systolicHeight = 270;
constexpr double panelGap = 44;
constexpr double diastolicTop = systolicTop + systolicHeight + panelGap;
constexpr double diastolicHeight = 190;
constexpr double axisY = diastolicTop + diastolicHeight;
constexpr double totalHeight = axisY + 52;

constexpr Color ink{0x374151};
constexpr Color frame{0x6b7280};
constexpr Color thresholdInk{0x111827};
constexpr Color otherInk{0x9ca3af};
constexpr Color systolicColor{0xb4233c};
constexpr Color diastolicColor{0x1f4e9c};

struct BandColors {
  Color fill;
  Color ink;
};

// Shaded from blue (low) to red (very high).
BandColors colorsOf(BloodPressureAnalysis category) {
  switch (category) {
    case BloodPressureAnalysis::low:
      return {{0xdbeafe}, {0x1e40af}};
    case BloodPressureAnalysis::normal:
      return {{0xdcfce7}, {0x166534}};
    case BloodPressureAnalysis::elevated:
      return {{0xfef9c3}, {0x854d0e}};
    case BloodPressureAnalysis::high:
      return {{0xffedd5}, {0x9a3412}};
    case BloodPressureAnalysis::veryHigh:
      return {{0xfee2e2}, {0x991b1b}};
    case BloodPressureAnalysis::unreadable:
      break;
  }
  return {{0xf3f4f6}, {0x374151}};
}

struct Panel {
  std::string_view name;
  Color color;
  double top;
  double height;
  double lowest;  // the value range the panel always shows, widened to fit the data and the threshold
  double highest;
  Pressure pressure;
  std::optional<double> average;
  std::optional<double> threshold;
  std::int64_t ChartPoint::*field;
};

class TimeAxis {
 public:
  TimeAxis(Date start, Date end, double right)
      : start_(start.timeIntervalSinceReferenceDate()),
        span_(std::max(1.0, end.timeIntervalSinceReferenceDate() - start_)),
        right_(right) {}
  double x(Date date) const {
    return plotLeft + (date.timeIntervalSinceReferenceDate() - start_) / span_ * (right_ - plotLeft);
  }
  bool contains(Date date) const {
    const double offset = date.timeIntervalSinceReferenceDate() - start_;
    return offset >= 0 && offset <= span_;
  }
  double right() const { return right_; }

 private:
  double start_;
  double span_;
  double right_;
};

class ValueAxis {
 public:
  ValueAxis(const Panel& panel, const std::vector<ChartPoint>& points) : panel_(panel) {
    double lowest = panel.lowest, highest = panel.highest;
    for (const auto& point : points) {
      lowest = std::min(lowest, static_cast<double>(point.*panel.field) - 5);
      highest = std::max(highest, static_cast<double>(point.*panel.field) + 5);
    }
    if (panel.threshold) highest = std::max(highest, *panel.threshold + 5);
    while ((highest - lowest) / step_ > 10) step_ *= 2;
    lowest_ = std::floor(lowest / step_) * step_;
    highest_ = std::ceil(highest / step_) * step_;
  }
  double y(double value) const {
    return panel_.top + panel_.height - (value - lowest_) / (highest_ - lowest_) * panel_.height;
  }
  double clamped(double value) const { return std::clamp(value, lowest_, highest_); }
  double lowest() const { return lowest_; }
  double highest() const { return highest_; }
  double step() const { return step_; }

 private:
  const Panel& panel_;
  double lowest_ = 0;
  double highest_ = 0;
  double step_ = 10;
};

void rectangle(cairo_t* cairo, double x, double y, double w, double h, Color fill) {
  fill.use(cairo);
  cairo_rectangle(cairo, x, y, w, h);
  cairo_fill(cairo);
}

void line(cairo_t* cairo, double x1, double y1, double x2, double y2, Color color, double width,
          double alpha = 1.0) {
  color.use(cairo, alpha);
  cairo_set_line_width(cairo, width);
  cairo_move_to(cairo, x1, y1);
  cairo_line_to(cairo, x2, y2);
  cairo_stroke(cairo);
}

void dashed(cairo_t* cairo, std::initializer_list<double> pattern) {
  const std::vector<double> dashes(pattern);
  cairo_set_dash(cairo, dashes.data(), static_cast<int>(dashes.size()), 0);
}

// A reading's dot: filled in the colour of its pressure, open (white inside) for an evening reading, grey
// for a reading outside the morning and evening windows.
void dot(cairo_t* cairo, double x, double y, double radius, Color color, PointMark mark) {
  cairo_new_sub_path(cairo);
  cairo_arc(cairo, x, y, radius, 0, 2 * M_PI);
  if (mark == PointMark::evening) {
    Color{0xffffff}.use(cairo);
    cairo_fill_preserve(cairo);
    color.use(cairo);
    cairo_set_line_width(cairo, 1.8);
    cairo_stroke(cairo);
    return;
  }
  (mark == PointMark::other ? otherInk : color).use(cairo);
  cairo_fill_preserve(cairo);
  Color{0xffffff}.use(cairo);
  cairo_set_line_width(cairo, 1.2);
  cairo_stroke(cairo);
}

std::string oneDecimal(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

void drawBands(cairo_t* cairo, const Panel& panel, const ValueAxis& axis, double right) {
  for (const auto& band : categoryBands(panel.pressure)) {
    const double top = axis.y(axis.clamped(band.upper)), bottom = axis.y(axis.clamped(band.lower));
    if (bottom - top <= 0) continue;
    const auto colors = colorsOf(band.category);
    rectangle(cairo, plotLeft, top, right - plotLeft, bottom - top, colors.fill);
    if (bottom - top >= 14) {
      drawText(cairo, right + 10, (top + bottom) / 2 + 4, categoryName(band.category),
               {12, true, colors.ink, Align::left, bandNamesWidth - 14});
    }
  }
}

void drawGrid(cairo_t* cairo, const Panel& panel, const ValueAxis& values, const TimeAxis& time,
              const std::vector<TimeTick>& ticks) {
  for (double value = values.lowest(); value <= values.highest() + 0.5; value += values.step()) {
    const double y = values.y(value);
    line(cairo, plotLeft, y, time.right(), y, {0xffffff}, 1, 0.9);
    line(cairo, plotLeft - 5, y, plotLeft, y, frame, 1);
    drawText(cairo, plotLeft - 9, y + 4, std::to_string(std::lround(value)), {12, false, ink, Align::right});
  }
  for (const auto& tick : ticks) {
    if (!time.contains(tick.at)) continue;
    const double x = time.x(tick.at);
    line(cairo, x, panel.top, x, panel.top + panel.height, otherInk, 1, 0.35);
  }
  frame.use(cairo);
  cairo_set_line_width(cairo, 1);
  cairo_rectangle(cairo, plotLeft, panel.top, time.right() - plotLeft, panel.height);
  cairo_stroke(cairo);
}

void drawReferenceLines(cairo_t* cairo, const Panel& panel, const ValueAxis& values, double right) {
  if (panel.threshold) {
    const double y = values.y(*panel.threshold);
    cairo_save(cairo);
    dashed(cairo, {2, 3});
    line(cairo, plotLeft, y, right, y, thresholdInk, 1.6);
    cairo_restore(cairo);
    // On a white backing, so the readings that pass under it don't hide the value.
    const std::string label = "threshold " + std::to_string(std::lround(*panel.threshold));
    const TextStyle style{11, true, thresholdInk};
    Color{0xffffff}.use(cairo, 0.8);
    cairo_rectangle(cairo, plotLeft + 3, y - 17, textWidth(cairo, label, style) + 6, 14);
    cairo_fill(cairo);
    drawText(cairo, plotLeft + 6, y - 6, label, style);
  }
  if (panel.average) {
    const double y = values.y(*panel.average);
    cairo_save(cairo);
    dashed(cairo, {6, 4});
    line(cairo, plotLeft, y, right, y, panel.color, 1.5, 0.8);
    cairo_restore(cairo);
  }
}

// "Systolic (mmHg)" on the left, the average on the right: above the panel, where no point can hide it.
void drawHeading(cairo_t* cairo, const Panel& panel, double right) {
  drawText(cairo, plotLeft, panel.top - 10, std::string(panel.name) + " (mmHg)", {14, true, panel.color});
  if (panel.average) {
    drawText(cairo, right, panel.top - 10, "average " + oneDecimal(*panel.average),
             {13, false, panel.color, Align::right});
  }
}

void drawSeries(cairo_t* cairo, const Panel& panel, const ValueAxis& values, const TimeAxis& time,
                const std::vector<ChartPoint>& points) {
  if (points.empty()) return;
  // Small dots when there are many, so a year of readings is still a line and not a smear.
  const double radius = points.size() > 120 ? 2.0 : 3.8;
  panel.color.use(cairo);
  cairo_set_line_width(cairo, 2.2);
  cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
  for (const auto& point : points)
    cairo_line_to(cairo, time.x(point.date), values.y(static_cast<double>(point.*panel.field)));
  cairo_stroke(cairo);
  for (const auto& point : points) {
    dot(cairo, time.x(point.date), values.y(static_cast<double>(point.*panel.field)), radius, panel.color,
        point.mark);
  }
}

void drawPanel(cairo_t* cairo, const Panel& panel, const TimeAxis& time,
               const std::vector<ChartPoint>& points, const std::vector<TimeTick>& ticks) {
  const ValueAxis values(panel, points);
  drawHeading(cairo, panel, time.right());
  drawBands(cairo, panel, values, time.right());
  drawGrid(cairo, panel, values, time, ticks);
  drawReferenceLines(cairo, panel, values, time.right());
  drawSeries(cairo, panel, values, time, points);
}

void drawTimeLabels(cairo_t* cairo, const TimeAxis& time, const std::vector<TimeTick>& ticks) {
  for (const auto& tick : ticks) {
    if (!time.contains(tick.at)) continue;
    const double x = time.x(tick.at);
    line(cairo, x, axisY, x, axisY + 5, frame, 1);
    drawText(cairo, x, axisY + 20, tick.label, {12, false, ink, Align::center});
  }
}

// Entries from left to right, each a sample and its name, on a second line when the first is full.
class Legend {
 public:
  Legend(cairo_t* cairo, double right) : cairo_(cairo), right_(right) {}
  // Makes room for an entry whose sample is `sampleWidth` wide.
  void start(std::string_view text, double sampleWidth) {
    if (x_ + sampleWidth + textWidth(cairo_, text, style) > right_) {
      x_ = plotLeft;
      y_ += 20;
    }
  }
  void name(std::string_view text, double gapAfter = 18) {
    drawText(cairo_, x_, y_ + 4, text, style);
    x_ += textWidth(cairo_, text, style) + gapAfter;
  }
  void lineSample(Color color, double width, std::initializer_list<double> dashes) {
    cairo_save(cairo_);
    if (dashes.size() > 0) dashed(cairo_, dashes);
    line(cairo_, x_, y_, x_ + 22, y_, color, width);
    cairo_restore(cairo_);
  }
  void advance(double by) { x_ += by; }
  double x() const { return x_; }
  double y() const { return y_; }

 private:
  static constexpr TextStyle style{12, false, ink};
  cairo_t* cairo_;
  double right_;
  double x_ = plotLeft;
  double y_ = 76;
};

bool has(const std::vector<ChartPoint>& points, PointMark mark) {
  return std::any_of(points.begin(), points.end(),
                     [&](const ChartPoint& point) { return point.mark == mark; });
}

void drawLegend(cairo_t* cairo, const ChartRequest& request, const std::vector<ChartPoint>& points) {
  Legend legend(cairo, request.width);
  for (const auto& [name, color] :
       {std::pair{"Systolic", systolicColor}, std::pair{"Diastolic", diastolicColor}}) {
    legend.start(name, 28);
    legend.lineSample(color, 2.2, {});
    dot(cairo, legend.x() + 11, legend.y(), 3.8, color, PointMark::reading);
    legend.advance(28);
    legend.name(name);
  }
  for (const auto& [mark, name] :
       {std::pair{PointMark::morning, "Morning"}, std::pair{PointMark::evening, "Evening"},
        std::pair{PointMark::other, "Other times"}}) {
    if (!has(points, mark)) continue;
    legend.start(name, 14);
    dot(cairo, legend.x() + 5, legend.y(), 3.8, ink, mark);
    legend.advance(14);
    legend.name(name);
  }
  if (request.systolicAverage || request.diastolicAverage) {
    legend.start("Average", 28);
    legend.lineSample({0x4b5563}, 1.5, {6, 4});
    legend.advance(28);
    legend.name("Average");
  }
  if (request.threshold) {
    const std::string name = "Threshold " + std::to_string(request.threshold->systolic) + "/" +
                             std::to_string(request.threshold->diastolic);
    legend.start(name, 28);
    legend.lineSample(thresholdInk, 1.6, {2, 3});
    legend.advance(28);
    legend.name(name);
  }
  legend.advance(10);
  for (const auto& band : categoryBands(Pressure::systolic)) {
    const auto colors = colorsOf(band.category);
    legend.start(categoryName(band.category), 17);
    rectangle(cairo, legend.x(), legend.y() - 6, 12, 12, colors.fill);
    colors.ink.use(cairo);
    cairo_set_line_width(cairo, 0.8);
    cairo_rectangle(cairo, legend.x(), legend.y() - 6, 12, 12);
    cairo_stroke(cairo);
    legend.advance(17);
    legend.name(categoryName(band.category), 12);
  }
}

}  // namespace

double chartHeight(const ChartRequest&) { return totalHeight; }

void drawChart(cairo_t* cairo, const ChartRequest& request) {
  const double right = request.width - bandNamesWidth;
  const auto threshold = [&](std::int64_t PressurePair::*field) -> std::optional<double> {
    if (!request.threshold) return std::nullopt;
    return static_cast<double>((*request.threshold).*field);
  };
  const Panel systolic{"Systolic",
                       systolicColor,
                       systolicTop,
                       systolicHeight,
                       80,
                       160,
                       Pressure::systolic,
                       request.systolicAverage,
                       threshold(&PressurePair::systolic),
                       &ChartPoint::systolic};
  const Panel diastolic{"Diastolic",
                        diastolicColor,
                        diastolicTop,
                        diastolicHeight,
                        50,
                        100,
                        Pressure::diastolic,
                        request.diastolicAverage,
                        threshold(&PressurePair::diastolic),
                        &ChartPoint::diastolic};

  const TimeAxis time(request.start, request.end, right);
  std::vector<ChartPoint> points;
  std::copy_if(request.points.begin(), request.points.end(), std::back_inserter(points),
               [&](const ChartPoint& point) { return time.contains(point.date); });
  std::stable_sort(points.begin(), points.end(),
                   [](const auto& a, const auto& b) { return a.date < b.date; });

  cairo_save(cairo);
  rectangle(cairo, 0, 0, request.width, totalHeight, {0xffffff});
  drawText(cairo, plotLeft, 36, request.title, {20, true, {0x111827}});
  drawText(cairo, plotLeft, 58, request.subtitle, {13, false, {0x4b5563}});
  drawLegend(cairo, request, points);
  drawPanel(cairo, systolic, time, points, request.ticks);
  drawPanel(cairo, diastolic, time, points, request.ticks);
  drawTimeLabels(cairo, time, request.ticks);
  cairo_restore(cairo);
}

}  // namespace cardiolith::tool
