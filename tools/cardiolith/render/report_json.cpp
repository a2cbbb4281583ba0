#include "render/category_text.hpp"
#include "render/home_report.hpp"
#include "render/json_writer.hpp"
#include "render/reading_text.hpp"

namespace cardiolith::tool {
namespace {

// Figures go out as single-precision numbers, which keep more digits than any pressure needs.
void numberOrNull(JsonWriter& json, const std::optional<double>& value) {
  if (value) {
    json.number(static_cast<float>(*value));
  } else {
    json.null();
  }
}

void writeValue(JsonWriter& json, const ValueStatistics& value) {
  json.beginObject();
  json.key("mean").number(static_cast<float>(value.mean));
  json.key("standardDeviation");
  numberOrNull(json, value.standardDeviation);
  json.key("coefficientOfVariation");
  numberOrNull(json, value.coefficientOfVariation);
  json.key("averageRealVariability");
  numberOrNull(json, value.averageRealVariability);
  json.key("lowest").integer(value.lowest);
  json.key("highest").integer(value.highest);
  json.endObject();
}

void writeStatistics(JsonWriter& json, const std::optional<ReadingStatistics>& statistics) {
  if (!statistics) {
    json.null();
    return;
  }
  json.beginObject();
  json.key("readings").integer(static_cast<std::int64_t>(statistics->readings));
  json.key("systolic");
  writeValue(json, statistics->systolic);
  json.key("diastolic");
  writeValue(json, statistics->diastolic);
  json.key("pulse");
  writeValue(json, statistics->pulse);
  json.endObject();
}

void writePair(JsonWriter& json, const PressurePair& pair) {
  json.beginObject();
  json.key("systolic").integer(pair.systolic);
  json.key("diastolic").integer(pair.diastolic);
  json.endObject();
}

void writeWindow(JsonWriter& json, const HourWindow& window) {
  json.beginObject();
  json.key("firstHour").integer(window.firstHour);
  json.key("endHour").integer(window.endHour);
  json.endObject();
}

void writeReadings(JsonWriter& json, const ReadingList& readings) {
  json.beginArray();
  for (const auto& reading : readings) {
    json.beginObject();
    json.key("date").string(isoDateFormatter().string(reading->date()));
    json.key("systolic").integer(reading->systolic());
    json.key("diastolic").integer(reading->diastolic());
    json.key("pulse").integer(reading->pulse());
    json.endObject();
  }
  json.endArray();
}

std::string isoDay(const CalendarDay& day) {
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", day.year, day.month, day.day);
  return text;
}

// Every note of the period, none left out: scripts have no pages to fill. Dates in UTC, so that they sort
// and compare as text.
void writePersonNotes(JsonWriter& json, const HomeMonitoringReport& analysis) {
  static const DateFormatter utc("yyyy-MM-dd'T'HH:mm:ssXXX", "en_US_POSIX", "UTC");
  json.beginArray();
  for (const auto& note : personNotes(analysis)) {
    json.beginObject();
    json.key("date").string(utc.string(note.reading->date()));
    json.key("systolic").integer(note.reading->systolic());
    json.key("diastolic").integer(note.reading->diastolic());
    json.key("pulse").integer(note.reading->pulse());
    json.key("notes").string(note.text);
    json.endObject();
  }
  json.endArray();
}

}  // namespace

void printReportJson(std::ostream& out, const HomeReportDocument& report) {
  const auto& analysis = report.analysis;
  JsonWriter json(out);
  json.beginObject();
  json.key("from").string(isoDateFormatter().string(report.from));
  json.key("to").string(isoDateFormatter().string(report.to));
  json.key("name").stringOrNull(report.name);
  json.key("morning");
  writeWindow(json, analysis.options.morning);
  json.key("evening");
  writeWindow(json, analysis.options.evening);
  json.key("leaveOutFirstDay").boolean(analysis.options.leaveOutFirstDay);
  json.key("threshold");
  writePair(json, analysis.options.threshold);
  json.key("countedDays").integer(static_cast<std::int64_t>(analysis.countedDays));
  json.key("completeDays").integer(static_cast<std::int64_t>(analysis.completeDays));
  json.key("protocolMet").boolean(analysis.protocolMet());
  json.key("all");
  writeStatistics(json, analysis.all);
  json.key("morningReadings");
  writeStatistics(json, analysis.morning);
  json.key("eveningReadings");
  writeStatistics(json, analysis.evening);
  json.key("homeAverage");
  if (analysis.roundedMean) {
    writePair(json, *analysis.roundedMean);
    json.key("category").string(categoryKey(*analysis.category));
    json.key("atOrAboveThreshold").boolean(*analysis.atOrAboveThreshold);
  } else {
    json.null();
    json.key("category").null();
    json.key("atOrAboveThreshold").null();
  }
  json.key("days").beginArray();
  for (const auto& day : analysis.days) {
    json.beginObject();
    json.key("day").string(isoDay(day.day));
    json.key("leftOut").boolean(day.leftOut);
    json.key("morning");
    writeReadings(json, day.morning);
    json.key("evening");
    writeReadings(json, day.evening);
    json.key("other");
    writeReadings(json, day.other);
    json.endObject();
  }
  json.endArray();
  json.key("notes");
  writePersonNotes(json, analysis);
  json.endObject();
  out << '\n';
}

}  // namespace cardiolith::tool
