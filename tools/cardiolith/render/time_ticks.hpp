#pragma once

#include <cardiolith/platform/date.hpp>
#include <cstdint>
#include <vector>

#include "render/chart.hpp"

namespace cardiolith::tool {

// Marks for the time axis of a chart from start to end, a period of about `days` days, at local midnights:
// every day or few days for short periods, on the first of every month or few months for long ones, at most
// ten of them, each with its label ("3 Mar", "Mar 2026").
std::vector<TimeTick> timeTicks(Date start, Date end, std::int64_t days);

}  // namespace cardiolith::tool
