#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "cardiolith/interop/fhir.hpp"
#include "cardiolith/platform/civil_time.hpp"
#include "cardiolith/platform/date_formatter.hpp"
#include "interop/cell_text.hpp"
#include "model/json_writer.hpp"

namespace cardiolith::interop {
namespace {

using json_detail::JsonPath;
using json_detail::JsonWriter;

void quantity(JsonWriter& out, std::string_view code, std::string_view display, std::int64_t value,
              std::string_view unit, std::string_view ucum) {
  out.raw(R"({"code":{"coding":[{"system":"http://loinc.org","code":")");
  out.raw(code);
  out.raw(R"(","display":")");
  out.raw(display);
  out.raw(R"("}]},"valueQuantity":{"value":)");
  out.integer(value);
  out.raw(R"(,"unit":")");
  out.raw(unit);
  out.raw(R"(","system":"http://unitsofmeasure.org","code":")");
  out.raw(ucum);
  out.raw("\"}}");
}

// "2025-01-12T08:12:00+01:00", with milliseconds when the instant has a fraction of a second. The digits
// come from the same proleptic Gregorian arithmetic that the reader uses, so every date reads back as it
// was written (ICU's formatter would switch to the Julian calendar before 1582). Nothing outside the years
// 1-9999, which the caller then leaves to ICU.
std::optional<std::string> effectiveDateTime(const LocalClock& clock, Date date) {
  const auto wallTime = clock.wallTime(date);
  if (!wallTime) return std::nullopt;
  const auto& time = wallTime->time;
  const double wholeSecond = std::floor(time.second);
  std::string text;
  detail::appendDayAndMinute(text, time, 'T');
  text.push_back(':');
  detail::appendDigits(text, static_cast<int>(wholeSecond), 2);
  if (time.second != wholeSecond) {
    text.push_back('.');
    detail::appendDigits(text, std::min(999, static_cast<int>((time.second - wholeSecond) * 1000.0)), 3);
  }
  detail::appendOffset(text, wallTime->offsetSeconds);
  return text;
}

}  // namespace

std::string encodeFhirBundle(const ReadingList& readings) {
  const LocalClock clock;
  const DateFormatter wholeSeconds("yyyy-MM-dd'T'HH:mm:ssxxx", "en_US_POSIX");
  const DateFormatter milliseconds("yyyy-MM-dd'T'HH:mm:ss.SSSxxx", "en_US_POSIX");
  constexpr std::size_t kBytesPerReading = 1100;
  JsonWriter out(readings.size() * kBytesPerReading + 64);
  out.raw(R"({"resourceType":"Bundle","type":"collection","entry":[)");
  const JsonPath root;
  const JsonPath entries = root.member("entry");
  for (std::size_t i = 0; i < readings.size(); ++i) {
    const Reading& reading = *readings[i];
    const JsonPath entry = entries.element(i);
    const JsonPath resource = entry.member("resource");
    if (i > 0) out.raw(",");
    out.raw(R"({"resource":{"resourceType":"Observation","identifier":[{"system":")");
    out.raw(kReadingIdentifierSystem);
    out.raw(R"(","value":)");
    const JsonPath identifier = resource.member("identifier");
    out.string(reading.id(), identifier);
    out.raw(
        R"(}],"status":"final","category":[{"coding":[{"system":"http://terminology.hl7.org/CodeSystem/observation-category","code":"vital-signs","display":"Vital Signs"}]}],)"
        R"("code":{"coding":[{"system":"http://loinc.org","code":"85354-9","display":"Blood pressure panel with all children optional"}],"text":"Blood pressure"},)"
        R"("effectiveDateTime":")");
    const double seconds = reading.date().timeIntervalSince1970();
    const bool whole = std::floor(seconds) == seconds;
    const auto written = effectiveDateTime(clock, reading.date());
    out.raw(written ? *written : (whole ? wholeSeconds : milliseconds).string(reading.date()));
    out.raw(R"(",)");
    if (reading.notes() && !reading.notes()->empty()) {
      out.raw(R"("note":[{"text":)");
      const JsonPath note = resource.member("note");
      out.string(*reading.notes(), note);
      out.raw("}],");
    }
    out.raw(R"("component":[)");
    quantity(out, "8480-6", "Systolic blood pressure", reading.systolic(), "mmHg", "mm[Hg]");
    out.raw(",");
    quantity(out, "8462-4", "Diastolic blood pressure", reading.diastolic(), "mmHg", "mm[Hg]");
    out.raw(",");
    quantity(out, "8867-4", "Heart rate", reading.pulse(), "beats/minute", "/min");
    out.raw("]}}");
  }
  out.raw("]}");
  return std::move(out).take();
}

}  // namespace cardiolith::interop
