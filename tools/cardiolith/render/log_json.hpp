#pragma once

#include <cardiolith/analysis/readings_summary.hpp>
#include <cardiolith/model/collection.hpp>
#include <ostream>

#include "input/period_options.hpp"
#include "log/tag_list.hpp"
#include "render/json_writer.hpp"

namespace cardiolith::tool {

// The JSON documents of `list --json` and `summary --json`, which the web page's API answers with too, so
// that a script and the page read the same shapes. Each writes one compact object, without a line break.

// {"readings":[{"id","date","systolic","diastolic","pulse","category","tags":[titles],"notes"}]} in the
// order given; dates are ISO 8601 and `category` is the category key.
void writeReadingsJson(std::ostream& out, const ReadingList& readings, const TagList& tags);
// One reading's object of that list, for documents that hold readings among other members.
void writeReadingJson(JsonWriter& json, const Reading& reading, const TagList& tags);

// {"start","end","readings","previousReadings","current","previous","change","category"} of a period's
// summary, with the reading counts of the period and of the one before; the averages are objects of
// systolic, diastolic and pulse, or null for a period without readings.
void writeSummaryJson(std::ostream& out, const ReadingsSummary& summary, const Period& period,
                      const ComparedCounts& counts);

}  // namespace cardiolith::tool
