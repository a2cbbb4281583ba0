#include "cardiolith/sample/fake_readings_generator.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>

#include "cardiolith/platform/uuid.hpp"
#include "cardiolith/sample/lorem.hpp"
#include "cardiolith/sample/ranges.hpp"
#include "cardiolith/storage/tags_manager.hpp"
#include "platform/memory.hpp"
#include "platform/random.hpp"
#include "sample/fake_readings.hpp"

namespace cardiolith {
namespace {

using detail::random::uniformBelow;

constexpr double kSecondsPerDay = 86400;

struct ValueRanges {
  HalfOpenRange systolic;
  HalfOpenRange diastolic;
  HalfOpenRange pulse;
};

constexpr ValueRanges kPlausibleRanges{{70, 200}, {40, 125}, {20, 200}};

// Just below the reading defaults: a variance only ever gives values under 120/80/80, and the pulse shares
// the diastolic band. Nothing clamps the lower bounds, so a large variance gives negative values.
ValueRanges rangesBelowDefaults(std::int64_t variance) {
  return {{Reading::systolicDefault - variance, Reading::systolicDefault},
          {Reading::diastolicDefault - variance, Reading::diastolicDefault},
          {Reading::diastolicDefault - variance, Reading::diastolicDefault}};
}

std::int64_t draw(HalfOpenRange range) {
  const std::uint64_t size =
      static_cast<std::uint64_t>(range.upper) - static_cast<std::uint64_t>(range.lower);
  return range.lower + static_cast<std::int64_t>(uniformBelow(size));
}

void pickTag(const std::vector<Tag>& tags, std::set<UUID>& tagIDs) {
  if (!tags.empty()) tagIDs.insert(tags[uniformBelow(tags.size())].id);
}

[[noreturn]] void reject(const std::string& why) {
  throw std::invalid_argument("FakeReadingsGenerator::generateFakeReadings: " + why);
}

}  // namespace

ReadingList detail::generateFakeReadings(std::int64_t count, Date endDate,
                                         std::optional<std::int64_t> rangeVariance, bool includeNotes,
                                         const TagListSource& currentTags) {
  if (count < 0) reject("count must be 0 or more, got " + std::to_string(count));
  if (rangeVariance && *rangeVariance < 1) {
    reject("rangeVariance must be 1 or more, got " + std::to_string(*rangeVariance));
  }
  const ValueRanges ranges = rangeVariance ? rangesBelowDefaults(*rangeVariance) : kPlausibleRanges;

  // count + 1 readings, each at least its pointer in the list and the reading itself: refused before
  // anything is built when they could not be held.
  const std::uint64_t readingCount = static_cast<std::uint64_t>(count) + 1;
  constexpr std::uint64_t kLeastBytesPerReading = sizeof(std::shared_ptr<Reading>) + sizeof(Reading);
  ReadingList readings;
  if (readingCount > readings.max_size() ||
      readingCount > detail::memory::capacityBytes() / kLeastBytesPerReading) {
    throw std::length_error("FakeReadingsGenerator::generateFakeReadings: a count of " +
                            std::to_string(count) + " asks for more readings than memory can hold");
  }
  readings.reserve(static_cast<std::size_t>(readingCount));
  for (std::int64_t i = 0; i <= count; ++i) {
    std::set<UUID> tagIDs;
    if (i % 2 == 0) pickTag(currentTags(), tagIDs);
    if (i % 3 == 0) pickTag(currentTags(), tagIDs);
    // Exactly i times 24 hours back, not i calendar days.
    const Date date = endDate.addingTimeInterval(static_cast<double>(i) * -kSecondsPerDay);
    const std::int64_t systolic = draw(ranges.systolic);
    const std::int64_t diastolic = draw(ranges.diastolic);
    const std::int64_t pulse = draw(ranges.pulse);
    std::optional<std::string> notes;
    if (includeNotes) notes = Lorem::sentence();
    readings.push_back(std::make_shared<Reading>(UUID::random().uuidString(), date, systolic, diastolic,
                                                 pulse, std::move(notes), std::nullopt, std::move(tagIDs)));
  }
  return readings;
}

ReadingList FakeReadingsGenerator::generateFakeReadings(std::int64_t count, Date endDate,
                                                        std::optional<std::int64_t> rangeVariance,
                                                        bool includeNotes) {
  // A manager of this call only, made at the first pick (once the arguments have been accepted) and
  // released, after its background load, when the call ends.
  std::optional<TagsManager> manager;
  return detail::generateFakeReadings(count, endDate, rangeVariance, includeNotes, [&manager] {
    if (!manager) manager.emplace();
    return manager->tags();
  });
}

}  // namespace cardiolith
