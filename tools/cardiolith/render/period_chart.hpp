#pragma once

#include <cardiolith/model/collection.hpp>
#include <cardiolith/platform/date.hpp>
#include <cstdint>

#include "render/chart.hpp"

namespace cardiolith::tool {

// The chart of the last `days` days, from start to end, of the readings in that period (at least one):
// the title names the period, the subtitle gives the dates, the count and the average with its category,
// and the dashed lines are the means.
[[nodiscard]] ChartRequest periodChart(const ReadingList& selection, Date start, Date end, std::int64_t days);

}  // namespace cardiolith::tool
