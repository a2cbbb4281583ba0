#include "render/svg_chart.hpp"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <optional>
#include <sstream>
#include <string_view>

#include "render/category_text.hpp"

namespace cardiolith::tool {
namespace {

// Page geometry, in SVG user units (pixels at 100%).
constexpr double pageWidth = 960;
constexpr double plotLeft = 64;
constexpr double plotRight = pageWidth - 104;  // room for the band names on the right
constexpr double plotWidth = plotRight - plotLeft;
constexpr double systolicTop = 136;
constexpr double systolicHeight = 270;
constexpr double panelGap = 44;
constexpr double diastolicTop = systolicTop + systolicHeight + panelGap;
constexpr double diastolicHeight = 190;
constexpr double pageHeight = diastolicTop + diastolicHeight + 52;

constexpr std::string_view fontFamily = "DejaVu Sans, Helvetica, Arial, sans-serif";

struct Band {
  double lower;  // mmHg, from the category table
  double upper;
  std::string_view name;
  std::string_view fill;
  std::string_view ink;
};

struct BandColors {
  std::string_view fill;
  std::string_view ink;
};

// Shaded from blue (low) to red (very high).
BandColors colorsOf(BloodPressureAnalysis category) {
  switch (category) {
    case BloodPressureAnalysis::low:
      return {"#dbeafe", "#1e40af"};
    case BloodPressureAnalysis::normal:
      return {"#dcfce7", "#166534"};
    case BloodPressureAnalysis::elevated:
      return {"#fef9c3", "#854d0e"};
    case BloodPressureAnalysis::high:
      return {"#ffedd5", "#9a3412"};
    case BloodPressureAnalysis::veryHigh:
      return {"#fee2e2", "#991b1b"};
    case BloodPressureAnalysis::unreadable:
      break;
  }
  return {"#f3f4f6", "#374151"};
}

std::vector<Band> bandsOf(Pressure pressure) {
  std::vector<Band> bands;
  for (const auto& band : categoryBands(pressure)) {
    const auto colors = colorsOf(band.category);
    bands.push_back({band.lower, band.upper, categoryName(band.category), colors.fill, colors.ink});
  }
  return bands;
}

struct Panel {
  std::string_view name;
  std::string_view color;
  double top;
  double height;
  double lowest;  // the value range the panel always shows, widened to fit the data
  double highest;
  std::vector<Band> bands;
  std::int64_t ChartPoint::*field;
};

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

class Canvas {
 public:
  Canvas() { out_ << std::fixed << std::setprecision(1); }

  void rect(double x, double y, double w, double h, std::string_view style) {
    out_ << "<rect x=\"" << x << "\" y=\"" << y << "\" width=\"" << w << "\" height=\"" << h << "\" " << style
         << "/>\n";
  }
  void line(double x1, double y1, double x2, double y2, std::string_view style) {
    out_ << "<line x1=\"" << x1 << "\" y1=\"" << y1 << "\" x2=\"" << x2 << "\" y2=\"" << y2 << "\" " << style
         << "/>\n";
  }
  void text(double x, double y, std::string_view content, std::string_view style) {
    out_ << "<text x=\"" << x << "\" y=\"" << y << "\" " << style << ">" << escaped(content) << "</text>\n";
  }
  void circle(double x, double y, double r, std::string_view style) {
    out_ << "<circle cx=\"" << x << "\" cy=\"" << y << "\" r=\"" << r << "\" " << style << "/>\n";
  }
  void polyline(const std::vector<std::pair<double, double>>& points, std::string_view style) {
    out_ << "<polyline points=\"";
    for (const auto& [x, y] : points) out_ << x << ',' << y << ' ';
    out_ << "\" " << style << "/>\n";
  }
  std::ostream& raw() { return out_; }
  std::string str() const { return out_.str(); }

 private:
  std::ostringstream out_;
};

std::string attribute(std::string_view name, std::string_view value) {
  return std::string(name) + "=\"" + std::string(value) + "\"";
}

class TimeAxis {
 public:
  TimeAxis(Date start, Date end)
      : start_(start.timeIntervalSinceReferenceDate()),
        span_(std::max(1.0, end.timeIntervalSinceReferenceDate() - start_)) {}
  double x(Date date) const {
    return plotLeft + (date.timeIntervalSinceReferenceDate() - start_) / span_ * plotWidth;
  }
  bool contains(Date date) const {
    const double offset = date.timeIntervalSinceReferenceDate() - start_;
    return offset >= 0 && offset <= span_;
  }

