#include "simdjson_reader.hpp"

#include <simdjson.h>

#include <stdexcept>
#include <string>

namespace cardiolith::bench {
namespace {

namespace ondemand = simdjson::ondemand;

class Reader {
 public:
  std::vector<PlainReading> document(ondemand::document& document) {
    ondemand::object top;
    check(document.get_object().get(top), "document");
    std::vector<PlainReading> readings;
    bool sawReadings = false;
    for (auto field : top) {
      std::string_view key;
      check(field.unescaped_key().get(key), "document");
      if (key != "readings") continue;
      ondemand::array array;
      check(field.value().get_array().get(array), "readings");
      readings.clear();
      for (auto element : array) {
        ondemand::object object;
        check(element.get_object().get(object), "", readings.size());
        readings.push_back(reading(object, readings.size()));
      }
      sawReadings = true;
    }
    if (!sawReadings) fail("readings: missing");
    // At the end of the document there is no current location left.
    if (document.current_location().error() != simdjson::OUT_OF_BOUNDS) {
      fail("document: content after the top-level object");
    }
    return readings;
  }

 private:
  enum Required : unsigned { kId = 1, kDate = 2, kSystolic = 4, kDiastolic = 8, kPulse = 16, kAll = 31 };

  PlainReading reading(ondemand::object& object, std::size_t index) {
    PlainReading reading;
    unsigned seen = 0;
    for (auto field : object) {
      std::string_view key;
      check(field.unescaped_key().get(key), "", index);
      ondemand::value value;
      check(field.value().get(value), key, index);
      if (key == "id") {
        reading.id = string(value, key, index);
        seen |= kId;
      } else if (key == "date") {
        check(value.get_double().get(reading.date), key, index);
        seen |= kDate;
      } else if (key == "systolic") {
        check(value.get_int64().get(reading.systolic), key, index);
        seen |= kSystolic;
      } else if (key == "diastolic") {
        check(value.get_int64().get(reading.diastolic), key, index);
        seen |= kDiastolic;
      } else if (key == "pulse") {
        check(value.get_int64().get(reading.pulse), key, index);
        seen |= kPulse;
      } else if (key == "notes") {
        if (isNull(value, key, index)) {
          reading.notes.reset();
        } else {
          reading.notes = string(value, key, index);
        }
      } else if (key == "tagIDs") {
        if (isNull(value, key, index)) {
          reading.tagIDs.reset();
        } else {
          reading.tagIDs = tagIDs(value, index);
        }
      } else if (key == "healthKitID") {
        if (isNull(value, key, index)) {
          reading.healthKitID.reset();
        } else {
          reading.healthKitID = healthKitID(value, index);
        }
      }
    }
    if (seen != kAll) {
      constexpr std::string_view kNames[] = {"id", "date", "systolic", "diastolic", "pulse"};
      for (unsigned bit = 0; bit < 5; ++bit) {
        if ((seen & (1U << bit)) == 0) fail(path(kNames[bit], index) + ": missing");
      }
    }
    return reading;
  }

  std::vector<UuidBytes> tagIDs(ondemand::value& value, std::size_t index) {
    ondemand::array array;
    check(value.get_array().get(array), "tagIDs", index);
    std::vector<UuidBytes> ids;
    for (auto element : array) {
      ondemand::value item;
      check(element.get(item), "tagIDs", index);
      ids.push_back(uuid(item, "tagIDs", index));
    }
    normaliseTagIDs(ids);
    return ids;
  }

  PlainHealthKitID healthKitID(ondemand::value& value, std::size_t index) {
    ondemand::object object;
    check(value.get_object().get(object), "healthKitID", index);
    std::optional<UuidBytes> bloodPressure;
    std::optional<UuidBytes> heartRate;
    for (auto field : object) {
      std::string_view key;
      check(field.unescaped_key().get(key), "healthKitID", index);
      ondemand::value member;
      check(field.value().get(member), "healthKitID", index);
      if (key == "bloodPressureUUID") {
        bloodPressure = uuid(member, "healthKitID.bloodPressureUUID", index);
      } else if (key == "heartRateUUID") {
        heartRate = uuid(member, "healthKitID.heartRateUUID", index);
      }
    }
    if (!bloodPressure) fail(path("healthKitID.bloodPressureUUID", index) + ": missing");
    if (!heartRate) fail(path("healthKitID.heartRateUUID", index) + ": missing");
    return PlainHealthKitID{*bloodPressure, *heartRate};
  }

  std::string_view string(ondemand::value& value, std::string_view member, std::size_t index) {
    std::string_view text;
    check(value.get_string().get(text), member, index);
    return text;
  }

  UuidBytes uuid(ondemand::value& value, std::string_view member, std::size_t index) {
    const auto parsed = parseUuid(string(value, member, index));
    if (!parsed) fail(path(member, index) + ": not a UUID");
    return *parsed;
  }

  bool isNull(ondemand::value& value, std::string_view member, std::size_t index) {
    bool null = false;
    check(value.is_null().get(null), member, index);
    return null;
  }

  static std::string path(std::string_view member, std::size_t index) {
    std::string text = "readings[" + std::to_string(index) + "]";
    if (!member.empty()) text.append(".").append(member);
    return text;
  }

  static void check(simdjson::error_code error, std::string_view member, std::size_t index) {
    if (error) fail(path(member, index) + ": " + simdjson::error_message(error));
  }
  static void check(simdjson::error_code error, std::string_view where) {
    if (error) fail(std::string(where) + ": " + simdjson::error_message(error));
  }
  [[noreturn]] static void fail(const std::string& message) { throw std::runtime_error(message); }
};

}  // namespace

std::vector<PlainReading> readDocumentWithSimdjson(std::string_view text) {
  thread_local ondemand::parser parser;
  const simdjson::padded_string padded(text);
  ondemand::document document;
  if (const auto error = parser.iterate(padded).get(document)) {
    throw std::runtime_error(std::string("document: ") + simdjson::error_message(error));
  }
  return Reader().document(document);
}

}  // namespace cardiolith::bench
