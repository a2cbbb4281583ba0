#include "document_generator.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace cardiolith::bench {
namespace {

TEST(DocumentGeneratorTest, SameSeedGivesTheSameLogAndAnotherSeedAnother) {
  EXPECT_EQ(generateReadings(500, 7), generateReadings(500, 7));
  EXPECT_NE(generateReadings(500, 7), generateReadings(500, 8));
  // A smaller log is the start of a larger one: sizes differ only in how far back they go.
  const auto large = generateReadings(800, 7);
  const auto small = generateReadings(500, 7);
  EXPECT_TRUE(std::equal(small.begin(), small.end(), large.begin()));
}

TEST(DocumentGeneratorTest, OneToThreeReadingsADayGoingBackFromTheNewestDay) {
  const auto readings = generateReadings(3'000);
  ASSERT_EQ(readings.size(), 3'000u);
  std::map<long, int> perDay;
  bool anyFraction = false;
  for (std::size_t i = 0; i < readings.size(); ++i) {
    const double date = readings[i].date;
    EXPECT_LT(date, kNewestDay + kSecondsPerDay);
    if (i > 0) {
      EXPECT_LT(date, readings[i - 1].date) << "newest first, at " << i;
    }
    ++perDay[static_cast<long>(std::floor((date - kNewestDay) / kSecondsPerDay))];
    anyFraction = anyFraction || date != std::floor(date);
  }
  EXPECT_TRUE(anyFraction);
  EXPECT_EQ(perDay.rbegin()->first, 0) << "the newest reading is on the newest day";
  for (auto it = std::next(perDay.begin()); it != perDay.end(); ++it) {  // the oldest day may be cut short
    EXPECT_GE(it->second, 1);
    EXPECT_LE(it->second, 3);
    EXPECT_EQ(it->first, std::prev(it)->first + 1) << "no day skipped";
  }
}

TEST(DocumentGeneratorTest, OptionalMembersAppearInTheirSharesWithRealisticContent) {
  const auto readings = generateReadings(10'000);
  const auto& pool = defaultTagIDs();
  std::size_t withNotes = 0, withTags = 0, withHealthIDs = 0, notesNeedingCare = 0;
  for (const auto& reading : readings) {
    EXPECT_EQ(reading.id.size(), 36u);
    EXPECT_TRUE(parseUuid(reading.id).has_value());
    EXPECT_GE(reading.systolic, 85);
    EXPECT_LE(reading.systolic, 210);
    if (reading.notes) {
      ++withNotes;
      const auto words = std::count(reading.notes->begin(), reading.notes->end(), ' ') + 1;
      EXPECT_GE(words, 2);
      const bool needsCare = reading.notes->find_first_of(",\"/\n\x80\xC3\xF0") != std::string::npos;
      notesNeedingCare += needsCare ? 1 : 0;
    }
    if (reading.tagIDs) {
      ++withTags;
      EXPECT_GE(reading.tagIDs->size(), 1u);
      EXPECT_LE(reading.tagIDs->size(), 3u);
      EXPECT_TRUE(std::is_sorted(reading.tagIDs->begin(), reading.tagIDs->end()));
      for (const auto& id : *reading.tagIDs) EXPECT_NE(std::find(pool.begin(), pool.end(), id), pool.end());
    }
    withHealthIDs += reading.healthKitID ? 1U : 0U;
  }
  EXPECT_NEAR(static_cast<double>(withNotes) / 10'000.0, 0.4, 0.03);
  EXPECT_NEAR(static_cast<double>(withTags) / 10'000.0, 0.6, 0.03);
  EXPECT_NEAR(static_cast<double>(withHealthIDs) / 10'000.0, 0.2, 0.03);
  EXPECT_GT(notesNeedingCare, withNotes / 2);
}

}  // namespace
}  // namespace cardiolith::bench
