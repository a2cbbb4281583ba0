#include "cardiolith/interop/import_plan.hpp"

#include <gtest/gtest.h>

namespace cardiolith::interop {
namespace {

std::shared_ptr<Reading> reading(std::string id, double seconds, std::int64_t systolic,
                                 std::int64_t diastolic, std::int64_t pulse) {
  return std::make_shared<Reading>(std::move(id), Date(seconds), systolic, diastolic, pulse, std::nullopt,
                                   std::nullopt, std::nullopt);
}

IncomingReading incoming(std::shared_ptr<Reading> value, std::vector<std::string> titles = {}) {
  return {"line 2", std::move(value), std::move(titles)};
}

const Tag kMorning{UUID::random(), "Morning", "ffcc00"};

TEST(ImportPlanner, SkipsWhatTheLogHasBySameIdOrSameMinuteAndValues) {
  ImportPlanner planner({reading("A", 600, 128, 82, 71)}, {}, {});
  planner.take(incoming(reading("A", 9000, 120, 80, 60)));  // the same id
  planner.take(incoming(reading("", 630, 128, 82, 71)));    // the same minute and values
  planner.take(incoming(reading("", 660, 128, 82, 71)));    // the next minute: new
  planner.take(incoming(reading("", 661, 128, 82, 71)));    // the same row twice in the file
  planner.take(SkippedRecord{"entry[4]", "not a blood pressure"});
  planner.take(SkippedRecord{"entry[5]", "not a blood pressure"});
  const ImportPlan& plan = planner.plan();
  EXPECT_EQ(plan.alreadyThere, 3u);
  ASSERT_EQ(plan.added.size(), 1u);
  EXPECT_TRUE(UUID::parse(plan.added[0]->id())) << "a reading without an id gets a new one";
  EXPECT_EQ(plan.skipped.at("not a blood pressure"), 2u);
  EXPECT_TRUE(plan.isClean());
}

TEST(ImportPlanner, RefusesImplausibleValuesUnlessForced) {
  for (const bool force : {false, true}) {
    ImportPlanner planner({}, {}, {.force = force});
    planner.take(incoming(reading("", 0, 82, 128, 71)));
    planner.take(InvalidRow{"line 3", "the pulse \"x\" is not a whole number"});
    const ImportPlan& plan = planner.plan();
    EXPECT_EQ(plan.added.size(), force ? 1u : 0u);
    ASSERT_EQ(plan.refused.size(), force ? 1u : 2u);
    if (!force) {
      EXPECT_EQ(plan.refused[0].position, "line 2");
      EXPECT_NE(plan.refused[0].reason.find("not below the systolic"), std::string::npos);
    }
    EXPECT_FALSE(plan.isClean());
  }
}

TEST(ImportPlanner, MatchesTitlesAndListsOrCreatesUnknownOnes) {
  ImportPlanner listing({}, {kMorning}, {});
  listing.take(incoming(reading("", 0, 128, 82, 71), {"Morning", "After run"}));
  EXPECT_EQ(listing.plan().unknownTags, std::set<std::string>{"After run"});
  EXPECT_EQ(listing.plan().added[0]->tagIDs(), std::set<UUID>{kMorning.id});

  ImportPlanner creating({}, {kMorning}, {.createTags = true});
  creating.take(incoming(reading("", 0, 128, 82, 71), {"Morning", "After run"}));
  creating.take(incoming(reading("", 60, 128, 82, 71), {"After run"}));
  const ImportPlan& plan = creating.plan();
  ASSERT_EQ(plan.newTags.size(), 1u) << "one tag per new title, however often it is named";
  EXPECT_EQ(plan.newTags[0].title, "After run");
  EXPECT_EQ(plan.added[1]->tagIDs(), std::set<UUID>{plan.newTags[0].id});
  EXPECT_TRUE(plan.isClean());
}

}  // namespace
}  // namespace cardiolith::interop
