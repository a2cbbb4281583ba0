#include <optional>

#include "cardiolith/model/json.hpp"
#include "model/json_reader.hpp"
#include "model/json_writer.hpp"
#include "model/member_faults.hpp"
#include "model/reading_arena.hpp"
#include "model/readings_array.hpp"

namespace cardiolith::json {
namespace {

using json_detail::JsonPath;
using json_detail::JsonReader;
using json_detail::JsonWriter;
namespace ondemand = json_detail::ondemand;

// Member keys in the order they are written; the enumerators index the arrays.
enum ReadingMember : std::size_t { kID, kDate, kSystolic, kDiastolic, kPulse, kNotes, kTagIDs, kHealthKitID };
constexpr std::array<std::string_view, 8> kReadingMembers{"id",    "date",  "systolic", "diastolic",
                                                          "pulse", "notes", "tagIDs",   "healthKitID"};
// The required members come first: id, date, systolic, diastolic, pulse.
constexpr std::size_t kRequiredReadingMembers = kPulse + 1;

enum HealthKitMember : std::size_t { kBloodPressureUUID, kHeartRateUUID };
constexpr std::array<std::string_view, 2> kHealthKitMembers{"bloodPressureUUID", "heartRateUUID"};

constexpr std::array<std::string_view, 1> kDocumentMembers{json_detail::kReadingsKey};

// Writing

// An upper bound for a reading's text when none of its text needs escaping, so that the output is
// allocated once for a typical document.
std::size_t expectedSize(const Reading& reading) {
  constexpr std::size_t kFixed = sizeof(R"({"id":"","date":,"systolic":,"diastolic":,"pulse":},)") - 1 +
                                 4 * JsonWriter::kMaxNumberLength;
  constexpr std::size_t kNotes = sizeof(R"(,"notes":"")") - 1;
  constexpr std::size_t kTagIDs = sizeof(R"(,"tagIDs":[])") - 1;
  constexpr std::size_t kHealthKitID = sizeof(R"(,"healthKitID":{"bloodPressureUUID":,"heartRateUUID":})") -
                                       1 + 2 * JsonWriter::kQuotedUUIDLength;
  std::size_t size = kFixed + reading.id().size();
  if (reading.notes()) size += kNotes + reading.notes()->size();
  if (reading.tagIDs()) size += kTagIDs + reading.tagIDs()->size() * (JsonWriter::kQuotedUUIDLength + 1);
  if (reading.healthKitID()) size += kHealthKitID;
  return size;
}

void writeReading(JsonWriter& writer, const Reading& reading, const JsonPath& path) {
  writer.raw(R"({"id":)");
  writer.string(reading.id(), path.member(kReadingMembers[kID]));
  writer.raw(R"(,"date":)");
  writer.number(reading.date().timeIntervalSinceReferenceDate(), path.member(kReadingMembers[kDate]));
  writer.raw(R"(,"systolic":)");
  writer.integer(reading.systolic());
  writer.raw(R"(,"diastolic":)");
  writer.integer(reading.diastolic());
  writer.raw(R"(,"pulse":)");
  writer.integer(reading.pulse());
  if (const auto& notes = reading.notes()) {
    writer.raw(R"(,"notes":)");
    writer.string(*notes, path.member(kReadingMembers[kNotes]));
  }
  if (const auto& tagIDs = reading.tagIDs()) {
    writer.raw(R"(,"tagIDs":[)");
    bool first = true;
    for (const UUID& tagID : *tagIDs) {
      if (!first) writer.raw(",");
      first = false;
      writer.uuid(tagID);
    }
    writer.raw("]");
  }
  if (const auto healthKitID = reading.healthKitID()) {
    writer.raw(R"(,"healthKitID":{"bloodPressureUUID":)");
    writer.uuid(healthKitID->bloodPressureUUID);
    writer.raw(R"(,"heartRateUUID":)");
    writer.uuid(healthKitID->heartRateUUID);
    writer.raw("}");
  }
  writer.raw("}");
}

// Reading

Reading::HealthKitID readHealthKitID(JsonReader& reader, ondemand::value& value, const JsonPath& path) {
  auto object = reader.object(value, path);
  std::optional<UUID> uuids[kHealthKitMembers.size()];
  json_detail::MemberFaults<kHealthKitMembers.size()> faults;
  reader.forEachMember(object, kHealthKitMembers, [&](std::size_t member, ondemand::value& memberValue) {
    faults.read(member,
                [&] { uuids[member] = reader.uuid(memberValue, path.member(kHealthKitMembers[member])); });
  });
  faults.throwFirst(path, kHealthKitMembers, kHealthKitMembers.size());
  return Reading::HealthKitID{*uuids[kBloodPressureUUID], *uuids[kHeartRateUUID]};
}

std::set<UUID> readTagIDs(JsonReader& reader, ondemand::value& value, const JsonPath& path) {
  auto array = reader.array(value, path);
  std::set<UUID> tagIDs;
  reader.forEachElement(array, [&](std::size_t index, ondemand::value& element) {
    tagIDs.insert(reader.uuid(element, path.element(index)));
  });
  return tagIDs;
}

std::shared_ptr<Reading> readReading(JsonReader& reader, ReadingArena& arena, ondemand::value& value,
                                     const JsonPath& path) {
  auto object = reader.object(value, path);
  std::string_view id;
  double date = 0;
  std::int64_t systolic = 0;
  std::int64_t diastolic = 0;
  std::int64_t pulse = 0;
  std::optional<std::string_view> notes;
  std::optional<std::set<UUID>> tagIDs;
  std::optional<Reading::HealthKitID> healthKitID;
  json_detail::MemberFaults<kReadingMembers.size()> faults;
  reader.forEachMember(object, kReadingMembers, [&](std::size_t member, ondemand::value& memberValue) {
    const JsonPath memberPath = path.member(kReadingMembers[member]);
    faults.read(member, [&] {
      switch (member) {
        case kID:
          id = reader.string(memberValue, memberPath);
          return;
        case kDate:
          date = reader.number(memberValue, memberPath);
          return;
        case kSystolic:
          systolic = reader.integer(memberValue, memberPath);
          return;
        case kDiastolic:
          diastolic = reader.integer(memberValue, memberPath);
          return;
        case kPulse:
          pulse = reader.integer(memberValue, memberPath);
          return;
        // The optional members read null as absent.
        case kNotes:
          notes.reset();
          if (!reader.isNull(memberValue)) notes = reader.string(memberValue, memberPath);
          return;
        case kTagIDs:
          tagIDs.reset();
          if (!reader.isNull(memberValue)) tagIDs = readTagIDs(reader, memberValue, memberPath);
          return;
        case kHealthKitID:
          healthKitID.reset();
          if (!reader.isNull(memberValue)) healthKitID = readHealthKitID(reader, memberValue, memberPath);
          return;
      }
    });
  });
  faults.throwFirst(path, kReadingMembers, kRequiredReadingMembers);
  return Reading::decoded(arena.allocator<Reading>(), std::string(id), Date(date), systolic, diastolic, pulse,
                          notes ? std::optional<std::string>(*notes) : std::nullopt, std::move(tagIDs),
                          healthKitID);
}

}  // namespace

std::string encode(const Readings& readings) {
  const JsonPath root;
  const JsonPath readingsPath = root.member(kDocumentMembers[0]);
  std::size_t size = sizeof(R"({"readings":[]})");
  for (std::size_t index = 0; index < readings.readings.size(); ++index) {
    const auto& reading = readings.readings[index];
    if (!reading)
      throw EncodingError(readingsPath.element(index).toString() + ": a null pointer, not a reading");
    size += expectedSize(*reading);
  }
  JsonWriter writer(size);
  writer.raw(R"({"readings":[)");
  for (std::size_t index = 0; index < readings.readings.size(); ++index) {
    if (index > 0) writer.raw(",");
    writeReading(writer, *readings.readings[index], readingsPath.element(index));
  }
  writer.raw("]}");
  return std::move(writer).take();
}

namespace {

Readings decodeWholeText(std::string_view text, std::size_t readablePadding) {
  JsonReader reader(text, readablePadding);
  auto root = reader.rootObject();
  const JsonPath rootPath;
  const JsonPath readingsPath = rootPath.member(kDocumentMembers[0]);
  std::optional<ReadingList> readings;
  ReadingArena arena;
  reader.forEachMember(root, kDocumentMembers, [&](std::size_t, ondemand::value& value) {
    auto array = reader.array(value, readingsPath);
    ReadingList list;
    json_detail::appendReadings(reader, arena, array, readingsPath, list);
    readings = std::move(list);
  });
  reader.finish();
  if (!readings) reader.failMissing(readingsPath);
  return Readings{std::move(*readings)};
}

}  // namespace

template <>
Readings decode<Readings>(std::string_view text) {
  if (auto readings = json_detail::decodeReadingsInWindows(json_detail::readMoreFrom(text), text.size()))
    return std::move(*readings);
  return decodeWholeText(text, 0);
}

}  // namespace cardiolith::json

