#include "cardiolith/sample/fake_readings_generator.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "cardiolith/platform/storage_locations.hpp"
#include "cardiolith/storage/tags_manager.hpp"
#include "sample/fake_readings.hpp"

namespace cardiolith {
namespace {

const Date kEnd(760'000'000.25);

// Generates from a tag list that never changes, counting how often the list is read.
struct Generator {
  std::vector<Tag> tags;
  int reads = 0;
  ReadingList operator()(std::int64_t count, std::optional<std::int64_t> variance = std::nullopt,
                         bool includeNotes = false) {
    return detail::generateFakeReadings(count, kEnd, variance, includeNotes, [this] {
      ++reads;
      return tags;
    });
  }
};

Tag tag(const char* title) { return Tag{UUID::random(), title, "007aff"}; }

// count + 1 readings, newest first, exactly 24 hours apart and ending at the end date, with fresh canonical
// ids, a sentence as notes only when asked, and tags picked on even indices and again on multiples of 3,
// each pick reading the list afresh.
TEST(FakeReadingsGeneratorTest, DailyReadingsWithTagsOnEvenIndicesAndMultiplesOfThree) {
  for (const std::int64_t count : {0, 14}) {
    for (const bool withTags : {true, false}) {
      SCOPED_TRACE("count " + std::to_string(count) + (withTags ? " with a tag" : " without tags"));
      Generator generate{withTags ? std::vector<Tag>{tag("Only")} : std::vector<Tag>{}};
      const bool withNotes = count > 0;
      const ReadingList readings = generate(count, std::nullopt, withNotes);
      ASSERT_EQ(readings.size(), static_cast<std::size_t>(count + 1));
      EXPECT_EQ(generate.reads, count / 2 + count / 3 + 2);
      std::set<std::string> ids;
      for (std::size_t i = 0; i < readings.size(); ++i) {
        SCOPED_TRACE("reading " + std::to_string(i));
        EXPECT_EQ(readings[i]->date(), kEnd.addingTimeInterval(-86400.0 * static_cast<double>(i)));
        EXPECT_EQ(UUID::parse(readings[i]->id()).value_or(UUID()).uuidString(), readings[i]->id());
        ids.insert(readings[i]->id());
        ASSERT_TRUE(readings[i]->tagIDs().has_value());
        EXPECT_EQ(readings[i]->tagIDs()->size(), withTags && (i % 2 == 0 || i % 3 == 0) ? 1u : 0u);
        const std::string notes = readings[i]->notes().value_or("");
        EXPECT_EQ(readings[i]->notes().has_value(), withNotes);
        EXPECT_TRUE(!withNotes ||
                    (notes.size() > 1 && notes[0] >= 'A' && notes[0] <= 'Z' && notes.back() == '.'))
            << notes;
        EXPECT_FALSE(readings[i]->healthKitID());
      }
      EXPECT_EQ(ids.size(), readings.size());
    }
  }
}

// The two picks at multiples of 6 are independent: with two tags they agree about half of the time. Over
// 500 such readings, never seeing one of the outcomes has odds of 2^-499; every tag turns up.
TEST(FakeReadingsGeneratorTest, PicksAreIndependentAndUniform) {
  Generator generate{{tag("One"), tag("Two")}};
  const ReadingList readings = generate(2999);
  std::set<std::size_t> sizesAtDoublePicks;
  std::set<UUID> seen;
  for (std::size_t i = 0; i < readings.size(); ++i) {
    if (i % 6 == 0) sizesAtDoublePicks.insert(readings[i]->tagIDs()->size());
    seen.insert(readings[i]->tagIDs()->begin(), readings[i]->tagIDs()->end());
  }
  EXPECT_EQ(sizesAtDoublePicks, (std::set<std::size_t>{1, 2}));
  EXPECT_EQ(seen, (std::set<UUID>{generate.tags[0].id, generate.tags[1].id}));
}

// Each field produces exactly the values of its half-open range: the upper bound never, every other value
// at least once. The widest range has 180 values; over 6000 readings, missing any has odds below 1e-12.
TEST(FakeReadingsGeneratorTest, ValuesCoverTheirHalfOpenRangesExactly) {
  struct Case {
    std::optional<std::int64_t> variance;
    std::int64_t count;
    std::int64_t lowest[3];  // systolic, diastolic, pulse; the highest is one below the upper bound
    std::int64_t highest[3];
  };
  const Case cases[] = {
      {std::nullopt, 5999, {70, 40, 20}, {199, 124, 199}},
      {10, 999, {110, 70, 70}, {119, 79, 79}},
      {1, 99, {119, 79, 79}, {119, 79, 79}},
      {125, 5999, {-5, -45, -45}, {119, 79, 79}},  // nothing clamps the lower bounds
  };
  for (const auto& c : cases) {
    SCOPED_TRACE("variance " + std::to_string(c.variance.value_or(0)));
    std::set<std::int64_t> seen[3];
    for (const auto& reading : Generator{}(c.count, c.variance)) {
      seen[0].insert(reading->systolic());
      seen[1].insert(reading->diastolic());
      seen[2].insert(reading->pulse());
    }
    for (int field = 0; field < 3; ++field) {
      EXPECT_EQ(seen[field].size(), static_cast<std::size_t>(c.highest[field] - c.lowest[field] + 1))
          << field;
      EXPECT_EQ(*seen[field].begin(), c.lowest[field]) << field;
      EXPECT_EQ(*seen[field].rbegin(), c.highest[field]) << field;
    }
  }
  for (const auto& reading : Generator{}(99, std::numeric_limits<std::int64_t>::max())) {  // no overflow
    EXPECT_TRUE(reading->systolic() < 120 && reading->diastolic() < 80 && reading->pulse() < 80);
    EXPECT_GE(reading->systolic(), 120 - std::numeric_limits<std::int64_t>::max());
  }
}

TEST(FakeReadingsGeneratorTest, BrokenLimitsThrowBeforeAnyTagIsRead) {
  const std::tuple<std::int64_t, std::optional<std::int64_t>, std::string> cases[] = {
      {-1, std::nullopt, "count must be 0 or more, got -1"},
      {3, 0, "rangeVariance must be 1 or more, got 0"},
      {3, -7, "rangeVariance must be 1 or more, got -7"}};
  for (const auto& [count, variance, message] : cases) {
    Generator generate;
    try {
      generate(count, variance);
      ADD_FAILURE() << "no exception; expected: " << message;
    } catch (const std::invalid_argument& error) {
      EXPECT_EQ(error.what(), "FakeReadingsGenerator::generateFakeReadings: " + message);
    }
    EXPECT_EQ(generate.reads, 0);
  }
  Generator generate;
  EXPECT_THROW(generate(std::numeric_limits<std::int64_t>::max()), std::length_error);
  EXPECT_EQ(generate.reads, 0);
}

// The public operation takes its tags from a fresh manager over the test's temporary container, whose list
// may arrive in the background during the call: a pick gives nothing or one of the stored tags.
TEST(FakeReadingsGeneratorTest, PublicOperationPicksFromAFreshTagsManager) {
  TagsManager manager(StorageLocations::current());
  manager.waitUntilLoaded();
  std::set<UUID> stored;
  for (const auto& tag : manager.tags()) stored.insert(tag.id);
  EXPECT_THROW(FakeReadingsGenerator::generateFakeReadings(-1, kEnd, 10, true), std::invalid_argument);
  const ReadingList readings = FakeReadingsGenerator::generateFakeReadings(299, kEnd, 10, true);
  ASSERT_EQ(readings.size(), 300u);
  for (const auto& reading : readings) {
    for (const auto& id : *reading->tagIDs()) EXPECT_EQ(stored.count(id), 1u);
    EXPECT_TRUE(reading->systolic() >= 110 && reading->systolic() < 120 && reading->notes());
  }
}

}  // namespace
}  // namespace cardiolith
