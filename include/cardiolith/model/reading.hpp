#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cardiolith/export.hpp"
#include "cardiolith/platform/date.hpp"
#include "cardiolith/platform/observable.hpp"
#include "cardiolith/platform/uuid.hpp"

namespace cardiolith {

class DateFormatter;
class ListFormatter;
class TagsManager;

// One blood-pressure measurement. A reference object: hold it through std::shared_ptr<Reading>; every
// holder sees the same record. Only healthKitID changes after construction, and assigning it notifies
// nobody. healthKitID has no lock: callers that share a reading between threads serialise their access
// to it themselves.
class CARDIOLITH_EXPORT Reading : public ObservableObject {
 public:
  // The identifiers of the matching samples in the platform's health store.
  struct HealthKitID {
    UUID bloodPressureUUID;
    UUID heartRateUUID;
    friend bool operator==(const HealthKitID&, const HealthKitID&) = default;
  };

  enum class ValueType { diastolic, systolic, pulse };

  // The columns of a text export, in order. There is no column for tags.
  enum class Heading { date, sys, dia, pulse, notes };
  static constexpr std::array<Heading, 5> allHeadings{Heading::date, Heading::sys, Heading::dia,
                                                      Heading::pulse, Heading::notes};

  static constexpr std::int64_t systolicDefault = 120;
  static constexpr std::int64_t diastolicDefault = 80;
  static constexpr std::int64_t pulseDefault = 80;

  // Stores every value unchanged, except that empty notes are stored as absent.
  Reading(std::string id, Date date, std::int64_t systolic, std::int64_t diastolic, std::int64_t pulse,
          std::optional<std::string> notes, std::optional<HealthKitID> healthKitID,
          std::optional<std::set<UUID>> tagIDs);

  // Builds a decoded reading: unlike the constructor above, keeps empty notes as empty text.
  [[nodiscard]] static std::shared_ptr<Reading> decoded(std::string id, Date date, std::int64_t systolic,
                                                        std::int64_t diastolic, std::int64_t pulse,
                                                        std::optional<std::string> notes,
                                                        std::optional<std::set<UUID>> tagIDs,
                                                        std::optional<HealthKitID> healthKitID) {
    return decoded(std::allocator<Reading>(), std::move(id), date, systolic, diastolic, pulse,
                   std::move(notes), std::move(tagIDs), healthKitID);
  }

  // The same, with the record and its control block in memory from `allocator` (std::allocate_shared), so
  // that a decoder can place a document's readings side by side.
  template <class Allocator>
  [[nodiscard]] static std::shared_ptr<Reading> decoded(const Allocator& allocator, std::string id, Date date,
                                                        std::int64_t systolic, std::int64_t diastolic,
                                                        std::int64_t pulse, std::optional<std::string> notes,
                                                        std::optional<std::set<UUID>> tagIDs,
                                                        std::optional<HealthKitID> healthKitID) {
    return std::allocate_shared<Reading>(allocator, DecodedTag{}, std::move(id), date, systolic, diastolic,
                                         pulse, std::move(notes), std::move(tagIDs), healthKitID);
  }

  const std::string& id() const { return id_; }
  Date date() const { return date_; }
  std::int64_t systolic() const { return systolic_; }
  std::int64_t diastolic() const { return diastolic_; }
  std::int64_t pulse() const { return pulse_; }
  const std::optional<std::string>& notes() const { return notes_; }
  const std::optional<std::set<UUID>>& tagIDs() const { return tagIDs_; }
  std::optional<HealthKitID> healthKitID() const { return healthKitID_; }
  void setHealthKitID(std::optional<HealthKitID> healthKitID) { healthKitID_ = healthKitID; }

  // The integer field that `type` names.
  [[nodiscard]] std::int64_t value(ValueType type) const;

  // (systolic + 2 * diastolic) / 3, truncated toward zero.
  [[nodiscard]] std::int64_t meanArterialPressure() const;

  // Hashes the id only, under canonical equivalence, so equal readings hash alike.
  [[nodiscard]] std::size_t hashValue() const;

  // One table row: date, systolic, diastolic, pulse, then the tags cell (when includeTags and the tag ids
  // are present, and the list formatter gives a text) and the notes cell (when includeNotes and the notes
  // are present). Cells are appended, never left empty for an absent value.
  [[nodiscard]] std::vector<std::string> inArrayFormat(const DateFormatter& dateFormatter,
                                                       const ListFormatter& listFormatter,
                                                       const TagsManager& tagManager, bool includeTags,
                                                       bool includeNotes) const;
  // The cells of inArrayFormat, each with every occurrence of `separator` replaced by one space (one
  // left-to-right pass, matches not overlapping), joined by `separator`. No quoting. An empty separator
  // matches nothing, so the cells are kept unchanged and run together.
  [[nodiscard]] std::string inLineFormat(const DateFormatter& dateFormatter,
                                         const ListFormatter& listFormatter, const TagsManager& tagManager,
                                         std::string_view separator, bool includeTags,
                                         bool includeNotes) const;

 private:
  // Only `decoded` can make one, so the constructor below is public for std::allocate_shared alone.
  struct DecodedTag {
    explicit DecodedTag() = default;
  };

 public:
  Reading(DecodedTag, std::string id, Date date, std::int64_t systolic, std::int64_t diastolic,
          std::int64_t pulse, std::optional<std::string> notes, std::optional<std::set<UUID>> tagIDs,
          std::optional<HealthKitID> healthKitID);

 private:
  std::string id_;
  Date date_;
  std::int64_t systolic_;
  std::int64_t diastolic_;
  std::int64_t pulse_;
  std::optional<std::string> notes_;
  std::optional<std::set<UUID>> tagIDs_;
  std::optional<HealthKitID> healthKitID_;
};

// Equal when id (canonically), date, systolic, diastolic, pulse, notes (canonically; absent differs from
// empty) and healthKitID are equal. Tag ids take no part.
CARDIOLITH_EXPORT bool operator==(const Reading& a, const Reading& b);

using ReadingList = std::vector<std::shared_ptr<Reading>>;

}  // namespace cardiolith

template <>
struct CARDIOLITH_EXPORT std::hash<cardiolith::Reading> {
  std::size_t operator()(const cardiolith::Reading& reading) const { return reading.hashValue(); }
};
