#include "nlohmann_codec.hpp"

#include <cmath>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace cardiolith::bench {
namespace {

using Json = nlohmann::json;

std::string path(std::size_t index, std::string_view member) {
  std::string text = "readings[" + std::to_string(index) + "]";
  if (!member.empty()) text.append(".").append(member);
  return text;
}

[[noreturn]] void fail(std::size_t index, std::string_view member, std::string_view why) {
  throw std::runtime_error(path(index, member) + ": " + std::string(why));
}

// The member, or nullptr when it is missing or null.
const Json* member(const Json& object, const char* key) {
  const auto found = object.find(key);
  return found == object.end() || found->is_null() ? nullptr : &*found;
}

const Json& required(const Json& object, const char* key, std::size_t index) {
  const Json* value = member(object, key);
  if (value == nullptr) fail(index, key, "missing");
  return *value;
}

const std::string& string(const Json& value, std::string_view name, std::size_t index) {
  if (!value.is_string()) fail(index, name, "not a string");
  return value.get_ref<const std::string&>();
}

std::int64_t integer(const Json& object, const char* key, std::size_t index) {
  const Json& value = required(object, key, index);
  if (value.is_number_unsigned()) {
    const auto unsignedValue = value.get<std::uint64_t>();
    if (unsignedValue > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
      fail(index, key, "out of range");
    }
    return static_cast<std::int64_t>(unsignedValue);
  }
  if (!value.is_number_integer()) fail(index, key, "not an integer");
  return value.get<std::int64_t>();
}

UuidBytes uuid(const Json& value, std::string_view name, std::size_t index) {
  const auto parsed = parseUuid(string(value, name, index));
  if (!parsed) fail(index, name, "not a UUID");
  return *parsed;
}

PlainReading reading(const Json& object, std::size_t index) {
  if (!object.is_object()) fail(index, "", "not an object");
  PlainReading reading;
  reading.id = string(required(object, "id", index), "id", index);
  const Json& date = required(object, "date", index);
  if (!date.is_number()) fail(index, "date", "not a number");
  reading.date = date.get<double>();
  reading.systolic = integer(object, "systolic", index);
  reading.diastolic = integer(object, "diastolic", index);
  reading.pulse = integer(object, "pulse", index);
  if (const Json* notes = member(object, "notes")) reading.notes = string(*notes, "notes", index);
  if (const Json* tags = member(object, "tagIDs")) {
    if (!tags->is_array()) fail(index, "tagIDs", "not an array");
    std::vector<UuidBytes> ids;
    for (const Json& id : *tags) ids.push_back(uuid(id, "tagIDs", index));
    normaliseTagIDs(ids);
    reading.tagIDs = std::move(ids);
  }
  if (const Json* health = member(object, "healthKitID")) {
    if (!health->is_object()) fail(index, "healthKitID", "not an object");
    reading.healthKitID = PlainHealthKitID{
        uuid(required(*health, "bloodPressureUUID", index), "healthKitID.bloodPressureUUID", index),
        uuid(required(*health, "heartRateUUID", index), "healthKitID.heartRateUUID", index)};
  }
  return reading;
}

nlohmann::ordered_json uuidText(const UuidBytes& uuid) { return uuidString(uuid); }

}  // namespace

std::vector<PlainReading> readDocumentWithNlohmann(std::string_view text) {
  const Json document = Json::parse(text);
  if (!document.is_object()) throw std::runtime_error("document: not an object");
  const auto array = document.find("readings");
  if (array == document.end() || array->is_null()) throw std::runtime_error("readings: missing");
  if (!array->is_array()) throw std::runtime_error("readings: not an array");
  std::vector<PlainReading> readings;
  readings.reserve(array->size());
  for (const Json& object : *array) readings.push_back(reading(object, readings.size()));
  return readings;
}

std::string writeDocumentWithNlohmann(const std::vector<PlainReading>& readings) {
  auto array = nlohmann::ordered_json::array();
  for (const PlainReading& reading : readings) {
    if (!std::isfinite(reading.date)) throw std::invalid_argument("date is not a finite number");
    nlohmann::ordered_json object;
    object["id"] = reading.id;
    object["date"] = reading.date;
    object["systolic"] = reading.systolic;
    object["diastolic"] = reading.diastolic;
    object["pulse"] = reading.pulse;
    if (reading.notes) object["notes"] = *reading.notes;
    if (reading.tagIDs) {
      auto ids = nlohmann::ordered_json::array();
      for (const UuidBytes& id : *reading.tagIDs) ids.push_back(uuidText(id));
      object["tagIDs"] = std::move(ids);
    }
    if (reading.healthKitID) {
      object["healthKitID"] = {{"bloodPressureUUID", uuidText(reading.healthKitID->bloodPressureUUID)},
                               {"heartRateUUID", uuidText(reading.healthKitID->heartRateUUID)}};
    }
    array.push_back(std::move(object));
  }
  nlohmann::ordered_json document;
  document["readings"] = std::move(array);
  return document.dump();
}

}  // namespace cardiolith::bench
