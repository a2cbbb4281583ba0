#include <simdjson.h>

#include <cmath>
#include <deque>
#include <map>
#include <string>

#include "cardiolith/interop/fhir.hpp"
#include "cardiolith/platform/civil_time.hpp"
#include "interop/date_text.hpp"
#include "interop/json_array_stream.hpp"

namespace cardiolith::interop {
namespace {

namespace dom = simdjson::dom;

constexpr std::string_view kPanel = "85354-9";
constexpr std::string_view kSystolic = "8480-6";
constexpr std::string_view kDiastolic = "8462-4";
constexpr std::string_view kHeartRate = "8867-4";

// The first line of NDJSON is one resource; a longer first line is taken for the start of a Bundle.
constexpr std::size_t kLongestLine = std::size_t{1} << 20;

// A problem with one resource: where, what was found, what was expected.
struct ResourceProblem {
  std::string path;
  std::string reason;
};

std::string_view stringAt(dom::element element, std::string_view key) {
  std::string_view text;
  if (element[key].get_string().get(text)) return {};
  return text;
}

// Whether a CodeableConcept has a coding with this LOINC code.
bool hasCode(dom::element codeableConcept, std::string_view code) {
  dom::array codings;
  if (codeableConcept["coding"].get_array().get(codings)) return false;
  for (const dom::element coding : codings) {
    if (stringAt(coding, "code") == code) return true;
  }
  return false;
}

std::optional<Date> effectiveTime(dom::element resource, const std::string& path, const LocalClock& clock) {
  std::string_view text = stringAt(resource, "effectiveDateTime");
  std::string member = ".effectiveDateTime";
  if (text.empty()) {
    dom::element period;
    if (!resource["effectivePeriod"].get(period)) text = stringAt(period, "start");
    member = ".effectivePeriod.start";
  }
  if (text.empty())
    throw ResourceProblem{path + ".effectiveDateTime",
                          "missing; expected effectiveDateTime or effectivePeriod.start"};
  const auto date = detail::parseDateText(text, std::nullopt);
  const auto instant = !date                 ? std::nullopt
                       : date->offsetSeconds ? instantAtOffset(date->time, *date->offsetSeconds)
                                             : clock.instant(date->time);
  if (!instant)
    throw ResourceProblem{path + member,
                          "\"" + std::string(text) + "\" is not a FHIR dateTime (2025-01-12T08:12:00+01:00)"};
  return instant;
}

// The whole-number value of a Quantity in one of the units given.
std::int64_t wholeQuantity(dom::element quantity, const std::string& path,
                           std::initializer_list<std::string_view> units, std::string_view expectedUnit) {
  const std::string_view code = stringAt(quantity, "code");
  const std::string_view unit = stringAt(quantity, "unit");
  bool known = code.empty() && unit.empty();
  for (const auto accepted : units) known = known || code == accepted || unit == accepted;
  if (!known)
    throw ResourceProblem{path + ".code", "the unit \"" + std::string(code.empty() ? unit : code) +
                                              "\"; expected " + std::string(expectedUnit)};
  dom::element value;
  if (quantity["value"].get(value))
    throw ResourceProblem{path + ".value", "missing; expected a whole number"};
  std::int64_t whole = 0;
  if (!value.get_int64().get(whole)) return whole;
  double number = 0;
  if (!value.get_double().get(number) && std::floor(number) == number && std::abs(number) < 9e15)
    return static_cast<std::int64_t>(number);
  throw ResourceProblem{path + ".value", simdjson::to_string(value) + " is not a whole number"};
}

// Reads resources in order and turns panels into readings, holding panels without a pulse component
// until every heart rate has been seen.
class FhirReader final : public ReadingReader {
 public:
  FhirReader(std::istream& in, const ReaderOptions& options) : in_(in) {
    // NDJSON when the first line that is not blank holds a whole resource that is not a Bundle; anything
    // else is a Bundle, streamed from the first byte.
    std::string consumed;
    std::string first;
    bool wholeLine = true;
    while (wholeLine && first.find_first_not_of(" \t\r") == std::string::npos && in_.peek() != EOF) {
      wholeLine = readLine(first);
      consumed += first;
      if (wholeLine && in_.peek() != EOF) consumed += '\n';
      ++line_;
    }
    dom::element element;
    if (wholeLine && !parser_.parse(first).get(element) && stringAt(element, "resourceType") != "Bundle") {
      ndjson_ = true;
      resource(element, "line " + std::to_string(line_));
      return;
    }
    bundle_.emplace(in_, "entry", std::move(consumed), options.blockSize, options.progress);
  }

  std::optional<ReaderItem> next() override {
    while (ready_.empty() && !finished_) advance();
    if (ready_.empty()) return std::nullopt;
    ReaderItem item = std::move(ready_.front());
    ready_.pop_front();
    return item;
  }

 private:
  struct Panel {
    IncomingReading reading;  // its pulse is filled in when the heart rate is found
    Date date;
  };

  // Reads up to the next line break into `line`; false, with kLongestLine bytes read, for a longer line.
  bool readLine(std::string& line) {
    line.clear();
    for (int c = in_.get(); c != EOF; c = in_.get()) {
      if (c == '\n') return true;
      line += static_cast<char>(c);
      if (line.size() == kLongestLine) return false;
    }
    return true;
  }

