#include "cardiolith/sample/fake_readings_generator.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "cardiolith/platform/storage_locations.hpp"
#include "cardiolith/platform/uuid.hpp"
#include "cardiolith/storage/tags_manager.hpp"
#include "sample/fake_readings.hpp"

namespace cardiolith {
namespace {

const Date kEnd(760'000'000.25);

Tag tag(const char* title) { return Tag{UUID::random(), title, "007aff"}; }

// A tag list that never changes, counting how often it is read.
struct FixedTags {
  std::vector<Tag> tags;
  int reads = 0;
  detail::TagListSource source() {
    return [this] {
      ++reads;
      return tags;
    };
  }
};

ReadingList generate(std::int64_t count, std::optional<std::int64_t> variance, FixedTags& tags,
                     bool includeNotes = false) {
  return detail::generateFakeReadings(count, kEnd, variance, includeNotes, tags.source());
}

TEST(FakeReadingsGeneratorTest, CountZeroGivesOneReadingAtTheEndWithTwoPicks) {
  FixedTags tags{{tag("Only")}};
  const ReadingList readings = generate(0, std::nullopt, tags);
  ASSERT_EQ(readings.size(), 1u);
  EXPECT_EQ(readings[0]->date(), kEnd);
  EXPECT_EQ(tags.reads, 2);
  EXPECT_EQ(readings[0]->tagIDs(), std::set<UUID>{tags.tags[0].id});
  EXPECT_FALSE(readings[0]->notes().has_value());
  EXPECT_FALSE(readings[0]->healthKitID().has_value());
}

TEST(FakeReadingsGeneratorTest, ReadingsAreExactly24HoursApartNewestFirstWithFreshIDs) {
  FixedTags tags;
  const ReadingList readings = generate(14, std::nullopt, tags);
  ASSERT_EQ(readings.size(), 15u);
  std::set<std::string> ids;
  for (std::size_t i = 0; i < readings.size(); ++i) {
    EXPECT_EQ(readings[i]->date().timeIntervalSinceReferenceDate(),
              kEnd.timeIntervalSinceReferenceDate() - 86400.0 * static_cast<double>(i));
    const auto parsed = UUID::parse(readings[i]->id());
    ASSERT_TRUE(parsed) << readings[i]->id();
    EXPECT_EQ(parsed->uuidString(), readings[i]->id());  // canonical, upper case
    ids.insert(readings[i]->id());
  }
  EXPECT_EQ(ids.size(), readings.size());
}

TEST(FakeReadingsGeneratorTest, TagsArePickedOnEvenIndicesAndMultiplesOfThree) {
  FixedTags tags{{tag("Only")}};
  const ReadingList readings = generate(14, std::nullopt, tags);
  // Picks at 0, 2, 4, 6, 8, 10, 12, 14 and at 0, 3, 6, 9, 12, each reading the list afresh.
  EXPECT_EQ(tags.reads, 13);
  for (std::size_t i = 0; i < readings.size(); ++i) {
    const bool picked = i % 2 == 0 || i % 3 == 0;
    ASSERT_TRUE(readings[i]->tagIDs().has_value());
    EXPECT_EQ(readings[i]->tagIDs()->size(), picked ? 1u : 0u) << "reading " << i;
  }
}

TEST(FakeReadingsGeneratorTest, AnEmptyTagListGivesEmptyTagSets) {
  FixedTags tags;
  for (const auto& reading : generate(14, std::nullopt, tags)) {
    ASSERT_TRUE(reading->tagIDs().has_value());
    EXPECT_TRUE(reading->tagIDs()->empty());
  }
}

// The two picks at multiples of 6 are independent: with two tags they agree about half of the time. Over
// 500 such readings, never seeing one of the outcomes has odds of 2^-499; every tag turns up.
TEST(FakeReadingsGeneratorTest, PicksAreIndependentAndUniform) {
  FixedTags tags{{tag("One"), tag("Two")}};
  const ReadingList readings = generate(2999, std::nullopt, tags);
  std::set<std::size_t> sizesAtDoublePicks;
  std::set<UUID> seen;
  for (std::size_t i = 0; i < readings.size(); ++i) {
    if (i % 6 == 0) sizesAtDoublePicks.insert(readings[i]->tagIDs()->size());
    seen.insert(readings[i]->tagIDs()->begin(), readings[i]->tagIDs()->end());
  }
  EXPECT_EQ(sizesAtDoublePicks, (std::set<std::size_t>{1, 2}));
  EXPECT_EQ(seen, (std::set<UUID>{tags.tags[0].id, tags.tags[1].id}));
}

struct RangeCase {
  const char* name;
  std::optional<std::int64_t> variance;
  std::int64_t count;
  std::int64_t systolic[2];  // lowest and highest value produced, both included
  std::int64_t diastolic[2];
  std::int64_t pulse[2];
};

std::set<std::int64_t> everyValue(const std::int64_t (&bounds)[2]) {
  std::set<std::int64_t> values;
  for (std::int64_t value = bounds[0]; value <= bounds[1]; ++value) values.insert(value);
  return values;
}

// Each field produces exactly the values of its half-open range: the upper bound never, every other value
// at least once. The widest range has 180 values; over 6000 readings, missing any has odds below 1e-12.
TEST(FakeReadingsGeneratorTest, ValuesCoverTheirHalfOpenRangesExactly) {
  const RangeCase cases[] = {
      {"no variance", std::nullopt, 5999, {70, 199}, {40, 124}, {20, 199}},
      {"variance 10", 10, 999, {110, 119}, {70, 79}, {70, 79}},
      {"variance 1", 1, 99, {119, 119}, {79, 79}, {79, 79}},
      {"variance 125 goes below zero", 125, 5999, {-5, 119}, {-45, 79}, {-45, 79}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    FixedTags tags;
    std::set<std::int64_t> systolic, diastolic, pulse;
    for (const auto& reading : generate(c.count, c.variance, tags)) {
      systolic.insert(reading->systolic());
      diastolic.insert(reading->diastolic());
      pulse.insert(reading->pulse());
    }
    EXPECT_EQ(systolic, everyValue(c.systolic));
    EXPECT_EQ(diastolic, everyValue(c.diastolic));
    EXPECT_EQ(pulse, everyValue(c.pulse));
  }
}

TEST(FakeReadingsGeneratorTest, AHugeVarianceDrawsWithoutOverflow) {
  FixedTags tags;
  constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
  for (const auto& reading : generate(99, kMax, tags)) {
    EXPECT_LT(reading->systolic(), 120);
    EXPECT_GE(reading->systolic(), 120 - kMax);
    EXPECT_LT(reading->diastolic(), 80);
    EXPECT_GE(reading->pulse(), 80 - kMax);
  }
}

TEST(FakeReadingsGeneratorTest, NotesAreSentencesOnlyWhenAsked) {
  FixedTags tags;
  for (const auto& reading : generate(20, std::nullopt, tags, true)) {
    ASSERT_TRUE(reading->notes().has_value());
    const std::string& notes = *reading->notes();
    EXPECT_TRUE(notes.front() >= 'A' && notes.front() <= 'Z') << notes;
    EXPECT_EQ(notes.back(), '.') << notes;
  }
  for (const auto& reading : generate(20, std::nullopt, tags, false))
    EXPECT_FALSE(reading->notes().has_value());
}

TEST(FakeReadingsGeneratorTest, BrokenLimitsThrowBeforeAnyTagIsRead) {
  struct Case {
    std::int64_t count;
    std::optional<std::int64_t> variance;
    std::string message;
  };
  const Case cases[] = {
      {-1, std::nullopt, "FakeReadingsGenerator::generateFakeReadings: count must be 0 or more, got -1"},
      {3, 0, "FakeReadingsGenerator::generateFakeReadings: rangeVariance must be 1 or more, got 0"},
      {3, -7, "FakeReadingsGenerator::generateFakeReadings: rangeVariance must be 1 or more, got -7"},
  };
  for (const auto& c : cases) {
    FixedTags tags;
    try {
      generate(c.count, c.variance, tags);
      ADD_FAILURE() << "no exception; expected: " << c.message;
    } catch (const std::invalid_argument& error) {
      EXPECT_EQ(error.what(), c.message);
    }
    EXPECT_EQ(tags.reads, 0);
  }
  FixedTags tags;
  EXPECT_THROW(generate(std::numeric_limits<std::int64_t>::max(), std::nullopt, tags), std::length_error);
  EXPECT_EQ(tags.reads, 0);
}

// Through the public operation, tags come from a fresh manager over the test's temporary container, whose
// list starts empty and fills in the background: each pick gives nothing or one of the stored tags, and
// once the list has arrived it stays.
TEST(FakeReadingsGeneratorTest, PublicOperationPicksFromAFreshTagsManager) {
  std::set<UUID> stored;
  {
    TagsManager manager(StorageLocations::current());
    manager.waitUntilLoaded();
    for (const auto& tag : manager.tags()) stored.insert(tag.id);
  }
  ASSERT_FALSE(stored.empty());

  const ReadingList readings = FakeReadingsGenerator::generateFakeReadings(299, kEnd, 10, true);
  ASSERT_EQ(readings.size(), 300u);
  bool arrived = false;
  for (std::size_t i = 0; i < readings.size(); ++i) {
    const auto& tagIDs = *readings[i]->tagIDs();
    for (const auto& id : tagIDs) EXPECT_EQ(stored.count(id), 1u);
    const bool picked = i % 2 == 0 || i % 3 == 0;
    if (!picked) {
      EXPECT_TRUE(tagIDs.empty()) << "reading " << i;
    } else if (arrived) {
      EXPECT_FALSE(tagIDs.empty()) << "reading " << i;
    }
    arrived = arrived || !tagIDs.empty();
    EXPECT_GE(readings[i]->systolic(), 110);
    EXPECT_TRUE(readings[i]->notes().has_value());
  }
  EXPECT_THROW(FakeReadingsGenerator::generateFakeReadings(-1, kEnd, std::nullopt, false),
               std::invalid_argument);
}

}  // namespace
}  // namespace cardiolith
