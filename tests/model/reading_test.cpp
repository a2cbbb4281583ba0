#include "cardiolith/model/reading.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <tuple>

#include "cardiolith/model/collection.hpp"

namespace cardiolith {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const UUID kFirst = *UUID::parse("11111111-1111-4111-8111-111111111111");
const UUID kSecond = *UUID::parse("22222222-2222-4222-8222-222222222222");

struct Fields {
  std::string id = "caf\u00e9";
  Date date = Date(700000000.25);
  std::int64_t systolic = 120, diastolic = 80, pulse = 70;
  std::optional<std::string> notes = "cr\u00e8me br\u00fbl\u00e9e";
  std::optional<Reading::HealthKitID> healthKitID = Reading::HealthKitID{kFirst, kSecond};
  std::optional<std::set<UUID>> tagIDs = std::set<UUID>{kFirst};

  Reading make() const { return Reading(id, date, systolic, diastolic, pulse, notes, healthKitID, tagIDs); }
};

TEST(ReadingTest, EqualityComparesAllButTheTagsWithTextUnderCanonicalEquivalence) {
  const std::tuple<const char*, bool, void (*)(Fields&)> changes[] = {
      {"id", false, [](Fields& f) { f.id = "cafe"; }},
      {"date", false, [](Fields& f) { f.date = f.date.addingTimeInterval(0.001); }},
      {"systolic", false, [](Fields& f) { ++f.systolic; }},
      {"diastolic", false, [](Fields& f) { ++f.diastolic; }},
      {"pulse", false, [](Fields& f) { ++f.pulse; }},
      {"notes text", false, [](Fields& f) { f.notes = "cr\u00e8me br\u00fbl\u00e8e"; }},  // grave, not acute
      {"notes absent", false, [](Fields& f) { f.notes = std::nullopt; }},
      {"healthKitID absent", false, [](Fields& f) { f.healthKitID = std::nullopt; }},
      {"heartRateUUID", false, [](Fields& f) { f.healthKitID->heartRateUUID = kFirst; }},
      {"bloodPressureUUID", false, [](Fields& f) { f.healthKitID->bloodPressureUUID = kSecond; }},
      {"tags", true, [](Fields& f) { f.tagIDs = std::nullopt; }},
      {"decomposed id", true, [](Fields& f) { f.id = "cafe\u0301"; }},
      {"decomposed notes", true, [](Fields& f) { f.notes = "cre\u0300me bru\u0302le\u0301e"; }},
  };
  const Reading base = Fields{}.make();
  for (const auto& [name, equal, change] : changes) {
    Fields fields;
    change(fields);
    const Reading changed = fields.make();
    EXPECT_EQ(base == changed, equal) << name;
    // Only the id is hashed, so every reading equal to the base, or with its id, hashes alike.
    if (equal || fields.id == Fields{}.id) {
      EXPECT_EQ(std::hash<Reading>{}(changed), base.hashValue()) << name;
    }
  }
}

std::shared_ptr<Reading> readingAt(double seconds, std::int64_t value = 0) {
  return Reading::decoded("r", Date(seconds), value, value + 1, value + 2, {}, {}, {});
}

TEST(ReadingTest, OnlyADecodedReadingKeepsEmptyNotes) {
  EXPECT_FALSE(Reading("r", Date(0), 0, 1, 2, "", {}, {}).notes().has_value());
  // Kept, they tell it from the same reading without notes.
  EXPECT_FALSE(*Reading::decoded("r", Date(0), 0, 1, 2, "", {}, {}) == *readingAt(0));
}

TEST(ReadingTest, MeanArterialPressureTruncatesTowardZero) {
  const std::int64_t cases[][3] = {{120, 80, 93}, {121, 80, 93}, {119, 80, 93}, {2, 0, 0},
                                   {-2, 0, 0},    {-1, -1, -1},  {-4, 0, -1}};
  for (const auto& [systolic, diastolic, expected] : cases) {
    const Reading reading("r", Date(0), systolic, diastolic, 0, {}, {}, {});
    EXPECT_EQ(reading.meanArterialPressure(), expected) << systolic << "/" << diastolic;
  }
}

TEST(CollectionTest, FilteredKeepsBothBoundsAndInputOrder) {
  const ReadingList readings = {readingAt(30),     readingAt(9.999), readingAt(10), readingAt(20),
                                readingAt(20.001), readingAt(15),    readingAt(10)};
  // The very readings, shared rather than copied.
  EXPECT_THAT(filtered(readings, Date(10), Date(20)),
              ElementsAre(readings[2], readings[3], readings[5], readings[6]));
  EXPECT_THAT(filtered(readings, Date(10), Date(10)), ElementsAre(readings[2], readings[6]));
  EXPECT_THAT(filtered(readings, Date(11), Date(10)), IsEmpty());
  // Each bound drops only what is provably beyond it, so a date unordered with both (NaN) stays.
  EXPECT_EQ(filtered({readingAt(std::numeric_limits<double>::quiet_NaN())}, Date(0), Date(1)).size(), 1u);
}

TEST(CollectionTest, GetAllValuesProjectsEveryReadingInOrder) {
  const ReadingList readings = {readingAt(1, 120), readingAt(2, 130), readingAt(3, 120)};
  EXPECT_THAT(getAllValues(readings, Reading::ValueType::systolic), ElementsAre(120, 130, 120));
  EXPECT_THAT(getAllValues(readings, Reading::ValueType::diastolic), ElementsAre(121, 131, 121));
  EXPECT_THAT(getAllValues(readings, Reading::ValueType::pulse), ElementsAre(122, 132, 122));
}

}  // namespace
}  // namespace cardiolith