  void advance() {
    if (ndjson_) {
      std::string text;
      if (!std::getline(in_, text)) return finish();
      ++line_;
      if (text.find_first_not_of(" \t\r") == std::string::npos) return;
      dom::element element;
      const std::string position = "line " + std::to_string(line_);
      if (const auto error = parser_.parse(text).get(element)) {
        ready_.push_back(InvalidRow{position, std::string("not JSON: ") + simdjson::error_message(error)});
        return;
      }
      return resource(element, position);
    }
    std::optional<detail::JsonArrayStream::Element> entry;
    try {
      entry = bundle_->next();
    } catch (const ImportError& error) {
      throw ImportError(std::string("the FHIR file is not JSON: ") + error.what());
    }
    const auto type = bundle_->stringMember("resourceType");
    if ((entry && type && *type != "Bundle") || (!entry && type != "Bundle"))
      throw ImportError("the FHIR file holds neither a Bundle nor one resource a line");
    if (!entry) return finish();
    const std::string position = "entry[" + std::to_string(entry->index) + "].resource";
    dom::element entryElement, resourceElement;
    if (const auto error = parser_.parse(entry->text.data(), entry->text.size()).get(entryElement)) {
      throw ImportError("the FHIR file is not JSON: entry[" + std::to_string(entry->index) +
                        "], which starts at byte " + std::to_string(entry->offset) + ": " +
                        simdjson::error_message(error));
    }
    if (entryElement["resource"].get(resourceElement)) {
      ready_.push_back(SkippedRecord{position, "an entry without a resource"});
    } else {
      resource(resourceElement, position);
    }
  }

  void resource(dom::element element, const std::string& path) {
    try {
      if (stringAt(element, "resourceType") != "Observation")
        return ready_.push_back(SkippedRecord{path, "not an observation"});
      dom::element code;
      const bool coded = !element["code"].get(code);
      if (coded && hasCode(code, kPanel)) return panel(element, path);
      if (coded && hasCode(code, kHeartRate)) {
        dom::element quantity;
        if (element["valueQuantity"].get(quantity))
          throw ResourceProblem{path + ".valueQuantity", "missing; expected the heart rate in /min"};
        const auto rate = wholeQuantity(quantity, path + ".valueQuantity", {"/min", "beats/minute"}, "/min");
        heartRates_[effectiveTime(element, path, clock_)->timeIntervalSinceReferenceDate()] = rate;
        return;
      }
      ready_.push_back(SkippedRecord{path, "not a blood pressure"});
    } catch (const ResourceProblem& problem) {
      ready_.push_back(InvalidRow{problem.path, problem.reason});
    }
  }

  void panel(dom::element element, const std::string& path) {
    const Date date = *effectiveTime(element, path, clock_);
    std::optional<std::int64_t> values[3];
    dom::array components;
    if (!element["component"].get_array().get(components)) {
      std::size_t index = 0;
      for (const dom::element component : components) {
        const std::string componentPath = path + ".component[" + std::to_string(index++) + "]";
        dom::element code, quantity;
        if (component["code"].get(code)) continue;
        const int slot = hasCode(code, kSystolic)    ? 0
                         : hasCode(code, kDiastolic) ? 1
                         : hasCode(code, kHeartRate) ? 2
                                                     : -1;
        if (slot < 0) continue;
        if (component["valueQuantity"].get(quantity))
          throw ResourceProblem{componentPath + ".valueQuantity", "missing; expected a Quantity"};
        values[slot] =
            slot == 2
                ? wholeQuantity(quantity, componentPath + ".valueQuantity", {"/min", "beats/minute"}, "/min")
                : wholeQuantity(quantity, componentPath + ".valueQuantity", {"mm[Hg]", "mmHg"}, "mm[Hg]");
      }
    }
    if (!values[0] || !values[1])
      throw ResourceProblem{path + ".component", "no systolic (8480-6) and diastolic (8462-4) components"};
    std::optional<std::string> notes;
    dom::array annotations;
    if (!element["note"].get_array().get(annotations)) {
      for (const dom::element annotation : annotations) {
        const std::string_view text = stringAt(annotation, "text");
        notes = notes ? *notes + "\n" + std::string(text) : std::string(text);
      }
    }
    std::string id;
    dom::array identifiers;
    if (!element["identifier"].get_array().get(identifiers)) {
      for (const dom::element identifier : identifiers) {
        if (stringAt(identifier, "system") == kReadingIdentifierSystem) id = stringAt(identifier, "value");
      }
    }
    Panel panel{{path,
                 Reading::decoded(std::move(id), date, *values[0], *values[1], values[2].value_or(0),
                                  std::move(notes), std::nullopt, std::nullopt),
                 {}},
                date};
    if (values[2]) return ready_.push_back(std::move(panel.reading));
    waiting_.push_back(std::move(panel));
  }

  void finish() {
    finished_ = true;
    for (auto& panel : waiting_) {
      const auto rate = heartRates_.find(panel.date.timeIntervalSinceReferenceDate());
      if (rate == heartRates_.end()) {
        ready_.push_back(SkippedRecord{panel.reading.position, "no pulse"});
        continue;
      }
      const Reading& r = *panel.reading.reading;
      panel.reading.reading = Reading::decoded(r.id(), r.date(), r.systolic(), r.diastolic(), rate->second,
                                               r.notes(), std::nullopt, std::nullopt);
      ready_.push_back(std::move(panel.reading));
    }
    waiting_.clear();
  }

  std::istream& in_;
  dom::parser parser_;
  LocalClock clock_;
  bool ndjson_ = false;
  bool finished_ = false;
  std::uint64_t line_ = 0;
  std::optional<detail::JsonArrayStream> bundle_;  // absent for NDJSON
  std::map<double, std::int64_t> heartRates_;      // by effective time, seconds since 2001
  std::deque<Panel> waiting_;
  std::deque<ReaderItem> ready_;
};

}  // namespace

std::unique_ptr<ReadingReader> readFhir(std::istream& in, const ReaderOptions& options) {
  return std::make_unique<FhirReader>(in, options);
}

}  // namespace cardiolith::interop
