#include "cardiolith/sample/fake_readings_generator.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "cardiolith/platform/storage_locations.hpp"
#include "cardiolith/storage/tags_manager.hpp"
#include "model/error_message.hpp"
#include "platform/memory.hpp"
#include "sample/fake_readings.hpp"

namespace cardiolith {
namespace {

const Date kEnd(760'000'000.25);
constexpr std::int64_t kInt64Max = std::numeric_limits<std::int64_t>::max();

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

// count + 1 readings, newest first, exactly 24 hours apart and ending at the end date, with fresh canonical
// ids and a sentence as notes only when asked. Each value takes every value of its half-open range but the
// upper bound: the widest range has 180 values, so over 6000 readings missing one has odds below 1e-12.
// A tag is picked on even indices and again on multiples of 3, each pick reading the list afresh; with two
// tags the picks at multiples of 6 agree about half of the time: one outcome missing has odds of 2^-999.
TEST(FakeReadingsGeneratorTest, DailyReadingsWithValuesInTheirRangesAndTagsOnEvenIndicesAndMultiplesOf3) {
  const std::vector<Tag> two{{UUID::random(), "One", "007aff"}, {UUID::random(), "Two", "ff9500"}};
  const std::regex sentence("[A-Z][a-z]*( [a-z]+)*\\.");
  struct Case {
    std::int64_t count;
    std::optional<std::int64_t> variance;
    std::int64_t lower[3], upper[3];  // the half-open ranges of systolic, diastolic and pulse
    std::vector<Tag> tags;
    bool withNotes;
    std::array<std::set<std::size_t>, 3> tagsByPicks;  // the tag counts of readings with 0, 1 or 2 picks
  };
  const Case cases[] = {
      {0, 1, {119, 79, 79}, {120, 80, 80}, {two[0]}, false, {{{}, {}, {1}}}},
      {999, 10, {110, 70, 70}, {120, 80, 80}, {}, true, {{{0}, {0}, {0}}}},
      {5999, std::nullopt, {70, 40, 20}, {200, 125, 200}, two, true, {{{0}, {1}, {1, 2}}}},
      {5999, 125, {-5, -45, -45}, {120, 80, 80}, {two[1]}, false, {{{0}, {1}, {1}}}},  // no lower clamp
  };
  for (const auto& c : cases) {
    SCOPED_TRACE("count " + std::to_string(c.count));
    Generator generate{c.tags};
    const ReadingList readings = generate(c.count, c.variance, c.withNotes);
    ASSERT_EQ(readings.size(), static_cast<std::size_t>(c.count + 1));
    EXPECT_EQ(generate.reads, c.count / 2 + c.count / 3 + 2);
    std::set<std::string> ids;
    std::set<std::int64_t> values[3];
    std::array<std::set<std::size_t>, 3> tagsByPicks;
    for (std::size_t i = 0; i < readings.size(); ++i) {
      const Reading& reading = *readings[i];
      EXPECT_EQ(reading.date(), kEnd.addingTimeInterval(-86400.0 * static_cast<double>(i))) << i;
      EXPECT_EQ(UUID::parse(reading.id()).value_or(UUID()).uuidString(), reading.id());
      ids.insert(reading.id());
      const std::int64_t drawn[] = {reading.systolic(), reading.diastolic(), reading.pulse()};
      for (int f = 0; f < 3; ++f) values[f].insert(drawn[f]);
      ASSERT_TRUE(reading.tagIDs().has_value());
      tagsByPicks[static_cast<std::size_t>((i % 2 == 0) + (i % 3 == 0))].insert(reading.tagIDs()->size());
      const std::string notes = reading.notes().value_or("(none)");
      EXPECT_TRUE(c.withNotes ? std::regex_match(notes, sentence) : !reading.notes()) << notes;
    }
    EXPECT_EQ(ids.size(), readings.size());
    for (int f = 0; f < 3; ++f) {
      std::set<std::int64_t> wholeRange;
      for (auto value = c.lower[f]; value < c.upper[f]; ++value) wholeRange.insert(value);
      EXPECT_EQ(values[f], wholeRange) << "field " << f;
    }
    EXPECT_EQ(tagsByPicks, c.tagsByPicks);
  }
}

TEST(FakeReadingsGeneratorTest, BrokenLimitsThrowBeforeAnyTagIsReadAndExtremeOnesWork) {
  const std::tuple<std::int64_t, std::optional<std::int64_t>, std::string> cases[] = {
      {-1, std::nullopt, "count must be 0 or more, got -1"},
      {3, 0, "rangeVariance must be 1 or more, got 0"},
      {3, -7, "rangeVariance must be 1 or more, got -7"}};
  for (const auto& [count, variance, message] : cases) {
    Generator generate;
    EXPECT_EQ(testing::messageOf<std::invalid_argument>(
                  [&, &count = count, &variance = variance] { generate(count, variance); }),
              "FakeReadingsGenerator::generateFakeReadings: " + message);
    EXPECT_EQ(generate.reads, 0);
  }
  // Counts whose readings could not be held: beyond a vector's size, or beyond the machine's memory.
  Generator generate;
  const auto beyondMemory = static_cast<std::int64_t>(detail::memory::capacityBytes() / 16);
  for (const std::int64_t count : {kInt64Max, std::int64_t{1} << 59, beyondMemory}) {
    EXPECT_EQ(testing::messageOf<std::length_error>([&] { generate(count); }),
              "FakeReadingsGenerator::generateFakeReadings: a count of " + std::to_string(count) +
                  " asks for more readings than memory can hold");
  }
  EXPECT_EQ(generate.reads, 0);
  for (const auto& reading : generate(99, kInt64Max))  // the largest variance, whose range's size fits
    EXPECT_TRUE(reading->systolic() < 120 && reading->diastolic() < 80 && reading->pulse() < 80);
}

// The public operation takes its tags from a fresh manager over the test's temporary container, whose list
// may arrive in the background during the call: a pick gives nothing or one of the stored tags.
TEST(FakeReadingsGeneratorTest, PublicOperationPicksFromAFreshTagsManager) {
  TagsManager manager(StorageLocations::current());
  manager.waitUntilLoaded();
  const ReadingList readings = FakeReadingsGenerator::generateFakeReadings(299, kEnd, 10, true);
  ASSERT_EQ(readings.size(), 300u);
  for (const auto& reading : readings) {
    EXPECT_EQ(manager.tags(*reading->tagIDs()).size(), reading->tagIDs()->size());
    EXPECT_TRUE(reading->systolic() >= 110 && reading->systolic() < 120 && reading->notes());
  }
}

}  // namespace
}  // namespace cardiolith
