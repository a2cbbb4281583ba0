#include "cardiolith/model/reading.hpp"

#include <gtest/gtest.h>

#include <functional>

namespace cardiolith {
namespace {

const UUID kFirst = *UUID::parse("11111111-1111-4111-8111-111111111111");
const UUID kSecond = *UUID::parse("22222222-2222-4222-8222-222222222222");

struct Fields {
  std::string id = "E621E1F8-C36C-495A-93FC-0C247A3E6E5F";
  Date date = Date(700000000.25);
  std::int64_t systolic = 120, diastolic = 80, pulse = 70;
  std::optional<std::string> notes = "after coffee";
  std::optional<Reading::HealthKitID> healthKitID = Reading::HealthKitID{kFirst, kSecond};
  std::optional<std::set<UUID>> tagIDs = std::set<UUID>{kFirst};

  Reading make() const { return Reading(id, date, systolic, diastolic, pulse, notes, healthKitID, tagIDs); }
};

TEST(ReadingTest, ConstructorStoresEmptyNotesAsAbsentAndKeepsEverythingElse) {
  Fields fields;
  fields.notes = "";
  fields.tagIDs = std::set<UUID>{};
  const Reading reading = fields.make();
  EXPECT_FALSE(reading.notes().has_value());
  ASSERT_TRUE(reading.tagIDs().has_value());
  EXPECT_TRUE(reading.tagIDs()->empty());
  EXPECT_EQ(reading.healthKitID(), fields.healthKitID);

  fields.notes = " ";
  EXPECT_EQ(fields.make().notes(), " ");
}

TEST(ReadingTest, MeanArterialPressureTruncatesTowardZero) {
  struct Case {
    std::int64_t systolic, diastolic, expected;
  };
  const Case cases[] = {{120, 80, 93}, {121, 80, 93}, {119, 80, 93}, {0, 0, 0},   {1, 1, 1},
                        {2, 0, 0},     {-2, 0, 0},    {-1, -1, -1},  {-4, 0, -1}, {180, 120, 140}};
  for (const auto& c : cases) {
    Fields fields;
    fields.systolic = c.systolic;
    fields.diastolic = c.diastolic;
    EXPECT_EQ(fields.make().meanArterialPressure(), c.expected) << c.systolic << "/" << c.diastolic;
  }
}

TEST(ReadingTest, EqualityIgnoresTagsOnly) {
  const Reading base = Fields{}.make();
  Fields otherTags;
  otherTags.tagIDs = std::nullopt;
  EXPECT_TRUE(base == otherTags.make());

  const std::vector<std::pair<const char*, std::function<void(Fields&)>>> changes = {
      {"id", [](Fields& f) { f.id = "other"; }},
      {"date", [](Fields& f) { f.date = f.date.addingTimeInterval(0.001); }},
      {"systolic", [](Fields& f) { ++f.systolic; }},
      {"diastolic", [](Fields& f) { ++f.diastolic; }},
      {"pulse", [](Fields& f) { ++f.pulse; }},
      {"notes text", [](Fields& f) { f.notes = "after tea"; }},
      {"notes absent", [](Fields& f) { f.notes = std::nullopt; }},
      {"healthKitID absent", [](Fields& f) { f.healthKitID = std::nullopt; }},
      {"heartRateUUID", [](Fields& f) { f.healthKitID->heartRateUUID = kFirst; }},
      {"bloodPressureUUID", [](Fields& f) { f.healthKitID->bloodPressureUUID = kSecond; }},
  };
  for (const auto& [name, change] : changes) {
    Fields fields;
    change(fields);
    const Reading changed = fields.make();
    EXPECT_FALSE(base == changed) << name;
    if (fields.id == Fields{}.id) {
      EXPECT_EQ(base.hashValue(), changed.hashValue()) << name << ": only the id is hashed";
    }
  }
}

TEST(ReadingTest, DecodedReadingsKeepEmptyNotesWhichDifferFromAbsentOnes) {
  const auto empty = Reading::decoded("x", Date(1), 1, 2, 3, "", std::nullopt, std::nullopt);
  const auto absent = Reading::decoded("x", Date(1), 1, 2, 3, std::nullopt, std::nullopt, std::nullopt);
  EXPECT_EQ(empty->notes(), "");
  EXPECT_FALSE(*absent == *empty);
}

TEST(ReadingTest, TextComparesAndHashesUnderCanonicalEquivalence) {
  Fields precomposed;
  precomposed.id = "caf\u00e9";
  precomposed.notes = "cr\u00e8me br\u00fbl\u00e9e";
  Fields decomposed;
  decomposed.id = "cafe\u0301";
  decomposed.notes = "cre\u0300me bru\u0302le\u0301e";

  const Reading a = precomposed.make();
  const Reading b = decomposed.make();
  EXPECT_TRUE(a == b);
  EXPECT_EQ(a.hashValue(), b.hashValue());
  EXPECT_EQ(std::hash<Reading>{}(a), a.hashValue());

  decomposed.notes = "cre\u0300me bru\u0302le\u0300e";  // grave, not acute, on the last letter
  EXPECT_FALSE(a == decomposed.make());
}

}  // namespace
}  // namespace cardiolith