 private:
  double start_;
  double span_;
};

class ValueAxis {
 public:
  ValueAxis(const Panel& panel, const std::vector<ChartPoint>& points) : panel_(panel) {
    double lowest = panel.lowest, highest = panel.highest;
    for (const auto& point : points) {
      lowest = std::min(lowest, static_cast<double>(point.*panel.field) - 5);
      highest = std::max(highest, static_cast<double>(point.*panel.field) + 5);
    }
    step_ = 10;
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

std::string wholeNumber(double value) { return std::to_string(static_cast<long long>(std::lround(value))); }

void drawBands(Canvas& canvas, const Panel& panel, const ValueAxis& axis) {
  for (const Band& band : panel.bands) {
    const double top = axis.y(axis.clamped(band.upper)), bottom = axis.y(axis.clamped(band.lower));
    if (bottom - top <= 0) continue;
    canvas.rect(plotLeft, top, plotWidth, bottom - top, attribute("fill", band.fill));
    if (bottom - top >= 14) {
      canvas.text(plotRight + 10, (top + bottom) / 2 + 4, band.name,
                  attribute("fill", band.ink) + " font-size=\"12\" font-weight=\"bold\"");
    }
  }
}

void drawGrid(Canvas& canvas, const Panel& panel, const ValueAxis& values, const TimeAxis& time,
              const std::vector<TimeTick>& ticks) {
  for (double value = values.lowest(); value <= values.highest() + 0.5; value += values.step()) {
    const double y = values.y(value);
    canvas.line(plotLeft, y, plotRight, y, "stroke=\"#ffffff\" stroke-opacity=\"0.9\" stroke-width=\"1\"");
    canvas.line(plotLeft - 5, y, plotLeft, y, "stroke=\"#6b7280\" stroke-width=\"1\"");
    canvas.text(plotLeft - 9, y + 4, wholeNumber(value),
                "text-anchor=\"end\" font-size=\"12\" fill=\"#374151\"");
  }
  for (const auto& tick : ticks) {
    if (!time.contains(tick.at)) continue;
    const double x = time.x(tick.at);
    canvas.line(x, panel.top, x, panel.top + panel.height,
                "stroke=\"#9ca3af\" stroke-opacity=\"0.35\" stroke-width=\"1\"");
  }
  canvas.rect(plotLeft, panel.top, plotWidth, panel.height,
              "fill=\"none\" stroke=\"#6b7280\" stroke-width=\"1\"");
}

void drawAverageLine(Canvas& canvas, const Panel& panel, const ValueAxis& values, double average) {
  const double y = values.y(average);
  canvas.line(plotLeft, y, plotRight, y,
              attribute("stroke", panel.color) +
                  " stroke-width=\"1.5\" stroke-dasharray=\"6 4\" stroke-opacity=\"0.8\"");
}

// "Systolic (mmHg)" on the left, the average on the right: above the panel, where no point can hide it.
void drawHeading(Canvas& canvas, const Panel& panel, std::optional<double> average) {
  canvas.text(plotLeft, panel.top - 10, std::string(panel.name) + " (mmHg)",
              attribute("fill", panel.color) + " font-size=\"14\" font-weight=\"bold\"");
  if (!average) return;
  std::ostringstream label;
  label << "average " << std::fixed << std::setprecision(1) << *average;
  canvas.text(plotRight, panel.top - 10, label.str(),
              attribute("fill", panel.color) + " text-anchor=\"end\" font-size=\"13\"");
}

void drawSeries(Canvas& canvas, const Panel& panel, const ValueAxis& values, const TimeAxis& time,
                const std::vector<ChartPoint>& points) {
  if (points.empty()) return;
  // Small dots when there are many, so a year of readings is still a line and not a smear.
  const double radius = points.size() > 120 ? 2.0 : 3.8;

  std::vector<std::pair<double, double>> line;
  for (const auto& point : points)
    line.emplace_back(time.x(point.date), values.y(static_cast<double>(point.*panel.field)));
  canvas.polyline(
      line, attribute("stroke", panel.color) +
                " stroke-width=\"2.2\" fill=\"none\" stroke-linejoin=\"round\" stroke-linecap=\"round\"");
  for (const auto& [x, y] : line) {
    canvas.circle(x, y, radius, attribute("fill", panel.color) + " stroke=\"#ffffff\" stroke-width=\"1.2\"");
  }
}

void drawPanel(Canvas& canvas, const Panel& panel, const TimeAxis& time,
               const std::vector<ChartPoint>& points, const std::vector<TimeTick>& ticks) {
  const ValueAxis values(panel, points);
  std::optional<double> average;
  if (!points.empty()) {
    double sum = 0;
    for (const auto& point : points) sum += static_cast<double>(point.*panel.field);
    average = sum / static_cast<double>(points.size());
  }
  drawHeading(canvas, panel, average);
  drawBands(canvas, panel, values);
  drawGrid(canvas, panel, values, time, ticks);
  if (average) drawAverageLine(canvas, panel, values, *average);
  drawSeries(canvas, panel, values, time, points);
}

void drawTimeLabels(Canvas& canvas, const TimeAxis& time, const std::vector<TimeTick>& ticks) {
  const double axisY = diastolicTop + diastolicHeight;
  for (const auto& tick : ticks) {
    if (!time.contains(tick.at)) continue;
    const double x = time.x(tick.at);
    canvas.line(x, axisY, x, axisY + 5, "stroke=\"#6b7280\" stroke-width=\"1\"");
    canvas.text(x, axisY + 20, tick.label, "text-anchor=\"middle\" font-size=\"12\" fill=\"#374151\"");
  }
}

void drawLegend(Canvas& canvas, std::string_view systolicColor, std::string_view diastolicColor) {
  double x = plotLeft;
  constexpr double y = 80;
  constexpr double characterWidth = 6.8;  // of the 12-unit font, near enough to space the entries
  const auto entryText = [&](std::string_view text) {
    canvas.text(x, y + 4, text, "font-size=\"12\" fill=\"#374151\"");
    x += static_cast<double>(text.size()) * characterWidth + 18;
  };
  for (const auto& [name, color] :
       {std::pair{"Systolic", systolicColor}, std::pair{"Diastolic", diastolicColor}}) {
    canvas.line(x, y, x + 22, y, attribute("stroke", color) + " stroke-width=\"2.2\"");
    canvas.circle(x + 11, y, 3.8, attribute("fill", color) + " stroke=\"#ffffff\" stroke-width=\"1.5\"");
    x += 28;
    entryText(name);
  }
  canvas.line(x, y, x + 22, y, "stroke=\"#4b5563\" stroke-width=\"1.5\" stroke-dasharray=\"6 4\"");
  x += 28;
  entryText("Average");
  x += 10;
  for (const auto& band : bandsOf(Pressure::systolic)) {
    canvas.rect(x, y - 6, 12, 12,
                attribute("fill", band.fill) + " " + attribute("stroke", band.ink) + " stroke-width=\"0.8\"");
    x += 17;
    entryText(band.name);
  }
}

}  // namespace

std::string renderChart(const ChartRequest& request) {
  constexpr std::string_view systolicColor = "#b4233c";
  constexpr std::string_view diastolicColor = "#1f4e9c";
  const Panel systolic{
      "Systolic",           systolicColor, systolicTop, systolicHeight, 80, 160, bandsOf(Pressure::systolic),
      &ChartPoint::systolic};
  const Panel diastolic{"Diastolic",
                        diastolicColor,
                        diastolicTop,
                        diastolicHeight,
                        50,
                        100,
                        bandsOf(Pressure::diastolic),
                        &ChartPoint::diastolic};

  const TimeAxis time(request.start, request.end);
  std::vector<ChartPoint> points;
  std::copy_if(request.points.begin(), request.points.end(), std::back_inserter(points),
               [&](const ChartPoint& point) { return time.contains(point.date); });
  std::stable_sort(points.begin(), points.end(),
                   [](const auto& a, const auto& b) { return a.date < b.date; });

  Canvas canvas;
  canvas.raw() << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << pageWidth << "\" height=\""
               << pageHeight << "\" viewBox=\"0 0 " << pageWidth << ' ' << pageHeight << "\" font-family=\""
               << fontFamily << "\">\n";
  canvas.rect(0, 0, pageWidth, pageHeight, "fill=\"#ffffff\"");
  canvas.text(plotLeft, 36, request.title, "font-size=\"20\" font-weight=\"bold\" fill=\"#111827\"");
  canvas.text(plotLeft, 58, request.subtitle, "font-size=\"13\" fill=\"#4b5563\"");
  drawLegend(canvas, systolicColor, diastolicColor);
  drawPanel(canvas, systolic, time, points, request.ticks);
  drawPanel(canvas, diastolic, time, points, request.ticks);
  drawTimeLabels(canvas, time, request.ticks);
  canvas.raw() << "</svg>\n";
  return canvas.str();
}

}  // namespace cardiolith::tool
