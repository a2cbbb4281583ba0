#include "render/time_ticks.hpp"

#include <cardiolith/platform/date_formatter.hpp>
#include <cmath>
#include <ctime>
#include <limits>

namespace cardiolith::tool {
namespace {

std::tm localParts(Date date) {
  const auto seconds = static_cast<std::time_t>(std::floor(date.timeIntervalSince1970()));
  std::tm parts{};
  localtime_r(&seconds, &parts);
  return parts;
}

// The local midnight of the given day; mktime carries day and month overflow into the next month or year.
Date localMidnight(std::tm parts) {
  parts.tm_hour = parts.tm_min = parts.tm_sec = 0;
  parts.tm_isdst = -1;
  return Date::fromTimeIntervalSince1970(static_cast<double>(std::mktime(&parts)));
}

// The smallest of the steps (days, or months for long periods) that puts at most ten marks under the chart.
template <std::size_t size>
int spacingFor(double count, const int (&steps)[size]) {
  for (const int step : steps) {
    if (count / step <= 10) return step;
  }
  return steps[size - 1];
}

}  // namespace

std::vector<TimeTick> timeTicks(Date start, Date end, std::int64_t days) {
  static constexpr int daySteps[] = {1, 2, 3, 7, 14};
  static constexpr int monthSteps[] = {1, 2, 3, 6, 12, 24, 60, 120, 240, 600, 1200};
  const bool monthly = days > 140;
  const int step = monthly ? spacingFor(static_cast<double>(days) / 30.4, monthSteps)
                           : spacingFor(static_cast<double>(days), daySteps);
  const DateFormatter label(monthly ? "MMM yyyy" : "d MMM");
  std::tm first = localParts(start);
  if (monthly) first.tm_mday = 1;
  std::vector<TimeTick> ticks;
  Date previous{-std::numeric_limits<double>::infinity()};
  for (int index = 0;; ++index) {
    std::tm parts = first;
    (monthly ? parts.tm_mon : parts.tm_mday) += index * step;
    const Date tick = localMidnight(parts);
    if (tick > end || !(tick > previous)) break;  // past the end, or beyond what mktime can represent
    if (tick >= start) ticks.push_back({tick, label.string(tick)});
    previous = tick;
  }
  return ticks;
}

}  // namespace cardiolith::tool
