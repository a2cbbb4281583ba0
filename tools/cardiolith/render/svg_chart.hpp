#pragma once

#include <cardiolith/platform/date.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace cardiolith::tool {

struct ChartPoint {
  Date date;
  std::int64_t systolic = 0;
  std::int64_t diastolic = 0;
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
};

// An SVG document: systolic and diastolic pressure over time in two panels that share the time axis, each
// over the bands of its categories, with the period's average, readable axes and a legend.
std::string renderChart(const ChartRequest& request);

}  // namespace cardiolith::tool
