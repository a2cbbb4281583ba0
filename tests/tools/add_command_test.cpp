#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using ::testing::HasSubstr;

class AddCommandTest : public ToolTest {
 protected:
  nlohmann::json listed() {
    const auto result = run({"list", "--json"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    return nlohmann::json::parse(result.out)["readings"];
  }
};

TEST_F(AddCommandTest, StoresTheReadingAndPrintsItWithItsCategory) {
  const auto result =
      run({"add", "128/82", "--pulse", "71", "--at", "2026-11-20 07:45", "--note", "after coffee"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("2026-11-20 07:45"));
  EXPECT_THAT(result.out, HasSubstr("128/82 mmHg, pulse 71: High"));
  EXPECT_THAT(result.out, HasSubstr("Note: after coffee"));
  EXPECT_THAT(result.out, HasSubstr("Started a new log in " + readingsFile().string()));
  EXPECT_EQ(result.err, "");

  const auto readings = listed();
  ASSERT_EQ(readings.size(), 1u);
  EXPECT_EQ(readings[0]["date"], "2026-11-20T07:45:00Z");
  EXPECT_EQ(readings[0]["systolic"], 128);
  EXPECT_EQ(readings[0]["diastolic"], 82);
  EXPECT_EQ(readings[0]["pulse"], 71);
  EXPECT_EQ(readings[0]["notes"], "after coffee");
  EXPECT_THAT(readings[0]["id"].get<std::string>(),
              ::testing::MatchesRegex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"));
}

TEST_F(AddCommandTest, TakesThePulseAsAThirdNumber) {
  ASSERT_EQ(run({"add", "118/76/64", "--at", "2026-11-20"}).exitCode, 0);
  ASSERT_EQ(run({"add", "118/76/64", "--pulse", "64", "--at", "2026-11-21"}).exitCode,
            0);  // the same pulse twice is fine
  const auto readings = listed();
  ASSERT_EQ(readings.size(), 2u);
  EXPECT_EQ(readings[0]["pulse"], 64);
  EXPECT_EQ(readings[1]["date"], "2026-11-20T00:00:00Z");
}

TEST_F(AddCommandTest, AddsToTheReadingsAlreadyThere) {
  for (const char* at : {"2026-11-18 08:00", "2026-11-19 08:00", "2026-11-20 08:00"}) {
    ASSERT_EQ(run({"add", "120/80", "-p", "60", "--at", at}).exitCode, 0);
  }
  const auto second = run({"add", "121/79", "-p", "61", "--at", "2026-11-21 08:00"});
  EXPECT_THAT(second.out, ::testing::Not(HasSubstr("Started a new log")));
  EXPECT_EQ(listed().size(), 4u);
}

TEST_F(AddCommandTest, TagsAreMatchedByTitleIgnoringCaseWhenUnambiguous) {
  const auto result = run({"add", "125/81", "-p", "70", "--tag", "Morning", "--tag", "left ARM"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("Tags: Left arm, Morning"));
  EXPECT_EQ(listed()[0]["tags"], nlohmann::json({"Left arm", "Morning"}));
}

TEST_F(AddCommandTest, ForceKeepsImplausibleValuesAndFutureDates) {
  ASSERT_EQ(run({"add", "80/90", "-p", "300", "--at", "2099-01-01", "--force"}).exitCode, 0);
  const auto readings = listed();
  ASSERT_EQ(readings.size(), 1u);
  EXPECT_EQ(readings[0]["pulse"], 300);
}

// The library reads launch arguments itself and empties the log when it sees this one; typed as a note
// it must stay a note.
TEST_F(AddCommandTest, AResetWordInANoteDoesNotEmptyTheLog) {
  ASSERT_EQ(run({"add", "120/80", "-p", "60", "--note", "DELETE_ALL_RECORDS"}).exitCode, 0);
  ASSERT_EQ(run({"add", "121/80", "-p", "60", "--note", "DELETE_ALL_RECORDS"}).exitCode, 0);
  EXPECT_EQ(listed().size(), 2u);
}

struct RefusedAdd {
  std::vector<std::string> arguments;
  std::string message;
};

class AddRefusalTest : public ToolTest, public ::testing::WithParamInterface<RefusedAdd> {};

TEST_P(AddRefusalTest, ExplainsAndAddsNothing) {
  std::vector<std::string> arguments{"add"};
  arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
  const auto result = run(arguments);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr(GetParam().message));
  EXPECT_EQ(result.out, "");
  EXPECT_FALSE(std::filesystem::exists(readingsFile()));
}

INSTANTIATE_TEST_SUITE_P(
    Input, AddRefusalTest,
    ::testing::Values(
        RefusedAdd{{"128-82", "-p", "70"}, "\"128-82\" is not a blood-pressure reading"},
        RefusedAdd{{"128/", "-p", "70"}, "is not a blood-pressure reading"},
        RefusedAdd{{"128/82/70/1"}, "is not a blood-pressure reading"},
        RefusedAdd{{"99999999999999999999/82", "-p", "70"}, "is not a blood-pressure reading"},
        RefusedAdd{{"128/82"}, "the pulse is missing"},
        RefusedAdd{{"128/82/70", "-p", "71"}, "the pulse is given twice"},
        RefusedAdd{{"310/82", "-p", "70"}, "the systolic pressure 310 is outside 40-300 mmHg"},
        RefusedAdd{{"39/30", "-p", "70"}, "the systolic pressure 39 is outside 40-300 mmHg"},
        RefusedAdd{{"128/19", "-p", "70"}, "the diastolic pressure 19 is outside 20-200 mmHg"},
        RefusedAdd{{"250/201", "-p", "70"}, "the diastolic pressure 201 is outside 20-200 mmHg"},
        RefusedAdd{{"128/82", "-p", "251"}, "the pulse 251 is outside 20-250 beats per minute"},
        RefusedAdd{{"128/82", "-p", "19"}, "the pulse 19 is outside 20-250"},
        RefusedAdd{{"82/128", "-p", "70"},
                   "the diastolic pressure 128 is not below the systolic pressure 82"},
        RefusedAdd{{"100/100", "-p", "70"}, "is not below the systolic"},
        RefusedAdd{{"120/80", "-p", "70", "--at", "2099-01-01"}, "is in the future"},
        RefusedAdd{{"120/80", "-p", "70", "--tag", "Moring"}, "there is no tag \"Moring\"; the tags are: "},
        RefusedAdd{{"120/80", "-p", "70", "--at", "20.11.2026"}, "--at: \"20.11.2026\" is not a date"},
        RefusedAdd{{"120/80", "-p", "70", "--at", "2026-13-01"},
                   "\"2026-13-01\" is not a day of the calendar"},
        RefusedAdd{{"120/80", "-p", "70", "--at", "2025-02-29"},
                   "\"2025-02-29\" is not a day of the calendar"},
        RefusedAdd{{"120/80", "-p", "70", "--at", "2026-11-20 24:00"}, "24:00 is not a time of day"},
        RefusedAdd{{"120/80", "-p", "70", "--at", "2026-11-20 7:45"}, "is not a date"},
        RefusedAdd{{"120/80", "-p", "70", "--at", "2026-11-20 07:45:10"}, "is not a date"}));

TEST_F(AddCommandTest, UnknownTagErrorListsTheKnownTitles) {
  const auto result = run({"add", "120/80", "-p", "70", "--tag", "Moring"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("\"Afternoon\", \"Before medication\""));
  EXPECT_THAT(result.err, HasSubstr("cardiolith tags add TITLE"));
}

TEST_F(AddCommandTest, RefusesATimeTheLocalClocksSkip) {
  environment_["TZ"] = "Europe/Berlin";
  const auto skipped = run({"add", "120/80", "-p", "70", "--at", "2026-03-29 02:30"});
  EXPECT_EQ(skipped.exitCode, 1);
  EXPECT_THAT(skipped.err, HasSubstr("does not exist in the local time zone"));

  ASSERT_EQ(run({"add", "120/80", "-p", "70", "--at", "2026-03-29 03:30"}).exitCode, 0);
  EXPECT_EQ(listed()[0]["date"], "2026-03-29T03:30:00+02:00");
}

}  // namespace
}  // namespace cardiolith::tool::testing
