#pragma once

#include <cardiolith/model/collection.hpp>
#include <cstdint>

#include "input/period_options.hpp"
#include "render/chart.hpp"

namespace cardiolith::tool {

// The chart of a period with finite bounds that spans `days` days, of the readings in it (at least one):
// the title names the period ("last 30 days", or the bounds that --from and --to resolved to), the
// subtitle gives the dates, the count and the average with its category, and the dashed lines are the
// means.
[[nodiscard]] ChartRequest periodChart(const ReadingList& selection, const Period& period, std::int64_t days);

}  // namespace cardiolith::tool
