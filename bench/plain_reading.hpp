#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The readings document as plain structs, with no library types: what the generator makes and what the
// reference readers and writers of the benchmarks produce and consume.
namespace cardiolith::bench {

using UuidBytes = std::array<std::uint8_t, 16>;

struct PlainHealthKitID {
  UuidBytes bloodPressureUUID;
  UuidBytes heartRateUUID;
  friend bool operator==(const PlainHealthKitID&, const PlainHealthKitID&) = default;
};

struct PlainReading {
  std::string id;
  double date = 0;  // seconds since 2001-01-01 00:00:00 UTC
  std::int64_t systolic = 0;
  std::int64_t diastolic = 0;
  std::int64_t pulse = 0;
  std::optional<std::string> notes;
  std::optional<std::vector<UuidBytes>> tagIDs;  // ascending, no duplicates: the order of a set of UUIDs
  std::optional<PlainHealthKitID> healthKitID;
  friend bool operator==(const PlainReading&, const PlainReading&) = default;
};

// Parses exactly the 36-character 8-4-4-4-12 form, hex digits of either case.
std::optional<UuidBytes> parseUuid(std::string_view text) noexcept;
// Writes the canonical upper-case text into out[0..36).
void writeUuid(const UuidBytes& uuid, char* out) noexcept;
std::string uuidString(const UuidBytes& uuid);

// Sorts and removes duplicates, so that the list reads like a set of UUIDs.
void normaliseTagIDs(std::vector<UuidBytes>& ids);

}  // namespace cardiolith::bench
