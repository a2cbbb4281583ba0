#pragma once

#include <cairo.h>

#include <cardiolith/analysis/home_monitoring.hpp>
#include <cardiolith/platform/date.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cardiolith::tool {

// How a reading is marked: a plain dot, or by its time of day in a home-monitoring report (a filled dot in
// the morning, an open one in the evening, a grey one at other times).
enum class PointMark { reading, morning, evening, other };

struct ChartPoint {
  Date date;
  std::int64_t systolic = 0;
  std::int64_t diastolic = 0;
  PointMark mark = PointMark::reading;
};

// A labelled mark on the time axis (the caller works out local days and their names).
struct TimeTick {
  Date at;
  std::string label;
};

struct ChartRequest {
  std::string title;
  std::string subtitle;
  Date start;  // the time axis runs from start to end
  Date end;
  std::vector<TimeTick> ticks;
  std::vector<ChartPoint> points;  // in any order; points outside the axis are left out
  // The means drawn as dashed lines, and a threshold drawn in each panel, when given.
  std::optional<double> systolicAverage;
  std::optional<double> diastolicAverage;
  std::optional<PressurePair> threshold;
  double width = 960;  // the panels' heights are fixed; narrower charts keep their text readable on paper
};

// The height of the chart that drawChart draws.
double chartHeight(const ChartRequest& request);

// Draws systolic and diastolic pressure over time in two panels that share the time axis, each over the
// bands of its categories, with the averages, the threshold, dates under the axis and a legend, into the
// rectangle from (0, 0) to (request.width, chartHeight(request)) of the context's user space.
void drawChart(cairo_t* cairo, const ChartRequest& request);

}  // namespace cardiolith::tool