namespace cardiolith::json_detail {

Readings decodeReadingsInPlace(const std::string& text) {
  return json::decodeWholeText(text, text.capacity() - text.size());
}

void appendReadings(JsonReader& reader, ReadingArena& arena, ondemand::array& array, const JsonPath& path,
                    ReadingList& list) {
  const std::size_t first = list.size();
  reader.forEachElement(array, [&](std::size_t index, ondemand::value& element) {
    list.push_back(json::readReading(reader, arena, element, path.element(first + index)));
  });
}

}  // namespace cardiolith::json_detail

namespace cardiolith::json_detail {

// The framing array sits one level above the element, as the document's array does, but the document's
// root object is missing: one level less keeps the depth limit where the whole document has it.
ReadingElementDecoder::ReadingElementDecoder() {
  if (parser_.allocate(kDefaultWindowSize, simdjson::DEFAULT_MAX_DEPTH - 1)) throw std::bad_alloc();
}

std::shared_ptr<Reading> ReadingElementDecoder::decode(std::string_view text, std::size_t index) {
  framed_.reserve(text.size() + 2 + kReadPadding);
  framed_.assign(1, '[');
  framed_.append(text);
  framed_.push_back(']');
  JsonReader reader(parser_, framed_, framed_.capacity() - framed_.size());
  auto array = reader.rootArray();
  std::shared_ptr<Reading> reading;
  reader.forEachElement(array, [&](std::size_t, ondemand::value& element) {
    if (reading) throw DecodingError(readingsPath_.element(index).toString() + ": more than one value");
    reading = json::readReading(reader, arena_, element, readingsPath_.element(index));
  });
  reader.finish();
  if (!reading) throw DecodingError(readingsPath_.element(index).toString() + ": missing");
  return reading;
}

}  // namespace cardiolith::json_detail
