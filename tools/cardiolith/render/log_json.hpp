#pragma once

#include <cardiolith/analysis/readings_summary.hpp>
#include <cardiolith/model/collection.hpp>
#include <cardiolith/platform/date.hpp>
#include <cstddef>
#include <ostream>

#include "log/tag_list.hpp"

namespace cardiolith::tool {

// The JSON documents of `list --json` and `summary --json`, which the web page's API answers with too, so
// that a script and the page read the same shapes. Each writes one compact object, without a line break.

// {"readings":[{"id","date","systolic","diastolic","pulse","category","tags":[titles],"notes"}]} in the
// order given; dates are ISO 8601 and `category` is the category key.
void writeReadingsJson(std::ostream& out, const ReadingList& readings, const TagList& tags);

// {"start","end","readings":count,"current","previous","change","category"} of a period's summary; the
// averages are objects of systolic, diastolic and pulse, or null for a period without readings.
void writeSummaryJson(std::ostream& out, const ReadingsSummary& summary, Date start, Date end,
                      std::size_t readingCount);

}  // namespace cardiolith::tool
