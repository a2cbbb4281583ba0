#include "cardiolith/model/reading.hpp"

#include <utility>

#include "cardiolith/platform/text.hpp"

namespace cardiolith {

Reading::Reading(std::string id, Date date, std::int64_t systolic, std::int64_t diastolic, std::int64_t pulse,
                 std::optional<std::string> notes, std::optional<HealthKitID> healthKitID,
                 std::optional<std::set<UUID>> tagIDs)
    : id_(std::move(id)),
      date_(date),
      systolic_(systolic),
      diastolic_(diastolic),
      pulse_(pulse),
      // An empty note is no note: the entry form hands over "" when the user typed nothing.
      notes_(notes && notes->empty() ? std::nullopt : std::move(notes)),
      tagIDs_(std::move(tagIDs)),
      healthKitID_(healthKitID) {}

Reading::Reading(DecodedTag, std::string id, Date date, std::int64_t systolic, std::int64_t diastolic,
                 std::int64_t pulse, std::optional<std::string> notes, std::optional<std::set<UUID>> tagIDs,
                 std::optional<HealthKitID> healthKitID)
    : id_(std::move(id)),
      date_(date),
      systolic_(systolic),
      diastolic_(diastolic),
      pulse_(pulse),
      notes_(std::move(notes)),
      tagIDs_(std::move(tagIDs)),
      healthKitID_(healthKitID) {}

std::int64_t Reading::value(ValueType type) const {
  switch (type) {
    case ValueType::diastolic:
      return diastolic_;
    case ValueType::systolic:
      return systolic_;
    case ValueType::pulse:
      return pulse_;
  }
  return 0;  // unreachable: every enumerator is handled above
}

std::int64_t Reading::meanArterialPressure() const {
  // Integer division truncates toward zero, which is the rounding wanted here.
  return (systolic_ + 2 * diastolic_) / 3;
}

std::size_t Reading::hashValue() const { return text::canonicalHash(id_); }

bool operator==(const Reading& a, const Reading& b) {
  if (!text::canonicallyEqual(a.id(), b.id())) return false;
  if (a.date() != b.date()) return false;
  if (a.systolic() != b.systolic() || a.diastolic() != b.diastolic() || a.pulse() != b.pulse()) return false;
  if (a.notes().has_value() != b.notes().has_value()) return false;
  if (a.notes() && !text::canonicallyEqual(*a.notes(), *b.notes())) return false;
  return a.healthKitID() == b.healthKitID();
}

}  // namespace cardiolith
