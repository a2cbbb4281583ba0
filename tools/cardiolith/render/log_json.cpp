#include "render/log_json.hpp"

#include <cardiolith/analysis/blood_pressure_analysis.hpp>
#include <cstdint>
#include <optional>

#include "render/category_text.hpp"
#include "render/reading_text.hpp"

namespace cardiolith::tool {

void writeReadingsJson(std::ostream& out, const ReadingList& readings, const TagList& tags) {
  JsonWriter json(out);
  json.beginObject().key("readings").beginArray();
  for (const auto& reading : readings) writeReadingJson(json, *reading, tags);
  json.endArray().endObject();
}

void writeReadingJson(JsonWriter& json, const Reading& reading, const TagList& tags) {
  json.beginObject();
  json.key("id").string(reading.id());
  json.key("date").string(isoDateFormatter().string(reading.date()));
  json.key("systolic").integer(reading.systolic());
  json.key("diastolic").integer(reading.diastolic());
  json.key("pulse").integer(reading.pulse());
  json.key("category")
      .string(categoryKey(BloodPressureAnalyzer::result(reading.systolic(), reading.diastolic())));
  json.key("tags").beginArray();
  for (const auto& title : tags.titles(reading.tagIDs())) json.string(title);
  json.endArray();
  json.key("notes").stringOrNull(reading.notes());
  json.endObject();
}

void writeSummaryJson(std::ostream& out, const ReadingsSummary& summary, const Period& period,
                      const ComparedCounts& counts) {
  JsonWriter json(out);
  const auto writeAverage = [&](const std::optional<ReadingsSummary::AverageReading>& average) {
    if (!average) {
      json.null();
      return;
    }
    json.beginObject();
    json.key("systolic").number(average->systolic());
    json.key("diastolic").number(average->diastolic());
    json.key("pulse").number(average->pulse());
    json.endObject();
  };
  json.beginObject();
  json.key("start").string(isoDateFormatter().string(period.start));
  json.key("end").string(isoDateFormatter().string(period.end));
  json.key("readings").integer(static_cast<std::int64_t>(counts.current));
  json.key("previousReadings").integer(static_cast<std::int64_t>(counts.previous));
  json.key("current");
  writeAverage(summary.currentPeriodAverage());
  json.key("previous");
  writeAverage(summary.previousPreviousAverage());
  json.key("change").beginObject();
  json.key("systolic").numberOrNull(summary.systolicChange());
  json.key("diastolic").numberOrNull(summary.diastolicChange());
  json.key("pulse").numberOrNull(summary.pulseChange());
  json.endObject();
  const auto category = summary.currentPeriodAverageAnalysis();
  if (category) {
    json.key("category").string(categoryKey(*category));
  } else {
    json.key("category").null();
  }
  json.endObject();
}

}  // namespace cardiolith::tool
