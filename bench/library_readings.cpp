#include "library_readings.hpp"

#include <map>
#include <memory>
#include <mutex>

#include "corpus.hpp"

namespace cardiolith::bench {

Readings toLibraryReadings(const std::vector<PlainReading>& readings) {
  Readings document;
  document.readings.reserve(readings.size());
  for (const PlainReading& plain : readings) {
    std::optional<Reading::HealthKitID> healthKitID;
    if (plain.healthKitID) {
      healthKitID = Reading::HealthKitID{UUID(plain.healthKitID->bloodPressureUUID),
                                         UUID(plain.healthKitID->heartRateUUID)};
    }
    std::optional<std::set<UUID>> tagIDs;
    if (plain.tagIDs) {
      tagIDs.emplace();
      for (const UuidBytes& id : *plain.tagIDs) tagIDs->insert(UUID(id));
    }
    document.readings.push_back(std::make_shared<Reading>(plain.id, Date(plain.date), plain.systolic,
                                                          plain.diastolic, plain.pulse, plain.notes,
                                                          healthKitID, std::move(tagIDs)));
  }
  return document;
}

PlainReading toPlainReading(const Reading& reading) {
  PlainReading plain;
  plain.id = reading.id();
  plain.date = reading.date().timeIntervalSinceReferenceDate();
  plain.systolic = reading.systolic();
  plain.diastolic = reading.diastolic();
  plain.pulse = reading.pulse();
  plain.notes = reading.notes();
  if (reading.tagIDs()) {
    plain.tagIDs.emplace();
    for (const UUID& id : *reading.tagIDs()) plain.tagIDs->push_back(id.bytes());
  }
  if (const auto healthKitID = reading.healthKitID()) {
    plain.healthKitID =
        PlainHealthKitID{healthKitID->bloodPressureUUID.bytes(), healthKitID->heartRateUUID.bytes()};
  }
  return plain;
}

const Readings& libraryReadings(std::size_t readingCount) {
  static std::mutex mutex;
  static std::map<std::size_t, std::unique_ptr<const Readings>> built;
  std::lock_guard lock(mutex);
  auto& entry = built[readingCount];
  if (!entry) entry = std::make_unique<const Readings>(toLibraryReadings(corpus(readingCount).readings));
  return *entry;
}

}  // namespace cardiolith::bench
